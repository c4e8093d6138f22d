#include <benchmark/benchmark.h>

#include <boost/dynamic_bitset.hpp>
#include <boost/random/uniform_real_distribution.hpp>

#include "doe/doe.h"
#include "statistics/basic_statistics_colwise.h"
#include "statistics/distances.h"
#include "statistics/sample_splitting.h"
#include "statistics/transform/transform_boxcox.h"

// Cases take N, the number of samples, and n, the number of inputs.
namespace kestrel::math {
namespace {

Matrix Samples(Index num_samples, Index num_inputs) {
  random::Generator generator(1);
  boost::random::uniform_real_distribution<double> entry(0.0, 1.0);
  return Matrix::NullaryExpr(num_samples, num_inputs, [&] { return entry(generator); });
}

Matrix Samples(const benchmark::State& state) { return Samples(state.range(0), state.range(1)); }

void SampleSplittingPotential(benchmark::State& state) {
  const Matrix inputs = Samples(state);
  const std::uint64_t subsets = statistics::NumberOfSubsets(static_cast<std::uint64_t>(inputs.rows()));
  for (auto _ : state) benchmark::DoNotOptimize(statistics::SampleSplittingPotential(inputs, subsets));
}
BENCHMARK(SampleSplittingPotential)->ArgsProduct({{50, 100, 200}, {10}})->Unit(benchmark::kMillisecond);

void CalcLinCCMatrixColwise(benchmark::State& state) {
  const Matrix inputs = Samples(state);
  for (auto _ : state) benchmark::DoNotOptimize(statistics::CalcLinCCMatrixColwise(inputs));
}
BENCHMARK(CalcLinCCMatrixColwise)->ArgsProduct({{200, 1000}, {10, 100}})->Unit(benchmark::kMillisecond);

void CalcQuadCCMatrixColwise(benchmark::State& state) {
  const Matrix inputs = Samples(state);
  for (auto _ : state) benchmark::DoNotOptimize(statistics::CalcQuadCCMatrixColwise(inputs));
}
BENCHMARK(CalcQuadCCMatrixColwise)->ArgsProduct({{200, 1000}, {10, 100}})->Unit(benchmark::kMillisecond);

// With missing values every pair of columns is reduced to its own complete rows.
void CalcQuadCCMatrixColwiseWithNan(benchmark::State& state) {
  Matrix inputs = Samples(state);
  inputs.row(7).setConstant(std::numeric_limits<double>::quiet_NaN());
  for (auto _ : state) benchmark::DoNotOptimize(statistics::CalcQuadCCMatrixColwise(inputs));
}
BENCHMARK(CalcQuadCCMatrixColwiseWithNan)->ArgsProduct({{200, 1000}, {10, 100}})->Unit(benchmark::kMillisecond);

void CalcDistanceMatrix(benchmark::State& state) {
  const Matrix inputs = Samples(state);
  for (auto _ : state) benchmark::DoNotOptimize(statistics::CalcDistanceMatrix(inputs));
}
BENCHMARK(CalcDistanceMatrix)->ArgsProduct({{200, 1000}, {10, 50}})->Unit(benchmark::kMillisecond);

void CalcRadii(benchmark::State& state) {
  const Matrix inputs = Samples(state);
  const auto k = static_cast<std::uint64_t>(2 * inputs.cols() + 1);
  for (auto _ : state) benchmark::DoNotOptimize(statistics::CalcRadii(inputs, k));
}
BENCHMARK(CalcRadii)->ArgsProduct({{200, 1000}, {3, 10, 50}})->Unit(benchmark::kMillisecond);

void CalcDensity(benchmark::State& state) {
  const Matrix inputs = Samples(state);
  const boost::dynamic_bitset<> all = ~boost::dynamic_bitset<>(static_cast<std::size_t>(inputs.cols()));
  for (auto _ : state) benchmark::DoNotOptimize(statistics::CalcDensity(inputs, inputs, all, 0.3));
}
BENCHMARK(CalcDensity)->ArgsProduct({{200, 1000}, {3, 10, 50}})->Unit(benchmark::kMillisecond);

// The second argument is the reciprocal of the exponent.
transform::TransBoxCox BoxCox(const benchmark::State& state, const Matrix& values) {
  transform::TransBoxCox transform(state.range(1), 0.1, 10.1);
  transform.Build(values);
  return transform;
}

void BoxCoxForward(benchmark::State& state) {
  const Matrix values = Samples(state.range(0), 1);
  const transform::TransBoxCox transform = BoxCox(state, values);
  for (auto _ : state) benchmark::DoNotOptimize(transform.ScaleForward(values));
}
BENCHMARK(BoxCoxForward)->ArgsProduct({{1000}, {0, 2, -20}})->Unit(benchmark::kMicrosecond);

// 33 is beyond the powers that are multiplied out.
void BoxCoxBackward(benchmark::State& state) {
  const Matrix values = Samples(state.range(0), 1);
  const transform::TransBoxCox transform = BoxCox(state, values);
  const Matrix scaled = transform.ScaleForward(values);
  for (auto _ : state) benchmark::DoNotOptimize(transform.ScaleBackward(scaled));
}
BENCHMARK(BoxCoxBackward)->ArgsProduct({{1000}, {0, 2, -20, 33}})->Unit(benchmark::kMicrosecond);

void OrthogonalLatinHypercube(benchmark::State& state) {
  random::Generator generator(1);
  doe::DOE points(generator);
  const auto num_samples = static_cast<std::uint64_t>(state.range(0));
  const auto num_inputs = static_cast<std::uint64_t>(state.range(1));
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        points.BuildClassic(doe::eClassicType::kLatinHypercubeOrthogonal, num_inputs, num_samples));
  }
}
BENCHMARK(OrthogonalLatinHypercube)->ArgsProduct({{10000}, {2, 20}})->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrel::math
