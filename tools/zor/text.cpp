#include "text.h"

#include <algorithm>

namespace kestrel::cli {

namespace {

constexpr std::size_t kLongestQuote = 60;  // bytes of the original

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

/// C0 controls and DEL, and the C1 controls, which some terminals obey (U+0080 to U+009F are C2 80 to C2 9F).
bool IsControl(std::string_view character) {
  const auto lead = static_cast<unsigned char>(character.front());
  if (character.size() == 1) return lead < 0x20U || lead == 0x7FU;
  return lead == 0xC2U && static_cast<unsigned char>(character[1]) < 0xA0U;
}

void AppendEscaped(std::string& out, std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    out += "\\x";
    out += kDigits[code >> 4U];
    out += kDigits[code & 0x0FU];
  }
}

}  // namespace

std::size_t CharacterLength(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  const std::size_t length = lead < 0x80U                      ? 1
                             : (lead >= 0xC2U && lead < 0xE0U) ? 2
                             : (lead & 0xF0U) == 0xE0U         ? 3
                             : (lead >= 0xF0U && lead < 0xF5U) ? 4
                                                               : 0;
  if (length == 0 || length > text.size()) return 0;
  const bool whole = std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length), IsContinuation);
  return whole ? length : 0;
}

std::string Escaped(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
    if (length == 0 || IsControl(character)) {
      AppendEscaped(out, character);
    } else {
      out += character;
    }
    text.remove_prefix(character.size());
  }
  return out;
}

std::string Quoted(std::string_view text) {
  std::size_t end = 0;  // behind the last whole character that is shown
  while (end < text.size() && end < kLongestQuote) {
    end += std::max<std::size_t>(CharacterLength(text.substr(end)), 1);
  }
  return "'" + Escaped(text.substr(0, end)) + (end < text.size() ? "...'" : "'");
}

std::size_t Width(std::string_view text) {
  return text.size() - static_cast<std::size_t>(std::count_if(text.begin(), text.end(), IsContinuation));
}

std::string PadRight(std::string_view text, std::size_t width) {
  const std::size_t used = Width(text);
  return std::string(text) + std::string(width > used ? width - used : 0, ' ');
}

std::string PadLeft(std::string_view text, std::size_t width) {
  const std::size_t used = Width(text);
  return std::string(width > used ? width - used : 0, ' ') + std::string(text);
}

std::string Joined(const std::vector<std::string>& pieces, std::string_view separator) {
  std::string out;
  for (const std::string& piece : pieces) {
    if (&piece != &pieces.front()) out += separator;
    out += piece;
  }
  return out;
}

}  // namespace kestrel::cli
