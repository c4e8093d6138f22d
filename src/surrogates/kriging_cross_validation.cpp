#include "surrogates/kriging_cross_validation.h"

#include <Eigen/Cholesky>
#include <limits>

#include "surrogates/grouped_rows.h"

namespace kestrel::math::metamodel {
namespace {

/// b = R^-1 1.
Vector SolveOnes(const Matrix& V) { return V.transpose() * V.rowwise().sum(); }

}  // namespace

Vector LeaveOneOutErrors(const Matrix& V, const VectorIn& weights) {
  if (weights.size() == 1) return Vector::Constant(1, std::numeric_limits<double>::quiet_NaN());
  const Vector b = SolveOnes(V);
  const Eigen::ArrayXd Q = V.colwise().squaredNorm().transpose().array() - b.array().square() / b.sum();
  return weights.array() / Q;
}

Vector LeaveSubsetsOutErrors(const Matrix& V, const VectorIn& weights, const std::vector<std::uint64_t>& subsets,
                             const utils::StopHelper* stop) {
  const Vector b = SolveOnes(V);
  Vector errors(weights.size());
  const GroupedRows grouped = GroupRows(subsets);
  for (std::size_t g = 0; g < grouped.NumGroups(); ++g) {
    utils::CheckInterrupted(stop);
    const std::vector<Index> group = grouped.Group(g);
    if (static_cast<Index>(group.size()) == weights.size()) {  // nothing is left to predict from
      errors.setConstant(std::numeric_limits<double>::quiet_NaN());
      break;
    }
    const Matrix columns = V(Eigen::all, group);
    const Vector b_group = b(group);
    Matrix Q = Matrix::Zero(columns.cols(), columns.cols());
    Q.selfadjointView<Eigen::Lower>().rankUpdate(columns.transpose());
    Q.selfadjointView<Eigen::Lower>().rankUpdate(b_group, -1.0 / b.sum());
    const Vector right_hand_side = weights(group);
    errors(group) = Q.ldlt().solve(right_hand_side).eval();
  }
  return errors;
}

}  // namespace kestrel::math::metamodel
