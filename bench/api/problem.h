#pragma once

#include <cmath>
#include <cstdint>
#include <memory>
#include <random>
#include <type_traits>
#include <vector>

#include "zor_api.h"

/// A table of designs and a handle for it, made alike by every program of this folder.
namespace bench {

struct Problem {
  std::uint32_t designs;
  std::uint32_t inputs;
  std::uint32_t outputs;
  std::vector<double> samples;  ///< designs x (inputs + outputs), row by row
};

/// Bent, with an interaction, a few inputs without influence, and noise.
inline double Response(const double* x, std::uint32_t inputs, std::uint32_t output) {
  const std::uint32_t first = output % inputs;
  const std::uint32_t second = (output + 1) % inputs;
  const std::uint32_t third = (output + 2) % inputs;
  return x[first] + 0.7 * x[second] * x[second] + 0.8 * x[first] * x[third] + std::sin(3.0 * x[third]);
}

/// Inputs between -1 and 1, the same for the same sizes.
inline Problem MakeProblem(std::uint32_t designs, std::uint32_t inputs, std::uint32_t outputs) {
  Problem problem{designs, inputs, outputs, {}};
  std::mt19937_64 generator(1);
  const auto uniform = [&] { return static_cast<double>(generator()) * 0x1p-63 - 1.0; };
  problem.samples.reserve(std::size_t{designs} * (inputs + outputs));
  for (std::uint32_t row = 0; row < designs; ++row) {
    std::vector<double> x(inputs);
    for (double& value : x) value = uniform();
    problem.samples.insert(problem.samples.end(), x.begin(), x.end());
    for (std::uint32_t k = 0; k < outputs; ++k) {
      problem.samples.push_back(Response(x.data(), inputs, k) + 0.2 * uniform());
    }
  }
  return problem;
}

struct Release {
  void operator()(zor_handle_t handle) const { zor_release(handle); }
};
using Handle = std::unique_ptr<std::remove_pointer_t<zor_handle_t>, Release>;

/// Default options but for moving least squares and Kriging, which are off.
inline Handle MakePolynomialHandle(const Problem& problem, std::uint32_t workers) {
  zor_handle_t handle = nullptr;
  zor_create(&handle);
  zor_set_input_count(handle, problem.inputs);
  zor_set_output_count(handle, problem.outputs);
  zor_set_use_mls(handle, zor_false);
  zor_set_use_kriging(handle, zor_false);
  zor_set_outputs_in_parallel_count(handle, workers);
  return Handle(handle);
}

}  // namespace bench
