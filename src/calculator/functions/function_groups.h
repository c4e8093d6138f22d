#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "calculator/functions/function_table.h"

/// The groups of functions, one a file, that AppendFunctions puts together.
namespace kestrel::calculator {

/// A function as the table of its file has it.
struct NewFunction {
  std::wstring name;
  std::wstring description;
  std::vector<CCalculatorArgumentInfoObject> arguments;
  std::wstring usage;
  Function function = nullptr;
  bool repeats = false;  ///< the last argument may be given any number of times
};

/// The counts of arguments follow from the list: at least those that are not optional, at most all, or any number.
void Append(FunctionTable& table, std::initializer_list<NewFunction> functions);

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
