#include "surrogates/linear_regression.h"

#include <gtest/gtest.h>

#include <limits>

#include "statistics/basic_statistics.h"
#include "statistics/transform/transform_boxcox.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;

LinearRegressionSettings Terms(std::uint64_t inputs, std::uint64_t order, bool interaction,
                               eTransformation value_transformation = eTransformation::kNone) {
  LinearRegressionSettings settings(inputs);
  settings.SetOrder(order);
  settings.SetInteraction(interaction);
  settings.SetValueTransformation(value_transformation);
  return settings;
}

LinearRegression Built(const Matrix& points, const Vector& values, const LinearRegressionSettings& settings,
                       const Vector& weights = Vector()) {
  LinearRegression regression(points, values, weights);
  regression.Initialize(settings);
  EXPECT_TRUE(regression.Build());
  return regression;
}

/// 3 - 2 x0 + x1^2 + 0.5 x0 x2.
Vector Polynomial(const Matrix& x) {
  return 3.0 - 2.0 * x.col(0).array() + x.col(1).array().square() + 0.5 * x.col(0).array() * x.col(2).array();
}

Matrix PolynomialGradient(const Matrix& x) {
  Matrix gradient(x.rows(), 3);
  gradient << (-2.0 + 0.5 * x.col(2).array()).matrix(), 2.0 * x.col(1), 0.5 * x.col(0);
  return gradient;
}

TEST(LinearRegression, RecoversAPolynomialWithItsGradient) {
  const Matrix points = RandomPoints(30, 3, 1);
  const LinearRegression regression = Built(points, Polynomial(points), Terms(3, 2, true));
  const Matrix query = RandomPoints(700, 3, 2, -3.0, 3.0);  // more than one block, beyond the sample
  EXPECT_TRUE(MatrixNear(regression.Approximate(query), Polynomial(query), 1e-11));
  EXPECT_TRUE(MatrixNear(regression.Approximate(), Polynomial(points), 1e-12));
  EXPECT_TRUE(MatrixNear(regression.ApproximateGradients(query), PolynomialGradient(query), 1e-8));
  EXPECT_EQ(regression.GetFunctionStr({L"a", L"b"}).substr(0, 9), L"3 -2*X1 +");
}

TEST(LinearRegression, LeaveOneOutAgreesWithRefits) {
  const Matrix points = RandomPoints(25, 2, 1);
  const Vector values = points.col(0) + Noise(25, 0.2, 2);
  const Vector weights = RandomPoints(25, 1, 3, 0.2, 2.0);
  Subsets each;
  for (std::uint64_t i = 0; i < 25; ++i) each.push_back(i);
  for (const Vector& w : {Vector(), weights}) {
    const LinearRegression regression = Built(points, values, Terms(2, 2, true), w);
    EXPECT_TRUE(MatrixNear(regression.ApproximateLeaveOneOut(), regression.ApproximateCrossValidation(each), 1e-11));
    EXPECT_TRUE(MatrixNear(regression.ApproximateCrossValidation({}), regression.ApproximateLeaveOneOut(), 0.0));
  }
}

TEST(LinearRegression, CrossValidatesOnTheScaleOfTheFit) {
  const Matrix points = RandomPoints(30, 1, 1);
  const Vector values = (points.col(0).array() + Noise(30, 0.1, 2).array()).exp();
  LinearRegressionSettings settings = Terms(1, 1, false, eTransformation::kBoxCox);
  settings.SetValueTransformationParameter({0.0, 0.1, 10.1});
  const LinearRegression regression = Built(points, values, settings);
  Subsets subsets;
  for (std::uint64_t i = 0; i < 30; ++i) subsets.push_back(i % 3);

  const Vector z = regression.GetTransValue()->ScaleForward(values);
  const LinearRegression transformed = Built(points, z, Terms(1, 1, false));
  const Vector expected = regression.GetTransValue()->ScaleBackward(transformed.ApproximateCrossValidation(subsets));
  EXPECT_TRUE(MatrixNear(regression.ApproximateCrossValidation(subsets), expected, 1e-10));
}

double SumOfSquares(const Vector& difference) {
  return difference.array().isNaN().select(0.0, difference.array()).matrix().squaredNorm();
}

