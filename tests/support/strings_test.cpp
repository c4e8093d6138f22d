#include "support/strings.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <clocale>
#include <stdexcept>
#include <vector>

namespace kestrel::string {
namespace {

using Mode = EUTF8ConversionErrorMode;

/// One text in both forms with what each mode makes of it. `throws` says whether the strict mode refuses it.
template <class Input, class Output>
struct Conversion {
  const char* name;
  Input input;
  Output skipped;
  Output replaced;
  bool throws;
};

template <class Input, class Function>
std::string TextOfThrow(const Input& input, Function convert) {
  try {
    convert(input, Mode::kThrow);
  } catch (const std::domain_error& error) {
    return error.what();
  }
  return "";
}

template <class Input, class Output, class Function>
void ExpectConversions(const std::vector<Conversion<Input, Output>>& table, Function convert) {
  for (const auto& row : table) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(convert(row.input, Mode::kSkip), row.skipped);
    EXPECT_EQ(convert(row.input, Mode::kReplace), row.replaced);
    if (row.throws) {
      EXPECT_EQ(TextOfThrow(row.input, convert), "invalid input character");
    } else {
      EXPECT_EQ(convert(row.input, Mode::kThrow), row.replaced);
    }
  }
}

TEST(FromUtf8, DecodesValidTextAndFindsBadRuns) {
  const std::vector<Conversion<std::string, std::wstring>> table = {
      {"ends of the one-byte range", "\x01\x7F", L"\x01\x7F", L"\x01\x7F", false},
      {"ends of the two-byte range", "\xC2\x80\xDF\xBF", L"\x80\x7FF", L"\x80\x7FF", false},
      {"ends of the three-byte range", "\xE0\xA0\x80\xEF\xBF\xBF", L"\x800\xFFFF", L"\x800\xFFFF", false},
      {"around the surrogates", "\xED\x9F\xBF\xEE\x80\x80", L"\xD7FF\xE000", L"\xD7FF\xE000", false},
      {"ends of the four-byte range", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\x10000\x10FFFF", L"\x10000\x10FFFF",
       false},
      {"run of bad bytes", "a\xFF\xFFz", L"az", L"a?z", true},
      {"two runs", "\xFFz\x80\x80", L"z", L"?z?", true},
      {"overlong two bytes", "\xC0\xAFz", L"z", L"?z", true},
      {"overlong three bytes", "\xE0\x9F\xBFz", L"z", L"?z", true},
      {"overlong four bytes", "\xF0\x8F\xBF\xBFz", L"z", L"?z", true},
      {"first surrogate", "\xED\xA0\x80z", L"z", L"?z", true},
      {"last surrogate", "\xED\xBF\xBFz", L"z", L"?z", true},
      {"above the last value", "\xF4\x90\x80\x80z", L"z", L"?z", true},
      {"five-byte form", "\xF8\x88\x80\x80\x80z", L"z", L"?z", true},
      {"cut off by a letter", "\xE2\x82z", L"z", L"?z", true},
      {"cut off by the end", "a\xF0\x9F\x98", L"a", L"a?", true},
      {"bad, then valid", "\xE2\xC3\xA9", L"\xE9", L"?\xE9", true},
      {"bad after the zero character", std::string("a\0\xFF", 3), L"a", L"a", false},
  };
  ExpectConversions(table, [](const std::string& text, Mode mode) { return from_utf8(text, mode, L'?'); });
}

TEST(ToUtf8, EncodesValidTextAndFindsBadRuns) {
  const std::vector<Conversion<std::wstring, std::string>> table = {
      {"ends of the two-byte range", L"\x80\x7FF", "\xC2\x80\xDF\xBF", "\xC2\x80\xDF\xBF", false},
      {"around the surrogates", L"\xD7FF\xE000", "\xED\x9F\xBF\xEE\x80\x80", "\xED\x9F\xBF\xEE\x80\x80", false},
      {"run of surrogates", {L'a', wchar_t{0xD800}, wchar_t{0xDFFF}, L'b'}, "ab", "a?b", true},
      {"above the last value", {wchar_t{0x110000}, L'b'}, "b", "?b", true},
      {"negative", {static_cast<wchar_t>(-1), L'b'}, "b", "?b", true},
      {"zero character", std::wstring(L"a\0b", 3), "a", "a", false},
  };
  ExpectConversions(table, [](const std::wstring& text, Mode mode) { return to_utf8(text, mode, L'?'); });
}

RC_GTEST_PROP(Utf8, ReturnsEveryWideText, ()) {
  const auto below = *rc::gen::container<std::wstring>(rc::gen::inRange<wchar_t>(1, 0xD800));
  const auto above = *rc::gen::container<std::wstring>(rc::gen::inRange<wchar_t>(0xE000, 0x110000));
  RC_ASSERT(from_utf8(to_utf8(below + above, Mode::kThrow), Mode::kThrow) == below + above);
}

RC_GTEST_PROP(Utf8, MakesValidTextOfAnyBytes, (const std::string& bytes)) {
  RC_ASSERT(widen(narrow(widen(bytes))) == widen(bytes));
}

TEST(VariableName, FollowsTheIdentifierRule) {
  const wchar_t* const valid[] = {L"a", L"Z", L"_", L"a.b'c_1", L"_1", L"a.", L"Pi", L"pi", L"E", L"I", L"sin", L"iff"};
  for (const auto* name : valid) EXPECT_TRUE(detail::CheckVariableNameDefault(name, true)) << narrow(name);
  const wchar_t* const invalid[] = {L"",    L"1a",  L"a b", L" a", L"a ", L".a", L"'a", L"a-b",
                                    L"a\n", L"@PI", L"if",  L"IF", L"If", L"iF", L"a(", L"\uFFFD"};
  for (const auto* name : invalid) {
    EXPECT_FALSE(detail::CheckVariableNameDefault(name, true)) << narrow(name);
    EXPECT_FALSE(detail::CheckVariableNameDefault(name, false)) << narrow(name);
  }
  EXPECT_FALSE(detail::CheckVariableNameDefault(std::wstring_view(L"a\0b", 3), true));
}

TEST(VariableName, TakesTheLettersOfTheProcessLocale) {
  const std::string before = std::setlocale(LC_CTYPE, nullptr);
  ASSERT_NE(std::setlocale(LC_CTYPE, "C"), nullptr);
  EXPECT_FALSE(detail::CheckVariableNameDefault(L"h\u00F6he", true));
  ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
  EXPECT_TRUE(detail::CheckVariableNameDefault(L"h\u00F6he", true));
  std::setlocale(LC_CTYPE, before.c_str());
}

}  // namespace
}  // namespace kestrel::string
