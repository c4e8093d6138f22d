#pragma once

#include "selection/search_context.h"
#include "selection/subspace_collector.h"

namespace kestrel::math::metamodel {

/// The number of limits that each filter of the grid walks; 0 for a filter that is off and for a step that is not
/// positive, `kMaxFilterSteps` at most.
struct FilterGridSizes {
  explicit FilterGridSizes(const ZORSettings& settings);

  /// The number of subspaces that is to be expected at most.
  std::uint64_t MaxSubspaces() const { return cod + 2 * (significance + 1) * (correlation + coi); }

  std::uint64_t significance;
  std::uint64_t coi;
  std::uint64_t cod;
  std::uint64_t correlation;  ///< the levels of the settings and a last one
};

/// Walks the grids of significance, importance and correlation limits and keeps each distinct subspace that comes out:
/// a pass on the raw sample, one on its ranks if `use_spearman_` is set, and a walk over the coefficients of
/// determination (CoD) of the single inputs. The context knows importance and level counts; at least one input has an
/// importance other than 0.
SubspaceCollector WalkFilterGrid(const SearchContext& context);

}  // namespace kestrel::math::metamodel
