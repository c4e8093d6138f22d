#include "support/strings.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cwctype>
#include <stdexcept>

namespace kestrel::string {
namespace {

constexpr unsigned kPayloadBits = 6;  // bits of the value in a trailing byte
constexpr unsigned char kTrailFirst = 0x80;
constexpr unsigned char kTrailLast = 0xBF;

/// One row of the table of well-formed UTF-8 byte sequences (The Unicode Standard, section 3.9). The second byte has a
/// range of its own, which is what rules out overlong forms, surrogates and values above U+10FFFF.
struct LeadRange {
  unsigned char first, last;                // range of the first byte
  unsigned char second_first, second_last;  // range of the second byte
  unsigned trailing;                        // number of bytes after the first
  unsigned char marker;                     // what of the first byte is not part of the value
};

constexpr std::array<LeadRange, 9> kLeadRanges{{
    {0x00, 0x7F, 0x00, 0x00, 0, 0x00},
    {0xC2, 0xDF, kTrailFirst, kTrailLast, 1, 0xC0},
    {0xE0, 0xE0, 0xA0, kTrailLast, 2, 0xE0},
    {0xE1, 0xEC, kTrailFirst, kTrailLast, 2, 0xE0},
    {0xED, 0xED, kTrailFirst, 0x9F, 2, 0xE0},
    {0xEE, 0xEF, kTrailFirst, kTrailLast, 2, 0xE0},
    {0xF0, 0xF0, 0x90, kTrailLast, 3, 0xF0},
    {0xF1, 0xF3, kTrailFirst, kTrailLast, 3, 0xF0},
    {0xF4, 0xF4, kTrailFirst, 0x8F, 3, 0xF0},
}};

/// One range of values with the number of trailing bytes that they take and the marker of their first byte. The gap
/// between the third and the fourth row are the surrogates.
struct ValueRange {
  std::uint32_t first, last;
  unsigned trailing;
  unsigned char marker;
};

constexpr std::array<ValueRange, 5> kValueRanges{{
    {0x0000, 0x007F, 0, 0x00},
    {0x0080, 0x07FF, 1, 0xC0},
    {0x0800, 0xD7FF, 2, 0xE0},
    {0xE000, 0xFFFF, 2, 0xE0},
    {0x10000, 0x10FFFF, 3, 0xF0},
}};

template <class Ranges, class Value>
auto FindRange(const Ranges& ranges, Value value) {
  return std::find_if(ranges.begin(), ranges.end(),
                      [value](const auto& range) { return range.first <= value && value <= range.last; });
}

/// Appends the character at the front of `text` and returns how many bytes it took; 0 if no valid one stands there.
std::size_t Decode(std::string_view text, std::wstring& result) {
  const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto lead = FindRange(kLeadRanges, byte(0));
  if (lead == kLeadRanges.end() || text.size() <= lead->trailing) return 0;

  std::uint32_t value = byte(0) ^ lead->marker;
  for (unsigned i = 1; i <= lead->trailing; ++i) {
    const unsigned char first = i == 1 ? lead->second_first : kTrailFirst;
    const unsigned char last = i == 1 ? lead->second_last : kTrailLast;
    if (byte(i) < first || byte(i) > last) return 0;
    value = value << kPayloadBits | (byte(i) ^ kTrailFirst);
  }
  result.push_back(static_cast<wchar_t>(value));
  return lead->trailing + 1;
}

/// Appends the UTF-8 form of the character at the front of `text`; returns 1, or 0 if it has none.
std::size_t Encode(std::wstring_view text, std::string& result) {
  const auto value = static_cast<std::uint32_t>(text.front());
  const auto range = FindRange(kValueRanges, value);
  if (range == kValueRanges.end()) return 0;

  result.push_back(static_cast<char>(range->marker | value >> kPayloadBits * range->trailing));
  for (unsigned left = range->trailing; left > 0; --left) {
    const std::uint32_t payload = value >> kPayloadBits * (left - 1) & (kTrailFirst ^ kTrailLast);
    result.push_back(static_cast<char>(kTrailFirst | payload));
  }
  return 1;
}

/// Converts character by character with `convert`. What stands between two valid characters is one bad run and gives
/// one replacement.
template <class Result, class View, class Convert>
Result ConvertAll(View text, EUTF8ConversionErrorMode mode, const Result& replacement, Convert convert) {
  text = text.substr(0, text.find(typename View::value_type{}));
  Result result;
  result.reserve(text.size());
  bool in_bad_run = false;
  while (!text.empty()) {
    const std::size_t taken = convert(text, result);
    if (taken == 0) {
      if (mode == EUTF8ConversionErrorMode::kThrow) throw std::domain_error("invalid input character");
      if (mode == EUTF8ConversionErrorMode::kReplace && !in_bad_run) result += replacement;
    }
    in_bad_run = taken == 0;
    text.remove_prefix(std::max<std::size_t>(taken, 1));
  }
  return result;
}

/// The words that the expression language keeps for its constants and options, sorted for the search.
constexpr std::array<std::wstring_view, 23> kReservedWords{
    L"BACKWARD",       L"BANDPASS", L"BANDSTOP",   L"CAUCHY",   L"CONSTANT", L"EXPONENTIAL", L"FALSE", L"FORWARD",
    L"HIGHPASS",       L"LINEAR",   L"LOGNORMAL",  L"LOWPASS",  L"MIRROR",   L"NORMAL",      L"PI",    L"QUAD",
    L"REVERSE_MIRROR", L"SPLINE",   L"TANGENTIAL", L"TRIANGLE", L"TRUE",     L"UNIFORM",     L"ZERO",
};

bool IsIdentifier(std::wstring_view name) {
  const auto is_first = [](wchar_t c) { return c == L'_' || std::iswalpha(static_cast<std::wint_t>(c)) != 0; };
  const auto is_next = [](wchar_t c) {
    return c == L'_' || c == L'\'' || c == L'.' || std::iswalnum(static_cast<std::wint_t>(c)) != 0;
  };
  return !name.empty() && is_first(name.front()) && std::all_of(name.begin() + 1, name.end(), is_next);
}

bool IsKeywordIf(std::wstring_view name) {
  return name.size() == 2 && (name[0] == L'i' || name[0] == L'I') && (name[1] == L'f' || name[1] == L'F');
}

}  // namespace

std::wstring from_utf8(std::string_view text, EUTF8ConversionErrorMode mode, wchar_t replacement) {
  const auto is_ascii = [](char c) { return static_cast<signed char>(c) > 0; };  // a NUL ends the text
  if (std::all_of(text.begin(), text.end(), is_ascii)) return std::wstring(text.begin(), text.end());
  return ConvertAll(text, mode, std::wstring(1, replacement), Decode);
}

std::string to_utf8(std::wstring_view text, EUTF8ConversionErrorMode mode, wchar_t replacement) {
  std::string replacement_bytes;  // stays empty if the replacement has no UTF-8 form itself
  Encode({&replacement, 1}, replacement_bytes);
  return ConvertAll(text, mode, replacement_bytes, Encode);
}

std::wstring widen(std::string_view text) { return from_utf8(text, EUTF8ConversionErrorMode::kReplace); }

std::string narrow(std::wstring_view text) { return to_utf8(text, EUTF8ConversionErrorMode::kReplace); }

namespace detail {

bool CheckVariableNameDefault(std::wstring_view name, bool strict) noexcept {
  if (!IsIdentifier(name) || IsKeywordIf(name)) return false;
  return !strict || !std::binary_search(kReservedWords.begin(), kReservedWords.end(), name);
}

}  // namespace detail
}  // namespace kestrel::string
