#pragma once

#include <cstdint>

#include "statistics/random.h"
#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// Kinds of point sets that `BuildClassic` makes.
enum class eClassicType : int {
  kLatinHypercube = 7,            ///< random permutation of the cells of each column
  kLatinHypercubeOrthogonal = 9,  ///< the same with column correlations driven close to 0
};

/// Design of experiments: point sets with entries in [-1, 1], one row per point, one column per input.
class DOE {
 public:
  explicit DOE(random::Generator& generator) : generator_(generator) {}

  /// A Latin hypercube of num_samples x num_inputs: in each column every one of the num_samples cells of [-1, 1] holds
  /// exactly one point, at the cell's centre. Raises utils::logic_error for an unknown type.
  Matrix BuildClassic(eClassicType type, std::uint64_t num_inputs, std::uint64_t num_samples);

 private:
  random::Generator& generator_;
};

}  // namespace kestrel::math::doe
