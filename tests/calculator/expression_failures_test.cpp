#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "calculator/calculator_state.h"
#include "calculator/evaluator.h"
#include "calculator/test_functions.h"
#include "calculator/value_operations.h"
#include "support/strings.h"

namespace kestrel::calculator::test {
namespace {

using ::testing::HasSubstr;

struct FailureCase {
  const wchar_t* expression;
  const wchar_t* text;
};

void ExpectFailures(std::initializer_list<FailureCase> cases) {
  for (const FailureCase& c : cases) {
    Calculator calculator = MakeCalculator();
    calculator.AddObject(L"s", L"", Scalar(2));
    calculator.AddObject(L"fixed", L"", Scalar(3), true);
    calculator.AddObject(L"v", L"", Vector({10, 20, 30}));
    calculator.AddObject(L"m", L"", Matrix2({1, 2, 3, 4, 5, 6}));
    calculator.AddObject(L"sig", L"", Signal2({0, 1}, {1, 2, 3, 4}));
    EXPECT_THAT(string::narrow(FailureOf(calculator, c.expression)), HasSubstr(string::narrow(c.text)))
        << string::narrow(c.expression);
  }
}

TEST(ExpressionFailures, Names) {
  ExpectFailures({{L"nobody + 1", L"Object \"nobody\" not known."},
                  {L"@NOBODY", L"Error in CONSTANT evaluation occurred: "},
                  {L"nobody(1)", L"Function 'nobody' not known."},
                  {L"sqrt(1, 2)", L"Wrong number of arguments provided to sqrt"},
                  {L"sqrt()", L"Wrong number of arguments provided to sqrt"},
                  {L"$Nobody(1)", L"Unknown macro \"$Nobody\" called"},
                  {L"$SIG_SIZE(1, 2)", L"Invalid number of arguments: \"$SIG_SIZE"}});
}

TEST(ExpressionFailures, Assignments) {
  ExpectFailures({{L"fixed = 1", L"Irregular object assignment: \"fixed\" is an immutable object"},
                  {L"a = PI = 1", L"Irregular object assignment: \"PI\" is an immutable object"},
                  {L"a = a + 1", L"Object \"a\" not known."},
                  {L"s = s + 1", L"Assignment denied because of a circular dependency around \"s"},
                  {L"$SIG_SIZE(x) = x", L"Couldn't assign macro \"SIG_SIZE"},
                  {L"$F(x, x) = x", L"Macro argument \"x\" erroneously used repeatedly in argument list"}});
}

TEST(ExpressionFailures, Literals) {
  ExpectFailures({{L"[1, m]", L"Wrong input type - SCALAR or VECTOR expected"},
                  {L"[[1],[[2]]]", L"Wrong input type - SCALAR or VECTOR expected"},
                  {L"[1 < 2]", L"Wrong input type - SCALAR or VECTOR expected"},
                  {L"[[1,m],[1,2]]", L"Wrong input type, SCALAR or VECTOR expected"},
                  {L"[[1,2],[3]]", L"Irregular matrix."},
                  {L"[[[1,2],[3,4]] [5]]", L"Irregular matrix."},
                  {L"[[v],[1,2]]", L"Type inconsistency detected"},
                  {L"[[v],[[1,2]]]", L"Wrong input type - SCALAR or VECTOR expected"},
                  {L"[[v,v[0:1]]]", L"Given vector input must be of same length"}});
}

TEST(ExpressionFailures, IndicesAndSlices) {
  ExpectFailures({{L"m[0:2]", L"Slice operations supported on vectors only"},
                  {L"v[[1]:2]", L"Item number used in slice definitions must be SCALAR or BOOLEAN"},
                  {L"v[3:]", L"Start index out of bounds"},
                  {L"v[-1:]", L"Start index out of bounds"},
                  {L"v[:3]", L"End index out of bounds"},
                  {L"v[0/0:]", L"Start index out of bounds"},
                  {L"v[2:1]", L"Negative range specified"},
                  {L"v[::0]", L"Slice step cannot be zero"},
                  {L"v[::0.5]", L"Slice step cannot be zero"},
                  {L"v[]", L"No index given"},
                  {L"v[,]", L"No index given"},
                  {L"m[1,2,3]", L"Invalid number of arguments given to index operator []"},
                  {L"s[0]", L"Index extraction not supported by this type"},
                  {L"v[0,0]", L"Cell extraction not supported by this type"},
                  {L"v[0,]", L"Row extraction not supported by this type"},
                  {L"v[,0]", L"Column extraction not supported by this type"},
                  {L"v[3]", L"Index out of"},
                  {L"v[-1]", L"Index must be positive & real."},
                  {L"v[@I:]", L"Index must be real."}});
}

TEST(ExpressionFailures, ValuesThatDoNotFitPassThrough) {
  ExpectFailures({{L"v && 1", L"Input object not of type BOOLEAN."},
                  {L"#if v : 1 #else 2", L"Input object not of type BOOLEAN."},
                  {L"v + [1]", L"Operands have to be of same dimension."},
                  {L"length(1)", L"Argument 1: A text in double quotes is expected."}});
}

TEST(ExpressionFailures, MacroMappingCountsArguments) {
  Calculator calculator = MakeCalculator();
  try {
    calculator.MapMacroExpression({L"F", {L"x"}, L"x + 1"}, {L"1", L"2"});
    FAIL() << "two arguments for one";
  } catch (const CCalculatorException& error) {
    EXPECT_EQ(error.What(), L"Number of arguments error while calling a macro");
  }
  EXPECT_EQ(calculator.MapMacroExpression({L"F", {L"x"}, L"x + y*x(x)"}, {L"a-b"}), L"(a-b) + y*x((a-b))");
}

TEST(ExpressionFailures, TablesThatAreFullTakeNoMore) {
  Calculator calculator = MakeCalculator();
  for (std::size_t i = 0; i < kMaximalObjects; ++i) calculator.AddObject(L"o" + std::to_wstring(i), L"", Scalar(0));
  EXPECT_EQ(FailureOf(calculator, L"more = 1"), L"Couldn't assign object \"more\": Can't insert object \"more\"");
  EXPECT_EQ(FailureOf(calculator, L"o1 = 1"), L"");
  for (std::size_t i = BuiltInMacros().size(); i < kMaximalMacros; ++i) {
    Evaluate(calculator, L"$M" + std::to_wstring(i) + L"() = 1");
  }
  EXPECT_EQ(FailureOf(calculator, L"$More() = 1"), L"Couldn't assign macro \"More\": there are too many");
}

/// What no text leads to, because the grammar does not give such trees.
TEST(ExpressionFailures, TreesThatCannotBeAreRefused) {
  const struct {
    ERule rule;
    const wchar_t* text;
  } cases[] = {{ERule::kString, L"Internal error: rule not handled: string"},
               {ERule::kNone, L"Internal error: rule not handled"},
               {ERule::kIf, L"Unexpected keyword"},
               {ERule::kSwitch, L"Unexpected keyword"}};
  CalculatorState state;
  for (const auto& c : cases) {
    Expression expression;
    expression.root.rule = c.rule;
    try {
      Evaluator(state).Evaluate(expression);
      FAIL() << string::narrow(c.text);
    } catch (const CCalculatorException& error) {
      EXPECT_EQ(error.What(), c.text);
    }
  }
  EXPECT_THROW(EvalOperation(EOperator::kNot, Scalar(1), Scalar(1)), CCalculatorException);
  EXPECT_THROW(EvalUnaryOperation(EOperator::kPlus, Scalar(1)), CCalculatorException);
}

}  // namespace
}  // namespace kestrel::calculator::test
