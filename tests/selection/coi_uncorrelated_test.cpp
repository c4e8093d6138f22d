#include "selection/coi_uncorrelated.h"

#include <gtest/gtest.h>

#include "statistics/basic_statistics.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::statistics {
namespace {

using metamodel::LinearRegression;
using metamodel::LinearRegressionSettings;
using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;

constexpr double kRefitTolerance = 1e-10;

// All values positive, so that they can be transformed.
Vector CurvedResponse(const Matrix& x) {
  const Vector exponent = x.col(0) + 0.5 * x.col(1).cwiseAbs2() + 0.3 * x.col(0).cwiseProduct(x.col(2));
  return exponent.array().exp().matrix() + Noise(x.rows(), 0.01, 5).cwiseAbs();
}

double Quality(const LinearRegression& regression, RSquared::eType type) {
  const Vector& y = regression.GetResponseValues();
  switch (type) {
    case RSquared::kR2: return R2(y, regression.Approximate());
    case RSquared::kR2adj: return R2adj(y, regression.Approximate(), regression.GetNumberCoefficients());
    default: return R2(y, regression.ApproximateLeaveOneOut());
  }
}

// The definition, with a new regression for each input.
Vector ByPlainRefits(const LinearRegression& full, RSquared::eType type) {
  Vector importance(full.GetNumberInputs());
  for (Index j = 0; j < importance.size(); ++j) {
    LinearRegressionSettings settings = full.GetSettingsBase();
    settings.DeselectInputMainTerms(static_cast<std::uint64_t>(j));
    settings.DeselectInputInteractionTerms(static_cast<std::uint64_t>(j));
    LinearRegression reduced(full.GetSupportPoints(), full.GetResponseValues());
    reduced.Initialize(settings);
    EXPECT_TRUE(reduced.Build());
    importance(j) = Quality(full, type) - Quality(reduced, type);
  }
  return importance;
}

std::string ErrorOf(const LinearRegression& regression, int type, bool check_rank = false) {
  try {
    CoiUncorrelated(regression, static_cast<RSquared::eType>(type), check_rank);
  } catch (const std::logic_error& error) {
    return error.what();
  }
  return "";
}

TEST(CoiUncorrelated, IsTheLossOfAPlainRefitWithoutTheInput) {
  const Matrix x = RandomPoints(60, 4, 3);
  const Vector y = CurvedResponse(x);
  LinearRegressionSettings settings(4);
  settings.SetOrder(2);
  settings.SetVariableSelection(metamodel::Selection(std::string("0111")));
  for (const bool box_cox : {false, true}) {
    LinearRegression regression(x, y);
    regression.Initialize(settings);
    ASSERT_TRUE(box_cox ? regression.BuildOptimalBoxCox() : regression.Build());
    for (const auto type : {RSquared::kR2, RSquared::kR2adj, RSquared::kR2LeaveOneOut}) {
      SCOPED_TRACE(::testing::Message() << "type " << type << " box-cox " << box_cox);
      const Vector importance = CoiUncorrelated(regression, type);
      EXPECT_TRUE(MatrixNear(importance, ByPlainRefits(regression, type), kRefitTolerance));
      EXPECT_GT(importance.head(3).minCoeff(), 0.01);
      EXPECT_EQ(importance(3), 0.0);  // it has no terms
    }
  }
}

TEST(CoiUncorrelated, LeavesTheRegressionAsItWas) {
  const Matrix x = RandomPoints(30, 2, 3);
  const Vector y = x.col(0) + Noise(30, 0.1, 4);
  LinearRegression regression(x, y);
  regression.Initialize(LinearRegressionSettings(2));
  ASSERT_TRUE(regression.Build());
  const std::unique_ptr<metamodel::SurrogateBase> before = regression.Clone();
  CoiUncorrelated(regression, RSquared::kR2adj);
  EXPECT_TRUE(regression == *before);
}

TEST(CoiUncorrelated, IsZeroForAConstantResponse) {
  LinearRegression regression(RandomPoints(10, 3, 1), Vector::Constant(10, 4.0));
  regression.Initialize(LinearRegressionSettings(3));
  ASSERT_TRUE(regression.Build());
  EXPECT_TRUE(MatrixNear(CoiUncorrelated(regression, RSquared::kR2), Vector::Zero(3), 0.0));
}

TEST(CoiUncorrelated, RefusesUnknownTypesAndModelsThatCannotBeBuilt) {
  Matrix x = RandomPoints(12, 3, 1);
  x.col(2) = x.col(1);
  const Vector y = x.col(0) + Noise(12, 0.1, 2);
  LinearRegression regression(x, y);
  regression.Initialize(LinearRegressionSettings(3));
  ASSERT_TRUE(regression.Build());
  EXPECT_EQ(ErrorOf(regression, 3), "COI using cross validation not implemented");
  EXPECT_EQ(ErrorOf(regression, 4), "Invalid R square type");
  EXPECT_EQ(ErrorOf(regression, -1), "Invalid R square type");
  EXPECT_EQ(ErrorOf(regression, RSquared::kR2), "");
  EXPECT_EQ(ErrorOf(regression, RSquared::kR2, true), "CoiUncorrelated: Level matrix of regression has low rank");

  LinearRegression too_large(x.topRows(3), y.head(3));
  too_large.Initialize(LinearRegressionSettings(3));
  EXPECT_EQ(ErrorOf(too_large, RSquared::kR2), "CoiUncorrelated: Failed in building full regression model");
}

}  // namespace
}  // namespace kestrel::math::statistics