/// The best candidate by a full refit for each of the 42 transformations. For the exponent 1 a range and its mirror
/// give the same model but for rounding: the first stays.
std::vector<double> BruteForceBoxCox(const Matrix& points, const Vector& values, LinearRegressionSettings settings) {
  std::vector<double> best;
  double best_sse = std::numeric_limits<double>::max();
  settings.SetValueTransformation(eTransformation::kBoxCox);
  for (const auto& range : {std::pair(0.1, 10.1), std::pair(10.1, 0.1)}) {
    for (const int t : {-1, -2, -3, -4, -5, -6, -8, -10, -13, -20, 0, 20, 13, 10, 8, 6, 5, 4, 3, 2, 1}) {
      const std::vector<double> parameters = {t == 0 ? 0.0 : 1.0 / t, range.first, range.second};
      settings.SetValueTransformationParameter(parameters);
      const double sse = SumOfSquares(Built(points, values, settings).Approximate() - values);
      if (!(sse < best_sse * (1.0 - 1e-9))) continue;
      best = parameters;
      best_sse = sse;
    }
  }
  return best;
}

TEST(LinearRegressionBoxCox, FindsTheCandidateOfABruteForceSearch) {
  const Matrix points = RandomPoints(50, 2, 1);
  const Vector line = points.col(0) + 0.5 * points.col(1) + Noise(50, 0.02, 2);
  const std::pair<const char*, Vector> cases[] = {
      {"square root", (line.array() + 5.0).square()},
      {"logarithm", line.array().exp()},
      {"mirrored logarithm", -line.array().exp()},
      {"reciprocal", 1.0 / (line.array() + 6.0)},
      {"cube", line.array().cube()},
  };
  for (const auto& [name, values] : cases) {
    SCOPED_TRACE(name);
    LinearRegression regression(points, values);
    regression.Initialize(Terms(2, 1, false));
    ASSERT_TRUE(regression.BuildOptimalBoxCox());
    const std::vector<double> expected = BruteForceBoxCox(points, values, Terms(2, 1, false));
    LinearRegressionSettings best = Terms(2, 1, false, eTransformation::kBoxCox);
    best.SetValueTransformationParameter(expected);
    EXPECT_EQ(regression.GetSettingsBase().GetValueTransformationParameter()[0], expected[0]);
    EXPECT_TRUE(MatrixNear(regression.Approximate(), Built(points, values, best).Approximate(), 1e-9));
    EXPECT_EQ(regression.GetSettingsBase().GetState(), eState::kOptimal);
    EXPECT_GT(statistics::R2(values, regression.Approximate()), 0.98);
  }
}

TEST(LinearRegressionBoxCox, FallsBackWithoutSamplesToSpare) {
  const Matrix points = RandomPoints(4, 3, 1);
  LinearRegression regression(points, Noise(4, 1.0, 2));
  regression.Initialize(Terms(3, 1, false));
  EXPECT_TRUE(regression.BuildOptimalBoxCox());
  EXPECT_EQ(regression.GetSettingsBase().GetValueTransformationParameter(), (std::vector<double>{1.0, 0.1, 10.1}));
  EXPECT_EQ(regression.GetSettingsBase().GetValueTransformation(), eTransformation::kBoxCox);
}

TEST(LinearRegression, SettingsOfABuildRebuildIt) {
  const Matrix points = RandomPoints(40, 2, 1);
  const Vector values = (points.col(0) + Noise(40, 0.05, 2)).array().exp();
  LinearRegressionSettings settings = Terms(2, 1, false, eTransformation::kBoxCox);
  settings.SetLimitTransformation(eTransformation::kLimits);
  settings.SetLimitTransformationParameter({0.5, 4.0});
  LinearRegression regression(points, values);
  regression.Initialize(settings);
  ASSERT_TRUE(regression.BuildOptimal());
  const LinearRegression rebuilt = Built(points, values, regression.GetSettingsBase());
  EXPECT_TRUE(MatrixNear(rebuilt.Approximate(), regression.Approximate(), 0.0));
  EXPECT_EQ(rebuilt.Approximate().minCoeff(), 0.5);
  EXPECT_EQ(rebuilt.Approximate().maxCoeff(), 4.0);
}

