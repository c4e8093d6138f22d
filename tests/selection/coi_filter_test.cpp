#include "selection/coi_filter.h"

#include <gtest/gtest.h>

#include <cmath>

#include "selection/coi_uncorrelated.h"
#include "selection/search_samples.h"
#include "surrogates/polynomial_from_subspace.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::MakeContext;
using testing::Noise;
using testing::RandomPoints;

TEST(LimitsUpTo, AddsUpStepsWithinTheLimit) {
  const double sum = 0.1 + 0.1 + 0.1;  // 0.30000000000000004
  EXPECT_EQ(LimitsUpTo(0.3, 0.1), (std::vector<double>{0.1, 0.2}));
  EXPECT_EQ(LimitsUpTo(sum, 0.1), (std::vector<double>{0.1, 0.2, sum}));
  EXPECT_EQ(LimitsUpTo(0.05, 0.01).size(), 5U);
  EXPECT_TRUE(LimitsUpTo(0.05, 0.06).empty());
  EXPECT_TRUE(LimitsUpTo(0.05, -1.0).empty());
  EXPECT_EQ(LimitsUpTo(HUGE_VAL, 0.01).size(), kMaxFilterSteps);
}

class CoIFilterTest : public ::testing::Test {
 protected:
  CoIFilterTest() {
    const Matrix x = RandomPoints(50, 4, 1, -1.0, 1.0);
    const Vector y = x * Eigen::Vector4d(1.0, 0.35, 0.25, 0.0) + Noise(50, 0.1, 2);
    context_ = MakeContext(x, y, log_);
    context_.settings.SetMaxCoI(0.3);
    context_.settings.SetStepCoI(0.02);
  }

  const testing::WideLog log_ = std::make_shared<utils::log::VectorLog>();
  SearchContext context_;
  SubspaceCollector collector_{4};
  const IndexVector all_ = IndexVector::Constant(4, 3);
};

TEST_F(CoIFilterTest, StoresWhatEachLimitLeaves) {
  context_.importance(3) = 2;
  FilterLimits limits;
  limits.significance = 0.97;
  CoIFilter(context_, context_.inputs, context_.response, collector_).Apply(all_, limits);

  const auto polynomial =
      BestPolynomialFromSubspace(all_, context_.inputs, context_.response, LinearRegressionSettings(4), 2.0);
  const Vector importance = statistics::CoiUncorrelated(*polynomial, statistics::RSquared::kR2adj);
  ASSERT_GT(importance(0), 0.3);
  ASSERT_GT(importance(1), importance(2));
  const IndexMatrix expected = (IndexMatrix(4, 3) << 3, 3, 3, 3, 3, 0, 3, 0, 0, 3, 3, 3).finished();
  EXPECT_EQ(collector_.SubspaceMatrix(), expected);
  const Matrix found = collector_.LimitMatrix();
  EXPECT_EQ(found(0, 2), 0.97);
  EXPECT_GT(found(4, 2), 0.9);
  EXPECT_EQ(found(5, 0), 0.02);
  EXPECT_GT(found(5, 1), importance(2));
  EXPECT_LE(found(5, 1), importance(2) + 0.02);
  EXPECT_GT(found(5, 2), importance(1));
}

TEST_F(CoIFilterTest, MayStoreTheEmptySubspace) {
  context_.inputs.col(1) = context_.inputs.col(0) + Noise(50, 0.02, 3);
  context_.response = context_.inputs.col(0) + Noise(50, 0.1, 4);
  const IndexVector replaceable = (IndexVector(4) << 3, 3, 0, 0).finished();  // each of the two does without the other
  CoIFilter(context_, context_.inputs, context_.response, collector_).Apply(replaceable, {});
  EXPECT_EQ(collector_.SubspaceMatrix(), IndexVector::Zero(4));
}

TEST_F(CoIFilterTest, SkipsPoorPolynomialsAndSamplesThatAreTooSmall) {
  context_.settings.SetMaxCoI(0.999);
  CoIFilter(context_, context_.inputs, context_.response, collector_).Apply(all_, {});
  EXPECT_EQ(collector_.Size(), 0);
  EXPECT_EQ(CountLines(log_, L" R2adj "), 1);

  context_.settings.SetMaxCoI(0.3);
  context_.settings.SetCoeffFactorPolynomial(11.0);  // 50 samples are too few for 5 coefficients
  CoIFilter(context_, context_.inputs, context_.response, collector_).Apply(all_, {});
  EXPECT_EQ(collector_.Size(), 0);
  EXPECT_EQ(CountLines(log_, L" R2adj "), 1);
}

}  // namespace
}  // namespace kestrel::math::metamodel
