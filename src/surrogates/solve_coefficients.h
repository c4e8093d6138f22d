#pragma once

#include <Eigen/Cholesky>
#include <cstdint>
#include <vector>

#include "support/linear_algebra.h"

/// Weighted linear least squares by the normal equations A c = b, A = P' W P, b = P' W y, factorised by LDLT with
/// symmetric pivoting. Pivots below the smallest normal double count as zero, so that a rank-deficient A still gives
/// finite coefficients. P is N x m, one row per sample; weights have length N, or are empty for all 1.
namespace kestrel::math::metamodel {

/// Coefficients c, length m. For constant values the mean and zeros, without a solve.
Vector SolveCoefficients(const MatrixIn& P, const VectorIn& values, const VectorIn& weights);

/// The lower triangle of A = P' W P; the upper triangle is zero.
Matrix NormalMatrix(const MatrixIn& P, const VectorIn& weights);

/// The normal equations of a basis, factorised once for any number of right-hand sides.
class NormalEquations {
 public:
  NormalEquations(const MatrixIn& P, const VectorIn& weights);

  /// Solves A C = B for all columns of B.
  Matrix Solve(const MatrixIn& right_hand_sides) const;

  /// Rank test: every pivot of A by full-pivot LU above min(rows, cols) x eps x the largest one.
  bool HasFullRank() const;

  /// Leverages h_i = w_i p_i' A^-1 p_i of the samples.
  Vector Leverages(const MatrixIn& P, const VectorIn& weights) const;

 private:
  Matrix normal_;  ///< lower triangle of A
  Eigen::LDLT<Matrix> factor_;
};

/// P' W Y for a matrix of values.
Matrix RightHandSides(const MatrixIn& P, const MatrixIn& values, const VectorIn& weights);

/// Predictions p_i . c_g of every sample i by the coefficients of the fit without its own subset g. The part of the
/// normal matrix of each subset is formed once; the parts of the others are added up by prefix and suffix sums, which,
/// unlike a difference from the total, never cancels.
/// @param subsets  length N, numbers from 0; a number that no sample has costs nothing.
Vector CrossValidate(const MatrixIn& P, const VectorIn& values, const VectorIn& weights,
                     const std::vector<std::uint64_t>& subsets);

}  // namespace kestrel::math::metamodel
