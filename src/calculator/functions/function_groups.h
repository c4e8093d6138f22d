#pragma once

#include "calculator/functions/function_rows.h"

/// The groups of functions, one a file, that AppendFunctions puts together.
namespace kestrel::calculator {

void AppendTrigonometricFunctions(FunctionTable& table);
void AppendElementaryFunctions(FunctionTable& table);
void AppendComplexFunctions(FunctionTable& table);
void AppendStatisticalFunctions(FunctionTable& table);
void AppendExtremaFunctions(FunctionTable& table);
void AppendSequenceFunctions(FunctionTable& table);
void AppendMatrixFunctions(FunctionTable& table);
void AppendModalFunctions(FunctionTable& table);
void AppendQueryFunctions(FunctionTable& table);
void AppendRandomFunctions(FunctionTable& table);
void AppendInputFunctions(FunctionTable& table);

}  // namespace kestrel::calculator
