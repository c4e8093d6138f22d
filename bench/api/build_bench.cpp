#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "zor_api.h"

// Whole builds through the flat interface, with the default options but for moving least squares and Kriging, which are
// off. Arguments: N designs, n inputs, outputs, workers. The counter peak_MiB is the largest resident size of the
// process so far, so that only the growth from case to case tells.

namespace {

struct Problem {
  std::uint32_t designs;
  std::uint32_t inputs;
  std::uint32_t outputs;
  std::vector<double> samples;
};

/// Bent, with an interaction, a few inputs without influence, and noise.
double Response(const double* x, std::uint32_t inputs, std::uint32_t output) {
  const std::uint32_t first = output % inputs;
  const std::uint32_t second = (output + 1) % inputs;
  const std::uint32_t third = (output + 2) % inputs;
  return x[first] + 0.7 * x[second] * x[second] + 0.8 * x[first] * x[third] + std::sin(3.0 * x[third]);
}

Problem MakeProblem(const benchmark::State& state) {
  Problem problem{static_cast<std::uint32_t>(state.range(0)),
                  static_cast<std::uint32_t>(state.range(1)),
                  static_cast<std::uint32_t>(state.range(2)),
                  {}};
  std::mt19937_64 generator(1);
  const auto uniform = [&] { return static_cast<double>(generator()) * 0x1p-63 - 1.0; };
  for (std::uint32_t row = 0; row < problem.designs; ++row) {
    std::vector<double> x(problem.inputs);
    for (double& value : x) value = uniform();
    problem.samples.insert(problem.samples.end(), x.begin(), x.end());
    for (std::uint32_t k = 0; k < problem.outputs; ++k) {
      problem.samples.push_back(Response(x.data(), problem.inputs, k) + 0.2 * uniform());
    }
  }
  return problem;
}

double PeakMebibytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

void Build(benchmark::State& state) {
  const Problem problem = MakeProblem(state);
  zor_handle_t handle = nullptr;
  zor_create(&handle);
  zor_set_input_count(handle, problem.inputs);
  zor_set_output_count(handle, problem.outputs);
  zor_set_use_mls(handle, zor_false);
  zor_set_use_kriging(handle, zor_false);
  zor_set_outputs_in_parallel_count(handle, static_cast<std::uint32_t>(state.range(3)));
  for (auto _ : state) {
    if (zor_build(handle, problem.samples.data(), problem.designs) != zor_success) {
      state.SkipWithError(zor_get_last_error(handle));
      break;
    }
  }
  double cop = 0.0;
  zor_get_cop_per_output(handle, 0, &cop);
  state.counters["cop"] = cop;
  state.counters["peak_MiB"] = PeakMebibytes();
  zor_release(handle);
}

BENCHMARK(Build)
    ->ArgNames({"N", "n", "outputs", "workers"})
    ->Args({200, 10, 1, 1})
    ->Args({200, 10, 20, 1})
    ->Args({200, 10, 20, 2})
    ->Args({1000, 20, 1, 1})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
