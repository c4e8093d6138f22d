#pragma once

#include <memory>
#include <optional>

#include "support/linear_algebra.h"
#include "support/stop_helper.h"
#include "surrogates/ordinary_kriging_settings.h"

namespace kestrel::math::metamodel {

/// The correlations of a Kriging model by whole matrices. N points of m selected inputs, in the coordinates of the
/// model, one row per point.
///
/// For the kernels of constant influence K_ab = exp(sum_j h_j (p_aj - p_bj)^2), h_j = `ExponentialTerm`(r_j): with the
/// columns scaled by sqrt(-h_j) that is exp(-|s_a - s_b|^2). The radius of a nodal kernel follows the points it is
/// given.
class KrigingCorrelation {
 public:
  /// @param num_columns  m.
  KrigingCorrelation(const OrdinaryKrigingSettings& settings, Index num_columns);

  /// False while the kernel has no parameters, or not as many as there are columns.
  bool IsDefined() const { return defined_; }

  /// R = K + nugget I. R is symmetric: its lower triangle is written, N x N, and nothing above.
  void Fill(const MatrixIn& points, Matrix& R) const;
  /// The same from the squared distances D, N x N, for isotropic kernels.
  void FillFromDistances(const MatrixIn& distances, Matrix& R) const;

  /// sum_b w_b K(q, p_b) for each row q of `query`, in blocks of rows.
  Vector Apply(const MatrixIn& query, const MatrixIn& points, const VectorIn& weights,
               const utils::StopHelper* stop) const;

  /// h_j of each column; nothing for other kernels than those of constant exponential influence.
  const std::optional<Vector>& GetExponents() const { return exponents_; }

 private:
  /// The columns of the points, taken about `centre`, times sqrt(-h_j).
  Matrix Scale(const MatrixIn& points, const Eigen::RowVectorXd& centre) const;
  /// Squared distances to correlations between two points, for kernels without a radius for each column. Both may be
  /// the same vector.
  void Evaluate(const VectorIn& distances, Eigen::Ref<Vector> correlations) const;
  Vector ApplyExponential(const MatrixIn& query, const MatrixIn& points, const VectorIn& weights,
                          const utils::StopHelper* stop) const;
  Vector ApplyByKernel(const MatrixIn& query, const MatrixIn& points, const VectorIn& weights,
                       const utils::StopHelper* stop) const;

  std::unique_ptr<KernelBase> kernel_;
  double nugget_;
  bool defined_;
  std::optional<Vector> exponents_;
};

}  // namespace kestrel::math::metamodel
