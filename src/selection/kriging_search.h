#pragma once

#include "selection/model_search.h"
#include "surrogates/ordinary_kriging.h"

namespace kestrel::math::metamodel {

/// Ordinary Kriging in the search: for each subspace an isotropic kernel on its inputs, on values transformed by Box
/// and Cox and as they are. Then, if asked for, one radius per input for the selections that came close to the best
/// model so far: that is the dearest fit of all.
class KrigingSearch final : public ModelSearch {
 public:
  KrigingSearch(const SearchContext& context, CandidateRanking& ranking);

  const wchar_t* Name() const override { return L"Kriging"; }
  bool MayCompete(const CompetitionState& state) const override;
  void EvaluateSubspaces(const IndexMatrix& subspaces) override;

 private:
  ModelType::eModelType Type() const override { return ModelType::kKriging; }
  Complexities GetComplexities() const override { return {10, 11}; }
  void EvaluateSubspace(const IndexVector& subspace) override;
  bool EnoughSamples(const SurrogateSettingsBase& settings) const override;
  SurrogateBase& Surrogate() override { return kriging_; }
  const wchar_t* RankRefusal() const override { return nullptr; }
  void LogCandidate(const SubspaceResults& result) const override;
  Vector VariableImportance() override { return kriging_.ApproximateVariableImportanceCV(Context().subsets); }
  void RemoveInput(SurrogateSettingsBase& settings, std::uint64_t input) const override;
  void LogReduced(const SubspaceResults& result) const override { LogReducedInputs(result); }

  OrdinaryKrigingSettings InitialSettings(Kernel::eType kernel, const Selection& variables) const;
  void EvaluateAnisotropic();
  /// All inputs that may be used, and the selections of the results whose CoP is no further below the best than the
  /// tolerance.
  std::vector<Selection> SelectionsNearTheBest();

  OrdinaryKriging kriging_;  ///< serves all candidates; it keeps the factor while the correlations stay
};

}  // namespace kestrel::math::metamodel
