#include "text_table.h"

#include <algorithm>
#include <numeric>

#include "text.h"

namespace kestrel::cli {

namespace {

constexpr std::size_t kGap = 2;

/// Per column, with the gap behind it.
std::vector<std::size_t> ColumnWidths(const std::vector<Cells>& lines) {
  std::vector<std::size_t> widths;
  for (const Cells& line : lines) {
    widths.resize(std::max(widths.size(), line.size()), 0);
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], Width(line[i]) + kGap);
  }
  return widths;
}

}  // namespace

void PrintTable(std::ostream& stream, const std::vector<Cells>& lines) {
  std::vector<Cells> shown = lines;
  for (Cells& line : shown) std::transform(line.begin(), line.end(), line.begin(), &Escaped);
  const std::vector<std::size_t> widths = ColumnWidths(shown);
  for (const Cells& line : shown) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i) {
      text += i + 1 == widths.size() ? line[i] : PadRight(line[i], widths[i]);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    stream << text << '\n';
    if (&line == &shown.front()) stream << std::string(kLineWidth, '-') << '\n';
  }
}

std::size_t WidthOf(const std::vector<Cells>& lines) {
  const std::vector<std::size_t> widths = ColumnWidths(lines);
  return std::accumulate(widths.begin(), widths.end(), std::size_t{0});
}

}  // namespace kestrel::cli
