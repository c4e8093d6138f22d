#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// Text files of numbers in columns.
namespace kestrel::calculator {

/// Larger files are refused. Numbers are limited by kMaximalEntries.
inline constexpr std::uintmax_t kMaximalFileBytes = 256u << 20u;

/// Rows of equal length, one after the other.
struct NumberRows {
  std::vector<double> cells;
  std::size_t columns = 0;
};

/// Reads a regular file with one row of numbers a line. Numbers are separated by blanks, tabs, one comma or one
/// semicolon; '#' begins a comment, lines without numbers are skipped. A decimal point, an exponent, "nan" and "inf"
/// are understood, whatever the locale.
/// @param columns  the columns to keep, counted from 0, in the order wanted; all of them if empty.
/// Raises CCalculatorException with the line where the file is not such a table, has rows of different lengths, no
/// numbers, too many, or lacks a column.
NumberRows ReadNumberFile(const std::wstring& path, const std::vector<std::size_t>& columns);

}  // namespace kestrel::calculator
