#include <benchmark/benchmark.h>

#include <Eigen/Cholesky>
#include <algorithm>
#include <stdexcept>
#include <utility>

#include "compare.h"
#include "statistics/distances.h"
#include "surrogates/ordinary_kriging.h"

// Speed of Kriging against the plain operations that it is made of. Both sides of a comparison run in turn, in the same
// loop: `ratio` is the time of ours divided by that of the parts, whatever else the machine does. Arguments: N samples,
// n inputs.

namespace {

using namespace kestrel::bench;
using namespace kestrel::math;
using namespace kestrel::math::metamodel;

constexpr double kNugget = 1e-4;

OrdinaryKrigingSettings Settings(Index inputs, const Vector& radii) {
  OrdinaryKrigingSettings settings(static_cast<std::uint64_t>(inputs));
  settings.SetKernelType(radii.size() == 1 ? Kernel::kConstInflIsoExp : Kernel::kConstInflExp);
  settings.SetKernelParameter(radii);
  settings.SetNugget(kNugget);
  return settings;
}

struct Problem {
  explicit Problem(const benchmark::State& state, bool isotropic = true)
      : points(Points(state.range(0), state.range(1))), values(Values(points)), kriging(points, values) {
    kriging.Initialize(Settings(points.cols(), Vector::Constant(isotropic ? 1 : points.cols(), 1.5)));
    if (!kriging.Build()) throw std::runtime_error("The model of a benchmark must be built.");
  }
  Matrix points;
  Vector values;
  OrdinaryKriging kriging;
};

/// exp(-|s_a - s_b|^2) by one matrix product and one exponential over the triangle, and its factor.
struct CorrelationsAndFactor {
  explicit CorrelationsAndFactor(Matrix scaled_points)
      : scaled(std::move(scaled_points)), norms(scaled.rowwise().squaredNorm()), R(scaled.rows(), scaled.rows()) {}
  void operator()() {
    const Index n = R.rows();
    R.noalias() = scaled * scaled.transpose();
    for (Index i = 0; i < n; ++i) {
      auto below = R.col(i).tail(n - i).array();
      below = (2.0 * below - norms.tail(n - i).array() - norms[i]).exp();
      R(i, i) += kNugget;
    }
    benchmark::DoNotOptimize(factor.compute(R));
  }
  Matrix scaled;
  Vector norms;
  Matrix R;
  Eigen::LLT<Matrix> factor;
};

void LikelihoodIsotropic(benchmark::State& state) {
  Problem problem(state);
  const Matrix distances = statistics::CalcDistanceMatrix(problem.points);
  Matrix R;
  Compare(
      state,
      [&] {
        problem.kriging.BuildCorrelationFromDistances(distances, R);
        benchmark::DoNotOptimize(problem.kriging.BuildLikelihood(problem.values, R));
      },
      CorrelationsAndFactor(problem.points));
}

void LikelihoodAnisotropic(benchmark::State& state) {
  Problem problem(state, false);
  Matrix R;
  Compare(
      state,
      [&] {
        problem.kriging.BuildCorrelationMatrix(problem.points, R);
        benchmark::DoNotOptimize(problem.kriging.BuildLikelihood(problem.values, R));
      },
      CorrelationsAndFactor(problem.points));
}

void Gradient(benchmark::State& state) {
  const Problem problem(state, false);
  Compare(
      state, [&] { benchmark::DoNotOptimize(problem.kriging.BuildGradient()); }, CorrelationsAndFactor(problem.points));
}

void LeaveOneOut(benchmark::State& state) {
  const Problem problem(state);
  Compare(
      state, [&] { benchmark::DoNotOptimize(problem.kriging.ApproximateLeaveOneOut()); },
      CorrelationsAndFactor(problem.points));
}

/// Against one refit for each of the five subsets.
void CrossValidationOfFifths(benchmark::State& state) {
  const Problem problem(state);
  Subsets subsets;
  for (Index i = 0; i < problem.points.rows(); ++i) subsets.push_back(static_cast<std::uint64_t>(i) % 5);
  Compare(
      state, [&] { benchmark::DoNotOptimize(problem.kriging.ApproximateCrossValidation(subsets)); },
      [&] { benchmark::DoNotOptimize(problem.kriging.ApproximateCrossValidationCompare(subsets)); });
}

/// Distances by one matrix product, a vectorised exponential, and one product with the weights, by blocks of rows.
struct PlainPrediction {
  PlainPrediction(Matrix support_points, Matrix query_points, Vector support_weights)
      : support(std::move(support_points)), query(std::move(query_points)), weights(std::move(support_weights)) {}
  void operator()() {
    constexpr Index kRows = 128;
    const Vector support_norms = support.rowwise().squaredNorm();
    Vector values(query.rows());
    Matrix block(kRows, support.rows());
    for (Index first = 0; first < query.rows(); first += kRows) {
      const Index count = std::min(kRows, query.rows() - first);
      const Vector norms = query.middleRows(first, count).rowwise().squaredNorm();
      block.topRows(count).noalias() = query.middleRows(first, count) * support.transpose();
      for (Index k = 0; k < support.rows(); ++k) {
        auto column = block.col(k).head(count).array();
        column = (2.0 * column - norms.array() - support_norms[k]).exp();
      }
      values.segment(first, count).noalias() = block.topRows(count) * weights;
    }
    benchmark::DoNotOptimize(values);
  }
  Matrix support;
  Matrix query;
  Vector weights;
};

void Prediction(benchmark::State& state) {
  const Problem problem(state);
  const Matrix query = Points(100000, problem.points.cols(), 8);
  Compare(
      state, [&] { benchmark::DoNotOptimize(problem.kriging.Approximate(query)); },
      PlainPrediction(problem.points, query, problem.kriging.GetKernelWeights()));
}

/// A whole search, from the settings on.
void Search(benchmark::State& state, Kernel::eType kernel) {
  const Problem problem(state);
  OrdinaryKriging kriging(problem.points, problem.values);
  OrdinaryKrigingSettings settings = Settings(problem.points.cols(), Vector());
  settings.SetKernelType(kernel);
  for (auto _ : state) {
    kriging.Initialize(settings);
    benchmark::DoNotOptimize(kriging.BuildOptimal(Subsets()));
  }
}

void Shapes(benchmark::internal::Benchmark* bench) {
  bench->Args({200, 5})->Args({500, 10})->Args({1000, 10})->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(LikelihoodIsotropic)->Apply(Shapes);
BENCHMARK(LikelihoodAnisotropic)->Apply(Shapes);
BENCHMARK(Gradient)->Apply(Shapes);
BENCHMARK(LeaveOneOut)->Apply(Shapes);
BENCHMARK(CrossValidationOfFifths)->Apply(Shapes);
BENCHMARK(Prediction)->Args({500, 10})->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, isotropic, Kernel::kConstInflIsoExp)->Args({200, 5})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Search, anisotropic, Kernel::kConstInflExp)->Args({200, 5})->Unit(benchmark::kMillisecond);

}  // namespace
