#include <gtest/gtest.h>

#include "calculator/functions/option_words.h"
#include "calculator/test_functions.h"
#include "support/strings.h"

namespace kestrel::calculator::test {
namespace {

struct Case {
  const wchar_t* expression;
  Value expected;
};

/// Evaluates each in a calculator with objects of all kinds.
void ExpectValues(std::initializer_list<Case> cases) {
  Calculator calculator = MakeCalculator();
  calculator.AddObject(L"s", L"", Scalar(2));
  calculator.AddObject(L"v", L"", Vector({10, 20, 30, 40}));
  calculator.AddObject(L"w", L"", Vector({1, 2, 3, 4}));
  calculator.AddObject(L"m", L"", Matrix2({1, 2, 3, 4, 5, 6}));
  calculator.AddObject(L"sig", L"", Signal2({0, 0.5, 1}, {1, 2, 3, 4, 5, 6}));
  for (const Case& c : cases) {
    const Value value = Evaluate(calculator, c.expression);
    EXPECT_EQ(value.GetKind(), c.expected.GetKind()) << string::narrow(c.expression);
    EXPECT_TRUE(value == c.expected) << string::narrow(c.expression) << " gives " << string::narrow(Text(value));
  }
}

TEST(ExpressionValues, Numbers) {
  ExpectValues({{L"1", Scalar(1)},
                {L"  .5 ", Scalar(0.5)},
                {L"5.", Scalar(5)},
                {L"1e-3", Scalar(0.001)},
                {L"2.5E+2", Scalar(250)},
                {L"0.123456789012345678", Scalar(0.123456789012345678)},
                {L"1e-400", Scalar(0)},
                {L"\t(\n1 )", Scalar(1)}});
}

TEST(ExpressionValues, OperatorsByPrecedence) {
  ExpectValues({{L"-2^2", Scalar(-4)},
                {L"2**3", Scalar(8)},
                {L"2^3^2", Scalar(64)},
                {L"2^(3^2)", Scalar(512)},
                {L"7-2-1", Scalar(4)},
                {L"12/3/2", Scalar(2)},
                {L"17%5*2", Scalar(4)},
                {L"1+2*3", Scalar(7)},
                {L"2*-3", Scalar(-6)},
                {L"1--1", Scalar(2)},
                {L"1 < 2 < 3", Boolean(true)},
                {L"3 < 2 < 1", Boolean(true)},  // false is 0
                {L"1+1 == 2", Boolean(true)},
                {L"1 != 1", Boolean(false)},
                {L"2 <= 2 && 3 >= 4", Boolean(false)},
                {L"1 > 2 || !0", Boolean(true)},
                {L"1 || 1 && 0", Boolean(false)},  // one precedence, from the left
                {L"!1 < 2", Boolean(true)},        // (!1) < 2
                {L"1/0", Scalar(std::numeric_limits<double>::infinity())}});
}

TEST(ExpressionValues, Branches) {
  ExpectValues({{L"#IF 1 : 2 #else 3", Scalar(2)},
                {L"#if 1>2 #Then 2 #ELSE 3", Scalar(3)},
                {L"#if @TRUE : 1 #else nobody", Scalar(1)},
                {L"1 + #if 0 : 2 #else 3 * 4", Scalar(13)},
                {L"#if 0:1 #else #if 0:2 #else 3", Scalar(3)},
                {L"#switch s #case 1: 10 #case 2: 20 #default 30", Scalar(20)},
                {L"#switch s: #case 1: nobody #case 2: 20 #case 2: 25 #default: nobody", Scalar(20)},
                {L"#switch 7: #case 1: 10 #default 30", Scalar(30)}});
}

TEST(ExpressionValues, VectorsAndMatrices) {
  ExpectValues({{L"[1]", Vector({1})},
                {L"[1, -2,[3,4] ]", Vector({1, -2, 3, 4})},
                {L"[v[0:1], s]", Vector({10, 20, 2})},
                {L"[[1,2] - 1, 5]", Vector({0, 1, 5})},
                {L"[[1,2] 3, [4] [5]]", Vector({1, 2, 3, 4, 5})},
                {L"[[1,2],3]", Vector({1, 2, 3})},
                {L"[[1,2],[3,4]]", Matrix2({1, 2, 3, 4})},
                {L"[[1,2],[3,4]]*2", Matrix2({2, 4, 6, 8})},
                {L"[[1,2]]", Value(math::test::MakeMatrix(1, 2, {1, 2}))},
                {L"[[[1,2],[3,4]] [5,6]][2,1]", Scalar(6)},
                {L"[[v],[w]]", Matrix2({10, 20, 30, 40, 1, 2, 3, 4})},
                {L"[[v,w]]", Matrix2({10, 20, 30, 40, 1, 2, 3, 4})},
                {L"[a = 3, a]", Vector({3, 3})}});
}

TEST(ExpressionValues, IndicesAndSlices) {
  ExpectValues({{L"v[1]", Scalar(20)},
                {L"v[1<2]", Scalar(20)},
                {L"[1,2,3][2]", Scalar(3)},
                {L"m[1]", Vector({4, 5, 6})},
                {L"(m[1])[2]", Scalar(6)},
                {L"m[0,1]", Scalar(2)},
                {L"m[0 1]", Scalar(2)},
                {L"m[1,]", Vector({4, 5, 6})},
                {L"m[,2]", Vector({3, 6})},
                {L"sig[1]", Vector({0.5, 2, 5})},
                {L"sig[1,2]", Scalar(6)},
                {L"sig[0,]", Vector({1, 2, 3})},
                {L"v[:]", Vector({10, 20, 30, 40})},
                {L"v[1:]", Vector({20, 30, 40})},
                {L"v[:1]", Vector({10, 20})},
                {L"v[1:2]", Vector({20, 30})},
                {L"v[::2]", Vector({10, 30})},
                {L"v[0:3:3]", Vector({10, 40})},
                {L"v[::99]", Vector({10})},
                {L"v[::-1]", Vector({40, 30, 20, 10})},
                {L"v[1.9:2.9]", Vector({20, 30})},
                {L"v[@FALSE:@TRUE]", Vector({10, 20})},
                {L"-v[1]^2", Scalar(-400)}});
}

TEST(ExpressionValues, ConstantsAlsoAsBareWords) {
  const auto word = [](EOption option) { return Scalar(static_cast<double>(option)); };
  ExpectValues({{L"@PI", Scalar(3.141592653589793)},
                {L"PI", Scalar(3.141592653589793)},
                {L"E - @E", Scalar(0)},
                {L"@I*I", Scalar(-1)},
                {L"@TRUE", Boolean(true)},
                {L"FALSE", Boolean(false)},
                {L"@REVERSE_MIRROR", word(EOption::REVERSE_MIRROR)},
                {L"BANDSTOP", word(EOption::BANDSTOP)},
                {L"LINEAR == @LINEAR", Boolean(true)}});
}

TEST(ExpressionValues, CallsAndMacros) {
  ExpectValues({{L"sqrt (16)", Scalar(4)},
                {L"count()", Scalar(0)},
                {L"count(1, \"two, (\", [3], a = 4)", Scalar(4)},
                {L"length(\"a [b\")", Scalar(4)},
                {L"calculate(\"s + 1\")", Scalar(3)},
                {L"$RELATIVE_ERROR(2, 1 + 2*s)", Scalar(1.5)}});
}

TEST(ExpressionValues, MacrosReplaceTheirArguments) {
  Calculator calculator = MakeCalculator();
  Evaluate(calculator, L"$Square(x) = x * x");
  Evaluate(calculator, L"$Hypot(a, b) = sqrt($Square(a) + $Square(b))");
  Evaluate(calculator, L"$Two() = 2");
  Evaluate(calculator, L"$Length(t) = length(t)");
  EXPECT_TRUE(Evaluate(calculator, L"$Square(1 + 2)") == Scalar(9));
  EXPECT_TRUE(Evaluate(calculator, L"$Hypot(3, 2*2)") == Scalar(5));
  EXPECT_TRUE(Evaluate(calculator, L"$Two() ^ $Two( )") == Scalar(4));
  EXPECT_TRUE(Evaluate(calculator, L"$Length(\"abc\")") == Scalar(3));
  EXPECT_TRUE(Evaluate(calculator, L"-$Square((1) + (2))") == Scalar(-9));
  EXPECT_TRUE(Evaluate(calculator, L"$PERCENT_ERROR(5-1, 3)") == Scalar(25));
  calculator.AddObject(L"sig", L"", Signal2({0, 0.5, 1}, {1, 2, 3, 4, 5, 6}));
  EXPECT_TRUE(Evaluate(calculator, L"$SIG_VALUE_LAST_X(sig)") == Scalar(1));
  EXPECT_TRUE(Evaluate(calculator, L"$SIG_VALUE_FIRST_Y(sig+1)") == Scalar(2));
  EXPECT_TRUE(Evaluate(calculator, L"$SIG_SIZE(sig)") == Scalar(3));
}

TEST(ExpressionValues, EveryBuiltInMacroIsAnExpressionOfItsArguments) {
  Calculator calculator = MakeCalculator();
  EXPECT_EQ(BuiltInMacros().size(), 49U);
  for (const auto& macro : BuiltInMacros()) {
    std::set<std::wstring> used;
    for (const auto& id : calculator.GetObjectIdPositions(macro.expression)) used.insert(id.name);
    EXPECT_EQ(used, std::set<std::wstring>(macro.arguments.begin(), macro.arguments.end()))
        << string::narrow(macro.name);
    const std::vector<std::wstring> arguments(macro.arguments.size(), L"x[0] + 1");
    EXPECT_NO_THROW(calculator.GetObjectIdPositions(calculator.MapMacroExpression(macro, arguments)));
  }
}

/// With the functions of the library. The signals are y = x and y = 3 x over x = 0, 1, 2, 3.
TEST(ExpressionValues, BuiltInMacrosEvaluateSignals) {
  Calculator calculator;
  calculator.AddObject(L"s", L"signal([0,1,2,3],[0,1,2,3])", Value());
  calculator.AddObject(L"t", L"signal([0,1,2,3],[0,3,6,9])", Value());
  const struct {
    const wchar_t* expression;
    double expected;
  } cases[] = {
      {L"$SIG_MAX_X(t)", 3},
      {L"$SIG_MAX_Y(t)", 9},
      {L"$SIG_MIN_Y(t + 1)", 1},
      {L"$SIG_MAX_Y_SLOT(t,1,2)", 6},
      {L"$SIG_Y_RANGE_SLOT(t,1,2)", 3},
      {L"$SIG_MEAN(t)", 4.5},
      {L"$SIG_SUM_SLOT(t,1,2)", 9},
      {L"$SIG_INT(t)", 13.5},
      {L"$SIG_DIFF_INT(t, s)", 9},
      {L"$SIG_VALUE_Y(t, 0.5)", 1.5},
      {L"$SIG_VALUE_X(t, 1.5)", 0.5},
      {L"$SIG_VALUE_LAST_Y(t)", 9},
      {L"$SIG_SLOT_SIZE(t,1,3)", 3},
      {L"$SIG_DIFF_EUCLID(t, s)^2", 56},
      {L"$SIG_SIZE($RESAMPLING(t, 7))", 7},
  };
  for (const auto& c : cases) {
    const Value value = Evaluate(calculator, c.expression);
    EXPECT_TRUE(value.NearTo(Scalar(c.expected), 1e-9))
        << string::narrow(c.expression) << " gives " << string::narrow(Text(value));
  }
  for (const auto& macro : BuiltInMacros()) {
    const std::map<std::wstring, std::wstring> values = {
        {L"__c", L"t"}, {L"__c2", L"s"}, {L"__r", L"1"}, {L"__r2", L"2"}, {L"__i", L"2"}};
    std::wstring call = L"$" + macro.name + L"(";
    for (const auto& argument : macro.arguments) call += (call.back() == L'(' ? L"" : L",") + values.at(argument);
    EXPECT_EQ(FailureOf(calculator, call + L")"), L"") << string::narrow(call);
  }
}

TEST(ExpressionValues, RandomNumbersFollowTheSeed) {
  Calculator a = MakeCalculator();
  Calculator b = MakeCalculator();
  EXPECT_TRUE(Evaluate(a, L"rand()") == Evaluate(b, L"rand()"));
  a.InitRng(7);
  b.InitRng(8);
  EXPECT_FALSE(Evaluate(a, L"rand()") == Evaluate(b, L"rand()"));
  b.InitRng(7);
  a.InitRng(7);
  EXPECT_EQ(a.GetRandomNumberGenerator(), b.GetRandomNumberGenerator());
  a.InitRng();
  b.InitRng();
  EXPECT_NE(a.GetRandomNumberGenerator(), b.GetRandomNumberGenerator());
}

TEST(ExpressionValues, FilesAreReadOnlyIfAllowed) {
  Calculator calculator = MakeCalculator();
  EXPECT_TRUE(Evaluate(calculator, L"may_read()") == Boolean(false));
  calculator.AllowFileReading(true);
  EXPECT_TRUE(Evaluate(calculator, L"may_read()") == Boolean(true));
}

}  // namespace
}  // namespace kestrel::calculator::test
