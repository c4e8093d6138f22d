#include "selection/input_dependence.h"

#include <gtest/gtest.h>

#include <vector>

#include "selection/search_samples.h"
#include "statistics/basic_statistics.h"
#include "surrogates/linear_regression.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::Noise;
using testing::RandomPoints;

constexpr double kRefitTolerance = 1e-10;

// Five inputs; the last three: a sum of the first two with noise, the first with little noise, a constant.
Matrix RelatedInputs() {
  Matrix x(40, 5);
  x.leftCols(2) = RandomPoints(40, 2, 1);
  x.col(2) = x.col(0) - x.col(1) + Noise(40, 0.3, 2);
  x.col(3) = x.col(0) + Noise(40, 0.01, 3);
  x.col(4).setConstant(7.0);
  return x;
}

Selection Selected(const std::vector<std::size_t>& inputs) { return testing::Inputs(5, inputs); }

TEST(InputDependence, IsR2OfARegressionOnTheSelectedInputs) {
  const Matrix x = RelatedInputs();
  InputDependence dependence(x, 1.0);
  for (const Selection& selected : {Selected({0}), Selected({0, 1}), Selected({2, 3}), Selected({0, 1, 4})}) {
    LinearRegressionSettings settings(5);
    settings.SetVariableSelection(selected);
    for (Index j = 0; j < 4; ++j) {
      LinearRegression regression(x, x.col(j));
      regression.Initialize(settings);
      ASSERT_TRUE(regression.Build());
      const double expected = statistics::R2(x.col(j), regression.Approximate());
      EXPECT_NEAR(dependence.ExplainedBy(selected, j), expected, kRefitTolerance) << selected << " input " << j;
    }
    EXPECT_EQ(dependence.ExplainedBy(selected, 4), 1.0);
  }
}

TEST(InputDependence, NothingSelectedExplainsNothingButAConstant) {
  const Matrix x = RelatedInputs();
  InputDependence dependence(x, 0.49);
  EXPECT_NEAR(dependence.ExplainedBy(Selection(5), 1), 0.0, kRefitTolerance);
  EXPECT_EQ(dependence.ExplainedBy(Selection(5), 4), 1.0);
}

TEST(InputDependence, OneCloseInputIsExplanationEnough) {
  const Matrix x = RelatedInputs();
  const double correlation = statistics::CalcLinCC(x.col(0), x.col(3), false, false);
  InputDependence dependence(x, 0.9);
  EXPECT_DOUBLE_EQ(dependence.ExplainedBy(Selected({0, 1}), 3), correlation * correlation);
  InputDependence tolerant(x, 0.9999);  // then all selected inputs count, and they explain more
  EXPECT_GT(tolerant.ExplainedBy(Selected({0, 1}), 3), correlation * correlation);
}

}  // namespace
}  // namespace kestrel::math::metamodel
