#include "surrogates/kriging_factor.h"

#include <limits>

#include "surrogates/dense_operations.h"

namespace kestrel::math::metamodel {

bool KrigingFactor::Compute(const Matrix& R, const utils::StopHelper* stop) {
  pivoted_.reset();
  lower_.resize(R.rows(), R.cols());
  for (Index j = 0; j < R.cols(); ++j) lower_.col(j).tail(R.rows() - j) = R.col(j).tail(R.rows() - j);
  const bool factorised = FactoriseLower(lower_, stop);
  // The unpivoted factor is trusted while its smallest pivot is well above the rounding of the largest entry.
  const double rounding = static_cast<double>(R.rows()) * std::numeric_limits<double>::epsilon();
  const auto pivots = lower_.diagonal().array();
  if (!factorised || !(pivots.square() > 100.0 * rounding * R.diagonal().maxCoeff()).all()) return ComputePivoted(R);
  log_determinant_ = 2.0 * pivots.log().sum();
  return true;
}

bool KrigingFactor::ComputePivoted(const Matrix& R) {
  pivoted_.emplace(R);
  const Vector pivots = pivoted_->vectorD();
  const double rounding = static_cast<double>(R.rows()) * std::numeric_limits<double>::epsilon();
  if (!(pivots.array() > rounding * R.diagonal().maxCoeff()).all()) {
    Clear();
    return false;
  }
  log_determinant_ = pivots.array().log().sum();
  return true;
}

void KrigingFactor::Clear() {
  lower_.resize(0, 0);
  pivoted_.reset();
}

Matrix KrigingFactor::Solve(Matrix B) const {
  if (pivoted_) return pivoted_->solve(B);
  // Column by column: for a few of them a product of matrices would spend its time on packing the factor.
  for (auto column : B.colwise()) {
    lower_.triangularView<Eigen::Lower>().solveInPlace(column);
    lower_.triangularView<Eigen::Lower>().transpose().solveInPlace(column);
  }
  return B;
}

Matrix KrigingFactor::InverseRoot(const utils::StopHelper* stop) const {
  Matrix V;
  FillInverseRoot(V, stop);
  return V;
}

void KrigingFactor::FillInverseRoot(Matrix& V, const utils::StopHelper* stop) const {
  const Index n = lower_.rows();
  if (pivoted_) {
    V = pivoted_->transpositionsP() * Matrix::Identity(n, n);
    pivoted_->matrixL().solveInPlace(V);
    V = pivoted_->vectorD().cwiseSqrt().cwiseInverse().asDiagonal() * V;
  } else {
    V = lower_.triangularView<Eigen::Lower>();
    InvertLower(V, stop);
  }
}

void KrigingFactor::FillInverse(Matrix& inverse, const utils::StopHelper* stop) const {
  if (pivoted_) {
    inverse = pivoted_->solve(Matrix::Identity(lower_.rows(), lower_.rows()));
    return;
  }
  FillInverseRoot(inverse, stop);
  SquareLower(inverse, stop);
}

}  // namespace kestrel::math::metamodel
