#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

#include "statistics/random.h"
#include "support/linear_algebra.h"

// What the comparisons of a model with the plain operations that it is made of share.
namespace kestrel::bench {

/// In [0, 1), count x inputs.
inline math::Matrix Points(math::Index count, math::Index inputs, unsigned seed = 7) {
  math::random::Generator generator(seed);
  math::Matrix points(count, inputs);
  for (double& value : points.reshaped()) value = static_cast<double>(generator()) / 1.9e19;
  return points;
}

inline math::Vector Values(const math::Matrix& points) {
  return (points.rowwise().sum().array() + 0.3 * points.col(0).array().square()).sin();
}

template <class Work>
double Seconds(Work&& work) {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Runs both sides in turn; the time of the benchmark is that of ours, `ratio` is it divided by that of the parts.
template <class Ours, class Parts>
void Compare(benchmark::State& state, Ours ours, Parts parts) {
  double seconds_ours = 0.0;
  double seconds_parts = 0.0;
  for (auto _ : state) {
    const double once = Seconds(ours);
    state.SetIterationTime(once);
    seconds_ours += once;
    seconds_parts += Seconds(parts);
  }
  state.counters["ratio"] = seconds_ours / seconds_parts;
}

}  // namespace kestrel::bench
