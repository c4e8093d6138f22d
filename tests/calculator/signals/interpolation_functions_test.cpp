#include <gtest/gtest.h>

#include "calculator/signals/signal_calls.h"
#include "support/matrix_compare.h"

namespace kestrel::calculator::test {
namespace {

using kestrel::testing::MatrixNear;

constexpr double kTolerance = 1e-12;

const Numbers kUneven = {-1, -0.5, 0.25, 0.5, 2, 2.25};
const Numbers kBetween = {2.25, -1, -0.9, 0.1, 0.25, 0.3, 1, 1.9, 2.2};

Numbers Interpolated(const Value& signal, const Numbers& at, EOption kind, EOption left = {}, EOption right = {}) {
  const math::Vector values = RowOf(Call(L"interpolate", {signal, VectorOf(at), Word(kind), Word(left), Word(right)}));
  return {values.begin(), values.end()};
}

double Polynomial(int degree, double x) {
  double value = 2.0;
  for (int i = 0; i < degree; ++i) value = value * (x - 0.3 * i) + 1.0;
  return value;
}

TEST(Interpolate, ReproducesPolynomialsOfItsDegree) {
  const struct {
    EOption kind;
    int degree;
  } cases[] = {{EOption::ZERO, 0}, {EOption::LINEAR, 1}, {EOption::QUAD, 2}, {EOption::SPLINE, 3}};
  for (const auto& c : cases) {
    const auto curve = [&](double x) { return Polynomial(c.degree, x); };
    for (std::size_t count = static_cast<std::size_t>(c.degree) + 1; count <= kUneven.size(); ++count) {
      const Numbers x(kUneven.end() - static_cast<std::ptrdiff_t>(count), kUneven.end());
      Numbers at = kBetween;
      for (double& a : at) a = std::max(a, x[0]);
      const Numbers values = Interpolated(Signal(x, {Sampled(x, curve)}), at, c.kind);
      EXPECT_TRUE(MatrixNear(ToEigen(values), ToEigen(Sampled(at, curve)), kTolerance)) << c.degree << ", " << count;
    }
  }
}

TEST(Interpolate, MeetsTheSamplesAndIsContinuous) {
  const auto curve = [](double x) { return std::sin(3 * x); };
  const Value signal = Signal(kUneven, {Sampled(kUneven, curve)});
  for (const EOption kind : {EOption::LINEAR, EOption::QUAD, EOption::SPLINE}) {
    EXPECT_TRUE(MatrixNear(ToEigen(Interpolated(signal, kUneven, kind)), ToEigen(Sampled(kUneven, curve)), kTolerance));
    for (const double x : {-0.5, 0.25, 0.5, 2.0}) {
      const Numbers beside = Interpolated(signal, {x - 1e-9, x + 1e-9}, kind);
      EXPECT_NEAR(beside[0], beside[1], 1e-7);
    }
  }
  EXPECT_EQ(Interpolated(signal, {-0.5, 0.2, 2.25}, EOption::ZERO), (Numbers{curve(-0.5), curve(-0.5), curve(2.25)}));
}

// The error of the spline falls with the fourth power of the step, up to the ends.
TEST(Interpolate, SplineConvergesInTheFourthOrder) {
  const auto curve = [](double x) { return std::exp(std::sin(x)); };
  double errors[2] = {0.0, 0.0};
  for (int i = 0; i < 2; ++i) {
    const Numbers x = Steps(0.1 / (1 << i), i == 0 ? 31 : 61);
    const Numbers at = Steps(0.0037, 810);
    const Numbers values = Interpolated(Signal(x, {Sampled(x, curve)}), at, EOption::SPLINE);
    errors[i] = (ToEigen(values) - ToEigen(Sampled(at, curve))).cwiseAbs().maxCoeff();
  }
  EXPECT_LT(errors[0], 1e-4);
  EXPECT_GT(errors[0] / errors[1], 12.0);
}

TEST(Interpolate, TreatsBothEnds) {
  const Value signal = Signal({0, 1, 3}, {{1, 2, 8}});  // slopes 1 and 3
  const struct {
    EOption treatment;
    Numbers left;   // at -1, -4, -7
    Numbers right;  // at 4, 6, 8
  } cases[] = {
      {EOption::CONSTANT, {1, 1, 1}, {8, 8, 8}},
      {EOption::ZERO, {0, 0, 0}, {0, 0, 0}},
      {EOption::MIRROR, {2, 5, 2}, {5, 1, 5}},
      {EOption::TANGENTIAL, {0, -3, -6}, {11, 17, 23}},
      // Reflected in (0, 1) and (3, 8), so that it rises by 14 every 6.
      {EOption::REVERSE_MIRROR, {0, -9, -14}, {11, 15, 19}},
  };
  for (const auto& c : cases) {
    const EOption none = EOption::ZERO;
    EXPECT_EQ(Interpolated(signal, {-1, -4, -7}, EOption::LINEAR, c.treatment, none), c.left) << int(c.treatment);
    EXPECT_EQ(Interpolated(signal, {4, 6, 8}, EOption::LINEAR, none, c.treatment), c.right) << int(c.treatment);
    const Numbers single = Interpolated(Signal({1}, {{5}}), {1}, EOption::SPLINE, c.treatment, c.treatment);
    EXPECT_EQ(single, Numbers{5});
  }
  const auto cubic = [](double x) { return Polynomial(3, x); };
  const Numbers tangents = Interpolated(Signal(kUneven, {Sampled(kUneven, cubic)}), {-2, 3.25}, EOption::SPLINE,
                                        EOption::TANGENTIAL, EOption::TANGENTIAL);
  const auto slope = [&](double x) { return (cubic(x + 1e-5) - cubic(x - 1e-5)) / 2e-5; };
  EXPECT_NEAR(tangents[0], cubic(-1) - slope(-1), 1e-8);
  EXPECT_NEAR(tangents[1], cubic(2.25) + slope(2.25), 1e-8);
}

TEST(Interpolate, FindsWhereASignalHasAValue) {
  const Value signal = Signal({0, 1, 2}, {{0, 10, 0}});
  const Value turned = Call(L"xydata", {Call(L"extract", {signal, Number(1)}), Call(L"extract", {signal, Number(0)})});
  EXPECT_EQ(Interpolated(turned, {5}, EOption::LINEAR), Numbers{0.5});
}

// A value of y is looked up by exchanging x and y, which then does not ascend.
TEST(Interpolate, FindsTheFirstArrivalInXyData) {
  const Value turned = XyData({0, 4, 2, 6, -2}, {{0, 1, 2, 3, 4}});
  const Numbers at = {0, 1, 3, 4, 5, 6, -1, -2};
  EXPECT_EQ(Interpolated(turned, at, EOption::LINEAR), (Numbers{0, 0.25, 0.75, 1, 2.75, 3, 3.875, 4}));
  const Value step = Signal({0, 1, 1, 2}, {{0, 0, 5, 5}});
  EXPECT_EQ(Interpolated(step, {0.5, 1, std::nextafter(1.0, 2.0), 1.5}, EOption::LINEAR), (Numbers{0, 0, 5, 5}));
}

TEST(Interpolate, ForgivesRoundingAtTheEnds) {
  const Value signal = Signal(Steps(0.1, 11), {Steps(1, 11)});
  EXPECT_EQ(Interpolated(signal, {std::nextafter(1.0, 2.0), -1e-17}, EOption::LINEAR), (Numbers{10, 0}));
  EXPECT_EQ(Call(L"interpolate", {signal, Number(0.05)}).at(0, 0), 0.5);
  EXPECT_EQ(Call(L"interpolate", {signal, VectorOf({0.2, 0.1})}).GetKind(), Value::XYDATA);
  EXPECT_EQ(Call(L"interpolate", {signal, VectorOf({0.1, 0.2})}).GetKind(), Value::SIGNAL);
}

// Resampling at the smallest step keeps the samples that lie on multiples of it.
TEST(InterpolateABQ, ResamplesBefore) {
  const Value signal = XyData({0, 1, 3, 3, 4}, {{0, 1, 9, 7, 16}});
  const Value direct = Signal({0, 1, 2, 3, 4}, {{0, 1, 5, 9, 16}});
  for (const EOption kind : {EOption::LINEAR, EOption::QUAD, EOption::SPLINE}) {
    const Value x = VectorOf({0.5, 2.5, 3.5});
    EXPECT_TRUE(MatrixNear(RowOf(Call(L"interpolateABQ", {signal, x, Word(kind)})),
                           RowOf(Call(L"interpolate", {direct, x, Word(kind)})), kTolerance));
  }
}

}  // namespace
}  // namespace kestrel::calculator::test
