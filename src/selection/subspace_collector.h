#pragma once

#include <set>
#include <vector>

#include "support/linear_algebra.h"

namespace kestrel::math::metamodel {

/// Orders vectors of one length by their first entry that differs.
struct LexicographicLess {
  bool operator()(const IndexVector& a, const IndexVector& b) const;
};

/// The limits of the filters that led to a subspace; 0 for a filter that took no part.
struct FilterLimits {
  double significance = 0.0;  ///< significance quantile
  double linear = 0.0;        ///< limit of the linear correlation at that quantile
  double quadratic = 0.0;
  double pure_quadratic = 0.0;
  double r2_adjusted = 0.0;  ///< quality of the polynomial behind the coefficients of importance (CoI)
  double coi = 0.0;
  double correlation = 0.0;  ///< fraction of the largest correlation, or limit of the CoD
};

/// The candidate subspaces in the order in which the filters found them, each beside the limits that found it first.
class SubspaceCollector {
 public:
  explicit SubspaceCollector(Index num_inputs) : num_inputs_(num_inputs) {}

  /// True if no stored subspace equals the candidate.
  bool CheckFilterSubspace(const IndexVector& candidate) const;
  /// True if, moreover, the candidate has an entry that is not 0.
  bool CheckFilterSubspaceNotEmpty(const IndexVector& candidate) const;

  void Store(const IndexVector& subspace, const FilterLimits& limits);
  /// Stores what `CheckFilterSubspace` finds new; `StoreIfNewNotEmpty` what the other form does.
  void StoreIfNew(const IndexVector& candidate, const FilterLimits& limits);
  void StoreIfNewNotEmpty(const IndexVector& candidate, const FilterLimits& limits);

  Index Size() const { return static_cast<Index>(subspaces_.size()); }
  const IndexVector& Subspace(Index position) const { return subspaces_[static_cast<std::size_t>(position)]; }
  const FilterLimits& Limits(Index position) const { return limits_[static_cast<std::size_t>(position)]; }

  /// n x Size(), one column per subspace.
  IndexMatrix SubspaceMatrix() const;
  /// 7 x Size(), one row per member of `FilterLimits`, in their order.
  Matrix LimitMatrix() const;

 private:
  Index num_inputs_;
  std::vector<IndexVector> subspaces_;
  std::vector<FilterLimits> limits_;
  std::set<IndexVector, LexicographicLess> known_;  ///< the stored subspaces once more, to be found quickly
};

}  // namespace kestrel::math::metamodel
