#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::cli {

/// The text, fit for one line of a terminal: control characters and bytes that are not UTF-8 appear as \x1b.
std::string Escaped(std::string_view text);

/// The same in single quotes; a long text is cut with "...".
std::string Quoted(std::string_view text);

/// Number of bytes of the UTF-8 character that the text, which is not empty, starts with; 0 if it starts with none.
std::size_t CharacterLength(std::string_view text);

/// Number of characters of a UTF-8 text, taken as its width on a terminal.
std::size_t Width(std::string_view text);

/// The text filled up with blanks to the width: on the right, or on the left for columns of numbers.
std::string PadRight(std::string_view text, std::size_t width);
std::string PadLeft(std::string_view text, std::size_t width);

/// The pieces with the separator between them.
std::string Joined(const std::vector<std::string>& pieces, std::string_view separator);

}  // namespace kestrel::cli
