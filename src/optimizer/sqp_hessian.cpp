#include "optimizer/quasi_newton.h"
#include "optimizer/sqp_solver.h"

namespace kestrel::algorithm::optimizer {

void SqpSolver::UpdateHessian(const VectorIn& moved, const VectorIn& change) {
  if (at_.is_fresh != 0) StoreDiagonal(CurvatureScale(moved, change, at_.start_diagonal));
  Matrix hessian = Hessian();
  UpdateByBfgs(moved, change, hessian);
  at_.is_fresh = StoreHessian(hessian) ? 0 : 1;
  if (at_.is_fresh != 0) StoreDiagonal(1.0);
}

/// The starting matrix, the multipliers of the last quadratic program, small penalties and no memory.
void SqpSolver::Restart() {
  StoreDiagonal(1.0);
  at_.is_fresh = 1;
  at_.multipliers = at_.program_multipliers;
  at_.penalties.setOnes();
  at_.num_merits = 0;
}

Matrix SqpSolver::Hessian() const {
  if (arg_.LQL) return arg_.C.topLeftCorner(n_, n_);
  const Matrix lower = arg_.C.topLeftCorner(n_, n_).triangularView<Eigen::UnitLower>();
  return lower * arg_.D.head(n_).asDiagonal() * lower.transpose();
}

bool SqpSolver::StoreHessian(const Matrix& hessian) {
  if (!arg_.LQL) return ldl001_(hessian, arg_.C.topLeftCorner(n_, n_), arg_.D.head(n_));
  arg_.C.topLeftCorner(n_, n_) = hessian;
  return hessian.allFinite();
}

void SqpSolver::StoreDiagonal(double scale) {
  arg_.C.setZero();
  if (arg_.LQL) {
    arg_.C.diagonal().head(n_) = scale * at_.start_diagonal;
  } else {
    arg_.C.diagonal().setOnes();
    arg_.D.head(n_) = scale * at_.start_diagonal;
  }
}

}  // namespace kestrel::algorithm::optimizer
