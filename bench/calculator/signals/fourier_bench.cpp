#include <benchmark/benchmark.h>

#include <boost/numeric/ublas/vector.hpp>
#include <chrono>
#include <cmath>
#include <complex>
#include <unsupported/Eigen/FFT>
#include <vector>

#include "calculator/functions/option_words.h"
#include "calculator/signals/signal_functions.h"

// Cases take n, the number of samples.
namespace kestrel::calculator {
namespace {

double Sample(std::size_t i) { return std::sin(0.01 * static_cast<double>(i)) + static_cast<double>(i % 17); }

Arguments RealVector(std::size_t size) {
  Value::VectorType samples(size);
  for (std::size_t i = 0; i < size; ++i) samples(i) = Sample(i);
  return {Value(samples)};
}

Value Call(const wchar_t* name, const Arguments& arguments) {
  static const FunctionTable table = [] {
    FunctionTable functions;
    AppendSignalFunctions(functions);
    return functions;
  }();
  math::random::Generator generator(1);
  FunctionContext context = {generator, false, {}};
  return table.at(name).function(arguments, context);
}

using Clock = std::chrono::steady_clock;

template <class Work>
double Seconds(Work work) {
  const auto start = Clock::now();
  work();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// The function, from value to value, against Eigen's transform of the bare numbers with its plan made before; both take
// turns, and the counter is the ratio of their times.
void Fft(benchmark::State& state) {
  const auto size = static_cast<std::size_t>(state.range(0));
  const Arguments arguments = RealVector(size);
  std::vector<double> samples(size);
  for (std::size_t i = 0; i < size; ++i) samples[i] = Sample(i);
  std::vector<std::complex<double>> spectrum(size);
  Eigen::FFT<double> plain;
  plain.fwd(spectrum, samples);
  double function = 0.0;
  double bare = 0.0;
  for (auto _ : state) {
    function += Seconds([&] { benchmark::DoNotOptimize(Call(L"fft", arguments)); });
    bare += Seconds([&] { plain.fwd(spectrum, samples); });
    benchmark::ClobberMemory();
  }
  state.counters["bare_ms"] = 1e3 * bare / static_cast<double>(state.iterations());
  state.counters["function_ms"] = 1e3 * function / static_cast<double>(state.iterations());
  state.counters["function_to_bare"] = function / bare;
}
BENCHMARK(Fft)->Arg(1 << 10)->Arg(1 << 16)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

// Lengths without small factors go through a convolution.
void FftOfPrimeLength(benchmark::State& state) {
  const Arguments arguments = RealVector(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(Call(L"fft", arguments));
}
BENCHMARK(FftOfPrimeLength)->Arg(1'000'003)->Unit(benchmark::kMillisecond);

void ButterworthFilter(benchmark::State& state) {
  const auto low_pass = static_cast<double>(EOption::LOWPASS);
  const Value values = std::get<Value>(RealVector(static_cast<std::size_t>(state.range(0)))[0]);
  const Value signal = Call(L"series", {values, Value(1e-4, 0.0)});
  const Arguments arguments = {signal, Value(low_pass, 0.0), Value(8.0, 0.0), Value(100.0, 0.0)};
  for (auto _ : state) benchmark::DoNotOptimize(Call(L"butterworthFilter", arguments));
}
BENCHMARK(ButterworthFilter)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kestrel::calculator
