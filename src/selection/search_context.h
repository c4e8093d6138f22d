#pragma once

#include <memory>
#include <string>
#include <vector>

#include "selection/subspace_results.h"
#include "selection/zor2_settings.h"
#include "support/linear_algebra.h"
#include "support/log.h"
#include "support/stop_helper.h"
#include "surrogates/surrogate2_base.h"

namespace kestrel::math::metamodel {

/// What the model searches of one response share: the sample, what was found out about it once, the settings, and the
/// services of the task. Filled by `Zor`, read by the filters and searches.
struct SearchContext {
  Matrix inputs;    ///< N x n, one row per sample
  Vector response;  ///< length N
  ZORSettings settings;
  IndexVector importance;            ///< working copy of the importance, length n
  IndexVector level_counts;          ///< distinct values minus one, length n
  Subsets subsets;                   ///< cross-validation subset of each sample; empty: leave one out
  std::uint64_t largest_subset = 0;  ///< samples in the largest subset; 0 where `subsets` is empty
  std::vector<std::wstring> input_names;
  std::wstring response_name;
  std::shared_ptr<utils::log::LogBase> log;
  std::shared_ptr<utils::StopHelper> stop_helper;
  std::shared_ptr<SubspaceResultContainer> container;  ///< told of every result that enters the ranking; may be null

  void CheckInterrupted() const { utils::CheckInterrupted(stop_helper.get()); }
};

}  // namespace kestrel::math::metamodel
