#include "json.h"

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
  std::string out = "\"";
  for (const char character : text) {
    const auto code = static_cast<unsigned char>(character);
    if (character == '"' || character == '\\') {
      out += '\\';
      out += character;
    } else if (code < 0x20U) {
      out += EscapedControl(code);
    } else {
      out += character;
    }
  }
  return out + '"';
}

std::string JsonNumber(double value) { return std::isfinite(value) ? ExactText(value) : "null"; }

std::string JsonArray(const std::vector<std::string>& values) { return "[" + Joined(values, ", ") + "]"; }

}  // namespace kestrel::cli
