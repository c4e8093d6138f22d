#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "table.h"

namespace kestrel::cli {

/// The names of a header row.
using Header = std::vector<std::string>;

/// "FILE: row 1, column C: ", for refusals of a name; `position` counts from 0.
std::string HeaderPlace(const std::string& path, std::size_t position);

/// The position of the column of that name. Throws InputError, with the names that there are, if there is none.
std::size_t PositionOf(const std::string& path, const Header& header, const std::string& name);

/// Reads the inputs of the points from a CSV file; their columns may stand in any order, among others.
Table ReadPoints(const std::string& path, const std::vector<std::string>& inputs);

}  // namespace kestrel::cli
