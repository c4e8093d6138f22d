#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestrel::cli {

/// A JSON string, quotes included. UTF-8 stays as it is; a byte that is not UTF-8 becomes U+FFFD.
std::string JsonText(std::string_view text);

/// A JSON number that reads back as the same double; `null` for NaN and infinities, which JSON does not know.
std::string JsonNumber(double value);

/// "[a, b]" of values that are JSON already.
std::string JsonArray(const std::vector<std::string>& values);

/// An array with one element a line, at a depth of 2 blanks. The elements are JSON already.
std::string JsonLines(const std::vector<std::string>& elements);

}  // namespace kestrel::cli
