#include "calculator/signals/smoothing.h"

#include <Eigen/QR>
#include <algorithm>

#include "calculator/functions/arguments.h"

namespace kestrel::calculator {
namespace {

using math::Index;

/// Weights w of `count` neighbours with which w'y is the value at the neighbour `place` of the polynomial fitted to y.
/// With the basis P (count x terms) at the neighbours, QR = P and p its row at the place: w = Q R^-T p.
math::Vector FitWeights(Index count, Index place, Index degree) {
  const Index terms = std::min(degree + 1, count);
  math::Matrix basis = math::Matrix::Ones(count, terms);
  // Powers of places scaled to -1 ... 1 are well conditioned for the degrees in use.
  const math::Vector u = math::Vector::LinSpaced(count, -1.0, count > 1 ? 1.0 : -1.0);
  for (Index term = 1; term < terms; ++term) basis.col(term) = basis.col(term - 1).cwiseProduct(u);
  const Eigen::HouseholderQR<math::Matrix> qr(basis);
  math::Vector weights = math::Vector::Zero(count);
  weights.head(terms) =
      qr.matrixQR().topRows(terms).triangularView<Eigen::Upper>().transpose().solve(basis.row(place).transpose());
  weights.applyOnTheLeft(qr.householderQ());
  return weights;
}

}  // namespace

void SmoothByPolynomials(Column samples, Index reach, Index degree) {
  const math::Vector original = samples;
  const Index size = original.size();
  const Index window = 2 * reach + 1;
  RequireOperations(static_cast<std::size_t>(size), static_cast<std::size_t>(window), 1);
  const math::Vector inner = FitWeights(window, reach, degree);
  for (Index i = 0; i < size; ++i) {
    const Index first = std::max<Index>(0, i - reach);
    const Index count = std::min(size - 1, i + reach) - first + 1;
    samples(i) = count == window ? inner.dot(original.segment(first, count))
                                 : FitWeights(count, i - first, degree).dot(original.segment(first, count));
  }
}

}  // namespace kestrel::calculator
