#include <benchmark/benchmark.h>

#include <Eigen/Cholesky>

#include "compare.h"
#include "surrogates/linear_regression.h"

// Speed of one polynomial fit, of its Box-Cox search, and of the grouped cross validation against the plain products it
// is made of. Arguments: N samples, n inputs of a full quadratic basis with m = 1 + 2 n + n (n - 1) / 2 coefficients.

namespace {

using namespace kestrel::bench;
using namespace kestrel::math;
using namespace kestrel::math::metamodel;

constexpr std::uint64_t kGroups = 10;

Vector Values(const Matrix& points) {
  return (points.rowwise().sum().array() + 0.3 * points.col(0).array().square() + 0.1 * points.col(1).array()).exp();
}

LinearRegressionSettings FullQuadratic(Index inputs) {
  LinearRegressionSettings settings(static_cast<std::uint64_t>(inputs));
  settings.SetOrder(2);
  return settings;
}

struct Problem {
  explicit Problem(const benchmark::State& state)
      : points(Points(state.range(0), state.range(1))), values(Values(points)), settings(FullQuadratic(points.cols())) {
    for (Index i = 0; i < points.rows(); ++i) subsets.push_back(static_cast<std::uint64_t>(i) % kGroups);
  }
  Matrix points;
  Vector values;
  LinearRegressionSettings settings;
  Subsets subsets;
};

/// One whole product P' P: the yardstick of the cross validation, with kGroups solves of its size.
void ProductAndSolves(benchmark::State& state) {
  const Problem problem(state);
  const Matrix P = BuildCoefficientMatrix(problem.points, problem.settings.GetMainTermSelection(),
                                          problem.settings.GetInteractionSelection());
  const Vector right = P.transpose() * problem.values;
  for (auto _ : state) {
    const Matrix normal = P.transpose() * P;
    for (std::uint64_t g = 0; g < kGroups; ++g) {
      benchmark::DoNotOptimize(Eigen::LDLT<Matrix>(normal).solve(right).eval());
    }
  }
}

void GroupedCrossValidation(benchmark::State& state) {
  const Problem problem(state);
  LinearRegression regression(problem.points, problem.values);
  regression.Initialize(problem.settings);
  regression.Build();
  for (auto _ : state) benchmark::DoNotOptimize(regression.ApproximateCrossValidation(problem.subsets));
}

/// One fit as it is written down: basis, whole product P'P, factor, coefficients, fitted values.
void PlainFit(benchmark::State& state) {
  const Problem problem(state);
  for (auto _ : state) {
    const Matrix P = BuildCoefficientMatrix(problem.points, problem.settings.GetMainTermSelection(),
                                            problem.settings.GetInteractionSelection());
    const Matrix normal = P.transpose() * P;
    const Vector coefficients = Eigen::LDLT<Matrix>(normal).solve(P.transpose() * problem.values);
    benchmark::DoNotOptimize((P * coefficients).eval());
  }
}

/// A build from the settings on, the basis included.
template <class Build>
void BuildFromSettings(benchmark::State& state, Build build) {
  const Problem problem(state);
  LinearRegressionSettings other_terms = problem.settings;
  other_terms.SetOrder(1);
  LinearRegression regression(problem.points, problem.values);
  for (auto _ : state) {
    regression.Initialize(other_terms);  // so that no basis stands
    regression.Initialize(problem.settings);
    benchmark::DoNotOptimize(build(regression));
  }
}

void Fit(benchmark::State& state) {
  BuildFromSettings(state, [](LinearRegression& regression) { return regression.Build(); });
}

void BoxCoxSearch(benchmark::State& state) {
  BuildFromSettings(state, [](LinearRegression& regression) { return regression.BuildOptimalBoxCox(); });
}

void Approximate(benchmark::State& state) {
  const Problem problem(state);
  LinearRegression regression(problem.points, problem.values);
  regression.Initialize(problem.settings);
  regression.Build();
  const Matrix query = Points(10000, state.range(1));
  for (auto _ : state) benchmark::DoNotOptimize(regression.Approximate(query));
}

void Shapes(benchmark::internal::Benchmark* bench) { bench->Args({200, 5})->Args({500, 10})->Args({1000, 20}); }

BENCHMARK(ProductAndSolves)->Apply(Shapes)->Unit(benchmark::kMicrosecond);
BENCHMARK(GroupedCrossValidation)->Apply(Shapes)->Unit(benchmark::kMicrosecond);
BENCHMARK(PlainFit)->Apply(Shapes)->Unit(benchmark::kMicrosecond);
BENCHMARK(Fit)->Apply(Shapes)->Unit(benchmark::kMicrosecond);
BENCHMARK(BoxCoxSearch)->Apply(Shapes)->Unit(benchmark::kMicrosecond);
BENCHMARK(Approximate)->Apply(Shapes)->Unit(benchmark::kMicrosecond);

}  // namespace
