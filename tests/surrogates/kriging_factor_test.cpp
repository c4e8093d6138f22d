#include "surrogates/kriging_factor.h"

#include <gtest/gtest.h>

#include <Eigen/LU>
#include <limits>

#include "statistics/distances.h"
#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;
using testing::MatrixNearRelative;
using testing::RandomPoints;

/// exp(-d^2) between random points in two dimensions, and a nugget.
Matrix Correlations(Index count, double nugget) {
  const Matrix distances = statistics::CalcDistanceMatrix(RandomPoints(count, 2, 5));
  Matrix R = (-distances.array()).exp();
  R.diagonal().array() += nugget;
  return R;
}

TEST(KrigingFactor, AgreesWithALuDecomposition) {
  for (const Index count : {1, 2, 31, 64, 65, 193}) {  // around the size of a block
    SCOPED_TRACE(count);
    const Matrix R = Correlations(count, 1e-2);
    Matrix lower = R.triangularView<Eigen::Lower>();
    lower.triangularView<Eigen::StrictlyUpper>().setConstant(std::numeric_limits<double>::quiet_NaN());  // never read
    KrigingFactor factor;
    ASSERT_TRUE(factor.Compute(lower, nullptr));
    const Eigen::PartialPivLU<Matrix> lu(R);
    const Matrix inverse = lu.inverse();
    EXPECT_NEAR(factor.LogDeterminant(), lu.matrixLU().diagonal().cwiseAbs().array().log().sum(), 1e-9);
    EXPECT_TRUE(MatrixNearRelative(factor.Solve(Matrix::Identity(count, count)), inverse, 1e-11));
    const Matrix V = factor.InverseRoot(nullptr);
    EXPECT_TRUE(MatrixNearRelative(V.transpose() * V, inverse, 1e-11));
    Matrix half;
    factor.FillInverse(half, nullptr);
    const Matrix whole = half.selfadjointView<Eigen::Lower>();
    EXPECT_TRUE(MatrixNearRelative(whole, inverse, 1e-11));
  }
}

TEST(KrigingFactor, KeepsADoubtfulMatrixByPivoting) {
  // Scaled so that the smallest pivot is a little above rounding: neither clearly regular nor clearly singular.
  Matrix R = Matrix::Identity(4, 4);
  R(1, 0) = R(0, 1) = 1.0 - 2e-15;
  KrigingFactor factor;
  ASSERT_TRUE(factor.Compute(R, nullptr));
  const Matrix V = factor.InverseRoot(nullptr);
  EXPECT_TRUE(MatrixNear(V * R * V.transpose(), Matrix::Identity(4, 4), 0.2));
  EXPECT_NEAR(factor.LogDeterminant(), std::log(4e-15), 0.2);
}

TEST(KrigingFactor, RefusesWhatIsNotPositiveDefinite) {
  const struct {
    const char* name;
    Matrix R;
  } cases[] = {
      {"two equal rows", (Matrix(3, 3) << 1.0, 0.5, 1.0, 0.5, 1.0, 0.5, 1.0, 0.5, 1.0).finished()},
      {"a negative eigenvalue", (Matrix(2, 2) << 1.0, 1.5, 1.5, 1.0).finished()},
      {"zero", Matrix::Zero(2, 2)},
      {"NaN", Matrix::Constant(2, 2, std::numeric_limits<double>::quiet_NaN())},
      {"a NaN below the diagonal",
       (Matrix(2, 2) << 1.0, 0.0, std::numeric_limits<double>::quiet_NaN(), 1.0).finished()},
  };
  for (const auto& c : cases) EXPECT_FALSE(KrigingFactor().Compute(c.R, nullptr)) << c.name;
  // Any two of the samples coincide, wherever they stand among the others.
  for (const Index twin : {0, 3, 70, 99}) {
    Matrix points = RandomPoints(100, 3, 8);
    points.row((twin + 41) % 100) = points.row(twin);
    const Matrix R = (-20.0 * statistics::CalcDistanceMatrix(points).array()).exp();
    EXPECT_FALSE(KrigingFactor().Compute(R, nullptr)) << twin;
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
