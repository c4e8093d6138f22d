#include "surrogates/kriging_factor.h"

#include <algorithm>
#include <limits>

namespace kestrel::math::metamodel {
namespace {

constexpr Index kBlock = 64;
constexpr Index kSolvedTogether = 256;  // right-hand sides between two points where a stop takes effect

using MatrixRef = Eigen::Ref<Matrix>;

/// A = L L' in place, in the lower triangle: a block of columns after the other, each taken out of the rest by one
/// product. False at a pivot that is not positive.
bool FactoriseInPlace(Matrix& A, const utils::StopHelper* stop) {
  for (Index k = 0; k < A.rows(); k += kBlock) {
    utils::CheckInterrupted(stop);
    const Index size = std::min(kBlock, A.rows() - k);
    const Index rest = A.rows() - k - size;
    MatrixRef diagonal = A.block(k, k, size, size);
    const Eigen::LLT<MatrixRef> in_place(diagonal);
    if (in_place.info() != Eigen::Success) return false;
    if (rest == 0) break;
    auto panel = A.block(k + size, k, rest, size);
    diagonal.triangularView<Eigen::Lower>().transpose().solveInPlace<Eigen::OnTheRight>(panel);
    A.bottomRightCorner(rest, rest).selfadjointView<Eigen::Lower>().rankUpdate(panel, -1.0);
  }
  return true;
}

/// Inverts a lower triangular matrix in place, half by half: [A 0; B C]^-1 = [A^-1 0; -C^-1 B A^-1  C^-1].
void InvertLowerInPlace(MatrixRef L, const utils::StopHelper* stop) {
  if (L.rows() <= kBlock / 2) {
    L = L.triangularView<Eigen::Lower>().solve(Matrix::Identity(L.rows(), L.rows())).eval();
    return;
  }
  const Index half = L.rows() / 2;
  const Index rest = L.rows() - half;
  MatrixRef A = L.topLeftCorner(half, half);
  MatrixRef B = L.bottomLeftCorner(rest, half);
  MatrixRef C = L.bottomRightCorner(rest, rest);
  for (Index k = 0; k < rest; k += kSolvedTogether) {
    utils::CheckInterrupted(stop);
    auto rows = B.middleRows(k, std::min(kSolvedTogether, rest - k));
    A.triangularView<Eigen::Lower>().solveInPlace<Eigen::OnTheRight>(rows);
  }
  for (Index k = 0; k < half; k += kSolvedTogether) {
    utils::CheckInterrupted(stop);
    auto columns = B.middleCols(k, std::min(kSolvedTogether, half - k));
    C.triangularView<Eigen::Lower>().solveInPlace(columns);
    columns = -columns;
  }
  InvertLowerInPlace(A, stop);
  InvertLowerInPlace(C, stop);
}

}  // namespace

bool KrigingFactor::Compute(const Matrix& R, const utils::StopHelper* stop) {
  pivoted_.reset();
  lower_ = R;
  const bool factorised = FactoriseInPlace(lower_, stop);
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
  lower_.triangularView<Eigen::Lower>().solveInPlace(B);
  lower_.triangularView<Eigen::Lower>().transpose().solveInPlace(B);
  return B;
}

Matrix KrigingFactor::InverseRoot(const utils::StopHelper* stop) const {
  const Index n = lower_.rows();
  Matrix V;
  if (pivoted_) {
    V = pivoted_->transpositionsP() * Matrix::Identity(n, n);
    pivoted_->matrixL().solveInPlace(V);
    V = pivoted_->vectorD().cwiseSqrt().cwiseInverse().asDiagonal() * V;
  } else {
    V = lower_.triangularView<Eigen::Lower>();
    InvertLowerInPlace(V, stop);
  }
  return V;
}

Matrix KrigingFactor::Inverse(const utils::StopHelper* stop) const {
  const Index n = lower_.rows();
  const Matrix V = InverseRoot(stop);
  Matrix inverse(n, n);
  for (Index k = 0; k < n; k += kBlock) {
    utils::CheckInterrupted(stop);
    const Index size = std::min(kBlock, n - k);
    const Index first = pivoted_ ? 0 : k;  // V is 0 above the diagonal
    inverse.block(k, 0, size, k + size).noalias() =
        V.block(first, k, n - first, size).transpose() * V.block(first, 0, n - first, k + size);
  }
  return inverse;
}

}  // namespace kestrel::math::metamodel
