#pragma once

#include <string>
#include <vector>

#include "calculator/functions/function_table.h"

namespace kestrel::calculator {

/// A function as the table of its file has it: what a reader and a call need to know.
struct FunctionRow {
  std::wstring name;
  std::wstring description;
  std::vector<CCalculatorArgumentInfoObject> arguments;
  std::wstring usage;
  Function function = nullptr;
  bool last_repeats = false;  ///< the last argument may be given any number of times
};

/// The counts of arguments follow from their records: at least those that are not optional, at most all, or any number.
void AppendRows(FunctionTable& table, const std::vector<FunctionRow>& rows);

}  // namespace kestrel::calculator
