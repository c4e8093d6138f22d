#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

#include "problem.h"
#include "zor_api.h"

// Storing and reading a built model, in memory and in a file: N = 1000 designs, n = 20 inputs, 10 outputs. Reading ends
// with a handle that is compared with its database and ready to predict. The rate counts the bytes of the archive.

namespace {

const bench::Handle& BuiltHandle() {
  static const bench::Handle handle = [] {
    const bench::Problem problem = bench::MakeProblem(1000, 20, 10);
    bench::Handle made = bench::MakePolynomialHandle(problem, 0);
    zor_build(made.get(), problem.samples.data(), problem.designs);
    return made;
  }();
  return handle;
}

/// A stored model that frees itself.
struct Stored {
  Stored() = default;
  Stored(const Stored&) = delete;
  Stored& operator=(const Stored&) = delete;
  ~Stored() { zor_release_buf(bytes); }

  std::uint32_t Write(zor_handle_t handle) { return zor_write_db_buf(handle, &bytes, &size); }

  void* bytes = nullptr;
  std::size_t size = 0;
};

/// Below the directory for temporary files; gone with the object.
struct TemporaryFile {
  TemporaryFile() = default;
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { std::remove(path.c_str()); }

  std::string path = (std::filesystem::temp_directory_path() / "zor_store_bench.zor").string();
};

void CountBytes(benchmark::State& state) {
  Stored stored;
  stored.Write(BuiltHandle().get());
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(stored.size));
  state.counters["MB"] = static_cast<double>(stored.size) * 1e-6;
}

/// Repeats `work`, which returns a code.
template <class Work>
void Repeat(benchmark::State& state, Work work) {
  const zor_handle_t built = BuiltHandle().get();
  for (auto _ : state) {
    if (work(built) == zor_success) continue;
    state.SkipWithError("The call failed.");
    return;
  }
  CountBytes(state);
}

void WriteBuffer(benchmark::State& state) {
  Repeat(state, [](zor_handle_t built) { return Stored().Write(built); });
}

void ReadBuffer(benchmark::State& state) {
  Stored stored;
  stored.Write(BuiltHandle().get());
  Repeat(state, [&](zor_handle_t) {
    zor_handle_t read = nullptr;
    const std::uint32_t code = zor_read_db_buf(&read, stored.bytes, stored.size);
    zor_release(read);
    return code;
  });
}

void WriteFile(benchmark::State& state) {
  const TemporaryFile file;
  Repeat(state, [&](zor_handle_t built) { return zor_write_db_file(built, file.path.c_str()); });
}

void ReadFile(benchmark::State& state) {
  const TemporaryFile file;
  zor_write_db_file(BuiltHandle().get(), file.path.c_str());
  Repeat(state, [&](zor_handle_t) {
    zor_handle_t read = nullptr;
    const std::uint32_t code = zor_read_db_file(&read, file.path.c_str());
    zor_release(read);
    return code;
  });
}

BENCHMARK(WriteBuffer)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadBuffer)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteFile)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadFile)->Unit(benchmark::kMillisecond);

}  // namespace
