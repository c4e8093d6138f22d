#include "selection/coi_uncorrelated.h"

#include <gtest/gtest.h>

#include "selection/polynomial_importance.h"
#include "statistics/basic_statistics.h"
#include "support/matrix_compare.h"
#include "support/raised_text.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::statistics {
namespace {

using metamodel::eTransformation;
using metamodel::LinearRegression;
using metamodel::LinearRegressionSettings;
using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;

constexpr double kRefitTolerance = 1e-10;

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

std::wstring ErrorOf(const LinearRegression& regression, int type, bool check_rank = false) {
  return testing::RaisedText([&] { CoiUncorrelated(regression, static_cast<RSquared::eType>(type), check_rank); });
}

TEST(CoiUncorrelated, IsTheLossOfAPlainRefitWithoutTheInput) {
  const Matrix inputs = RandomPoints(60, 4, 1, 0.0, 2.0);
  const Vector base = inputs.col(0) + inputs.col(1).cwiseProduct(inputs.col(2)) + Noise(60, 0.2, 2);
  Matrix dependent = inputs;
  dependent.col(2) = dependent.col(1) + 1e-6 * Noise(60, 1.0, 3);  // beyond the reach of the inverse
  const struct {
    const char* name;
    const Matrix& inputs;
    std::uint64_t order;
    const char* variables;  // the last input first
    eTransformation values;
    bool limits;
  } cases[] = {
      {"linear", inputs, 1, "1111", eTransformation::kNone, false},
      {"an input without terms", inputs, 2, "0111", eTransformation::kNone, false},
      {"transformed values", inputs, 1, "0111", eTransformation::kBoxCox, false},
      {"limited predictions", inputs, 2, "0111", eTransformation::kBoxCox, true},
      {"nearly dependent inputs", dependent, 1, "1111", eTransformation::kNone, false},
  };
  for (const auto& c : cases) {
    LinearRegressionSettings settings(4);
    settings.SetOrder(c.order);
    settings.SetVariableSelection(metamodel::Selection(std::string(c.variables)));
    settings.SetValueTransformation(c.values);
    if (c.limits) {
      settings.SetLimitTransformation(eTransformation::kLimits);
      settings.SetLimitTransformationParameter({2.0, 20.0});
    }
    LinearRegression regression(c.inputs, base.array().exp());
    regression.Initialize(settings);
    ASSERT_TRUE(regression.BuildOptimal({})) << c.name;
    for (const auto type : {RSquared::kR2, RSquared::kR2adj, RSquared::kR2LeaveOneOut}) {
      SCOPED_TRACE(::testing::Message() << c.name << " type " << type);
      const Vector expected = ByPlainRefits(regression, type);
      EXPECT_TRUE(MatrixNear(CoiUncorrelated(regression, type), expected, kRefitTolerance));
      if (type == RSquared::kR2adj) {
        EXPECT_TRUE(MatrixNear(metamodel::ImportanceByR2adj(regression), expected, kRefitTolerance));
      }
      EXPECT_GT(expected(0), 0.01);
    }
  }
}

TEST(CoiUncorrelated, RefusesUnknownTypesAndModelsThatCannotBeBuilt) {
  Matrix x = RandomPoints(12, 3, 1);
  x.col(2) = x.col(1);
  const Vector y = x.col(0) + Noise(12, 0.1, 2);
  LinearRegression regression(x, y);
  regression.Initialize(LinearRegressionSettings(3));
  ASSERT_TRUE(regression.Build());
  EXPECT_EQ(ErrorOf(regression, 3), L"COI using cross validation not implemented");
  EXPECT_EQ(ErrorOf(regression, 4), L"Invalid R square type");
  EXPECT_EQ(ErrorOf(regression, -1), L"Invalid R square type");
  EXPECT_EQ(ErrorOf(regression, RSquared::kR2), L"");
  EXPECT_EQ(ErrorOf(regression, RSquared::kR2, true), L"CoiUncorrelated: Level matrix of regression has low rank");

  LinearRegression too_large(x.topRows(3), y.head(3));
  too_large.Initialize(LinearRegressionSettings(3));
  EXPECT_EQ(ErrorOf(too_large, RSquared::kR2), L"CoiUncorrelated: Failed in building full regression model");
}

}  // namespace
}  // namespace kestrel::math::statistics
