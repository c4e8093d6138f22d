#include <benchmark/benchmark.h>

#include <boost/random/uniform_real_distribution.hpp>

#include "selection/zor2.h"

// Cases take N, the number of samples, and n, the number of inputs.
namespace kestrel::math::metamodel {
namespace {

// Effects that fade from the first input to the last; every third input depends on its predecessor.
void BuildSubspaces(benchmark::State& state, void (*set)(ZORSettings&)) {
  random::Generator generator(1);
  boost::random::uniform_real_distribution<double> entry(-1.0, 1.0);
  Matrix x = Matrix::NullaryExpr(state.range(0), state.range(1), [&] { return entry(generator); });
  for (Index j = 1; j < x.cols(); j += 3) x.col(j) = 0.8 * x.col(j - 1) + 0.6 * x.col(j);
  Vector y = x.col(0).cwiseProduct(x.col(2)) + x.col(3).cwiseAbs2();
  for (Index j = 0; j < x.cols(); ++j) y += x.col(j) / static_cast<double>(1 + j);
  y = y.unaryExpr([&](double value) { return value + 0.3 * entry(generator); });

  ZORSettings settings(static_cast<std::uint64_t>(x.cols()));
  set(settings);
  Zor zor(x, y, {}, L"y");
  zor.Initialize(settings);
  for (auto _ : state) zor.BuildSubspaces();
  state.counters["subspaces"] = static_cast<double>(zor.GetSubspaces().cols());
}

const std::vector<std::vector<std::int64_t>> kSizes = {{200, 1000}, {20, 100}};

BENCHMARK_CAPTURE(BuildSubspaces, defaults, [](ZORSettings&) {})->ArgsProduct(kSizes)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BuildSubspaces, spearman, [](ZORSettings& s) { s.SetUseSpearman(true); })
    ->ArgsProduct(kSizes)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BuildSubspaces, correlated_inputs, [](ZORSettings& s) { s.SetUseInputCorrelationFilter(true); })
    ->ArgsProduct(kSizes)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrel::math::metamodel
