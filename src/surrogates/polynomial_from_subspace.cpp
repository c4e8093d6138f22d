#include "surrogates/polynomial_from_subspace.h"

#include <algorithm>
#include <array>

#include "statistics/basic_statistics.h"

namespace kestrel::math::metamodel {
namespace {

/// Difference of the adjusted R2 within which fewer coefficients count more.
constexpr double kQualityTolerance = 0.01;

struct Candidate {
  LinearRegressionSettings settings;
  std::unique_ptr<LinearRegression> regression;  ///< null if the candidate did not run
  double quality = 0.0;
  std::uint64_t coefficients = 0;
};

IndexVector FillCodes(const IndexVector& subspace, std::uint64_t code) {
  return subspace.unaryExpr([code](std::uint64_t entry) { return entry == 0 ? entry : code; });
}

Candidate MakeCandidate(LinearRegressionSettings settings, std::uint64_t order, const IndexVector& main_terms,
                        Selection interactions) {
  settings.SetOrder(order);
  settings.SetMainTermSelection(BuildMainTermSelectionFromSubspace(main_terms));
  // An all-zero subspace has order 0 and no term: the settings keep the size that their order wants.
  if (settings.GetMainTermSelection().empty()) {
    settings.SetMainTermSelection(BuildMainTermSelection(static_cast<std::uint64_t>(main_terms.size()), order, false));
  }
  settings.SetInteractionSelection(std::move(interactions));
  Candidate candidate;
  candidate.settings = std::move(settings);
  return candidate;
}

std::vector<Candidate> MakeCandidates(const IndexVector& subspace, const LinearRegressionSettings& settings) {
  const IndexVector linear = FillCodes(subspace, 1);
  const IndexVector quadratic = FillCodes(subspace, 3);
  const Selection interactions = BuildInteractionSelectionFromSubspace(quadratic);
  std::vector<Candidate> candidates;
  candidates.push_back(MakeCandidate(settings, 1, linear, Selection()));
  candidates.push_back(MakeCandidate(settings, 2, quadratic, Selection()));
  candidates.push_back(MakeCandidate(settings, 1, linear, interactions));
  candidates.push_back(MakeCandidate(settings, 2, quadratic, interactions));
  if (subspace != linear && subspace != quadratic) {
    candidates.push_back(MakeCandidate(settings, OrderFromSubspace(subspace), subspace,
                                       BuildInteractionSelectionFromSubspace(subspace)));
  }
  return candidates;
}

void Run(Candidate& candidate, const MatrixIn& points, const VectorIn& values, double factor) {
  const auto coefficients = static_cast<double>(candidate.settings.GetNumberCoefficients());
  if (static_cast<double>(points.rows()) < coefficients * factor) return;
  auto regression = std::make_unique<LinearRegression>(points, values);
  regression->Initialize(candidate.settings);
  if (!regression->BuildOptimalBoxCox()) return;
  candidate.coefficients = candidate.settings.GetNumberCoefficients();
  candidate.quality = statistics::R2adj(values, regression->Approximate(), candidate.coefficients);
  candidate.regression = std::move(regression);
}

/// Fewest coefficients among the candidates about as good as the best, then the best of these.
Candidate* Choose(std::vector<Candidate>& candidates) {
  double best_quality = 0.0;
  for (const Candidate& candidate : candidates) best_quality = std::max(best_quality, candidate.quality);
  Candidate* kept = nullptr;
  for (Candidate& candidate : candidates) {
    if (!candidate.regression || !(candidate.quality + kQualityTolerance >= best_quality)) continue;
    if (kept == nullptr || candidate.coefficients < kept->coefficients) kept = &candidate;
  }
  for (Candidate& candidate : candidates) {
    if (kept == nullptr || !candidate.regression || candidate.coefficients != kept->coefficients) continue;
    if (candidate.quality > kept->quality) kept = &candidate;
  }
  return kept;
}

}  // namespace

std::unique_ptr<LinearRegression> BestPolynomialFromSubspace(const IndexVector& subspace, const MatrixIn& points,
                                                             const VectorIn& values,
                                                             const LinearRegressionSettings& settings, double factor) {
  std::vector<Candidate> candidates = MakeCandidates(subspace, settings);
  for (Candidate& candidate : candidates) Run(candidate, points, values, factor);
  if (Candidate* const kept = Choose(candidates)) return std::move(kept->regression);
  auto unbuilt = std::make_unique<LinearRegression>(points, values);
  unbuilt->Initialize(candidates.front().settings);
  return unbuilt;
}

}  // namespace kestrel::math::metamodel
