#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "handle.h"

namespace kestrel::cli {

/// What a handle is about.
struct Problem {
  std::size_t input_count = 0;
  std::size_t output_count = 0;
  std::vector<std::string> inputs;   ///< names; none if the handle was given none
  std::vector<std::string> outputs;  ///< the same
  bool is_built = false;
  std::vector<double> bounds;  ///< if built: inputs x 2, lower and upper; NaN for inputs without names
};

Problem DescribeProblem(const Handle& handle);

}  // namespace kestrel::cli
