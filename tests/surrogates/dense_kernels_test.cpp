#include "surrogates/dense_kernels.h"

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

const struct {
  const char* name;
  const DenseKernels& kernels;
} kSets[] = {{"portable", PortableKernels()}, {"fastest", FastestKernels()}};

/// P P' and a diagonal, so that no operation is far from well conditioned.
Matrix PositiveDefinite(Index size) {
  const Matrix P = RandomPoints(size, 7, 3);
  return P * P.transpose() + Matrix::Identity(size, size);
}

TEST(DenseKernels, FactoriseAndInvertWithinALargerMatrix) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  for (const auto& set : kSets) {
    for (const Index size : {1, 2, 32, 33, 64, 65, 129, 300}) {  // around the sizes of blocks
      SCOPED_TRACE(std::string(set.name) + " " + std::to_string(size));
      const Matrix A = PositiveDefinite(size);
      Matrix around = Matrix::Constant(size + 3, size + 1, kNaN);  // neither read nor written but for the triangle
      around.block(1, 0, size, size).triangularView<Eigen::Lower>() = A;
      const Block block = {around.data() + 1, size, size, size + 3};
      ASSERT_TRUE(set.kernels.factorise(block, nullptr));
      const Matrix L = around.block(1, 0, size, size).triangularView<Eigen::Lower>();
      EXPECT_TRUE(MatrixNear(L * L.transpose(), A, 1e-12 * static_cast<double>(size)));
      around.block(1, 0, size, size) = L;
      set.kernels.invert_lower(block, nullptr);
      EXPECT_TRUE(MatrixNear(around.block(1, 0, size, size) * L, Matrix::Identity(size, size), 1e-11));
      set.kernels.square_lower(block, nullptr);
      const Matrix inverse = around.block(1, 0, size, size).selfadjointView<Eigen::Lower>();
      EXPECT_TRUE(MatrixNear(inverse * A, Matrix::Identity(size, size), 1e-11));
      EXPECT_TRUE(around.row(0).array().isNaN().all() && around.bottomRows(2).array().isNaN().all());
    }
  }
}

TEST(DenseKernels, RefuseAPivotThatIsNotPositive) {
  for (const auto& set : kSets) {
    for (const Index bad : {0, 63, 64, 99}) {
      Matrix A = Matrix::Identity(100, 100);
      A(bad, bad) = bad % 2 == 0 ? 0.0 : -1.0;
      EXPECT_FALSE(set.kernels.factorise(AsBlock(A), nullptr)) << set.name << " " << bad;
    }
  }
}

TEST(DenseKernels, GiveTheSameBitsWhereverTheNumbersLie) {
  for (const auto& set : kSets) {
    for (const Index size : {5, 33, 150}) {
      const Matrix A = PositiveDefinite(size);
      std::vector<Matrix> inverses;
      std::vector<Vector> exponentials;
      for (Index offset = 0; offset < 4; ++offset) {
        SCOPED_TRACE(std::string(set.name) + " " + std::to_string(size) + " at " + std::to_string(offset));
        std::vector<double> memory(static_cast<std::size_t>(size * size + offset), 0.0);
        Eigen::Map<Matrix> moved(memory.data() + offset, size, size);
        moved.triangularView<Eigen::Lower>() = A;
        ASSERT_TRUE(set.kernels.factorise({moved.data(), size, size, size}, nullptr));
        set.kernels.invert_lower({moved.data(), size, size, size}, nullptr);
        set.kernels.square_lower({moved.data(), size, size, size}, nullptr);
        inverses.emplace_back(moved.triangularView<Eigen::Lower>());
        EXPECT_TRUE(MatrixNear(inverses.back(), inverses.front(), 0.0));

        Eigen::Map<Vector> column(memory.data() + offset, size);
        column = -0.1 * A.col(0);
        set.kernels.exponentials(column.data(), size, 1e-300);
        exponentials.emplace_back(column);
        EXPECT_TRUE(MatrixNear(exponentials.back(), exponentials.front(), 0.0));
      }
    }
  }
}

TEST(DenseKernels, ExponentialsEndAtZero) {
  for (const auto& set : kSets) {
    for (const Index count : {0, 1, 3, 4, 5, 1000}) {
      Vector values = Vector::LinSpaced(count, -800.0, 1.0);
      Vector expected(count);
      for (Index i = 0; i < count; ++i) expected[i] = std::exp(values[i]) < 1e-300 ? 0.0 : std::exp(values[i]);
      set.kernels.exponentials(values.data(), count, 1e-300);
      for (Index i = 0; i < count; ++i) {
        EXPECT_NEAR(values[i], expected[i], 4e-16 * expected[i]) << set.name << " of " << count;
      }
    }
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
