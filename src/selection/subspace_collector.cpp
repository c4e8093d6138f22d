#include "selection/subspace_collector.h"

#include <algorithm>

namespace kestrel::math::metamodel {

bool LexicographicLess::operator()(const IndexVector& a, const IndexVector& b) const {
  return std::lexicographical_compare(a.data(), a.data() + a.size(), b.data(), b.data() + b.size());
}

bool SubspaceCollector::CheckFilterSubspace(const IndexVector& candidate) const { return known_.count(candidate) == 0; }

bool SubspaceCollector::CheckFilterSubspaceNotEmpty(const IndexVector& candidate) const {
  return (candidate.array() != 0).any() && CheckFilterSubspace(candidate);
}

void SubspaceCollector::Store(const IndexVector& subspace, const FilterLimits& limits) {
  subspaces_.push_back(subspace);
  limits_.push_back(limits);
  known_.insert(subspace);
}

void SubspaceCollector::StoreIfNew(const IndexVector& candidate, const FilterLimits& limits) {
  if (CheckFilterSubspace(candidate)) Store(candidate, limits);
}

void SubspaceCollector::StoreIfNewNotEmpty(const IndexVector& candidate, const FilterLimits& limits) {
  if (CheckFilterSubspaceNotEmpty(candidate)) Store(candidate, limits);
}

IndexMatrix SubspaceCollector::SubspaceMatrix() const {
  IndexMatrix matrix(num_inputs_, Size());
  for (Index k = 0; k < Size(); ++k) matrix.col(k) = Subspace(k);
  return matrix;
}

Matrix SubspaceCollector::LimitMatrix() const {
  Matrix matrix(7, Size());
  for (Index k = 0; k < Size(); ++k) {
    const FilterLimits& limits = Limits(k);
    matrix.col(k) << limits.significance, limits.linear, limits.quadratic, limits.pure_quadratic, limits.r2_adjusted,
        limits.coi, limits.correlation;
  }
  return matrix;
}

}  // namespace kestrel::math::metamodel
