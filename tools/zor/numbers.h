#pragma once

#include <string>
#include <string_view>

namespace kestrel::cli {

/// What a text says when it is read as a number.
enum class NumberKind {
  kFinite,
  kMissing,     ///< an empty text or "nan"
  kInfinite,    ///< "inf", "-infinity"
  kOutOfRange,  ///< decimal digits, but too large or too small for double precision
  kNotANumber,
};

struct Number {
  NumberKind kind;
  double value;  ///< NaN for kMissing, kOutOfRange and kNotANumber
};

/// The text without blanks and tabs at its ends.
std::string_view Trimmed(std::string_view text);

/// Reads the whole text as a decimal number, with `.` as decimal point whatever the locale. Blanks around it and a
/// leading plus sign are accepted; hexadecimal digits, grouping and units are not.
Number ReadNumber(std::string_view text);

/// The shortest decimal text that reads back as the same double.
std::string ExactText(double value);

/// Fixed-point text with that many decimals, "nan" for NaN.
std::string RoundedText(double value, int decimals);

}  // namespace kestrel::cli
