#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "selection/candidate_measures.h"
#include "selection/candidate_ranking.h"
#include "selection/search_context.h"
#include "selection/subspace_results.h"
#include "surrogates/surrogate2_base.h"

namespace kestrel::math::metamodel {

/// What decides whether a model class may compete.
struct CompetitionState {
  double best_cop;  ///< of the classes before
  bool any_input;   ///< false if all subspaces are empty
};

/// The inputs of a subspace: a bit for each code that is not 0.
Selection SelectedInputs(const IndexVector& subspace);

/// The first parameter of the value transformation, its exponent; 1 without one.
double FittedExponent(const SurrogateSettingsBase& settings);

/// The search of one model class for one response: tries settings on the subspaces, keeps a result for each candidate
/// that could be built, and hands the best result of each complexity, reduced to the inputs that matter, to the
/// ranking.
///
/// The frame is the same for all classes; a class says in the private virtual functions what differs.
class ModelSearch {
 public:
  /// The context and the ranking outlive the search.
  ModelSearch(const SearchContext& context, CandidateRanking& ranking);
  virtual ~ModelSearch() = default;
  ModelSearch(const ModelSearch&) = delete;
  ModelSearch& operator=(const ModelSearch&) = delete;

  /// The class in log lines.
  virtual const wchar_t* Name() const = 0;
  virtual bool MayCompete(const CompetitionState& state) const = 0;

  /// Tries every column of `subspaces`, in order.
  virtual void EvaluateSubspaces(const IndexMatrix& subspaces);

  /// Adds the best result of each complexity to the ranking; then enters each of them, reduced unless
  /// `toleranceCoP_variables_` is 0.
  void ExtractBest();

  /// Tries one candidate: refuses it, finds it among the results, or builds and cross-validates it.
  /// @returns its position in `GetResults`; nothing if it was refused or could not be built.
  std::optional<std::size_t> EvaluateModel(const SurrogateSettingsBase& settings);

  /// Backward elimination: takes out the least important input as long as `predError` rises by no more than
  /// `toleranceCoP_variables_` from step to step. Mandatory inputs stay.
  /// @returns the last result that held; a copy of `result` if there is none.
  SubspaceResults Reduce(const SubspaceResults& result);

  /// All candidates that were built, those of reductions among them, in order.
  const std::vector<SubspaceResults>& GetResults() const { return results_; }

 protected:
  struct Complexities {
    std::uint64_t first;
    std::uint64_t last;
  };

  const SearchContext& Context() const { return context_; }
  CandidateRanking& Ranking() { return ranking_; }
  utils::log::LogBase& Log() const { return *context_.log; }

  /// Input names and limits, which all candidates of a response share.
  void SetCommonSettings(SurrogateSettingsBase& settings) const;

  /// False, with a log line, if there are fewer than `factor` samples for each selected input.
  bool EnoughForInputs(const SurrogateSettingsBase& settings, double factor) const;

  /// False, with a log line, if cross-validation that leaves out so many samples at a time leaves fewer samples than
  /// coefficients.
  bool EnoughInCrossValidation(const SurrogateSettingsBase& settings, std::uint64_t left_out) const;

  /// What the surrogate, just built by `BuildOptimal`, predicts at the samples. A class whose fit has found it already
  /// hands that over.
  virtual CandidatePredictions Predict();

  /// The log line of a step of a reduction for models that select inputs, not terms.
  void LogReducedInputs(const SubspaceResults& result) const;

 private:
  virtual ModelType::eModelType Type() const = 0;
  virtual Complexities GetComplexities() const = 0;
  virtual void EvaluateSubspace(const IndexVector& subspace) = 0;
  /// The settings as they are tried.
  virtual std::unique_ptr<SurrogateSettingsBase> Prepare(const SurrogateSettingsBase& settings) const;
  /// False, with a log line, if the samples are too few for the settings.
  virtual bool EnoughSamples(const SurrogateSettingsBase& settings) const = 0;
  /// The surrogate on the samples, which all candidates share.
  virtual SurrogateBase& Surrogate() = 0;
  /// The log line where `CheckBeforeBuild` fails; null for a class that does not ask.
  virtual const wchar_t* RankRefusal() const = 0;
  virtual void LogCandidate(const SubspaceResults& result) const = 0;

  /// The copy of settings on which a reduction works.
  virtual std::unique_ptr<SurrogateSettingsBase> StartReduction(const SurrogateSettingsBase& settings) const;
  /// One value per input, of the surrogate as built last; empty if there are none.
  virtual Vector VariableImportance() = 0;
  virtual void RemoveInput(SurrogateSettingsBase& settings, std::uint64_t input) const = 0;
  virtual void LogReduced(const SubspaceResults& result) const = 0;

  struct Outcome {
    std::optional<std::size_t> position;  ///< in `results_`
    const wchar_t* refusal = nullptr;     ///< the log line of a candidate that its rank refused
  };

  std::optional<std::size_t> Repeat(const Outcome& outcome) const;
  Outcome BuildCandidate(const SurrogateSettingsBase& settings);
  SubspaceResults MeasureBuilt();
  std::optional<SubspaceResults> BestOfComplexity(std::uint64_t complexity);
  std::optional<std::uint64_t> LeastImportantInput(const Selection& selected, const VectorIn& importance) const;
  /// Builds the surrogate with settings that a fit has completed; the one that was built last stands already.
  void Rebuild(const SurrogateSettingsBase& settings);

  const SearchContext& context_;
  CandidateRanking& ranking_;
  const double total_sum_of_squares_;
  std::vector<SubspaceResults> results_;
  std::map<CandidateKey, Outcome> known_;  ///< of every candidate that had enough samples
};

}  // namespace kestrel::math::metamodel
