#include "statistics/basic_statistics.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <Eigen/QR>
#include <cmath>

#include "statistics/sample_data.h"
#include "support/matrix_compare.h"

namespace kestrel::math::statistics {
namespace {

using testing::kInf;
using testing::kNaN;
using testing::MatrixNear;
using testing::NumberNear;
using testing::Numbers;

// What remains of y after its least-squares parabola in x, as the multiple correlation sqrt(1 - SSE / SST).
double CorrelationWithFittedParabola(const Vector& x, const Vector& y) {
  Matrix basis(x.size(), 3);
  basis << Vector::Ones(x.size()), x, x.cwiseAbs2();
  const Vector fit = basis * basis.colPivHouseholderQr().solve(y);
  const Vector fit_deviations = fit.array() - fit.mean();
  const Vector deviations = y.array() - y.mean();
  return fit_deviations.dot(deviations) / (fit_deviations.norm() * deviations.norm());
}

TEST(Moments, SkipOnlyMissingValues) {
  struct Case {
    const char* name;
    Vector values;
    bool ignore_nan;
    double mean, variance;
  };
  const Case cases[] = {
      {"plain", Numbers({1, 2, 3, 6}), false, 3.0, 14.0 / 3.0},
      {"NaN ignored", Numbers({1, kNaN, 2, 3, 6}), true, 3.0, 14.0 / 3.0},
      {"NaN counted", Numbers({1, kNaN, 2}), false, kNaN, kNaN},
      {"one left", Numbers({kNaN, 4, kNaN}), true, 4.0, 0.0},
      {"none left", Numbers({kNaN, kNaN}), true, kNaN, kNaN},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const double mean = Mean(c.values, c.ignore_nan);
    EXPECT_TRUE(NumberNear(mean, c.mean, 1e-15));
    EXPECT_TRUE(NumberNear(Variance(c.values, mean, c.ignore_nan), c.variance, 1e-15));
    EXPECT_TRUE(NumberNear(Sigma(c.values, mean, c.ignore_nan), std::sqrt(c.variance), 1e-15));
  }
  EXPECT_EQ(Mean(Numbers({1, kNaN, 3})), 2.0);
  EXPECT_DOUBLE_EQ(Sigma(Numbers({1, kNaN, 3}), 2.0), std::sqrt(2.0));
}

TEST(ConstantVector, IsJudgedByItsRange) {
  struct Case {
    const char* name;
    Vector values;
    bool constant;
  };
  const Case cases[] = {
      {"empty", Vector(), true},
      {"within tolerance", Numbers({1, 1 + 4.4e-13}), true},
      {"beyond tolerance", Numbers({1, 1 + 4.5e-13}), false},
      {"small beside zero", Numbers({0, 1e-300}), false},
      {"missing values", Numbers({kNaN, 2, kNaN, 2}), true},
      {"range beyond the largest double", Numbers({-1.5e308, 1.5e308}), false},
  };
  for (const Case& c : cases) EXPECT_EQ(isConst(c.values), c.constant) << c.name;
}

TEST(ConstantResponse, ComparesSigmaWithTheMean) {
  EXPECT_TRUE(IsConstantResponse(-1.0, 2.220446049250313e-13));
  EXPECT_FALSE(IsConstantResponse(-1.0, 2.221e-13));
  EXPECT_TRUE(IsConstantResponse(0.0, 0.0));
  EXPECT_FALSE(IsConstantResponse(Numbers({1e-300, 2e-300})));
  EXPECT_TRUE(equal0(-2.2e-16));
  EXPECT_FALSE(equal0(2.3e-16));
}

TEST(LinearCorrelation, UsesTheCompletePairs) {
  const Vector x = Numbers({1, 2, 3, kNaN, 4});
  const Vector y = Numbers({2, 4, 5, 1, kNaN});
  EXPECT_NEAR(CalcLinCC(x, y, true, false), 3.0 / std::sqrt(28.0 / 3.0), 1e-15);
  EXPECT_TRUE(std::isnan(CalcLinCC(x, y, false, false)));
  EXPECT_TRUE(std::isnan(CalcQuadCC(x, y, false, false)));
  EXPECT_EQ(CalcLinCC(x.tail(3), y.tail(3), true, true), 0.0);            // one pair
  EXPECT_TRUE(std::isnan(CalcLinCC(x.tail(2), y.tail(2), true, true)));   // none
  EXPECT_TRUE(std::isnan(CalcQuadCC(x.tail(2), y.tail(2), true, true)));  // none
  EXPECT_EQ(CalcQuadCC(x.head(2), y.head(2), false, false), 0.0);         // fewer than three
}

TEST(LinearCorrelation, OfConstantSideIsZero) {
  EXPECT_EQ(CalcLinCC(Numbers({1, 2, 3}), Numbers({7, 7, 7}), false, false), 0.0);
  EXPECT_EQ(CalcQuadCC(Numbers({1, 2, 3}), Numbers({7, 7, 7}), false, false), 0.0);
  EXPECT_EQ(CalcQuadCC(Numbers({7, 7, 7}), Numbers({1, 2, 3}), false, false), 0.0);
}

TEST(Correlations, KeepTheirDigitsUnderScaleAndShift) {
  const Vector x = Numbers({-3, -1, 0, 2, 5, 6, 6});
  const Vector y = Numbers({4, 1, 1, 3, 9, 20, 18});
  const double linear = CalcLinCC(x, y, false, false);
  const double quadratic = CalcQuadCC(x, y, false, false);
  for (const auto& [scale, shift] : {std::pair{-1e250, 0.0}, {1.0, 0x1p42}}) {
    SCOPED_TRACE(scale);
    const Vector moved = (x.array() + shift) * scale;
    EXPECT_NEAR(CalcLinCC(moved, y, false, false), scale < 0 ? -linear : linear, 1e-14);
    EXPECT_NEAR(CalcQuadCC(moved, y, false, false), quadratic, 1e-14);
    EXPECT_NEAR(CalcQuadCC(x, (y.array() + shift) * scale, false, false), quadratic, 1e-14);
  }
  EXPECT_NEAR(CalcLinCC(1e-300 * x, 1e-300 * y, false, false), linear, 1e-14);
}

TEST(QuadraticCorrelation, SeesTheParabolaThatTheLineMisses) {
  const Vector x = Numbers({-2, -1, 0, 1, 2});
  const Vector square = x.cwiseAbs2();
  EXPECT_NEAR(CalcQuadCC(x, square, false, false), 1.0, 1e-15);
  EXPECT_EQ(CalcLinCC(x, square, false, false), 0.0);
  EXPECT_EQ(CalcQuadCC(square, x, false, false), 0.0);
  // Orthogonal to every parabola on these points.
  EXPECT_EQ(CalcQuadCC(x, Numbers({-1, 2, 0, -2, 1}), false, false), 0.0);
}

TEST(QuadraticCorrelation, IsZeroWhereTheRawDeterminantIsBelowEpsilon) {
  const Vector steps = Numbers({1, 2, 3, 4});  // determinant 80, which grows with the sixth power of the unit
  const Vector y = Numbers({1, 4, 9, 16});
  EXPECT_EQ(CalcQuadCC(1.17e-3 * steps, y, false, false), 0.0);
  EXPECT_NEAR(CalcQuadCC(1.19e-3 * steps, y, false, false), 1.0, 1e-13);
  EXPECT_NEAR(CalcQuadCC((1.19e-3 * steps).array() + 1.0, y, false, false), 1.0, 1e-9);
}

TEST(QuadraticCorrelation, OfTwoLevelsIsZeroWhateverTheLevels) {
  for (const double upper : {1.0, 0.7, 1.0 / 3.0, 5000.0, 1e12 + 0.1, 1e200}) {
    const Vector x = Numbers({0.1, upper, upper, 0.1, upper, 0.1, 0.1});
    EXPECT_EQ(CalcQuadCC(x, Numbers({1, 5, 6, 2, 7, 1, 0}), false, false), 0.0) << upper;
  }
}

RC_GTEST_PROP(QuadraticCorrelation, EqualsThatOfTheFittedParabola, ()) {
  const Index n = *rc::gen::inRange(3, 40);
  const auto seed = *rc::gen::arbitrary<std::uint32_t>();
  const double shift = *rc::gen::element(-10.0, 0.0, 3.0);
  const Vector x = testing::UniformMatrix(n, 1, seed, shift - 1.0, shift + 1.0);
  const Vector y = 2.0 * x.array().square() - x.array() + testing::UniformMatrix(n, 1, seed + 1, -2.0, 2.0).array();
  RC_ASSERT(std::abs(CalcQuadCC(x, y, false, false) - CorrelationWithFittedParabola(x, y)) < 1e-10);
}

TEST(RankOrder, SharesMeanRanksAmongTies) {
  struct Case {
    Vector values, ranks;
  };
  const Case cases[] = {
      {Numbers({3, 1, 3, kNaN}), Numbers({2.5, 1, 2.5, kNaN})},
      {Numbers({0.0, -0.0, -1, kInf, 5, 5, 5}), Numbers({2.5, 2.5, 1, 7, 5, 5, 5})},
      {Numbers({kNaN, kNaN}), Numbers({kNaN, kNaN})},
  };
  for (const Case& c : cases) EXPECT_TRUE(MatrixNear(calc_rankOrder(c.values), c.ranks, 0.0));
}

TEST(Determination, IsTheExplainedShareOfTheCompletePairs) {
  struct Case {
    const char* name;
    Vector y, y_hat;
    std::uint64_t coefficients;
    double r2, r2adj;
  };
  const Vector y = Numbers({1, 2, 3, 4});
  const Case cases[] = {
      {"by hand", y, Numbers({1, 2, 3, 5}), 2, 0.8, 0.7},
      {"no coefficients count as one", y, Numbers({1, 2, 3, 5}), 0, 0.8, 0.8},
      {"as many coefficients as samples", y, y, 4, 1.0, 0.0},
      {"adjusted below zero", y, Numbers({2.5, 2.5, 2.5, 3}), 2, 0.25, 0.0},
      {"constant response", Numbers({5, 5, 5}), Numbers({0, 1, 9}), 9, 1.0, 1.0},
      {"missing values", Numbers({1, 2, kNaN, 3, 4, 9}), Numbers({1, 2, 7, 3, 5, kNaN}), 2, 0.8, 0.7},
      {"constant over the pairs", Numbers({1, 2, 2}), Numbers({kNaN, 3, 4}), 1, 1.0, 1.0},
      {"no pair", y, Vector::Constant(4, kNaN), 1, kNaN, kNaN},
      {"different lengths", y, y.head(3), 1, kNaN, kNaN},
      {"huge", 1e300 * y, 1e300 * Numbers({1, 2, 3, 5}), 2, 0.8, 0.7},
      {"infinite prediction", y, Numbers({1, 2, 3, kInf}), 2, 0.0, 0.0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_TRUE(NumberNear(R2(c.y, c.y_hat), c.r2, 1e-15));
    EXPECT_TRUE(NumberNear(R2adj(c.y, c.y_hat, c.coefficients), c.r2adj, 1e-15));
  }
}

TEST(InputFaults, AreReported) {
  const Vector none;
  const Vector two = Numbers({1, 2});
  const Vector three = Numbers({1, 2, 3});
  constexpr const wchar_t* kSizes = L"Sizes of input vectors for linear correlation not consistent";
  const std::pair<std::function<void()>, const wchar_t*> cases[] = {
      {[&] { Mean(none); }, L"Empty design vector"},
      {[&] { Variance(none, 0.0, true); }, L"Empty design vector"},
      {[&] { R2(none, none); }, L"Empty design vector"},
      {[&] { calc_rankOrder(none); }, L"Empty data vector"},
      {[&] { CalcQuadCC(none, none, false, false); }, L"Empty data vector"},
      {[&] { CalcLinCC(two, three, false, true); }, kSizes},
      {[&] { RemoveNanDataPairs(three, two); }, kSizes},
  };
  for (const auto& [call, text] : cases) EXPECT_EQ(testing::ReportOf(call), text);
}

}  // namespace
}  // namespace kestrel::math::statistics
