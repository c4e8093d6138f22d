#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdint>
#include <ctime>

#include "problem.h"
#include "zor_api.h"

// Whole builds through the flat interface, with the default options. BuildByClasses: processor time with more and more
// model classes, one output of 10 inputs. Build: without moving least squares and Kriging. Arguments: N designs, n
// inputs, outputs, workers. The counter peak_MiB is the largest resident size of the process so far, so that only the
// growth from case to case tells.
//
// The searches run on the threads of the workers; all else, from the samples to the record and the report, runs on the
// thread that calls. The counter outside_% is the processor time of that thread in percent of the wall time of the
// build: with one worker the share of all that is no search, though part of it runs beside the searches.

namespace {

bench::Problem MakeProblem(const benchmark::State& state) {
  return bench::MakeProblem(static_cast<std::uint32_t>(state.range(0)), static_cast<std::uint32_t>(state.range(1)),
                            static_cast<std::uint32_t>(state.range(2)));
}

double PeakMebibytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

double Seconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void Build(benchmark::State& state) {
  const bench::Problem problem = MakeProblem(state);
  const bench::Handle handle = bench::MakePolynomialHandle(problem, static_cast<std::uint32_t>(state.range(3)));
  const double caller_start = Seconds(CLOCK_THREAD_CPUTIME_ID);
  const double start = Seconds(CLOCK_MONOTONIC);
  for (auto _ : state) {
    if (zor_build(handle.get(), problem.samples.data(), problem.designs) != zor_success) {
      state.SkipWithError(zor_get_last_error(handle.get()));
      break;
    }
  }
  const double caller = Seconds(CLOCK_THREAD_CPUTIME_ID) - caller_start;
  state.counters["outside_%"] = 100.0 * caller / (Seconds(CLOCK_MONOTONIC) - start);
  double cop = 0.0;
  zor_get_cop_per_output(handle.get(), 0, &cop);
  state.counters["cop"] = cop;
  state.counters["peak_MiB"] = PeakMebibytes();
}

/// How many of the model classes compete: what a class costs is the difference to the case before.
enum Classes : std::int64_t { kPolynomials, kMovingLeastSquares, kKriging, kAnisotropicKriging };

void BuildByClasses(benchmark::State& state) {
  const std::int64_t classes = state.range(1);
  const bench::Problem problem = bench::MakeProblem(static_cast<std::uint32_t>(state.range(0)), 10, 1);
  const bench::Handle handle = bench::MakePolynomialHandle(problem, 1);
  zor_set_use_mls(handle.get(), classes >= kMovingLeastSquares ? zor_true : zor_false);
  zor_set_use_kriging(handle.get(), classes >= kKriging ? zor_true : zor_false);
  zor_set_use_anisotropic_kriging(handle.get(), classes >= kAnisotropicKriging ? zor_true : zor_false);
  for (auto _ : state) {
    if (zor_build(handle.get(), problem.samples.data(), problem.designs) != zor_success) {
      state.SkipWithError(zor_get_last_error(handle.get()));
      break;
    }
  }
}

BENCHMARK(BuildByClasses)
    ->ArgNames({"N", "classes"})
    ->ArgsProduct({{100, 200, 500}, {kPolynomials, kMovingLeastSquares, kKriging, kAnisotropicKriging}})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

BENCHMARK(Build)
    ->ArgNames({"N", "n", "outputs", "workers"})
    ->Args({200, 10, 1, 1})
    ->Args({200, 10, 20, 1})
    ->Args({200, 10, 20, 2})
    ->Args({1000, 20, 1, 1})
    ->Args({1000, 20, 10, 1})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
