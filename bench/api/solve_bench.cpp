#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "api/zor_record.h"
#include "problem.h"
#include "zor_api.h"

// `zor_solve` on 100,000 rows against the surrogate's own evaluation of the same points: 10 inputs, all mandatory, one
// output that needs the squares and the interactions. The surrogate is the one behind the handle.

namespace {

constexpr std::uint32_t kRows = 100000;
constexpr std::uint32_t kInputs = 10;

/// The square of the sum of all inputs: every square and every interaction counts.
double SquaredSum(const double* x) {
  double sum = 0.0;
  for (std::uint32_t k = 0; k < kInputs; ++k) sum += (1.0 + 0.1 * k) * x[k];
  return sum * sum + sum;
}

const bench::Handle& BuiltHandle() {
  static const bench::Handle handle = [] {
    bench::Problem problem = bench::MakeProblem(500, kInputs, 1);
    for (std::uint32_t row = 0; row < problem.designs; ++row) {
      double* const x = &problem.samples[std::size_t{row} * (kInputs + 1)];
      x[kInputs] = SquaredSum(x);
    }
    bench::Handle made = bench::MakePolynomialHandle(problem, 1);
    const std::vector<std::uint32_t> importance(kInputs, zor_mandatory);
    zor_set_info_important(made.get(), importance.data());
    zor_set_use_boxcox(made.get(), zor_false);
    zor_build(made.get(), problem.samples.data(), problem.designs);
    return made;
  }();
  return handle;
}

/// Row by row, within the sampled bounds.
std::vector<double> Points() {
  std::mt19937_64 generator(2);
  std::vector<double> points(std::size_t{kRows} * kInputs);
  for (double& value : points) value = 0.9 * (static_cast<double>(generator()) * 0x1p-63 - 1.0);
  return points;
}

void SurrogateAlone(benchmark::State& state) {
  const auto& surrogate = BuiltHandle()->surrogate_per_output_.at(0);
  const std::vector<double> values = Points();
  using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  const kestrel::math::Matrix points = Eigen::Map<const RowMajor>(values.data(), kRows, kInputs);
  for (auto _ : state) benchmark::DoNotOptimize(surrogate->Approximate(points));
}

template <class Call>
void Solve(benchmark::State& state, Call call) {
  const zor_handle_t handle = BuiltHandle().get();
  const std::vector<double> points = Points();
  std::vector<double> values(kRows);
  for (auto _ : state) {
    if (call(handle, points.data(), values.data(), kRows) == zor_success) continue;
    state.SkipWithError(zor_get_last_error(handle));
    return;
  }
  char* text = nullptr;
  std::size_t length = 0;
  zor_get_model_str_per_output(handle, 0, &text, &length);
  state.SetLabel(std::string(text, length));
  zor_release_buf(text);
}

BENCHMARK(SurrogateAlone)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Solve, within_bounds, zor_solve)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Solve, extrapolate, zor_solve_extrapolate)->Unit(benchmark::kMillisecond);

}  // namespace
