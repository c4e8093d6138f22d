#include "surrogates/dense_operations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;
using testing::RandomPoints;

/// P P' and a diagonal, so that no operation is far from well conditioned.
Matrix PositiveDefinite(Index size) {
  const Matrix P = RandomPoints(size, 7, 3);
  return P * P.transpose() + Matrix::Identity(size, size);
}

TEST(DenseOperations, FactoriseAndInvertWithinALargerMatrix) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  for (const Index size : {1, 2, 32, 33, 64, 65, 129, 300}) {  // around the sizes of blocks
    SCOPED_TRACE(size);
    const Matrix A = PositiveDefinite(size);
    Matrix around = Matrix::Constant(size + 3, size + 1, kNaN);  // neither read nor written but for the triangle
    auto block = around.block(1, 0, size, size);
    block.triangularView<Eigen::Lower>() = A;
    ASSERT_TRUE(FactoriseLower(block, nullptr));
    const Matrix L = block.triangularView<Eigen::Lower>();
    EXPECT_TRUE(MatrixNear(L * L.transpose(), A, 1e-12 * static_cast<double>(size)));
    block = L;
    InvertLower(block, nullptr);
    EXPECT_TRUE(MatrixNear(block * L, Matrix::Identity(size, size), 1e-11));
    SquareLower(block, nullptr);
    const Matrix inverse = block.selfadjointView<Eigen::Lower>();
    EXPECT_TRUE(MatrixNear(inverse * A, Matrix::Identity(size, size), 1e-11));
    EXPECT_TRUE(around.row(0).array().isNaN().all() && around.bottomRows(2).array().isNaN().all());
  }
}

TEST(DenseOperations, RefuseAPivotThatIsNotPositive) {
  for (const Index bad : {0, 63, 64, 99}) {
    Matrix A = Matrix::Identity(100, 100);
    A(bad, bad) = bad % 2 == 0 ? 0.0 : -1.0;
    EXPECT_FALSE(FactoriseLower(A, nullptr)) << bad;
  }
}

TEST(DenseOperations, GiveTheSameBitsWhereverTheNumbersLie) {
  for (const Index size : {5, 33, 150}) {
    const Matrix A = PositiveDefinite(size);
    std::vector<Matrix> inverses;
    std::vector<Vector> exponentials;
    for (Index offset = 0; offset < 4; ++offset) {
      SCOPED_TRACE(std::to_string(size) + " at " + std::to_string(offset));
      std::vector<double> memory(static_cast<std::size_t>(size * size + offset), 0.0);
      Eigen::Map<Matrix> moved(memory.data() + offset, size, size);
      moved.triangularView<Eigen::Lower>() = A;
      ASSERT_TRUE(FactoriseLower(moved, nullptr));
      InvertLower(moved, nullptr);
      SquareLower(moved, nullptr);
      inverses.emplace_back(moved.triangularView<Eigen::Lower>());
      EXPECT_TRUE(MatrixNear(inverses.back(), inverses.front(), 0.0));

      Eigen::Map<Vector> column(memory.data() + offset, size);
      column = -0.1 * A.col(0);
      ReplaceByExponentials(column, 1e-300);
      exponentials.emplace_back(column);
      EXPECT_TRUE(MatrixNear(exponentials.back(), exponentials.front(), 0.0));
    }
  }
}

TEST(DenseOperations, ExponentialsEndAtZero) {
  for (const Index count : {0, 1, 3, 4, 5, 1000}) {
    Vector values = Vector::LinSpaced(count, -800.0, 1.0);
    Vector expected(count);
    for (Index i = 0; i < count; ++i) expected[i] = std::exp(values[i]) < 1e-300 ? 0.0 : std::exp(values[i]);
    ReplaceByExponentials(values, 1e-300);
    for (Index i = 0; i < count; ++i) EXPECT_NEAR(values[i], expected[i], 4e-16 * expected[i]) << "of " << count;
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
