#include "json.h"

#include <algorithm>
#include <cmath>

#include "numbers.h"
#include "text.h"

namespace kestrel::cli {

namespace {

std::string EscapedControl(unsigned char code) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  return std::string("\\u00") + kDigits[code >> 4U] + kDigits[code & 0x0FU];
}

}  // namespace

std::string JsonText(std::string_view text) {
  constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD, for what is no character
  std::string out = "\"";
  while (!text.empty()) {
    const std::size_t length = CharacterLength(text);
    const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
    const auto code = static_cast<unsigned char>(character.front());
    if (code == '"' || code == '\\') out += '\\';
    if (code < 0x20U) {
      out += EscapedControl(code);
    } else {
      out += length == 0 ? kReplacement : character;
    }
    text.remove_prefix(character.size());
  }
  return out + '"';
}

std::string JsonNumber(double value) { return std::isfinite(value) ? ExactText(value) : "null"; }

std::string JsonArray(const std::vector<std::string>& values) { return "[" + Joined(values, ", ") + "]"; }

std::string JsonLines(const std::vector<std::string>& elements) {
  return elements.empty() ? "[]" : "[\n    " + Joined(elements, ",\n    ") + "\n  ]";
}

}  // namespace kestrel::cli
