#pragma once

#include "calculator/functions/function_rows.h"

/// The tables of functions by theme, one source file each.
namespace kestrel::calculator {

void AppendConstruction(FunctionTable& table);   ///< signal, series, xydata
void AppendExtraction(FunctionTable& table);     ///< lct, extract, window
void AppendPeaks(FunctionTable& table);          ///< peaks, minpeaks, maxpeaks, magpeaks
void AppendCalculus(FunctionTable& table);       ///< derive, integrate, area
void AppendInterpolation(FunctionTable& table);  ///< interpolate, interpolateABQ
void AppendFourier(FunctionTable& table);        ///< fft and its relatives
void AppendFilters(FunctionTable& table);        ///< recursive filters
void AppendSmoothing(FunctionTable& table);      ///< decimateFilter, smoothFilter

}  // namespace kestrel::calculator
