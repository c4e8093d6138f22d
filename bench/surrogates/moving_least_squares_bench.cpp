#include <benchmark/benchmark.h>

#include <Eigen/Cholesky>

#include "compare.h"
#include "surrogates/coefficient_matrix.h"
#include "surrogates/moving_least_squares.h"

// Speed of local fits against the plain products that each of them is made of, and of the search for the radius.
// Arguments: N samples, n inputs, order; p = 1 + n order coefficients.

namespace {

using namespace kestrel::bench;
using namespace kestrel::math;
using namespace kestrel::math::metamodel;

constexpr std::uint64_t kGroups = 5;
constexpr Index kQueries = 256;

struct Problem {
  explicit Problem(const benchmark::State& state)
      : points(Points(state.range(0), state.range(1), 7)),
        values((points.rowwise().sum().array() + 0.3 * points.col(0).array().square()).exp()),
        settings(static_cast<std::uint64_t>(points.cols())) {
    settings.SetOrder(static_cast<std::uint64_t>(state.range(2)));
    settings.SetKernelParameter(Vector::Constant(1, 1.5));
    for (Index i = 0; i < points.rows(); ++i) subsets.push_back(static_cast<std::uint64_t>(i) % kGroups);
  }
  MovingLeastSquares Built() const {
    MovingLeastSquares surrogate(points, values);
    surrogate.Initialize(settings);
    surrogate.Build();
    return surrogate;
  }
  Matrix points;
  Vector values;
  MovingLeastSquaresSettings settings;
  Subsets subsets;
};

/// The yardstick for kQueries points: N kernel values, a weighted symmetric rank update N x p, a solve of size p each.
void PlainLocalFits(benchmark::State& state) {
  const Problem problem(state);
  const Matrix P = BuildCoefficientMatrix(problem.points, problem.settings.GetMainTermSelection(), Selection());
  const Matrix query = Points(kQueries, problem.points.cols(), 8);
  const Matrix query_basis = BuildCoefficientMatrix(query, problem.settings.GetMainTermSelection(), Selection());
  Vector predictions(kQueries);
  Eigen::ArrayXd squared(P.rows());
  Eigen::ArrayXd weights(P.rows());
  Matrix weighted(P.rows(), P.cols());
  Matrix normal(P.cols(), P.cols());
  Eigen::LDLT<Matrix> factor(P.cols());
  for (auto _ : state) {
    for (Index q = 0; q < kQueries; ++q) {
      squared.setZero();
      for (Index j = 0; j < query.cols(); ++j) squared += (problem.points.col(j).array() - query(q, j)).square();
      weights = (-3.0 * squared).exp();
      weighted.array() = P.array().colwise() * weights.sqrt();
      normal.setZero();
      normal.selfadjointView<Eigen::Lower>().rankUpdate(weighted.transpose());
      factor.compute(normal);
      const Vector right = P.transpose() * (weights * problem.values.array()).matrix();
      predictions[q] = query_basis.row(q) * factor.solve(right);
    }
    benchmark::DoNotOptimize(predictions.data());
  }
}

void Approximate(benchmark::State& state) {
  const Problem problem(state);
  const MovingLeastSquares surrogate = problem.Built();
  const Matrix query = Points(kQueries, problem.points.cols(), 8);
  for (auto _ : state) benchmark::DoNotOptimize(surrogate.Approximate(query));
}

/// The same points, one call for each.
void ApproximatePointByPoint(benchmark::State& state) {
  const Problem problem(state);
  const MovingLeastSquares surrogate = problem.Built();
  const Matrix query = Points(kQueries, problem.points.cols(), 8);
  for (auto _ : state) {
    for (Index q = 0; q < kQueries; ++q) benchmark::DoNotOptimize(surrogate.Approximate(query.middleRows(q, 1)));
  }
}

void GroupedCrossValidation(benchmark::State& state) {
  const Problem problem(state);
  const MovingLeastSquares surrogate = problem.Built();
  for (auto _ : state) benchmark::DoNotOptimize(surrogate.ApproximateCrossValidation(problem.subsets));
}

void RadiusSearch(benchmark::State& state) {
  const Problem problem(state);
  for (auto _ : state) {
    MovingLeastSquares surrogate = problem.Built();
    benchmark::DoNotOptimize(surrogate.BuildOptimal(problem.subsets));
  }
}

/// The same with leave one out: every sample is a group.
void RadiusSearchLeaveOneOut(benchmark::State& state) {
  const Problem problem(state);
  for (auto _ : state) {
    MovingLeastSquares surrogate = problem.Built();
    benchmark::DoNotOptimize(surrogate.BuildOptimal(Subsets()));
  }
}

void Shapes(benchmark::internal::Benchmark* bench) {
  bench->Args({100, 2, 1})->Args({200, 8, 2})->Args({500, 10, 2})->Args({1000, 20, 1})->Args({1000, 20, 2});
}

void SearchShapes(benchmark::internal::Benchmark* bench) {
  bench->Args({100, 2, 1})->Args({200, 8, 2})->Args({500, 10, 2});
}

BENCHMARK(PlainLocalFits)->Apply(Shapes)->Unit(benchmark::kMillisecond);
BENCHMARK(Approximate)->Apply(Shapes)->Unit(benchmark::kMillisecond);
BENCHMARK(ApproximatePointByPoint)->Apply(Shapes)->Unit(benchmark::kMillisecond);
BENCHMARK(GroupedCrossValidation)->Apply(SearchShapes)->Unit(benchmark::kMillisecond);
BENCHMARK(RadiusSearch)->Apply(SearchShapes)->Unit(benchmark::kMillisecond);
BENCHMARK(RadiusSearchLeaveOneOut)->Apply(SearchShapes)->Unit(benchmark::kMillisecond);

}  // namespace
