#include <benchmark/benchmark.h>

#include <boost/random/uniform_real_distribution.hpp>

#include "selection/polynomial_importance.h"
#include "selection/sobol_indices.h"
#include "selection/zor2.h"
#include "surrogates/linear_regression.h"

// Cases take N, the number of samples, and n, the number of inputs.
namespace kestrel::math::metamodel {
namespace {

struct Sample {
  Matrix x;
  Vector y;
};

// Effects that fade from the first input to the last, one interaction, and noise: a reduction has many steps.
Sample MakeSample(const benchmark::State& state) {
  random::Generator generator(1);
  boost::random::uniform_real_distribution<double> entry(-1.0, 1.0);
  Sample sample;
  sample.x = Matrix::NullaryExpr(state.range(0), state.range(1), [&] { return entry(generator); });
  sample.y = sample.x * Vector::LinSpaced(sample.x.cols(), 1.0, 0.02) + sample.x.col(0).cwiseProduct(sample.x.col(1));
  sample.y = sample.y.unaryExpr([&](double value) { return value + 0.3 * entry(generator); });
  return sample;
}

LinearRegression FullQuadratic(const Sample& sample) {
  LinearRegressionSettings settings(static_cast<std::uint64_t>(sample.x.cols()));
  settings.SetOrder(2);
  LinearRegression regression(sample.x, sample.y);
  regression.Initialize(settings);
  regression.Build();
  return regression;
}

void Evaluate(benchmark::State& state, const ZORSettings& settings) {
  const Sample sample = MakeSample(state);
  Zor zor(sample.x, sample.y, {}, L"y");
  zor.Initialize(settings);
  zor.SetInfoImportant(std::vector<std::uint64_t>(static_cast<std::size_t>(sample.x.cols()), 1));
  zor.BuildSubspaces();
  for (auto _ : state) zor.EvaluateMetamodels();
  state.counters["subspaces"] = static_cast<double>(zor.GetSubspaces().cols());
}

void EvaluatePolynomials(benchmark::State& state) {
  ZORSettings settings;
  settings.SetUseMLS(false);
  settings.SetUseKriging(false);
  Evaluate(state, settings);
}

// With the Sobol indices of the winner, which take 10,000 local fits for each of its inputs.
void EvaluateMovingLeastSquares(benchmark::State& state) {
  ZORSettings settings;
  settings.SetUsePolynomials(false);
  settings.SetUseKriging(false);
  Evaluate(state, settings);
}

void SobolIndicesOfQuadratic(benchmark::State& state) {
  const LinearRegression regression = FullQuadratic(MakeSample(state));
  random::Generator generator(1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(statistics::SobolIndices(regression, nullptr, 10000, false, generator));
  }
}

void ImportanceOfQuadratic(benchmark::State& state) {
  const LinearRegression regression = FullQuadratic(MakeSample(state));
  for (auto _ : state) benchmark::DoNotOptimize(ImportanceByR2adj(regression));
}

BENCHMARK(EvaluatePolynomials)->ArgsProduct({{100, 500}, {5, 20}})->Unit(benchmark::kMillisecond);
BENCHMARK(EvaluateMovingLeastSquares)->Args({50, 3})->Args({100, 5})->Args({200, 8})->Unit(benchmark::kMillisecond);
BENCHMARK(SobolIndicesOfQuadratic)->Args({100, 5})->Args({500, 20})->Unit(benchmark::kMillisecond);
BENCHMARK(ImportanceOfQuadratic)->Args({100, 5})->Args({500, 20})->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrel::math::metamodel
