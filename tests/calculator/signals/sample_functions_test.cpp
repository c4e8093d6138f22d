#include <gtest/gtest.h>

#include "calculator/signals/signal_calls.h"
#include "support/matrix_compare.h"

namespace kestrel::calculator::test {
namespace {

using kestrel::testing::MatrixNear;

constexpr double kTolerance = 1e-12;

const Numbers kUneven = {-1, -0.5, 0.25, 0.5, 2, 2.25};

double Line(double x) { return 3 - 2 * x; }
double Parabola(double x) { return 1 - x + 0.5 * x * x; }
double ParabolaSlope(double x) { return x - 1; }

TEST(SignalDerivative, IsExactForParabolas) {
  const Value signal = Signal(kUneven, {Sampled(kUneven, Parabola), Sampled(kUneven, Line)});
  const Value derivative = Call(L"derive", {signal});
  EXPECT_TRUE(MatrixNear(RowOf(derivative, 0), ToEigen(kUneven), 0.0));
  EXPECT_TRUE(MatrixNear(RowOf(derivative, 1), ToEigen(Sampled(kUneven, ParabolaSlope)), kTolerance));
  EXPECT_TRUE(MatrixNear(RowOf(derivative, 2), math::Vector::Constant(6, -2.0), kTolerance));
}

TEST(SignalDerivative, LooksForwardOrBackward) {
  const Value signal = Signal({0, 1, 3}, {{0, 5, 9}});
  EXPECT_TRUE(Call(L"derive", {signal, Word(EOption::FORWARD)}) == Signal({0, 1, 3}, {{5, 2, 2}}));
  EXPECT_TRUE(Call(L"derive", {signal, Word(EOption::BACKWARD)}) == Signal({0, 1, 3}, {{5, 5, 2}}));
  EXPECT_TRUE(Call(L"derive", {Signal({0, 2}, {{1, 5}})}) == Signal({0, 2}, {{2, 2}}));
}

TEST(SignalIntegral, InvertsTheBackwardDerivativeOfLinesAndAddsUpToTheArea) {
  const Numbers values = Sampled(kUneven, Line);
  const Value integral = Call(L"integrate", {Signal(kUneven, {values}), Number(7)});
  const auto antiderivative = [](double x) { return 3 * x - x * x + 11; };  // 7 at -1
  EXPECT_TRUE(MatrixNear(RowOf(integral), ToEigen(Sampled(kUneven, antiderivative)), kTolerance));
  const Value area = Call(L"area", {Signal(kUneven, {values})});
  EXPECT_NEAR(area.GetScalar().real(), antiderivative(2.25) - 7.0, kTolerance);
}

TEST(SignalIntegral, EndsBetweenSamples) {
  const Value signal = Signal(kUneven, {Sampled(kUneven, Line), Numbers(6, 2.0)});
  const struct {
    double from, to, line, constant;
  } cases[] = {
      {-0.75, 1, 3 * 1.75 - (1 - 0.5625), 3.5}, {0.3, 0.4, 0.23, 0.2}, {0.3, 0.3, 0, 0}, {-9, 0, 3 - (0 - 1), 2},
      {2, 9, 0.75 - (5.0625 - 4), 0.5},         {2.25, 9, 0, 0}};
  for (const auto& c : cases) {
    const Value area = Call(L"area", {signal, Number(c.from), Number(c.to)});
    EXPECT_NEAR(area.at(0).real(), c.line, kTolerance) << c.from << " to " << c.to;
    EXPECT_NEAR(area.at(1).real(), c.constant, kTolerance) << c.from << " to " << c.to;
  }
}

TEST(SignalIntegral, EnclosesTheAreaOfALoop) {
  const Value square = XyData({0, 2, 2, 0, 0}, {{0, 0, 3, 3, 0}});
  EXPECT_EQ(Call(L"area", {square}).GetScalar(), -6.0);
}

TEST(SignalCalculus, TakesComplexSamplesApart) {
  const Value signal = Signal({0, 1, 3}, {{0, 5, 9}, {1, 0, 1}});
  const Value other = Signal({0, 1, 3}, {{2, -1, 4}, {0, 7, 7}});
  const Value both = signal + Number(0, 1) * other;
  const auto together = [](const Value& real, const Value& imaginary) { return real + Number(0, 1) * imaginary; };
  for (const wchar_t* name : {L"derive", L"integrate", L"area"}) {
    EXPECT_TRUE(Call(name, {both}) == together(Call(name, {signal}), Call(name, {other})));
  }
  const Arguments at = {both, VectorOf({0.5, 2}), Word(EOption::QUAD)};
  EXPECT_TRUE(
      Call(L"interpolate", at)
          .NearTo(together(Call(L"interpolate", {signal, at[1], at[2]}), Call(L"interpolate", {other, at[1], at[2]})),
                  1e-12));
}

}  // namespace
}  // namespace kestrel::calculator::test
