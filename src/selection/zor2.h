#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "selection/subspace_results.h"
#include "selection/zor2_settings.h"
#include "statistics/random.h"
#include "support/linear_algebra.h"
#include "support/log.h"
#include "support/stop_helper.h"
#include "surrogates/surrogate2_base.h"

namespace kestrel::math::metamodel {

using ProgressCallable = std::function<void(float)>;

/// Reports nothing.
void DefaultProgressCallable(float fraction);

/// What the model searches of one response share: the sample, what was found out about it once, the settings, and the
/// services of the task. Filled by `Zor`, read by the filters and searches.
struct SearchContext {
  Matrix inputs;      ///< N x n, one row per sample
  Vector response;    ///< length N
  ZORSettings settings;
  IndexVector importance;    ///< working copy of the importance, length n
  IndexVector level_counts;  ///< distinct values minus one, length n
  Subsets subsets;           ///< cross-validation subset of each sample; empty: leave one out
  std::uint64_t largest_subset = 0;  ///< samples in the largest subset; 0 where `subsets` is empty
  std::vector<std::wstring> input_names;
  std::wstring response_name;
  std::shared_ptr<utils::log::LogBase> log;
  std::shared_ptr<utils::StopHelper> stop_helper;

  void CheckInterrupted() const { utils::CheckInterrupted(stop_helper.get()); }
};

/// Finds the best metamodel of one response: `BuildSubspaces` turns the sample into candidate subspaces of the inputs,
/// `EvaluateMetamodels` lets the model classes compete on them. One object per response, used by one thread.
class Zor {
 public:
  /// Copies the data. Different numbers of rows and values are logged.
  /// @param inputs  N x n, one row per sample.  @param response  length N.
  Zor(const MatrixIn& inputs, const VectorIn& response, std::vector<std::wstring> input_names,
      std::wstring response_name);

  void Initialize(const ZORSettings& settings);
  /// A length other than the number of inputs is reported: "size of importance vector not consistent to number of
  /// variables".
  void SetInfoImportant(std::vector<std::uint64_t> importance);
  void SetLog(std::shared_ptr<utils::log::LogBase> log);
  void SetStopHelper(std::shared_ptr<utils::StopHelper> helper) { context_.stop_helper = std::move(helper); }
  void SetSubspaceResultContainer(std::shared_ptr<SubspaceResultContainer> container) { container_ = std::move(container); }
  void SetProgressCallable(ProgressCallable progress) { progress_ = std::move(progress); }
  /// The stream from which the random subsets and the Sobol samples are drawn.
  void SetGenerator(const random::Generator& generator) { generator_ = generator; }

  /// Fills the candidate subspaces; discards those of an earlier run.
  void BuildSubspaces();
  /// Raises std::logic_error "No subspace available, BuildSubspaces() first " without subspaces.
  void EvaluateMetamodels();
  /// Ranks the best reduced subspaces: by error, then within the tolerance by number of variables, then by complexity.
  void FindBestMetamodel(bool with_single_cops);
  /// A new surrogate built with the best result.
  std::unique_ptr<SurrogateBase> GetBestMetamodel() const;

  utils::log::LogBase& Log() const { return *context_.log; }
  const IndexMatrix& GetSubspaces() const { return subspaces_; }
  const Subsets& GetSubset() const { return context_.subsets; }
  const SubspaceResults& GetBestResult() const { return best_result_; }
  double GetBestCoP() const { return best_result_.measures.CoP; }
  std::vector<bool> GetActiveInputs() const;

 private:
  void AppendResults(const SubspaceResults& result);
  void PrepareSubsets();

  SearchContext context_;
  IndexMatrix subspaces_;  ///< n x number of subspaces, one column per subspace
  std::vector<SubspaceResults> best_subspaces_;          ///< the best result of each complexity, over all classes
  std::vector<SubspaceResults> best_reduced_subspaces_;  ///< what `FindBestMetamodel` ranks
  SubspaceResults best_result_;
  std::shared_ptr<SubspaceResultContainer> container_;
  ProgressCallable progress_ = DefaultProgressCallable;
  random::Generator generator_;
};

}  // namespace kestrel::math::metamodel
