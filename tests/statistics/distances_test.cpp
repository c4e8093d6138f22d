#include "statistics/distances.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/dynamic_bitset.hpp>
#include <cmath>

#include "statistics/sample_data.h"
#include "support/matrix_compare.h"

namespace kestrel::math::statistics {
namespace {

using testing::kInf;
using testing::kNaN;
using testing::MatrixNear;
using testing::Numbers;

constexpr double kRounding = 1e-13;

TEST(DistanceMatrix, IsExactForNearAndCoincidentRows) {
  Matrix m(3, 2);
  m << 1000, 1e6, 1000, 1e6, 1000 + 0x1p-30, 1e6 + 2.0;
  Matrix expected(3, 3);
  expected << 0, 0, 4, 0, 0, 4, 4, 4, 0;
  EXPECT_TRUE(MatrixNear(CalcDistanceMatrix(m), expected, 0.0));
  EXPECT_EQ(CalcDistanceMatrix(m.leftCols(1))(0, 2), 0x1p-60);
  EXPECT_EQ(testing::ReportOf([] { CalcDistanceMatrix(Matrix(4, 0)); }), L"Empty data matrix");
}

TEST(DistancesPerDimension, AreSquaredGaps) {
  Matrix m(4, 4);
  m << 3, 5, 0, kNaN,    //
      1, 5, 1, 2,        //
      7, 5, 0.5e-12, 6,  //
      1, 5, 1 + 0.5e-12, 3;
  EXPECT_TRUE(MatrixNear(CalcMinDistancesPerDimension(m), Numbers({4, kInf, std::pow(1 - 0.5e-12, 2), 1}), kRounding));
  EXPECT_TRUE(MatrixNear(CalcMaxMinDistancesPerDimension(m), Numbers({16, 0, 1, 9}), 1e-11));
}

TEST(Radii, AreTheDistancesToTheNearestRows) {
  const Matrix m = testing::UniformMatrix(12, 3, 5);
  for (const std::uint64_t k : {0U, 1U, 2U, 7U, 12U, 99U}) {
    SCOPED_TRACE(k);
    Vector expected(12);
    for (Index i = 0; i < 12; ++i) {
      std::vector<double> distances;
      for (Index j = 0; j < 12; ++j) distances.push_back((m.row(i) - m.row(j)).norm());
      std::sort(distances.begin(), distances.end());
      expected(i) = distances[std::clamp<std::uint64_t>(k, 1, 12) - 1];
    }
    EXPECT_TRUE(MatrixNear(CalcRadii(m, k), expected, kRounding));
  }
}

TEST(Density, SumsTheInfluenceOfTheSupport) {
  const Matrix points = testing::UniformMatrix(5, 3, 1);
  const Matrix support = testing::UniformMatrix(8, 3, 2);
  const boost::dynamic_bitset<> selection(3, 0b101);
  for (const double radius : {0.4, 0.01}) {  // the second is below the floor of sqrt(2) / 8
    SCOPED_TRACE(radius);
    const double r2 = std::max(radius * radius, 2.0 / 64.0);
    Vector expected = Vector::Zero(5);
    for (Index q = 0; q < 5; ++q) {
      for (Index k = 0; k < 8; ++k) {
        const double s = std::pow(points(q, 0) - support(k, 0), 2) + std::pow(points(q, 2) - support(k, 2), 2);
        expected(q) += std::exp(-s / r2 / 0.21714724095162594);
      }
    }
    EXPECT_TRUE(MatrixNear(CalcDensity(points, support, selection, radius), expected, kRounding));
  }
}

}  // namespace
}  // namespace kestrel::math::statistics
