#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "zor_api.h"

/// Handles and sample tables for tests that see the public header alone.
namespace zor_test {

struct Release {
  void operator()(zor_handle_t handle) const { zor_release(handle); }
};
using Handle = std::unique_ptr<ZOR, Release>;

inline Handle MakeHandle() {
  zor_handle_t handle = nullptr;
  EXPECT_EQ(zor_create(&handle), zor_success);
  return Handle(handle);
}

inline std::string LastError(const Handle& handle) { return zor_get_last_error(handle.get()); }

/// Designs, row by row as the interface wants them.
struct Table {
  uint32_t designs = 0;
  uint32_t num_inputs = 0;
  uint32_t num_outputs = 0;
  std::vector<double> inputs;
  std::vector<double> outputs;

  const double* Point(std::size_t design) const { return &inputs[design * num_inputs]; }
  double& Input(std::size_t design, std::size_t input) { return inputs[design * num_inputs + input]; }
  double& Output(std::size_t design, std::size_t output) { return outputs[design * num_outputs + output]; }
  double Output(std::size_t design, std::size_t output) const { return outputs[design * num_outputs + output]; }

  /// Inputs and outputs side by side.
  std::vector<double> Combined() const {
    std::vector<double> rows;
    for (std::size_t i = 0; i < designs; ++i) {
      rows.insert(rows.end(), &inputs[i * num_inputs], &inputs[i * num_inputs] + num_inputs);
      rows.insert(rows.end(), &outputs[i * num_outputs], &outputs[i * num_outputs] + num_outputs);
    }
    return rows;
  }
};

/// 1 + 2 a - 3 b^2 + a b, with a and b the first two inputs.
inline double Polynomial(const double* x) { return 1.0 + 2.0 * x[0] - 3.0 * x[1] * x[1] + x[0] * x[1]; }

/// Inputs uniform in [0, 1], the same in every run. The first output is `Polynomial`; each further one has noise, too.
inline Table MakeTable(uint32_t designs, uint32_t num_inputs, uint32_t num_outputs) {
  std::mt19937_64 generator(designs);
  const auto uniform = [&generator] { return static_cast<double>(generator() >> 11) * 0x1p-53; };
  Table table{designs, num_inputs, num_outputs, {}, {}};
  for (uint32_t i = 0; i < designs; ++i) {
    for (uint32_t j = 0; j < num_inputs; ++j) table.inputs.push_back(uniform());
    for (uint32_t k = 0; k < num_outputs; ++k) {
      table.outputs.push_back(Polynomial(table.Point(i)) + 0.2 * k * (uniform() - 0.5));
    }
  }
  return table;
}

inline void SetCounts(const Handle& handle, const Table& table) {
  EXPECT_EQ(zor_set_input_count(handle.get(), table.num_inputs), zor_success);
  EXPECT_EQ(zor_set_output_count(handle.get(), table.num_outputs), zor_success);
}

/// Names x0, x1, ... and y0, y1, ...
inline void SetNames(const Handle& handle, const Table& table) {
  const auto set = [](char prefix, uint32_t count, const std::function<uint32_t(const char* const*)>& setter) {
    std::vector<std::string> names;
    std::vector<const char*> pointers;
    for (uint32_t i = 0; i < count; ++i) names.push_back(prefix + std::to_string(i));
    for (const std::string& name : names) pointers.push_back(name.c_str());
    EXPECT_EQ(setter(pointers.data()), zor_success);
  };
  set('x', table.num_inputs, [&](auto names) { return zor_set_input_names(handle.get(), names, table.num_inputs); });
  set('y', table.num_outputs, [&](auto names) { return zor_set_output_names(handle.get(), names, table.num_outputs); });
}

inline uint32_t Build(const Handle& handle, const Table& table) {
  return zor_build_split(handle.get(), table.inputs.data(), table.outputs.data(), table.designs);
}

/// A handle with counts and names, built on the table.
inline Handle MakeBuilt(const Table& table) {
  Handle handle = MakeHandle();
  SetCounts(handle, table);
  SetNames(handle, table);
  EXPECT_EQ(Build(handle, table), zor_success) << LastError(handle);
  return handle;
}

inline bool IsBuilt(const Handle& handle) {
  double cop = 0.0;
  return zor_get_cop_per_output(handle.get(), 0, &cop) != zor_not_built;
}

}  // namespace zor_test
