#include "table.h"

namespace kestrel::cli {

std::vector<double> ColumnValues(const Table& table, std::size_t column) {
  std::vector<double> values(table.rows);
  for (std::size_t row = 0; row < table.rows; ++row) values[row] = table.values[row * table.names.size() + column];
  return values;
}

}  // namespace kestrel::cli
