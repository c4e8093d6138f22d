#include <array>
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
  std::size_t range = 0;  ///< in kScaledRanges

  std::vector<double> Parameters() const {
    const double exponent = inverse_exponent == 0 ? 0.0 : 1.0 / static_cast<double>(inverse_exponent);
    return {exponent, kScaledRanges[range].min_scaled, kScaledRanges[range].max_scaled};
  }
};

std::vector<Candidate> AllCandidates() {
  std::vector<Candidate> candidates;
  for (std::size_t range = 0; range < kScaledRanges.size(); ++range) {
    for (const std::int64_t t : kInverseExponents) candidates.push_back({t, range});
  }
  return candidates;
}

/// Mean squared difference over the samples in which neither side is NaN; NaN if there is none.
double MeanSquare(const Eigen::ArrayXd& values, const Eigen::ArrayXd& approximation) {
  const Eigen::ArrayXd squares = (values - approximation).square();
  if (!squares.isNaN().any()) return squares.mean();
  return squares.isNaN().select(0.0, squares).sum() / static_cast<double>(squares.size() - squares.isNaN().count());
}

/// The values on both ranges. A range and its mirror stretch them alike, so that differences on either scale rank as
/// differences in units of the response do.
class ScaledValues {
 public:
  explicit ScaledValues(const Vector& values) {
    for (std::size_t r = 0; r < kScaledRanges.size(); ++r) {
      transform::TransMinMax scale(kScaledRanges[r].min_scaled, kScaledRanges[r].max_scaled);
      scale.Build(values);
      y_[r] = scale.ScaleForward(values);
      log_y_[r] = y_[r].log();
    }
  }

  Eigen::ArrayXd Forward(const Candidate& candidate) const {
    return TransBoxCox::ForwardScaled(y_[candidate.range], log_y_[candidate.range], candidate.inverse_exponent);
  }

  double MeanSquaredDifference(const Candidate& candidate, const VectorIn& fit) const {
    return MeanSquare(y_[candidate.range], TransBoxCox::BackwardScaled(fit.array(), candidate.inverse_exponent));
  }

 private:
  std::array<Eigen::ArrayXd, kScaledRanges.size()> y_;
  std::array<Eigen::ArrayXd, kScaledRanges.size()> log_y_;
};

}  // namespace

bool LinearRegression::BuildOptimalBoxCox() {
  residuals_.resize(0);
  const bool enough_points = GetNumberCoefficients() < static_cast<std::uint64_t>(points_.rows());
  if (!enough_points || statistics::isConst(values_)) return BuildBoxCox(Candidate().Parameters());

  // All candidates share the basis: their values are the columns of one matrix, solved with one factorisation.
  const NormalEquations& equations = PrepareNormalEquations();
  const ScaledValues scaled(values_);
  const std::vector<Candidate> candidates = AllCandidates();
  Matrix columns(values_.size(), static_cast<Index>(candidates.size()));
  for (std::size_t k = 0; k < candidates.size(); ++k) {
    columns.col(static_cast<Index>(k)) = scaled.Forward(candidates[k]);
  }
  const Matrix coefficients = equations.Solve(RightHandSides(coefficient_matrix_, columns, weights_));
  columns.noalias() = coefficient_matrix_ * coefficients;

  Candidate best;
  double best_difference = std::numeric_limits<double>::max();
  for (std::size_t k = 0; k < candidates.size(); ++k) {
    const double difference = scaled.MeanSquaredDifference(candidates[k], columns.col(static_cast<Index>(k)));
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
