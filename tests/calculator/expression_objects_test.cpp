#include <gtest/gtest.h>

#include <new>

#include "calculator/test_functions.h"
#include "support/strings.h"

namespace kestrel::calculator::test {
namespace {

std::wstring TextOf(const Calculator& calculator, const wchar_t* name) {
  return std::get<1>(calculator.GetTuple(name));
}

template <class Exception, class Work>
std::wstring TextOfFailure(Work work) {
  try {
    work();
  } catch (const Exception& error) {
    return error.What();
  }
  return L"nothing was raised";
}

TEST(CalculatorObjects, KeepValueAndText) {
  Calculator calculator = MakeCalculator();
  EXPECT_FALSE(calculator.IsObject(L"a"));
  EXPECT_EQ(calculator.GetTuple(L"a", std::nothrow), nullptr);
  EXPECT_EQ(TextOfFailure<CCalculatorObjectUnknownException>([&] { calculator.GetTuple(L"a"); }),
            L"Object \"a\" not known.");
  EXPECT_TRUE(Evaluate(calculator, L"a = b =  1 + 1 ") == Scalar(2));
  for (const auto* name : {L"a", L"b"}) {
    const auto& tuple = calculator.GetTuple(name);
    EXPECT_EQ(std::get<0>(tuple), name);
    EXPECT_EQ(std::get<1>(tuple), L"1 + 1");
    EXPECT_TRUE(std::get<2>(tuple) == Scalar(2));
  }
  EXPECT_TRUE(calculator.RemoveObject(L"a"));
  EXPECT_FALSE(calculator.RemoveObject(L"a"));
  EXPECT_FALSE(calculator.IsObject(L"a"));
}

TEST(CalculatorObjects, AddingRefuses) {
  Calculator calculator = MakeCalculator();
  const auto refusal = [&calculator](const wchar_t* name) {
    return TextOfFailure<CCalculatorException>([&] { calculator.AddObject(name, L"", Scalar(1)); });
  };
  EXPECT_EQ(refusal(L"1a"), L"Invalid identifier: \"1a\"");
  EXPECT_EQ(refusal(L"PI"), L"Invalid identifier: \"PI\"");
  calculator.AddObject(L"fixed", L"", Scalar(1), true);
  EXPECT_EQ(refusal(L"fixed"), L"Can't overwrite immutable object \"fixed\"");
  EXPECT_TRUE(Evaluate(calculator, L"fixed") == Scalar(1));
  calculator.RemoveObject(L"fixed");
  EXPECT_EQ(refusal(L"fixed"), L"nothing was raised");
}

TEST(CalculatorObjects, WinOverConstantsAndLiveBesideFunctions) {
  Calculator calculator = MakeCalculator();
  EXPECT_TRUE(Evaluate(calculator, L"E > 2.7") == Boolean(true));
  calculator.AddObject(L"E", L"", Scalar(210000));
  calculator.AddObject(L"sqrt", L"", Scalar(16));
  EXPECT_TRUE(Evaluate(calculator, L"E") == Scalar(210000));
  EXPECT_TRUE(Evaluate(calculator, L"@E > 2.7 && @E < 2.8") == Boolean(true));
  EXPECT_TRUE(Evaluate(calculator, L"sqrt(sqrt)") == Scalar(4));
}

TEST(CalculatorObjects, FollowWhatTheyDependOn) {
  Calculator calculator = MakeCalculator();
  Evaluate(calculator, L"a = 1");
  Evaluate(calculator, L"$Twice(x) = 2 * x");
  Evaluate(calculator, L"b = $Twice(a)");
  Evaluate(calculator, L"c = b + 1");
  Evaluate(calculator, L"r = rand()");
  const Value drawn = calculator.EvalObject(L"r");
  EXPECT_TRUE(calculator.EvalObject(L"c") == Scalar(3));
  calculator.AddObject(L"a", L"", Scalar(5));
  EXPECT_TRUE(calculator.EvalObject(L"c") == Scalar(11));
  Evaluate(calculator, L"$Twice(x) = x + x + 1");
  EXPECT_TRUE(Evaluate(calculator, L"c") == Scalar(12));
  EXPECT_TRUE(std::get<2>(calculator.GetTuple(L"b")) == Scalar(11));
  EXPECT_TRUE(calculator.EvalObject(L"r") == drawn);  // depends on nothing, so it is not drawn anew
}

TEST(CalculatorObjects, AreComputedWhenAskedForIfTheyHaveNoValue) {
  Calculator calculator = MakeCalculator();
  calculator.AddObject(L"late", L"early * 2", Value());
  EXPECT_THROW(calculator.EvalObject(L"late"), CCalculatorObjectUnknownException);
  calculator.AddObject(L"early", L"", Scalar(4));
  EXPECT_TRUE(calculator.EvalObject(L"late") == Scalar(8));
  calculator.AddObject(L"given", L"4 kg", Scalar(4));  // a text that is no expression
  EXPECT_TRUE(calculator.EvalObject(L"given") == Scalar(4));
  calculator.AddObject(L"given", L"4 kg", Value());
  EXPECT_THROW(calculator.EvalObject(L"given"), CExpressionPositionException);
}

TEST(CalculatorObjects, EvaluationByReferenceCopiesNothing) {
  Calculator calculator = MakeCalculator();
  calculator.AddObject(L"v", L"", Vector({1, 2}));
  const auto* const stored = &std::get<2>(calculator.GetTuple(L"v"));
  EXPECT_EQ(&calculator.Eval<evaluation_traits::by_reference>(L"(v)"), stored);
  EXPECT_TRUE(calculator.Eval<evaluation_traits::by_reference>(L"v + 1") == Vector({2, 3}));
}

/// Operands keep the value that an object had when they were reached.
TEST(CalculatorObjects, AssignmentsInsideOfAnExpressionDoNotReachBack) {
  Calculator calculator = MakeCalculator();
  Evaluate(calculator, L"a = [1, 2]");
  EXPECT_TRUE(Evaluate(calculator, L"a + calculate(\"a = [10, 20]\") + a") == Vector({21, 42}));
  Evaluate(calculator, L"b = a * 2");
  EXPECT_TRUE(Evaluate(calculator, L"b + count(a = [0, 0]) + b") == Vector({21, 41}));
}

TEST(CalculatorObjects, CirclesAreDenied) {
  Calculator calculator = MakeCalculator();
  Evaluate(calculator, L"a = 1");
  Evaluate(calculator, L"b = a");
  Evaluate(calculator, L"$B() = b");
  for (const auto* text : {L"a = a + 1", L"a = b", L"a = $B()", L"c = a = b", L"b = 0 * b"}) {
    EXPECT_THROW(Evaluate(calculator, text), CCircularDependencyException) << string::narrow(text);
  }
  EXPECT_FALSE(calculator.IsObject(L"c"));
  EXPECT_EQ(TextOf(calculator, L"a"), L"1");
  EXPECT_FALSE(calculator.HasCircularDependencies(L"b"));
  EXPECT_THROW(calculator.HasCircularDependencies(L"nobody"), CCalculatorObjectUnknownException);
}

TEST(CalculatorObjects, AreTheSameInBrackets) {
  Calculator calculator = MakeCalculator();
  calculator.AddObject(L"a", L"", Scalar(4));
  Evaluate(calculator, L"$H(x) = sqrt((x)) + 1");
  const struct {
    const wchar_t* text;
    double value;
  } cases[] = {{L"sqrt((a))", 2},    {L"sqrt( ( ( a ) ) )", 2}, {L"$H((a))", 3},
               {L"abs((@TRUE))", 1}, {L"b = (a)", 4},           {L"count((a), ((a)))", 2}};
  for (const auto& c : cases) {
    const Value value = Evaluate(calculator, c.text);
    EXPECT_TRUE(value == Scalar(c.value)) << string::narrow(c.text);
  }
  Evaluate(calculator, L"d = $H((a))");
  EXPECT_EQ(TextOf(calculator, L"b"), L"(a)");
  EXPECT_THROW(Evaluate(calculator, L"a = d"), CCircularDependencyException);
  calculator.AddObject(L"a", L"", Scalar(9));
  EXPECT_TRUE(calculator.EvalObject(L"d") == Scalar(4));
  EXPECT_EQ(calculator.ReplaceObjectIds(L"a + sqrt((a))", {{L"a", L"xyz"}}), L"xyz + sqrt((xyz))");
}

/// A caller can add what assignments deny.
TEST(CalculatorObjects, CirclesOfAddedObjectsAreFound) {
  Calculator calculator = MakeCalculator();
  calculator.AddObject(L"a", L"b + 1", Value());
  calculator.AddObject(L"b", L"a + 1", Value());
  calculator.AddObject(L"c", L"a", Value());
  calculator.AddObject(L"d", L"calculate(\"d\")", Value());  // no walk over names sees this one
  EXPECT_TRUE(calculator.HasCircularDependencies(L"a"));
  EXPECT_FALSE(calculator.HasCircularDependencies(L"c"));
  EXPECT_EQ(TextOfFailure<CCircularDependencyException>([&] { calculator.EvalObject(L"a"); }),
            L"object a depends on expression dependent on a");
  EXPECT_THROW(calculator.EvalObject(L"c"), CCircularDependencyException);
  EXPECT_THROW(calculator.EvalObject(L"d"), CCircularDependencyException);
  calculator.AddObject(L"b", L"", Scalar(1));
  EXPECT_TRUE(calculator.EvalObject(L"c") == Scalar(2));  // nothing is left behind by the failures
}

}  // namespace
}  // namespace kestrel::calculator::test
