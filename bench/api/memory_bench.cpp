#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "build/zor_task.h"
#include "problem.h"
#include "statistics/random.h"
#include "zor_api.h"

// The heap that a build takes beside its searches and models: N = 1000 designs, n = 20 inputs, 10 outputs, one worker.
// This program stands in for malloc and counts the bytes that live. SearchesAlone runs the same tasks on the same
// tables one after the other and keeps what they find; WholeBuild is `zor_build`. The counters are MB (10^6 bytes)
// above those before the case: the peak, and what is kept at the end. Their differences are what the container of the
// designs, the record and the report take.

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<std::size_t> live_bytes{0};
std::atomic<std::size_t> peak_bytes{0};

void* Added(void* block) {
  const std::size_t bytes = malloc_usable_size(block);
  const std::size_t live = live_bytes.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  std::size_t peak = peak_bytes.load(std::memory_order_relaxed);
  while (peak < live && !peak_bytes.compare_exchange_weak(peak, live, std::memory_order_relaxed)) {
  }
  return block;
}

void* Removed(void* block) {
  live_bytes.fetch_sub(malloc_usable_size(block), std::memory_order_relaxed);
  return block;
}

}  // namespace

extern "C" {
void* malloc(std::size_t size) noexcept { return Added(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) noexcept { return Added(__libc_calloc(count, size)); }
void* realloc(void* block, std::size_t size) noexcept { return Added(__libc_realloc(Removed(block), size)); }
void* memalign(std::size_t alignment, std::size_t size) noexcept { return Added(__libc_memalign(alignment, size)); }
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return Added(__libc_memalign(alignment, size));
}
int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
  *block = Added(__libc_memalign(alignment, size));
  return 0;
}
void free(void* block) noexcept { __libc_free(Removed(block)); }
}

namespace {

using kestrel::math::Matrix;
using kestrel::zor::ZorTask;

constexpr std::uint32_t kInputs = 20;
constexpr std::uint32_t kOutputs = 10;

bench::Problem MakeProblem() { return bench::MakeProblem(1000, kInputs, kOutputs); }

/// Runs `work` once an iteration; what it returns is kept until its bytes are counted.
template <class Work>
void CountHeap(benchmark::State& state, Work work) {
  { const auto warm = work(); }  // what the libraries allocate once
  for (auto _ : state) {
    const std::size_t before = live_bytes;
    peak_bytes = before;
    const auto kept = work();
    constexpr double kMega = 1e-6;
    state.counters["peak_MB"] = kMega * static_cast<double>(peak_bytes - before);
    state.counters["kept_MB"] = kMega * static_cast<double>(live_bytes - before);
  }
}

void WholeBuild(benchmark::State& state) {
  const bench::Problem problem = MakeProblem();
  CountHeap(state, [&] {
    bench::Handle handle = bench::MakePolynomialHandle(problem, 1);
    zor_build(handle.get(), problem.samples.data(), problem.designs);
    return handle;
  });
}

struct Found {
  kestrel::math::metamodel::SubspaceResults result;
  std::shared_ptr<kestrel::math::metamodel::SurrogateBase> surrogate;
  kestrel::math::metamodel::Subsets subsets;
};

void SearchesAlone(benchmark::State& state) {
  const bench::Problem problem = MakeProblem();
  using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  const Matrix table = Eigen::Map<const RowMajor>(problem.samples.data(), problem.designs, kInputs + kOutputs);
  kestrel::math::metamodel::ZORSettings settings;
  settings.use_MLS_ = false;
  settings.use_Kriging_ = false;
  CountHeap(state, [&] {
    const boost::atomics::atomic<bool> stop(false);
    const auto inputs = std::make_shared<const Matrix>(table.leftCols(kInputs));
    const auto container = std::make_shared<kestrel::math::metamodel::SubspaceResultContainer>();
    const std::uint64_t seed = kestrel::math::random::DrawSharedSeed();
    std::vector<Found> found;
    for (std::uint32_t k = 0; k < kOutputs; ++k) {
      const auto request = std::make_shared<ZorTask::ZorRequest>(stop);
      request->inputs = inputs;
      request->output = table.col(kInputs + k);
      request->important_info.assign(kInputs, zor_selectable);
      request->settings = settings;
      request->task_log = std::make_shared<kestrel::utils::log::LogDummy>();
      request->stop_helper = std::make_shared<kestrel::utils::StopHelper>();
      request->subspace_results = container;
      for (std::uint32_t i = 0; i < kInputs; ++i) request->names.push_back(L"p" + std::to_wstring(i));
      request->response_name = L"r" + std::to_wstring(k);
      request->generator = kestrel::math::random::MakeStream(seed, k);
      ZorTask task(request);
      auto result = task.GetResultsFuture();
      auto surrogate = task.GetBestSurrogateFuture();
      auto subsets = task.GetCVIndicesFuture();
      task();
      found.push_back({result.get(), surrogate.get(), subsets.get()});
    }
    return std::make_pair(std::move(found), container);
  });
}

/// A build with Kriging alone, for one output of 10 inputs: the counter `matrices` is the peak in units of N x N
/// doubles. Arguments: N, and whether anisotropic Kriging competes.
void KrigingBuild(benchmark::State& state) {
  const auto designs = static_cast<std::uint32_t>(state.range(0));
  const bench::Problem problem = bench::MakeProblem(designs, 10, 1);
  CountHeap(state, [&] {
    bench::Handle handle = bench::MakePolynomialHandle(problem, 1);
    zor_set_use_polynomials(handle.get(), zor_false);
    zor_set_use_kriging(handle.get(), zor_true);
    zor_set_use_anisotropic_kriging(handle.get(), state.range(1) != 0 ? zor_true : zor_false);
    zor_build(handle.get(), problem.samples.data(), problem.designs);
    return handle;
  });
  state.counters["matrices"] = 1e6 * state.counters["peak_MB"] / (8.0 * designs * designs);
}

BENCHMARK(KrigingBuild)
    ->ArgNames({"N", "anisotropic"})
    ->ArgsProduct({{300, 600}, {0, 1}})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(SearchesAlone)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(WholeBuild)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
