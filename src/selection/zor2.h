#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "selection/candidate_ranking.h"
#include "selection/search_context.h"
#include "selection/subspace_results.h"
#include "selection/zor2_settings.h"
#include "statistics/random.h"
#include "support/linear_algebra.h"
#include "support/log.h"
#include "support/stop_helper.h"
#include "surrogates/surrogate2_base.h"

namespace kestrel::math::metamodel {

using ProgressCallable = std::function<void(float)>;

class ModelSearch;

/// Reports nothing.
void DefaultProgressCallable(float fraction);

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
  void SetSubspaceResultContainer(std::shared_ptr<SubspaceResultContainer> container) {
    context_.container = std::move(container);
  }
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
  /// What is decided once for all model classes: cross-validation subsets and level counts.
  void PrepareEvaluation();
  void PrepareSubsets();
  void RunSearch(ModelSearch& search);
  /// The result without a model: the plain default regression, CoP 0.
  SubspaceResults NoModel() const;
  /// The surrogate of the best result, built, without its errors.
  std::unique_ptr<SurrogateBase> BuildBest() const;

  SearchContext context_;
  IndexMatrix subspaces_;  ///< n x number of subspaces, one column per subspace
  CandidateRanking ranking_;
  SubspaceResults best_result_;
  ProgressCallable progress_ = DefaultProgressCallable;
  random::Generator generator_;
};

}  // namespace kestrel::math::metamodel
