#include "surrogates/solve_coefficients.h"

#include <Eigen/QR>
#include <gtest/gtest.h>

#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;

/// Predictions of each subset by a plain refit in which its samples have weight 0.
Vector PlainRefits(const Matrix& P, const Vector& values, const Vector& weights,
                   const std::vector<std::uint64_t>& subsets) {
  Vector predictions(values.size());
  for (std::size_t i = 0; i < subsets.size(); ++i) {
    Vector group_weights = weights.size() > 0 ? weights : Vector(Vector::Ones(values.size()));
    for (std::size_t k = 0; k < subsets.size(); ++k) {
      if (subsets[k] == subsets[i]) group_weights[static_cast<Index>(k)] = 0.0;
    }
    const Vector coefficients = SolveCoefficients(P, values, group_weights);
    predictions[static_cast<Index>(i)] = P.row(static_cast<Index>(i)).dot(coefficients);
  }
  return predictions;
}

TEST(SolveCoefficients, AgreesWithAQrSolve) {
  const Matrix P = RandomPoints(40, 6, 1);
  const Vector values = Noise(40, 1.0, 2);
  const Vector weights = RandomPoints(40, 1, 3, 0.1, 2.0);
  const Vector roots = weights.cwiseSqrt();
  EXPECT_TRUE(MatrixNear(SolveCoefficients(P, values, Vector()), P.colPivHouseholderQr().solve(values), 1e-12));
  EXPECT_TRUE(MatrixNear(SolveCoefficients(P, values, weights),
                         (roots.asDiagonal() * P).colPivHouseholderQr().solve(roots.asDiagonal() * values), 1e-12));
}

TEST(SolveCoefficients, GivesTheMeanOfConstantValues) {
  const Vector expected = (Vector(3) << 7.5, 0.0, 0.0).finished();
  EXPECT_TRUE(MatrixNear(SolveCoefficients(RandomPoints(9, 3, 1), Vector::Constant(9, 7.5), Vector()), expected, 0.0));
}

TEST(SolveCoefficients, StaysFiniteWithoutFullRank) {
  Matrix P = RandomPoints(20, 4, 1);
  P.col(3).setZero();
  const Vector coefficients = SolveCoefficients(P, Noise(20, 1.0, 2), Vector());
  EXPECT_TRUE(coefficients.allFinite());
  EXPECT_FALSE(NormalEquations(P, Vector()).HasFullRank());
}

TEST(NormalEquations, RankFollowsNearDependence) {
  Matrix P = RandomPoints(30, 4, 1);
  EXPECT_TRUE(NormalEquations(P, Vector()).HasFullRank());
  P.col(3) = P.col(1) + 1e-5 * P.col(2) + 1e-5 * P.col(0);  // dependent
  EXPECT_FALSE(NormalEquations(P, Vector()).HasFullRank());
  P.col(3) = P.col(1) + 1e-5 * Noise(30, 1.0, 2);  // independent, badly conditioned
  EXPECT_TRUE(NormalEquations(P, Vector()).HasFullRank());
}

TEST(CrossValidate, AgreesWithPlainRefits) {
  const Index count = 60;
  const Matrix P = RandomPoints(count, 7, 4);
  const Vector values = 3.0 * P.col(1) + Noise(count, 0.3, 5);
  const Vector weights = RandomPoints(count, 1, 6, 0.1, 2.0);
  std::vector<std::uint64_t> subsets;
  for (Index i = 0; i < count; ++i) subsets.push_back(static_cast<std::uint64_t>((i * 7) % 5));
  std::vector<std::uint64_t> with_gap = subsets;
  for (std::uint64_t& subset : with_gap) subset *= 3;

  const Vector expected = PlainRefits(P, values, Vector(), subsets);
  EXPECT_TRUE(MatrixNear(CrossValidate(P, values, Vector(), subsets), expected, 1e-11));
  EXPECT_TRUE(MatrixNear(CrossValidate(P, values, Vector(), with_gap), expected, 1e-11));
  EXPECT_TRUE(MatrixNear(CrossValidate(P, values, weights, subsets), PlainRefits(P, values, weights, subsets), 1e-11));
}

TEST(CrossValidate, StaysNearPlainRefitsWhereOneSubsetOutweighsTheOthers) {
  Matrix P = RandomPoints(40, 4, 4);
  P.topRows(8) *= 1e5;
  const Vector values = P.col(2) + Noise(40, 0.1, 5);
  std::vector<std::uint64_t> subsets;
  for (std::uint64_t i = 0; i < 40; ++i) subsets.push_back(i / 8);
  const Vector expected = PlainRefits(P, values, Vector(), subsets);
  EXPECT_TRUE(testing::MatrixNearRelative(CrossValidate(P, values, Vector(), subsets), expected, 1e-9));
}

}  // namespace
}  // namespace kestrel::math::metamodel
