#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "table.h"

namespace kestrel::cli {

/// What the cells of a wanted column may hold: finite numbers only, or also nothing, "nan" and infinities.
enum class CellRule { kFinite, kAnyNumber };

/// A wanted column: its position in the file, counted from 0, and the rule of its cells.
struct Column {
  std::size_t position;
  CellRule rule;
};

/// Asked once, with the names of the header row, which columns are wanted. It may throw InputError itself.
using ChooseColumns = std::function<std::vector<Column>(const std::vector<std::string>& header)>;

/// Limits that keep the memory of a reader in bounds whatever the file holds.
constexpr std::size_t kMaxColumns = 100000;
constexpr std::size_t kMaxNameBytes = 1000;
constexpr std::size_t kMaxCellBytes = 32767;
constexpr std::size_t kMaxNumbers = 100000000;  ///< 800 MB of doubles

/// Reads a CSV file with a header row: separated by commas, cells optionally in double quotes, lines ended by LF, CRLF
/// or CR, UTF-8 with or without a byte order mark. Blank lines are skipped, blanks around a cell do not count. The
/// table has the wanted columns in the order in which they were wanted; an allowed empty cell is NaN. The cells of
/// columns that are not wanted may hold any text. Throws InputError with one line "FILE: row R, column C
/// (NAME): what is wrong". Rows and columns count from 1 as in a spreadsheet: the header is row 1 and blank lines
/// count.
Table ReadTable(const std::string& path, const ChooseColumns& choose);

}  // namespace kestrel::cli
