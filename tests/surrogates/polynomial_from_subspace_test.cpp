#include "surrogates/polynomial_from_subspace.h"

#include <gtest/gtest.h>

#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::Noise;
using testing::RandomPoints;

TEST(BestPolynomialFromSubspace, TakesTheFewestCoefficientsThatServe) {
  const Matrix points = RandomPoints(80, 3, 1);
  const auto x = [&](Index j) { return points.col(j).array(); };
  struct Case {
    const char* name;
    Vector values;
    std::uint64_t coefficients;
  };
  const Case cases[] = {
      {"linear", x(0) + 2.0 * x(1), 4},
      {"quadratic", x(0).square() - 3.0 * x(1).square() + x(2), 7},
      {"interaction", x(0) * x(1) - x(1) * x(2), 7},
      {"both", x(0) * x(1) + 2.0 * x(2).square(), 10},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Vector values = c.values + Noise(80, 0.02, 2);
    const auto best =
        BestPolynomialFromSubspace(IndexVector::Constant(3, 3), points, values, LinearRegressionSettings(3), 2.0);
    EXPECT_TRUE(best->CheckAfterBuild());
    EXPECT_EQ(best->GetNumberCoefficients(), c.coefficients);
  }
}

TEST(BestPolynomialFromSubspace, TriesOnlyWhatTheSamplesAllow) {
  const Matrix points = RandomPoints(9, 3, 1);
  const Vector values = points.col(0).array().square() + points.col(1).array() * points.col(2).array();
  const auto linear =
      BestPolynomialFromSubspace(IndexVector::Constant(3, 3), points, values, LinearRegressionSettings(3), 2.0);
  EXPECT_EQ(linear->GetNumberCoefficients(), 4U);
  const auto none =
      BestPolynomialFromSubspace(IndexVector::Constant(3, 3), points, values, LinearRegressionSettings(3), 3.0);
  EXPECT_FALSE(none->CheckAfterBuild());
  EXPECT_EQ(none->GetNumberCoefficients(), 4U);
}

TEST(BestPolynomialFromSubspace, TriesTheSubspacesOwnTerms) {
  const Matrix points = RandomPoints(60, 3, 1);
  const Vector values = points.col(0).array().square() + points.col(1).array();
  const IndexVector subspace = (IndexVector(3) << 3, 1, 0).finished();
  const auto best = BestPolynomialFromSubspace(subspace, points, values, LinearRegressionSettings(3), 2.0);
  EXPECT_EQ(best->GetNumberCoefficients(), 4U);
  EXPECT_EQ(best->GetVariableSelection(), Selection(std::string("011")));
  const auto mean = BestPolynomialFromSubspace(IndexVector::Zero(3), points, values, LinearRegressionSettings(3), 2.0);
  EXPECT_EQ(mean->GetNumberCoefficients(), 1U);
}

}  // namespace
}  // namespace kestrel::math::metamodel
