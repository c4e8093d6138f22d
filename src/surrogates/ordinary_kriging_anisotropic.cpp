#include <algorithm>
#include <vector>

#include "doe/doe.h"
#include "optimizer/nlpqlp.h"
#include "statistics/random.h"
#include "surrogates/ordinary_kriging_search.h"

// The search for the nugget and one radius per input: a Latin hypercube sample, and local searches from its best points
// with the gradient of the likelihood.

namespace kestrel::math::metamodel {
namespace {

using algorithm::optimizer::NLPQLP;

using Search = OrdinaryKriging::HyperparameterSearch;

constexpr std::size_t kStarts = 5;
constexpr std::uint64_t kTrialsPerVariable = 10;
constexpr double kLogNuggetLow = -6.0;
constexpr double kLogNuggetHigh = 0.0;
constexpr double kLogRadiusLow = -0.59;
constexpr double kLogRadiusHigh = 1.92;
constexpr double kLogNeighboursLow = 0.0;  // one neighbour
/// The sample is the same for each model, so that a model does not depend on those that were built before.
constexpr unsigned kSampleSeed = 20240607;

struct Bounds {
  Vector lower;
  Vector upper;
};

Bounds MakeBounds(Index num_radii, bool neighbours) {
  Bounds bounds{Vector::Constant(1 + num_radii, neighbours ? kLogNeighboursLow : kLogRadiusLow),
                Vector::Constant(1 + num_radii, kLogRadiusHigh)};
  bounds.lower[0] = kLogNuggetLow;
  bounds.upper[0] = kLogNuggetHigh;
  return bounds;
}

/// One point per column: entries in [-1, 1] become [-0.59, 1.92], those of the nugget [-6, 0].
Matrix SamplePoints(const Bounds& bounds) {
  const auto count = static_cast<std::uint64_t>(bounds.lower.size());
  random::Generator generator(kSampleSeed);
  Matrix sample =
      doe::DOE(generator).BuildClassic(doe::eClassicType::kLatinHypercube, count, count * kTrialsPerVariable);
  sample = (1.255 * sample.array() + 0.665).matrix();
  sample.col(0) = (2.3904382470119523 * sample.col(0).array() - 4.589641434262948).matrix();
  return sample.transpose()
      .cwiseMax(bounds.lower.replicate(1, sample.rows()))
      .cwiseMin(bounds.upper.replicate(1, sample.rows()));
}

/// Follows the objective downhill. What was best is in the search.
void Descend(Search& search, const Bounds& bounds, const Vector& start) {
  NLPQLP solver(static_cast<int>(start.size()), 0, 0, 1);
  solver.SetBoundsLower(bounds.lower);
  solver.SetBoundsUpper(bounds.upper);
  solver.MAXFUN = 50;
  solver.MAXIT = 200;
  solver.ACC = 1e-3;
  solver.X.col(0) = start;
  solver.DoStep();
  while (solver.IFAIL < 0) {
    if (solver.IFAIL == -1) {
      solver.F[0] = search.Evaluate(solver.X.col(0)).value_or(std::numeric_limits<double>::infinity());
    } else {
      solver.DF = search.Gradient(solver.X.col(0));
    }
    solver.DoStep();
  }
}

}  // namespace

bool OrdinaryKriging::BuildOptimalAnisotropic(const Subsets& subsets, bool best_start_only) {
  PrepareSample();
  const auto num_radii = static_cast<Index>(settings_.GetNumberKernelParameters());
  if (num_radii == 0) return false;
  const Bounds bounds = MakeBounds(num_radii, settings_.GetKernelType() == Kernel::kNodalInflExp);

  Search search(*this, subsets, nullptr);
  const Matrix sample = SamplePoints(bounds);
  std::vector<Search::Trial> starts;
  for (const auto& point : sample.colwise()) {
    if (const std::optional<double> objective = search.Evaluate(point)) starts.push_back({point, *objective});
  }
  std::stable_sort(starts.begin(), starts.end(), [](auto& a, auto& b) { return a.objective < b.objective; });
  const std::size_t count = best_start_only ? 1 : kStarts;
  if (starts.size() > count) starts.resize(count);
  for (const auto& start : starts) Descend(search, bounds, start.point);
  return search.BuildBest();
}

}  // namespace kestrel::math::metamodel
