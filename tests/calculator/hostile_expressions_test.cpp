#include <gtest/gtest.h>

#include "calculator/expression_parser.h"
#include "calculator/test_functions.h"
#include "support/strings.h"

namespace kestrel::calculator::test {
namespace {

std::wstring Repeat(const std::wstring& text, std::size_t count) {
  std::wstring repeated;
  for (std::size_t i = 0; i < count; ++i) repeated += text;
  return repeated;
}

/// Fills texts of up to the longest length.
std::wstring Fill(const std::wstring& text) { return Repeat(text, kMaximalTextLength / text.size()); }

/// The failure without its place. What would never end, or take all memory, ends the whole test.
std::wstring FailureKindOf(Calculator& calculator, const std::wstring& text) {
  const std::wstring failure = FailureOf(calculator, text);
  return failure.substr(0, failure.find(L" at character"));
}

TEST(HostileExpressions, AreRefused) {
  const std::wstring not_parsed = L"Error while parsing";
  const std::wstring too_long = L"Expression too long";
  const std::wstring too_deep = L"Expression nested too deeply";
  const struct {
    std::wstring text;
    std::wstring failure;
  } cases[] = {
      {Repeat(L"(", 1'000'000), too_long},
      {L"a" + Repeat(L"^b", 500'000), too_long},
      {Fill(L"("), too_deep},
      {Fill(L"["), not_parsed},
      {Repeat(L"[", 50'000) + Repeat(L"]", 50'000), too_deep},
      {Repeat(L"[", 49'000) + L"1" + Repeat(L"]", 49'000), too_deep},
      {Repeat(L"[[1] ", 19'000), not_parsed},
      {Fill(L"x["), too_deep},
      {Fill(L"f("), too_deep},
      {Fill(L"[f(x["), not_parsed},
      {Repeat(L"x[x[", 40) + L"?", not_parsed},
      {Repeat(L"f(x,[1,(", 30) + L"?", not_parsed},
      {Repeat(L"$F(x[", 40) + L"?", not_parsed},
      {Fill(L"#if "), too_deep},
      {Fill(L"#switch "), too_deep},
      {Fill(L"#if 1:2 #else "), too_deep},
      {Fill(L"$F()="), too_deep},
      {Fill(L"-"), not_parsed},
      {Fill(L"\""), not_parsed},
      {Fill(L"#"), not_parsed},
      {std::wstring(5, L'\0'), not_parsed},
      {{static_cast<wchar_t>(0x110001), L'1', L']'}, not_parsed},
      {{L'1', L'+', static_cast<wchar_t>(-5)}, not_parsed},
      {L"\xD800\xFFFE", not_parsed},
      {L"linspace(0,1,1e12)", L"The result would have more than 10000000 entries."},
      {L"linspace(0,1,0/0)", L"The result would have more than 10000000 entries."},
  };
  for (const auto& c : cases) {
    Calculator calculator = MakeCalculator();
    EXPECT_EQ(FailureKindOf(calculator, c.text), c.failure) << string::narrow(c.text.substr(0, 60));
  }
}

TEST(HostileExpressions, LongOnesWithAMeaningWork) {
  Calculator calculator = MakeCalculator();
  EXPECT_EQ(FailureKindOf(calculator, L"1" + Repeat(L"+1", 20'000)), L"");
  EXPECT_EQ(FailureKindOf(calculator, L"[1" + Repeat(L",1", 20'000) + L"]"), L"");
  EXPECT_EQ(FailureKindOf(calculator, Repeat(L"(", 99) + L"1" + Repeat(L"+1", 20'000) + Repeat(L")", 99)), L"");
  EXPECT_EQ(FailureKindOf(calculator, Repeat(L"count(", 99) + L"1" + Repeat(L"+1", 20'000) + Repeat(L")", 99)), L"");
  EXPECT_EQ(FailureKindOf(calculator, Fill(L"a=") + L""), L"Error while parsing");
  EXPECT_EQ(FailureKindOf(calculator, Repeat(L"a=", 20'000) + L"1"), L"");
  EXPECT_EQ(FailureKindOf(calculator, Repeat(L" ", 99'000) + L"1"), L"");
}

TEST(HostileExpressions, EvaluationsEnd) {
  Calculator calculator = MakeCalculator();
  const std::wstring too_deep = L"The evaluation is nested too deeply.";
  Evaluate(calculator, L"$Endless(x) = $Endless(x) + 1");
  EXPECT_EQ(FailureKindOf(calculator, L"$Endless(1)"), too_deep);
  Evaluate(calculator, L"$Growing(x) = $Growing(x + x)");
  EXPECT_EQ(FailureKindOf(calculator, L"$Growing(1)"), L"Expression too long");
  Evaluate(calculator, L"$M0() = 1");
  for (int i = 1; i <= 60; ++i) {
    const std::wstring before = L"$M" + std::to_wstring(i - 1) + L"()";
    Evaluate(calculator, L"$M" + std::to_wstring(i) + L"() = " + before + L" + " + before);
  }
  EXPECT_EQ(FailureKindOf(calculator, L"$M60()"), L"The evaluation takes too many operations.");
  EXPECT_EQ(FailureKindOf(calculator, L"calculate(\"1\")" + Repeat(L"+linspace(0,1,1e6)", 200)),
            L"The evaluation takes too many operations.");
}

TEST(HostileExpressions, ChainsOfObjectsEnd) {
  Calculator calculator = MakeCalculator();
  constexpr int kLength = 20'000;
  calculator.AddObject(L"o0", L"", Scalar(1));
  for (int i = 1; i <= kLength; ++i) {
    calculator.AddObject(L"o" + std::to_wstring(i), L"o" + std::to_wstring(i - 1) + L" + 1", Value());
  }
  EXPECT_TRUE(calculator.EvalObject(L"o200") == Scalar(201));
  EXPECT_EQ(FailureKindOf(calculator, L"o" + std::to_wstring(kLength)), L"The evaluation is nested too deeply.");
  EXPECT_FALSE(calculator.HasCircularDependencies(L"o" + std::to_wstring(kLength)));
  calculator.AddObject(L"o0", L"o" + std::to_wstring(kLength), Value());
  EXPECT_TRUE(calculator.HasCircularDependencies(L"o5"));
  for (int i = 1; i <= 40; ++i) {
    FailureOf(calculator, L"d0 = [1, 1]");
    const std::wstring before = L"d" + std::to_wstring(i - 1);
    if (!FailureOf(calculator, L"d" + std::to_wstring(i) + L" = [" + before + L", " + before + L"]").empty()) break;
    ASSERT_LT(i, 30) << "vectors grow beyond the limit";
  }
}

}  // namespace
}  // namespace kestrel::calculator::test