TEST(LinearRegression, OneObjectServesManyCandidates) {
  const Matrix points = RandomPoints(40, 3, 1);
  const Vector values = Polynomial(points) + Noise(40, 0.1, 2);
  LinearRegressionSettings unscaled = Terms(3, 1, false);
  unscaled.SetCoordTransformation(eTransformation::kNone);
  const LinearRegressionSettings candidates[] = {Terms(3, 1, false), Terms(3, 1, false, eTransformation::kBoxCox),
                                                 unscaled, Terms(3, 2, true), Terms(3, 1, false)};
  LinearRegression shared(points, values);
  for (const LinearRegressionSettings& candidate : candidates) {
    LinearRegression fresh(points, values);
    fresh.Initialize(candidate);
    shared.Initialize(candidate);
    EXPECT_EQ(fresh.CheckBeforeBuild(), shared.CheckBeforeBuild());
    ASSERT_TRUE(fresh.BuildOptimal());
    ASSERT_TRUE(shared.BuildOptimal());
    EXPECT_TRUE(shared == fresh);
    EXPECT_TRUE(MatrixNear(shared.Approximate(points), fresh.Approximate(points), 0.0));
  }
}

TEST(LinearRegression, RefusesWhatCannotBeFitted) {
  const Matrix points = RandomPoints(5, 3, 1);
  LinearRegression regression(points, Noise(5, 1.0, 2));
  regression.Initialize(Terms(3, 2, true));
  EXPECT_FALSE(regression.Build());
  EXPECT_FALSE(regression.CheckBeforeBuild());
  EXPECT_THROW(regression.Approximate(points), utils::runtime_error);
  EXPECT_THROW(regression.ApproximateLeaveOneOut(), utils::runtime_error);
  EXPECT_THROW(regression.BuildErrors(), std::logic_error);
  regression.Initialize(Terms(3, 1, false));
  ASSERT_TRUE(regression.Build());
  EXPECT_THROW(regression.Approximate(points.leftCols(2)), utils::runtime_error);
  EXPECT_THROW(regression.ApproximateCrossValidation({0, 1}), utils::runtime_error);
  EXPECT_THROW(regression.Initialize(Terms(2, 1, false)), utils::runtime_error);
}

TEST(LinearRegression, IsTheMeanWithoutTerms) {
  const Matrix points = RandomPoints(6, 2, 1);
  const Vector values = Noise(6, 1.0, 2);
  LinearRegressionSettings settings = Terms(2, 1, false);
  settings.SetVariableSelection(Selection(2));
  LinearRegression regression = Built(points, values, settings);
  EXPECT_TRUE(MatrixNear(regression.Approximate(points), Vector::Constant(6, values.mean()), 1e-14));
  ASSERT_TRUE(regression.BuildErrors());
  const Matrix errors = regression.ApproximateErrors(points.topRows(1));
  const Vector residuals = values - regression.ApproximateLeaveOneOut();
  EXPECT_NEAR(errors(0, 1), std::sqrt(residuals.squaredNorm() / 6.0), 1e-12);
  EXPECT_EQ(errors(0, 4), 1.0);
  EXPECT_TRUE(MatrixNear(regression.ApproximateGradients(points), Matrix::Zero(6, 2), 0.0));
}

TEST(LinearRegression, WritesItsFunctionInOriginalUnits) {
  const Matrix points = RandomPoints(20, 2, 1);
  const Vector values = 1.5 + 2.0 * points.col(0).array() - 0.25 * points.col(1).array().square() +
                        points.col(0).array() * points.col(1).array();
  LinearRegressionSettings settings = Terms(2, 2, true);
  settings.SetMainTermSelection(Selection(std::string("1001")));
  settings.SetInputNames({L"p", L"q"});
  const LinearRegression regression = Built(points, values, settings);
  EXPECT_EQ(regression.GetFunctionStr({L"u", L"v"}), L"1.5 + 2*u -0.25*v^2 + 1*u*v");
  EXPECT_EQ(regression.GetFunctionStr({}), L"1.5 + 2*p -0.25*q^2 + 1*p*q");
  EXPECT_EQ(regression.Str().substr(0, 25), L"Linear Regression | 2 | (");
  settings.SetValueTransformation(eTransformation::kBoxCox);
  settings.SetValueTransformationParameter({0.5, 0.1, 10.1});
  EXPECT_EQ(Built(points, values, settings).GetFunctionStr({}),
            L"No model function for Box-Cox transformation available");
}

}  // namespace
}  // namespace kestrel::math::metamodel
