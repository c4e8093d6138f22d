#pragma once

#include <Eigen/Cholesky>
#include <Eigen/QR>
#include <cstdint>
#include <vector>

#include "support/linear_algebra.h"

namespace kestrel::math::metamodel {

/// A thin plate spline f(x) = sum_b c_b phi(|x - x_b|) + d_0 + d_1 x_1 + ... + d_n x_n with phi(r) = r^2 log r and
/// sum_b c_b = 0, sum_b c_b x_b = 0.
///
/// The radial function is that of the plate, r^2 log r, whatever the number of inputs: the polyharmonic function of
/// order 2, which is conditionally positive definite of order 2 in any dimension (Wendland 2005, "Scattered Data
/// Approximation", chapter 8), so that points which determine the linear part determine the spline. Only for two
/// inputs it is the interpolant of least bending energy (Duchon 1977).
struct ThinPlate {
  Vector radial;  ///< c, one per sample
  Vector linear;  ///< d, length n + 1

  /// Values at the rows of `query` (q x n); `points` are the N x n samples.
  Vector Evaluate(const MatrixIn& points, const MatrixIn& query) const;
};

/// The equations of a thin plate spline, factorised once:
///
///   | K + s I  P | | c |   | z |
///   | P'       0 | | d | = | 0 |,   K_ab = phi(|x_a - x_b|), row a of P = (1, x_a'),
///
/// which minimise sum_a (z_a - f(x_a))^2 + s c'K c: exact at the samples for s = 0, the regression plane for large s
/// (Wahba 1990, "Spline Models for Observational Data"). With P = [Q1 Q2] R the conditions on c are c = Q2 g, and
/// B g = Q2' z with B = Q2' (K + s I) Q2, which is positive definite.
///
/// Q'K Q is made once for a sample; `Factorise` costs a Cholesky factorisation for each s.
class ThinPlateSystem {
 public:
  /// @param points  N x n, in the coordinates of the model.
  explicit ThinPlateSystem(const MatrixIn& points);

  /// To be called, and to be answered with true, before anything else is asked. False if the spline is not determined:
  /// too few points, points in a hyperplane, or points that coincide, to rounding, without smoothing.
  /// @param smoothing  s, not negative.
  bool Factorise(double smoothing);

  /// The spline of the values z, length N.
  ThinPlate Solve(const VectorIn& values) const;

  /// Values at every sample of the spline without the samples of the same subset. With G = Q2 B^-1 Q2', the upper left
  /// block of the inverse of the bordered matrix, the errors of subset S are G_SS^-1 (G z)_S. NaN where the other
  /// samples do not determine a spline.
  /// @param subsets  length N.
  Vector CrossValidate(const VectorIn& values, const std::vector<std::uint64_t>& subsets) const;

 private:
  Index NumTerms() const { return rotated_upper_.rows(); }
  Index NumFree() const { return rotated_upper_.cols(); }

  bool solvable_ = false;                    ///< with some smoothing
  bool distinct_ = true;                     ///< no two points coincide
  Eigen::ColPivHouseholderQR<Matrix> tail_;  ///< of P, (n + 1) columns
  Matrix rotated_upper_;                     ///< Q1' K Q2, also with smoothing, because Q1' Q2 = 0
  Matrix rotated_;                           ///< Q2' K Q2
  Eigen::LLT<Matrix> factor_;                ///< of B
};

}  // namespace kestrel::math::metamodel
