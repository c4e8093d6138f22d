#pragma once

#include <map>
#include <optional>
#include <vector>

#include "selection/search_context.h"
#include "selection/subspace_collector.h"
#include "surrogates/linear_regression.h"

namespace kestrel::math::metamodel {

/// Narrows a subspace by the coefficient of importance (CoI) that each of its inputs has in a polynomial on it.
class CoIFilter {
 public:
  /// @param context  settings, importance and services.
  /// @param inputs, response  the sample of the polynomials: raw, or its ranks.
  /// @param collector  takes what the filter finds. All of them outlive the filter.
  CoIFilter(const SearchContext& context, const Matrix& inputs, const Vector& response, SubspaceCollector& collector);

  /// Fits the polynomial. If its adjusted R2 reaches `max_CoI_`, stores for each limit step, 2 step, ... up to
  /// `max_CoI_` the inputs whose CoI reaches the limit, where that subspace is new.
  /// @param limits  those that led to the subspace; R2 and limit of this filter are added.
  void Apply(const IndexVector& subspace, const FilterLimits& limits);

 private:
  using Quality = std::optional<double>;  // adjusted R2 of a polynomial; none if the sample does not determine it

  Quality FitAndStore(const IndexVector& subspace, FilterLimits limits);
  Vector Importance(const LinearRegression& polynomial) const;
  void StoreFiltered(const IndexVector& subspace, const Vector& importance, FilterLimits limits);
  void LogQuality(double r2_adjusted) const;

  const SearchContext& context_;
  const Matrix& inputs_;
  const Vector& response_;
  SubspaceCollector& collector_;
  std::vector<double> coi_limits_;
  std::map<IndexVector, Quality, LexicographicLess> qualities_;  ///< of all subspaces met
};

/// step, 2 step, ... up to and including `last`, each by one addition to the one before: the rounding of the sums is
/// part of the result. None for a step that is not positive, `kMaxFilterSteps` at most.
std::vector<double> LimitsUpTo(double last, double step);

}  // namespace kestrel::math::metamodel
