#include "surrogates/radius_search.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "statistics/distances.h"
#include "surrogates/local_fits.h"

namespace kestrel::math::metamodel {
namespace {

constexpr int kRadii = 21;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The largest entry that is a finite number, 0 without one: an input with one value alone has no smallest distance.
double LargestFinite(const Vector& entries) {
  double largest = 0.0;
  for (const double entry : entries) {
    if (std::isfinite(entry)) largest = std::max(largest, entry);
  }
  return largest;
}

/// 2 SSE(cross validation) - SSE(fit) of responses in units of their largest magnitude: that ranks the radii alike, and
/// squares of very large responses stay numbers.
double Objective(const Vector& response, const SamplePredictions& predictions) {
  const double largest = response.cwiseAbs().maxCoeff();
  const auto sum_of_squares = [&](const Vector& values) { return ((response - values) / largest).squaredNorm(); };
  return 2.0 * sum_of_squares(predictions.cross_validation) - sum_of_squares(predictions.fit);
}

Matrix ValueColumns(const std::vector<FittedScale>& scales) {
  Matrix values(scales.front().values.size(), static_cast<Index>(scales.size()));
  for (std::size_t s = 0; s < scales.size(); ++s) values.col(static_cast<Index>(s)) = scales[s].values;
  return values;
}

}  // namespace

SampleDistances::SampleDistances(const MatrixIn& points, const std::vector<std::uint64_t>& subsets,
                                 const std::function<void()>& check)
    : points_(points), subsets_(subsets), grouped_(GroupRows(subsets)), squared_(points.rows(), points.rows()) {
  // Whole columns, each distance twice: mirroring them would cost more, by writing across the columns.
  const Matrix sorted = points(grouped_.rows, Eigen::all);
  for (Index i = 0; i < sorted.rows(); ++i) {
    check();
    auto distances = squared_.col(i).array();
    distances.setZero();
    for (Index j = 0; j < sorted.cols(); ++j) distances += (sorted.col(j).array() - sorted(i, j)).square();
  }
  largest_squared_ = squared_.maxCoeff<Eigen::PropagateNaN>();
}

bool SampleDistances::BelongTo(const MatrixIn& points, const std::vector<std::uint64_t>& subsets) const {
  return subsets_ == subsets && points_.rows() == points.rows() && points_.cols() == points.cols() && points_ == points;
}

SampleDistances::Bounds SampleDistances::RadiusBounds() const {
  const double largest = std::sqrt(largest_squared_);
  const double nearest = std::sqrt(std::max(statistics::CalcMinDistanceFromMatrix(squared_),
                                            LargestFinite(statistics::CalcMinDistancesPerDimension(points_))));
  const double largest_gap = std::sqrt(statistics::CalcMaxMinDistancesPerDimension(points_).maxCoeff());
  return {std::max(2.0 * std::max(0.001 * largest, nearest), largest_gap), 5.0 * largest};
}

double SampleDistances::ReachOf(std::uint64_t count, const std::function<void()>& check) const {
  double reach = 0.0;
  std::vector<double> others;
  for (std::size_t g = 0; g < grouped_.NumGroups(); ++g) {
    const Index first = grouped_.begin[g];
    const Index end = grouped_.begin[g + 1];
    if (static_cast<std::uint64_t>(squared_.rows() - grouped_.Count(g)) < count) return kInfinity;
    for (Index i = first; i < end; ++i) {
      check();
      const auto column = squared_.col(i);
      others.assign(column.begin(), column.begin() + first);
      others.insert(others.end(), column.begin() + end, column.end());
      const auto last = others.begin() + static_cast<std::ptrdiff_t>(count) - 1;
      std::nth_element(others.begin(), last, others.end());
      reach = std::max(reach, *last);
    }
  }
  return reach;
}

std::vector<BestRadius> FindBestRadius(const RadiusProblem& problem, KernelBase& kernel,
                                       const std::vector<FittedScale>& scales, const std::function<void()>& check) {
  const SampleDistances& distances = problem.distances;
  // Weights fall with the distance. So the one question whether the farthest of the neighbours that a sample needs
  // still counts settles for all samples whether a radius gives a value everywhere, before any fit is made.
  const double reach = problem.min_neighbours == 0 ? 0.0 : distances.ReachOf(problem.min_neighbours, check);
  const auto reaches_enough = [&] {
    return problem.min_neighbours == 0 || kernel.EvaluateDistance(reach) > kNegligibleWeight;
  };

  GroupedLocalFits fits(problem.basis, ValueColumns(scales), problem.min_neighbours, distances.GetGroups());
  const auto weights_of_block = [&](Index first, Eigen::Ref<Matrix> weights) {
    weights = distances.GetSquared().middleCols(first, weights.cols());
    kernel.ReplaceDistances(weights);
  };

  std::vector<BestRadius> best(scales.size());
  std::vector<double> least(scales.size(), std::numeric_limits<double>::max());
  const auto [lowest, highest] = distances.RadiusBounds();
  const double step = (std::log(highest) - std::log(lowest)) / (kRadii - 1);
  for (int i = 0; i < kRadii; ++i) {
    const double radius = std::exp(std::log(lowest) + i * step);
    kernel.SetParameters(Vector::Constant(1, radius));
    if (!reaches_enough()) continue;
    fits.FitAndCrossValidate(weights_of_block, check);
    for (std::size_t s = 0; s < scales.size(); ++s) {
      const auto column = static_cast<Index>(s);
      SamplePredictions predictions{scales[s].back(fits.GetFit().col(column)),
                                    scales[s].back(fits.GetCrossValidation().col(column))};
      const double objective = Objective(problem.response, predictions);
      if (!(objective < least[s])) continue;  // a NaN never is
      least[s] = objective;
      best[s] = {radius, std::move(predictions)};
    }
  }
  return best;
}

}  // namespace kestrel::math::metamodel
