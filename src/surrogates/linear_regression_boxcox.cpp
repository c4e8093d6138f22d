#include <array>
#include <cmath>
#include <limits>

#include "statistics/basic_statistics.h"
#include "statistics/transform/transform_boxcox.h"
#include "surrogates/linear_regression.h"

// The search for the best Box-Cox exponent of a polynomial regression.

namespace kestrel::math::metamodel {
namespace {

using transform::TransBoxCox;

/// Whole-number reciprocals of the exponents tried, in this order; 0 is the logarithm.
constexpr std::array<std::int64_t, 21> kInverseExponents = {-1, -2, -3, -4, -5, -6, -8, -10, -13, -20, 0,
                                                            20, 13, 10, 8,  6,  5,  4,  3,   2,   1};

struct ScaledRange {
  double min_scaled;
  double max_scaled;
};

/// The values as they are, and mirrored.
constexpr std::array<ScaledRange, 2> kScaledRanges = {{{0.1, 10.1}, {10.1, 0.1}}};

struct Candidate {
  std::int64_t inverse_exponent = 1;
  ScaledRange range = kScaledRanges[0];

  std::vector<double> Parameters() const {
    const double exponent = inverse_exponent == 0 ? 0.0 : 1.0 / static_cast<double>(inverse_exponent);
    return {exponent, range.min_scaled, range.max_scaled};
  }
};

std::vector<Candidate> AllCandidates() {
  std::vector<Candidate> candidates;
  for (const ScaledRange range : kScaledRanges) {
    for (const std::int64_t t : kInverseExponents) candidates.push_back({t, range});
  }
  return candidates;
}

/// Root mean squared difference over the samples in which neither side is NaN; NaN if there is none.
double RootMeanSquare(const Vector& values, const Vector& approximation) {
  double sum = 0.0;
  Index count = 0;
  for (Index i = 0; i < values.size(); ++i) {
    const double difference = values[i] - approximation[i];
    if (std::isnan(difference)) continue;
    sum += difference * difference;
    ++count;
  }
  return count > 0 ? std::sqrt(sum / static_cast<double>(count)) : std::numeric_limits<double>::quiet_NaN();
}

}  // namespace

bool LinearRegression::BuildOptimalBoxCox() {
  residuals_.resize(0);
  const bool enough_points = GetNumberCoefficients() < static_cast<std::uint64_t>(points_.rows());
  if (!enough_points || statistics::isConst(values_)) return BuildBoxCox(Candidate().Parameters());

  // All candidates share the basis: their values are the columns of one matrix, solved with one factorisation.
  const NormalEquations& equations = PrepareNormalEquations();
  const std::vector<Candidate> candidates = AllCandidates();
  std::vector<TransBoxCox> transformations;
  Matrix transformed(values_.size(), static_cast<Index>(candidates.size()));
  for (const Candidate& candidate : candidates) {
    TransBoxCox transformation(candidate.inverse_exponent, candidate.range.min_scaled, candidate.range.max_scaled);
    if (!transformation.Build(values_)) return false;
    transformed.col(static_cast<Index>(transformations.size())) = transformation.ScaleForward(values_);
    transformations.push_back(transformation);
  }
  const Matrix coefficients = equations.Solve(RightHandSides(coefficient_matrix_, transformed, weights_));
  const Matrix fits = coefficient_matrix_ * coefficients;

  Candidate best;
  double best_difference = std::numeric_limits<double>::max();
  for (std::size_t k = 0; k < candidates.size(); ++k) {
    const Vector approximation = transformations[k].ScaleBackward(fits.col(static_cast<Index>(k)));
    const double difference = RootMeanSquare(values_, approximation);
    if (!(difference < best_difference)) continue;
    best_difference = difference;
    best = candidates[k];
  }
  return BuildBoxCox(best.Parameters());
}

bool LinearRegression::BuildBoxCox(const std::vector<double>& parameters) {
  InitializeValueTransformation(eTransformation::kBoxCox, parameters);
  if (!Build()) return false;
  settings_.SetValueTransformation(eTransformation::kBoxCox);
  settings_.SetState(eState::kOptimal);
  return true;
}

}  // namespace kestrel::math::metamodel
