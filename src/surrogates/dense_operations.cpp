#include "surrogates/dense_operations.h"

#include <Eigen/Cholesky>
#include <algorithm>

namespace kestrel::math::metamodel {
namespace {

using MatrixRef = Eigen::Ref<Matrix>;

constexpr Index kBlock = 64;
constexpr Index kSolvedTogether = 256;  // right-hand sides between two points where a stop takes effect

constexpr Index kPiece = 16;
using Piece = Eigen::Array<double, kPiece, 1>;

void ReplacePiece(Piece& piece, double least) {
  piece = piece.exp();
  for (double& value : piece) value = value < least ? 0.0 : value;
}

}  // namespace

// A block of columns after the other, each taken out of the rest by one product.
bool FactoriseLower(MatrixRef A, const utils::StopHelper* stop) {
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

// Half by half: [A 0; B C]^-1 = [A^-1 0; -C^-1 B A^-1  C^-1].
void InvertLower(MatrixRef L, const utils::StopHelper* stop) {
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
  InvertLower(A, stop);
  InvertLower(C, stop);
}

// A block of rows after the other: those below need no row above them.
void SquareLower(MatrixRef V, const utils::StopHelper* stop) {
  const Index n = V.rows();
  Matrix left;
  Matrix diagonal;
  for (Index k = 0; k < n; k += kBlock) {
    utils::CheckInterrupted(stop);
    const Index size = std::min(kBlock, n - k);
    const auto columns = V.block(k, k, n - k, size);
    diagonal.setZero(size, size);
    diagonal.selfadjointView<Eigen::Lower>().rankUpdate(columns.transpose());
    if (k > 0) left.noalias() = columns.transpose() * V.block(k, 0, n - k, k);
    V.block(k, k, size, size) = diagonal;
    if (k > 0) V.block(k, 0, size, k) = left;
  }
}

// In pieces of a fixed size, also at the end: the ends of longer arrays are not vectorised, and there exp rounds
// otherwise.
void ReplaceByExponentials(Eigen::Ref<Vector> exponents, double least) {
  Piece piece;
  const Index in_whole_pieces = exponents.size() - exponents.size() % kPiece;
  for (Index first = 0; first < in_whole_pieces; first += kPiece) {
    auto part = exponents.segment<kPiece>(first).array();
    piece = part;
    ReplacePiece(piece, least);
    part = piece;
  }
  auto rest = exponents.tail(exponents.size() - in_whole_pieces).array();
  if (rest.size() == 0) return;
  piece.setZero();
  piece.head(rest.size()) = rest;
  ReplacePiece(piece, least);
  rest = piece.head(rest.size());
}

}  // namespace kestrel::math::metamodel
