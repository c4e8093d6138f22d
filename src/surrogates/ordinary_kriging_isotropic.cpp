#include <algorithm>
#include <cmath>
#include <vector>

#include "optimizer/optimizer_nlpqlp.h"
#include "statistics/distances.h"
#include "surrogates/ordinary_kriging_search.h"

// The search for nugget and radius of an isotropic kernel: a coarse grid, and local searches from its best points. One
// start is not enough: where the nugget has reached its lower bound the likelihood hardly depends on it, and a search
// that starts there may stop short of the best radius.

namespace kestrel::math::metamodel {
namespace {

using algorithm::optimizer::eDiffType;
using algorithm::optimizer::OptimizerNLPQLP;
using algorithm::optimizer::OptimizerSettingsNLPQLP;

using Search = OrdinaryKriging::HyperparameterSearch;

constexpr std::size_t kStarts = 3;
constexpr double kNuggetExponents[] = {-6.0, -3.0, 0.0};
constexpr double kAboveTop = 1.0001;  // the grid's last radius may miss the upper bound by rounding

struct RadiusRange {
  double low;
  double high;
};

/// The largest entry that is not infinite; a column without two values has no gap.
double LargestFinite(const Vector& entries) {
  return entries.array().isFinite().select(entries.array(), 0.0).maxCoeff();
}

/// From twice the smallest distance that tells points apart to ten times the largest; nothing if all coincide.
std::optional<RadiusRange> RangeOfRadius(const Matrix& points, const Matrix& squared_distances) {
  const double largest = squared_distances.maxCoeff();
  if (!(largest > 1e-24)) return std::nullopt;
  const double smallest = std::max(statistics::CalcMinDistanceFromMatrix(squared_distances),
                                   LargestFinite(statistics::CalcMinDistancesPerDimension(points)));
  const double lower = std::max(0.001 * std::sqrt(largest), std::sqrt(smallest));
  const double widest_gap = std::sqrt(statistics::CalcMaxMinDistancesPerDimension(points).maxCoeff());
  return RadiusRange{std::max(2.0 * lower, widest_gap), 10.0 * std::sqrt(largest)};
}

std::vector<Search::Trial> EvaluateGrid(Search& search, const RadiusRange& range) {
  std::vector<Search::Trial> trials;
  const double first = std::log10(range.low);
  const double step = 0.5 * (std::log10(range.high) - first);
  for (double t = first; t <= std::log10(range.high * kAboveTop); t += step) {
    for (const double exponent : kNuggetExponents) {
      const Vector point = Eigen::Vector2d(exponent, t);
      if (const std::optional<double> objective = search.Evaluate(point)) trials.push_back({point, *objective});
    }
  }
  return trials;
}

OptimizerSettingsNLPQLP<double> LocalSettings(const RadiusRange& range, const Vector& start, double accuracy) {
  const Vector lower = Eigen::Vector2d(-6.0, std::log10(range.low));
  const Vector upper = Eigen::Vector2d(0.0, std::log10(range.high * kAboveTop));
  OptimizerSettingsNLPQLP<double> settings(2, 1, 0, 0);
  settings.SetLowerBounds(lower.cwiseMin(start));
  settings.SetUpperBounds(upper.cwiseMax(start));
  settings.SetStartDesigns(start.transpose());
  settings.SetNumberOfParallelLineSearches(1);
  settings.SetAccuracy(accuracy);
  settings.SetGradientDx(1e-4);
  settings.SetNumericalDifferences(eDiffType::kBackward);
  return settings;
}

/// Follows the objective downhill. What was best is in the search.
void Descend(Search& search, const OptimizerSettingsNLPQLP<double>& settings) {
  OptimizerNLPQLP<double> optimizer(settings);
  while (!optimizer.IsTerminated()) {
    const Matrix designs = optimizer.GetNextDesigns();
    Matrix objectives = Matrix::Zero(designs.rows(), 1);
    std::vector<bool> success;
    for (Index k = 0; k < designs.rows(); ++k) {
      const std::optional<double> objective = search.Evaluate(designs.row(k).transpose());
      success.push_back(objective.has_value());
      objectives(k) = objective.value_or(0.0);
    }
    optimizer.SetInputs(designs);
    optimizer.SetCriteriaSuccessInfo(success);
    optimizer.SetObjectives(objectives);
    optimizer.Appraise();
    optimizer.Adapt();
  }
  optimizer.Finalize();
}

}  // namespace

bool OrdinaryKriging::BuildOptimalIsotropic(const Subsets& subsets) {
  PrepareSample();
  if (points_trans_reduced_.cols() == 0) return false;
  const Matrix distances = statistics::CalcDistanceMatrix(points_trans_reduced_);
  const std::optional<RadiusRange> range = RangeOfRadius(points_trans_reduced_, distances);
  if (!range) return false;

  Search search(*this, subsets, &distances);
  auto starts = EvaluateGrid(search, *range);
  std::stable_sort(starts.begin(), starts.end(), [](auto& a, auto& b) { return a.objective < b.objective; });
  if (starts.size() > kStarts) starts.resize(kStarts);
  const double accuracy = settings_.GetUseLikelihood() ? 1e-3 : 1e-6;
  for (const auto& start : starts) Descend(search, LocalSettings(*range, start.point, accuracy));
  return search.BuildBest();
}

}  // namespace kestrel::math::metamodel
