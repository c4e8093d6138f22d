#pragma once

#include <memory>

#include "selection/model_search.h"
#include "surrogates/linear_regression.h"

namespace kestrel::math::metamodel {

/// The settings without the terms that the sample cannot tell apart: x_j^k needs k + 1 levels of input j, an
/// interaction needs two of either input. Settings of an order below 2 are returned as they are.
/// @param level_counts  distinct values minus one of each input.
LinearRegressionSettings RemoveSingularBasisTerms(const LinearRegressionSettings& settings,
                                                  const IndexVector& level_counts);

/// Polynomial regression in the search: for each subspace linear, quadratic and mixed term sets on its inputs, the
/// linear one also on values transformed by Box and Cox, and the term set that the subspace itself describes.
class PolynomialSearch final : public ModelSearch {
 public:
  PolynomialSearch(const SearchContext& context, CandidateRanking& ranking);

  const wchar_t* Name() const override { return L"polynomials"; }
  /// An empty subspace is always given the constant polynomial.
  bool MayCompete(const CompetitionState& state) const override;

 private:
  ModelType::eModelType Type() const override { return ModelType::kPolynomial; }
  Complexities GetComplexities() const override { return {0, 9}; }
  void EvaluateSubspace(const IndexVector& subspace) override;
  std::unique_ptr<SurrogateSettingsBase> Prepare(const SurrogateSettingsBase& settings) const override;
  bool EnoughSamples(const SurrogateSettingsBase& settings) const override;
  SurrogateBase& Surrogate() override { return regression_; }
  const wchar_t* RankRefusal() const override { return L"rank of supports not sufficient for polynomial"; }
  void LogCandidate(const SubspaceResults& result) const override;
  Vector VariableImportance() override;
  void RemoveInput(SurrogateSettingsBase& settings, std::uint64_t input) const override;
  void LogReduced(const SubspaceResults& result) const override;

  LinearRegressionSettings InitialSettings() const;
  void EvaluateOrder(std::uint64_t order, bool with_interactions, const Selection& variables,
                     eTransformation value_transformation);
  void EvaluateOwnTerms(const IndexVector& subspace);

  LinearRegression regression_;  ///< serves all candidates; it keeps the basis while the term set stays
};

}  // namespace kestrel::math::metamodel
