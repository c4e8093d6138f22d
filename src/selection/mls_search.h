#pragma once

#include <memory>
#include <optional>

#include "selection/model_search.h"
#include "surrogates/moving_least_squares.h"

namespace kestrel::math::metamodel {

/// Moving least squares in the search: for each subspace order 1 on values transformed by Box and Cox and on the values
/// as they are, then order 2 on those of the two that did better.
class MlsSearch final : public ModelSearch {
 public:
  MlsSearch(const SearchContext& context, CandidateRanking& ranking);

  const wchar_t* Name() const override { return L"MLS"; }
  bool MayCompete(const CompetitionState& state) const override;

 private:
  ModelType::eModelType Type() const override { return ModelType::kMLS; }
  Complexities GetComplexities() const override { return {10, 19}; }
  void EvaluateSubspace(const IndexVector& subspace) override;
  bool EnoughSamples(const SurrogateSettingsBase& settings) const override;
  SurrogateBase& Surrogate() override { return surrogate_; }
  const wchar_t* RankRefusal() const override { return L"rank of supports not sufficient for MLS"; }
  CandidatePredictions Predict() override;
  void LogCandidate(const SubspaceResults& result) const override;
  std::unique_ptr<SurrogateSettingsBase> StartReduction(const SurrogateSettingsBase& settings) const override;
  Vector VariableImportance() override;
  void RemoveInput(SurrogateSettingsBase& settings, std::uint64_t input) const override;
  void LogReduced(const SubspaceResults& result) const override { LogReducedInputs(result); }

  MovingLeastSquaresSettings InitialSettings() const;
  /// @returns the value transformation that did better and that order 2 is to have.
  eTransformation EvaluateOrderOne(const Selection& variables);
  std::optional<std::size_t> EvaluateOrder(std::uint64_t order, const Selection& variables,
                                           eTransformation value_transformation);

  MovingLeastSquares surrogate_;  ///< serves all candidates; it keeps what those that follow each other share
};

}  // namespace kestrel::math::metamodel
