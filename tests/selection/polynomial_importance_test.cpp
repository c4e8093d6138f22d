#include "selection/polynomial_importance.h"

#include <gtest/gtest.h>

#include "selection/coi_uncorrelated.h"
#include "selection/search_samples.h"
#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::Inputs;
using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;

TEST(ImportanceByR2adj, AgreesWithFitsWithoutEachInput) {
  Matrix inputs = RandomPoints(60, 4, 1, 0.0, 2.0);
  const Vector base = inputs.col(0) + inputs.col(1).cwiseProduct(inputs.col(2)) + Noise(60, 0.2, 2);
  Matrix dependent = inputs;
  dependent.col(2) = dependent.col(1) + 1e-6 * Noise(60, 1.0, 3);  // beyond the reach of the inverse
  const struct {
    const char* name;
    const Matrix& inputs;
    std::uint64_t order;
    bool interactions;
    std::vector<std::size_t> variables;
    eTransformation values;
    bool limits;
  } cases[] = {
      {"linear", inputs, 1, false, {0, 1, 2, 3}, eTransformation::kNone, false},
      {"quadratic with interactions", inputs, 2, true, {0, 1, 2, 3}, eTransformation::kNone, false},
      {"an input without terms", inputs, 2, true, {0, 1, 3}, eTransformation::kNone, false},
      {"transformed values", inputs, 1, true, {0, 1, 2}, eTransformation::kBoxCox, false},
      {"limited predictions", inputs, 2, false, {0, 1, 2}, eTransformation::kBoxCox, true},
      {"nearly dependent inputs", dependent, 1, true, {0, 1, 2, 3}, eTransformation::kNone, false},
  };
  for (const auto& c : cases) {
    LinearRegressionSettings settings(4);
    settings.SetOrder(c.order);
    settings.SetInteraction(c.interactions);
    settings.SetVariableSelection(Inputs(4, c.variables));
    settings.SetValueTransformation(c.values);
    if (c.limits) {
      settings.SetLimitTransformation(eTransformation::kLimits);
      settings.SetLimitTransformationParameter({2.0, 20.0});
    }
    LinearRegression regression(c.inputs, base.array().exp());
    regression.Initialize(settings);
    ASSERT_TRUE(regression.BuildOptimal({})) << c.name;
    const Vector expected = statistics::CoiUncorrelated(regression, statistics::RSquared::kR2adj);
    EXPECT_TRUE(MatrixNear(ImportanceByR2adj(regression), expected, 1e-10)) << c.name;
    EXPECT_GT(expected(0), 0.01) << c.name;
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
