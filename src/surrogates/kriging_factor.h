#pragma once

#include <Eigen/Cholesky>
#include <optional>

#include "support/linear_algebra.h"
#include "support/stop_helper.h"

namespace kestrel::math::metamodel {

/// The factor of a correlation matrix R, N x N: R = L L', blocked, or, where that is in doubt, P' L D L' P with
/// symmetric pivoting. Only the lower triangle of R is read. A stop ends each of the long operations between blocks.
class KrigingFactor {
 public:
  /// False if R is not positive definite: if the smallest pivot is not above what rounding leaves of 0.
  bool Compute(const Matrix& R, const utils::StopHelper* stop);
  void Clear();
  Index Size() const { return lower_.rows(); }

  double LogDeterminant() const { return log_determinant_; }
  /// R^-1 B, for a few columns.
  Matrix Solve(Matrix B) const;
  /// V with R^-1 = V'V, N^3 / 3 products: L^-1, lower triangular, unless R was in doubt.
  Matrix InverseRoot(const utils::StopHelper* stop) const;
  /// The lower triangle of R^-1, another N^3 / 3, into `inverse`, whose memory serves again if it has the size; what
  /// stands above is not defined.
  void FillInverse(Matrix& inverse, const utils::StopHelper* stop) const;

 private:
  void FillInverseRoot(Matrix& V, const utils::StopHelper* stop) const;
  bool ComputePivoted(const Matrix& R);

  Matrix lower_;
  std::optional<Eigen::LDLT<Matrix>> pivoted_;
  double log_determinant_ = 0.0;
};

}  // namespace kestrel::math::metamodel
