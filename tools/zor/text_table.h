#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

namespace kestrel::cli {

/// One line of a table for people.
using Cells = std::vector<std::string>;

/// Characters of a line, as far as a table can be fitted to it.
constexpr std::size_t kLineWidth = 110;

/// Prints the lines with their cells below each other, and a rule below the first line, the head. A line may end early.
/// Control characters appear as \x1b.
void PrintTable(std::ostream& stream, const std::vector<Cells>& lines);

/// Characters in front of a column that is put behind those of `lines`.
std::size_t WidthOf(const std::vector<Cells>& lines);

}  // namespace kestrel::cli
