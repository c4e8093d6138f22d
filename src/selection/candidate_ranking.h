#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "selection/search_context.h"
#include "selection/subspace_results.h"
#include "support/log.h"

namespace kestrel::math::metamodel {

/// A `predError` from here on is not a model's.
constexpr double kWorstError = 1000.0;

/// Gathers the best results of all model classes and chooses between them.
class CandidateRanking {
 public:
  void Clear();

  /// Keeps the best result of one complexity of a model class, as the searches after it and the report want it.
  void AddBest(SubspaceResults result) { best_.push_back(std::move(result)); }

  /// Enters a result into the ranking, tells the container of the context, if there is one, and logs it.
  void AppendResults(const SearchContext& context, const SubspaceResults& result);

  /// The choice. With e the lowest `predError` (the first of equal ones): of the results with
  /// predError - e <= `toleranceCoP_model_` those with the fewest variables; of these the one of least complexity, the
  /// last of equal ones. Null if no result has a number below `kWorstError` for its error. Valid until the next change.
  const SubspaceResults* FindBest(const SearchContext& context) const;

  /// Writes both lists at debug level, one line per result.
  void Log(utils::log::LogBase& log) const;

  /// The best result of each complexity, class by class.
  const std::vector<SubspaceResults>& GetBest() const { return best_; }
  /// What was entered, in this order: the results that compete.
  const std::vector<SubspaceResults>& GetBestReduced() const { return best_reduced_; }

 private:
  std::optional<std::size_t> FindLowestError() const;
  const SubspaceResults* FindSimplest(const SearchContext& context, double best_error) const;

  std::vector<SubspaceResults> best_;
  std::vector<SubspaceResults> best_reduced_;
};

}  // namespace kestrel::math::metamodel
