#include "numbers.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace kestrel::cli {

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

}  // namespace

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

Number ReadNumber(std::string_view text) {
  text = Trimmed(text);
  if (text.empty()) return {NumberKind::kMissing, kNan};
  // from_chars knows no plus sign; one in front of a minus stays an error.
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  double value = kNan;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error == std::errc::invalid_argument || stop != end) return {NumberKind::kNotANumber, kNan};
  if (error == std::errc::result_out_of_range) return {NumberKind::kOutOfRange, kNan};
  if (std::isnan(value)) return {NumberKind::kMissing, kNan};
  return {std::isinf(value) ? NumberKind::kInfinite : NumberKind::kFinite, value};
}

std::string ExactText(double value) {
  std::array<char, 32> text;  // the longest shortest form, -2.2250738585072014e-308, has 24 characters
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), result.ptr};
}

std::string RoundedText(double value, int decimals) {
  if (std::isnan(value)) return "nan";
  std::array<char, 512> text;  // fixed form: up to 309 digits before the point
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals);
  return {text.data(), result.ptr};
}

}  // namespace kestrel::cli
