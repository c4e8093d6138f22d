#include <gtest/gtest.h>

#include <clocale>

#include "calculator/constants.h"
#include "calculator/test_functions.h"
#include "support/strings.h"

namespace kestrel::calculator::test {
namespace {

using string::detail::CheckVariableNameDefault;

TEST(CalculatorNames, FollowTheRuleOfObjects) {
  const Calculator calculator = MakeCalculator();
  for (const auto* name : {L"Fo'o.1_x", L"iffy", L"_", L"a", L"If_"}) {
    EXPECT_TRUE(calculator.IsObjectIdValid(name, true)) << string::narrow(name);
  }
  for (const auto* name : {L"1a", L"", L"a b", L" a", L"a ", L"if", L"IF", L"If", L"a(", L"(a)", L"@PI", L"'a"}) {
    EXPECT_FALSE(calculator.IsObjectIdValid(name, false)) << string::narrow(name);
  }
}

/// All texts of up to three of these characters, and the words of the language.
std::vector<std::wstring> ManyNames() {
  const std::wstring characters = L"aIfF_1'. @[(-+,:#\"\t\u00F6";
  std::vector<std::wstring> names = {L""};
  for (std::size_t i = 0; i < names.size() && names[i].size() < 3; ++i) {
    for (const wchar_t c : characters) names.push_back(names[i] + c);
  }
  for (const auto& [name, constant] : Constants()) {
    names.push_back(name);
    names.push_back(name.substr(1));
    names.push_back(string::widen(string::narrow(name.substr(1)) + "_"));
  }
  for (const auto& [name, entry] : Calculator().GetFunctions()) names.push_back(name);
  for (const auto* name : {L"true", L"pi", L"e", L"i"}) names.emplace_back(name);
  return names;
}

TEST(CalculatorNames, AreThoseOfInputsAndOutputs) {
  const Calculator calculator = MakeCalculator();
  const std::vector<std::wstring> names = ManyNames();
  ASSERT_GT(names.size(), 5000U);
  for (const bool in_utf8 : {false, true}) {
    const bool is_set = !in_utf8 || std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
    for (const std::wstring& name : names) {
      for (const bool strict : {false, true}) {
        ASSERT_EQ(calculator.IsObjectIdValid(name, strict), CheckVariableNameDefault(name, strict))
            << '"' << string::narrow(name) << "\" " << strict << " " << is_set;
      }
    }
  }
  std::setlocale(LC_CTYPE, "C");
}

TEST(CalculatorNames, PositionsOfObjects) {
  Calculator calculator = MakeCalculator();
  const auto positions = calculator.GetObjectIdPositions(L"a = sqrt(b) + b' * LINEAR - E + $F(a, 2)[@PI]");
  std::wstring found;
  for (const auto& id : positions) found += id.name + L" " + std::to_wstring(id.position) + L", ";
  EXPECT_EQ(found, L"a 0, b 9, b' 14, a 35, ");
  calculator.AddObject(L"E", L"", Scalar(1));
  EXPECT_EQ(calculator.GetObjectIdPositions(L"E + I").size(), 1U);
  try {
    calculator.GetObjectIdPositions(L"a + ");
    FAIL() << "no expression";
  } catch (const CExpressionPositionException& error) {
    EXPECT_EQ(error.What(), L"Error determining object positions at character 5 of \"a + \".");
  }
}

TEST(CalculatorNames, OfObjectsCanBeReplaced) {
  Calculator calculator = MakeCalculator();
  const std::map<std::wstring, std::wstring> names = {{L"a", L"alpha"}, {L"b", L"a"}, {L"bad", L"1"}};
  EXPECT_EQ(calculator.ReplaceObjectIds(L" a+a(b) *  #if a:b #else PI", names), L" alpha+a(a) *  #if alpha:a #else PI");
  const auto failure = [&](const wchar_t* text) {
    try {
      return calculator.ReplaceObjectIds(text, names);
    } catch (const CCalculatorException& error) {
      return error.What();
    }
  };
  EXPECT_EQ(failure(L"a + c"), L"Object not found. Heavy runtime error occurred.");
  EXPECT_EQ(failure(L"a + bad"), L"Object can't be replaced. Heavy runtime error occurred.");
}

}  // namespace
}  // namespace kestrel::calculator::test
