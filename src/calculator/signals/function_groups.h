#pragma once

#include <vector>

#include "calculator/functions/function_table.h"

/// The tables of functions by theme, one source file each.
namespace kestrel::calculator {

/// A line of a table: what a reader and a call need to know. The counts of arguments follow from their records.
struct FunctionRow {
  const wchar_t* name;
  const wchar_t* description;
  std::vector<CCalculatorArgumentInfoObject> arguments;
  const wchar_t* usage;
  Function function;
  bool last_repeats = false;  ///< the last argument may be given any number of times
};

void AppendRows(FunctionTable& table, const std::vector<FunctionRow>& rows);

void AppendConstruction(FunctionTable& table);   ///< signal, series, xydata
void AppendExtraction(FunctionTable& table);     ///< lct, extract, window
void AppendPeaks(FunctionTable& table);          ///< peaks, minpeaks, maxpeaks, magpeaks
void AppendCalculus(FunctionTable& table);       ///< derive, integrate, area
void AppendInterpolation(FunctionTable& table);  ///< interpolate, interpolateABQ
void AppendFourier(FunctionTable& table);        ///< fft and its relatives
void AppendFilters(FunctionTable& table);        ///< recursive filters
void AppendSmoothing(FunctionTable& table);      ///< decimateFilter, smoothFilter

}  // namespace kestrel::calculator
