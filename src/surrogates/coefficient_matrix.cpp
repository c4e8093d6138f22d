#include "surrogates/coefficient_matrix.h"

#include <algorithm>
#include <stdexcept>

namespace kestrel::math::metamodel {
namespace {

constexpr std::uint64_t kLargestOrder = 10;

using Bit = Selection::size_type;

/// x_j^(k+1) of main term k n + j at all points.
void WriteMainTerm(const MatrixIn& points, Bit term, Eigen::Ref<Vector> column) {
  const Bit n = static_cast<Bit>(points.cols());
  const auto input = points.col(static_cast<Index>(term % n));
  const Bit exponent = term / n + 1;
  if (exponent == 1) {
    column = input;
  } else if (exponent == 2) {
    column = input.array().square();
  } else {
    column = input.array().pow(static_cast<double>(exponent));
  }
}

}  // namespace

std::uint64_t NumberMainTerms(std::uint64_t n, std::uint64_t order) { return n * order; }

std::uint64_t NumberInteractionTerms(std::uint64_t n) { return n < 2 ? 0 : n * (n - 1) / 2; }

Selection BuildMainTermSelection(std::uint64_t n, std::uint64_t order, bool value) {
  Selection bits(NumberMainTerms(n, order));
  if (value) bits.set();
  return bits;
}

Selection BuildInteractionSelection(std::uint64_t n, bool value) {
  Selection bits(NumberInteractionTerms(n));
  if (value) bits.set();
  return bits;
}

std::uint64_t InteractionBit(std::uint64_t i, std::uint64_t j, std::uint64_t n) {
  return i * n - i * (i + 1) / 2 + (j - i - 1);
}

std::uint64_t OrderFromSubspace(const IndexVector& subspace) {
  const std::uint64_t largest = subspace.size() == 0 ? 0 : subspace.maxCoeff();
  std::uint64_t order = 0;
  while (order < kLargestOrder && largest >= (std::uint64_t{1} << order)) ++order;
  return order;
}

Selection BuildMainTermSelectionFromSubspace(const IndexVector& subspace) {
  const auto n = static_cast<std::uint64_t>(subspace.size());
  const std::uint64_t order = OrderFromSubspace(subspace);
  Selection bits = BuildMainTermSelection(n, order, false);
  for (std::uint64_t k = 0; k < order; ++k) {
    for (std::uint64_t j = 0; j < n; ++j) {
      bits[k * n + j] = ((subspace[static_cast<Index>(j)] >> k) & 1U) != 0;
    }
  }
  return bits;
}

Selection BuildInteractionSelectionFromSubspace(const IndexVector& subspace) {
  const auto n = static_cast<std::uint64_t>(subspace.size());
  Selection bits = BuildInteractionSelection(n, false);
  Bit pair = 0;
  for (Index i = 0; i < subspace.size(); ++i) {
    for (Index j = i + 1; j < subspace.size(); ++j, ++pair) {
      bits[pair] = subspace[i] >= 2 && subspace[j] >= 2;
    }
  }
  return bits.any() ? bits : Selection();
}

Matrix BuildCoefficientMatrix(const MatrixIn& points, const Selection& main_terms, const Selection& interactions) {
  const auto n = static_cast<std::uint64_t>(points.cols());
  if (!interactions.empty() && interactions.size() != NumberInteractionTerms(n)) {
    throw std::logic_error("size of interaction vector is not consistent to regression dimension");
  }
  Matrix basis(points.rows(), static_cast<Index>(1 + main_terms.count() + interactions.count()));
  basis.col(0).setOnes();
  Index column = 1;
  for (Bit term = main_terms.find_first(); term != Selection::npos; term = main_terms.find_next(term)) {
    WriteMainTerm(points, term, basis.col(column++));
  }
  Bit pair = 0;
  for (Index i = 0; i < points.cols() && !interactions.empty(); ++i) {
    for (Index j = i + 1; j < points.cols(); ++j, ++pair) {
      if (interactions[pair]) basis.col(column++) = points.col(i).cwiseProduct(points.col(j));
    }
  }
  return basis;
}

}  // namespace kestrel::math::metamodel
