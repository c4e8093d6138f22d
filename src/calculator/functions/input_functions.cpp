#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "calculator/functions/arguments.h"
#include "calculator/functions/calculator_exceptions.h"
#include "calculator/functions/function_groups.h"
#include "calculator/functions/number_file.h"
#include "calculator/functions/numbers.h"

namespace kestrel::calculator {
namespace {

/// The columns that the arguments after the name ask for, one by one or as vectors.
std::vector<std::size_t> GetColumns(const Arguments& arguments) {
  std::vector<std::size_t> columns;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    for (const double column : GetReals(arguments, i)) {
      if (!(column >= 0.0) || column != std::trunc(column) || column > static_cast<double>(kMaximalEntries)) {
        RefuseArgument(i, L"Columns are whole numbers from 0.");
      }
      columns.push_back(static_cast<std::size_t>(column));
    }
  }
  return columns;
}

Value Read(const Arguments& arguments, FunctionContext& context) {
  const std::wstring& path = GetText(arguments, 0);
  if (!context.may_read_files) throw CCalculatorException(L"Reading files is not allowed here: \"" + path + L"\".");
  const std::vector<std::size_t> columns = GetColumns(arguments);
  const NumberRows rows = ReadNumberFile(path, columns);
  Value result =
      columns.size() == 1 ? MakeVector(rows.cells.size()) : MakeMatrix(rows.cells.size() / rows.columns, rows.columns);
  std::copy(rows.cells.begin(), rows.cells.end(), Write(result).first);
  return result;
}

Value Calculate(const Arguments& arguments, FunctionContext& context) {
  const std::wstring& text = GetText(arguments, 0);
  if (!context.evaluate) throw CCalculatorException(L"Texts cannot be evaluated here: \"" + text + L"\".");
  return context.evaluate(text);
}

}  // namespace

void AppendInputFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject file{L"file", L"Path in double quotes."};
  const CCalculatorArgumentInfoObject columns{L"columns", L"Numbers of columns, counted from 0, or vectors of them.",
                                              true};
  const CCalculatorArgumentInfoObject text{L"text", L"An expression in double quotes."};
  AppendRows(
      table,
      {
          {L"read",
           L"Reads a text file of numbers, one row a line, separated by blanks, tabs, commas or semicolons; # begins "
           L"a comment. The result is a matrix, or a vector if one column is asked for. Files of at most 256 MiB "
           L"with at most 10000000 numbers to keep are read.",
           {file, columns},
           L"read(\"file\")\nread(\"file\", column, ...)",
           &Read,
           true},
          {L"calculate",
           L"Value of an expression that is given as a text.",
           {text},
           L"calculate(\"text\")",
           &Calculate},
      });
}

}  // namespace kestrel::calculator
