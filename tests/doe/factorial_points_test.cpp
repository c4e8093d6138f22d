#include "doe/factorial_points.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "support/matrix_compare.h"

namespace kestrel::math::doe {
namespace {

using testing::MatrixNear;

TEST(FullFactorial, HasOrthogonalBalancedColumns) {
  for (const std::uint64_t levels : {2U, 3U, 5U}) {
    const Matrix points = FullFactorial(4, levels);
    ASSERT_EQ(points.rows(), static_cast<Index>(std::pow(levels, 4)));
    EXPECT_TRUE(MatrixNear(points.colwise().sum(), Matrix::Zero(1, 4), 1e-12));
    const Matrix products = points.transpose() * points;
    EXPECT_TRUE(MatrixNear(products, Matrix(products.diagonal().asDiagonal()), 1e-12));
    EXPECT_EQ(points.cwiseAbs().maxCoeff(), 1.0);
  }
}

TEST(FullCombinatorial, HasEachCombinationOfLevelsOnce) {
  const std::vector<std::vector<double>> levels = {{-1, 1}, {0}, {-1, 0, 1}, {-1, -1.0 / 3.0, 1.0 / 3.0, 1}};
  const Matrix points = FullCombinatorial({2, 1, 3, 4});
  ASSERT_EQ(points.rows(), 24);
  std::set<std::vector<double>> seen;
  for (const auto& row : points.rowwise()) seen.emplace(row.begin(), row.end());
  std::set<std::vector<double>> expected;
  for (const double a : levels[0]) {
    for (const double c : levels[2]) {
      for (const double d : levels[3]) expected.insert({a, 0.0, c, d});
    }
  }
  EXPECT_EQ(seen, expected);
}

}  // namespace
}  // namespace kestrel::math::doe
