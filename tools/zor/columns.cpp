#include "columns.h"

#include <algorithm>

#include "csv_reader.h"
#include "errors.h"
#include "text.h"

namespace kestrel::cli {

std::string HeaderPlace(const std::string& path, std::size_t position) {
  return path + ": row 1, column " + std::to_string(position + 1) + ": ";
}

std::size_t PositionOf(const std::string& path, const Header& header, const std::string& name) {
  constexpr std::size_t kMostNames = 12;
  const auto found = std::find(header.begin(), header.end(), name);
  if (found != header.end()) return static_cast<std::size_t>(found - header.begin());
  std::vector<std::string> names;
  for (std::size_t i = 0; i < std::min(header.size(), kMostNames); ++i) names.push_back(Quoted(header[i]));
  if (header.size() > kMostNames) names.emplace_back("...");
  throw InputError(path + ": There is no column " + Quoted(name) + "; the file has " + Joined(names, ", ") + ".");
}

Table ReadPoints(const std::string& path, const std::vector<std::string>& inputs) {
  return ReadTable(path, [&](const Header& header) {
    std::vector<Column> columns;
    columns.reserve(inputs.size());
    for (const std::string& input : inputs) columns.push_back({PositionOf(path, header, input), CellRule::kFinite});
    return columns;
  });
}

}  // namespace kestrel::cli
