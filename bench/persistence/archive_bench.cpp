// What the archive pair writes and reads a second: large matrices, many small tracked objects under checksum
// annotations, and both, as a stored run has them.

#include "persistence/archive/archives.h"
#include "support/linear_algebra.h"

#include <benchmark/benchmark.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

/// About a cell of a design table: a kind, a value and a short text.
struct Cell {
  template <class Archive>
  void serialize(Archive& archive, unsigned /*version*/) {
    using boost::serialization::make_nvp;
    archive& make_nvp("kind_", kind) & make_nvp("value_", value) & make_nvp("text_", text);
  }

  int kind = 1;
  double value = 0.5;
  std::wstring text = L"name";
};

struct Content {
  template <class Archive>
  void serialize(Archive& archive, unsigned /*version*/) {
    using boost::serialization::make_nvp;
    archive& make_nvp("matrices_", matrices) & make_nvp("cells_", cells) & make_nvp("values_", values);
  }

  std::vector<kestrel::math::Matrix> matrices;
  std::vector<Cell> cells;
  std::vector<double> values;  // annotated one by one
};

}  // namespace

BOOST_CLASS_TRACKING(Cell, boost::serialization::track_always)

namespace {

Content MakeContent(const benchmark::State& state) {
  Content content;
  content.matrices.assign(static_cast<std::size_t>(state.range(0)), kestrel::math::Matrix::Constant(1000, 100, 0.5));
  content.cells.resize(static_cast<std::size_t>(state.range(1)));
  content.values.resize(static_cast<std::size_t>(state.range(2)));
  return content;
}

std::string Write(const Content& content) {
  std::ostringstream stream;
  kestrel::portable_binary_oarchive archive(stream);
  archive << content;
  return stream.str();
}

void CountBytes(benchmark::State& state, const std::string& bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes.size()));
}

void BM_Write(benchmark::State& state) {
  const Content content = MakeContent(state);
  for (auto _ : state) {
    std::ostringstream stream;
    kestrel::portable_binary_oarchive archive(stream);
    archive << content;
    benchmark::DoNotOptimize(stream);
  }
  CountBytes(state, Write(content));
}

void BM_Read(benchmark::State& state) {
  const std::string bytes = Write(MakeContent(state));
  std::istringstream stream(bytes);
  for (auto _ : state) {
    stream.seekg(0);
    Content content;
    kestrel::portable_binary_iarchive archive(stream);
    archive >> content;
    benchmark::DoNotOptimize(content);
  }
  CountBytes(state, bytes);
}

void Sizes(benchmark::internal::Benchmark* bench) {
  bench->ArgNames({"matrices", "cells", "values"})->Unit(benchmark::kMillisecond);
  bench->Args({10, 0, 0})->Args({0, 30000, 0})->Args({0, 0, 100000})->Args({10, 30000, 0});
}
BENCHMARK(BM_Write)->Apply(Sizes);
BENCHMARK(BM_Read)->Apply(Sizes);

}  // namespace
