#include "statistics/significance_filter.h"

#include <gtest/gtest.h>

#include <boost/math/distributions/normal.hpp>
#include <cmath>
#include <string>

#include "statistics/sample_data.h"

namespace kestrel::math::statistics {
namespace {

using testing::kNaN;
using testing::Numbers;

// Input 0 first, unlike the bit set's own text.
std::string Bits(const boost::dynamic_bitset<>& bits) {
  std::string text;
  for (std::size_t j = 0; j < bits.size(); ++j) text += bits[j] ? '1' : '0';
  return text;
}

TEST(NoiseLevel, ComparesTheCorrelationsWithTheUnitMatrix) {
  Matrix linear(3, 3);
  linear << 1, 0.1, -0.2, 0.1, 1, 0.4, -0.2, 0.4, 1;
  Matrix quadratic(3, 3);
  quadratic << 1, 0.3, 0.1, 0.5, 1, 0.6, 0.2, 0.4, 1;
  EXPECT_DOUBLE_EQ(StdevCorrLin(linear), std::sqrt(2.0 * 0.21 / 5.0));
  EXPECT_DOUBLE_EQ(StdevCorrLin(linear, linear), 0.0);
  EXPECT_DOUBLE_EQ(StdevCorrQuadFull(quadratic), std::sqrt(0.91 / 5.0));
  // What exceeds the linear part: 0.2 and 0.4 for the pair (0, 1), nothing, then 0.2 for the pair (1, 2).
  EXPECT_DOUBLE_EQ(StdevCorrQuadPure(quadratic, linear), std::sqrt((0.04 + 0.16 + 0.04) / 5.0));
  EXPECT_DOUBLE_EQ(StdevCorrQuadPure(quadratic, linear, quadratic), 0.0);
}

TEST(Quantiles, AreThoseOfTheNormalDistribution) {
  for (const double p : {1e-9, 0.05, 0.5, 0.9, 0.99, 0.999999}) {
    const QuantileLimits limits = getQuantiles(2.0, 3.0, 0.5, p);
    const double z = boost::math::quantile(boost::math::normal(), p);
    EXPECT_NEAR(limits.linear, 2.0 * z, 1e-14);
    EXPECT_NEAR(limits.quadratic, 3.0 * z, 1e-14);
    EXPECT_NEAR(limits.pure_quadratic, 0.5 * z, 1e-14);
  }
  EXPECT_EQ(getQuantiles(2e-16, 1.0, 1.0, 0.99).linear, 0.0);
  for (const double p : {0.0, 1.0, -1e-17, 1.5, kNaN}) {
    EXPECT_EQ(testing::ReportOf([p] { getQuantiles(1.0, 1.0, 1.0, p); }),
              L"confidence level has to be greater than zero and smaller than one");
  }
}

TEST(SignificanceFilter, KeepsWhatExceedsTheLimit) {
  const Vector rho = Numbers({0.3, -0.5, 0.2, kNaN, 1e-9});
  EXPECT_EQ(Bits(SigFilterLin(0.3, rho)), "01000");
  EXPECT_EQ(Bits(SigFilterLin(0.0, rho)), "11101");
  Matrix M(2, 5);
  M << 0.3, 0.6, 0.2, 0.1, 0.3, 0.4, 0.1, 0.2, kNaN, 0.0;
  EXPECT_EQ(Bits(SigFilterQuadFull(0.2, M)), "11001");
  EXPECT_EQ(Bits(SigFilterQuadPure(0.09, rho, M)), "11001");
  EXPECT_EQ(Bits(SigFilterQuadPure(0.11, rho, M)), "00001");
}

TEST(CorrelationFilter, LiesBetweenSignificanceAndTheLargestEntry) {
  Matrix M(2, 4);
  M << 0.1, 0.9, 0.4, 0.2, 0.6, 0.3, 0.5, kNaN;
  EXPECT_EQ(Bits(CorrFilter(M, 0.1, 0.0)), "1111");
  EXPECT_EQ(Bits(CorrFilter(M, 0.1, 0.5)), "1100");
  EXPECT_EQ(Bits(CorrFilter(M, 0.1, 0.999)), "0100");
  EXPECT_EQ(Bits(CorrFilter(M, 0.1, 9.5 / 9.0)), "0000");
  EXPECT_EQ(Bits(CorrFilter(Matrix(2, 0), 0.1, 0.5)), "");
}

}  // namespace
}  // namespace kestrel::math::statistics
