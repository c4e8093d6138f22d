#include "doe/sampled_points.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <utility>

#include "support/matrix_compare.h"

namespace kestrel::math::doe {
namespace {

using testing::MatrixNear;

// The centred L2 discrepancy of points in [0, 1]^n (Hickernell 1998), squared.
double CentredDiscrepancy(const Matrix& points) {
  const Matrix centred = points * 0.5;  // u - 1/2 of u = (x + 1) / 2
  const auto count = static_cast<double>(points.rows());
  double single = 0.0;
  double pairs = 0.0;
  for (const auto& a : centred.rowwise()) {
    single += (1.0 + 0.5 * a.array().abs() - 0.5 * a.array().square()).prod();
    for (const auto& b : centred.rowwise()) {
      pairs += (1.0 + 0.5 * a.array().abs() + 0.5 * b.array().abs() - 0.5 * (a - b).array().abs()).prod();
    }
  }
  return std::pow(13.0 / 12.0, points.cols()) - 2.0 / count * single + pairs / (count * count);
}

TEST(SobolSequence, FillsEachElementaryIntervalOfTwoInputsOnce) {
  const Matrix points = SobolSequence(64, 2);
  for (int k = 0; k <= 6; ++k) {  // 2^k columns times 2^(6 - k) rows of cells
    std::set<std::pair<Index, Index>> cells;
    for (const auto& point : points.rowwise()) {
      cells.emplace(static_cast<Index>((point(0) + 1.0) * 0.5 * std::ldexp(1.0, k)),
                    static_cast<Index>((point(1) + 1.0) * 0.5 * std::ldexp(1.0, 6 - k)));
    }
    EXPECT_EQ(cells.size(), 64U) << k;
  }
}

TEST(SobolSequence, IsMoreUniformThanRandomPoints) {
  random::Generator generator(5);
  for (const std::uint64_t inputs : {2U, 6U, 12U}) {
    const double random = CentredDiscrepancy(PlainMonteCarlo(256, inputs, generator));
    EXPECT_LT(CentredDiscrepancy(SobolSequence(256, inputs)), 0.5 * random) << inputs;
  }
}

TEST(SobolSequence, GoesOnWithWhatItHas) {
  EXPECT_TRUE(MatrixNear(SobolSequence(100, 30).topRows(37), SobolSequence(37, 30), 0.0));
  const Matrix many = SobolSequence(1024, 3667);
  EXPECT_TRUE(MatrixNear(many.colwise().mean(), Matrix::Constant(1, 3667, -1.0 / 1024.0), 1e-12));
}

TEST(PlainMonteCarlo, IsUniformAndIndependent) {
  random::Generator generator(6);
  const Matrix points = PlainMonteCarlo(20000, 3, generator);
  EXPECT_TRUE(MatrixNear(points.colwise().mean(), Matrix::Zero(1, 3), 0.02));
  EXPECT_TRUE(MatrixNear(points.transpose() * points / 20000.0, Matrix::Identity(3, 3) / 3.0, 0.02));
  EXPECT_LE(points.cwiseAbs().maxCoeff(), 1.0);
}

}  // namespace
}  // namespace kestrel::math::doe
