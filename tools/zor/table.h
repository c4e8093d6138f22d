#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kestrel::cli {

/// Numbers with a name for each column.
struct Table {
  std::vector<std::string> names;
  std::size_t rows = 0;
  std::vector<double> values;  ///< rows x names, row by row; NaN where there is none
};

/// One column, length rows.
std::vector<double> ColumnValues(const Table& table, std::size_t column);

}  // namespace kestrel::cli
