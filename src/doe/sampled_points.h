#pragma once

#include <cstdint>

#include "statistics/random.h"
#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// Independent points, uniform in [-1, 1].
Matrix PlainMonteCarlo(std::uint64_t num_points, std::uint64_t num_inputs, random::Generator& generator);

/// The first points of the Sobol sequence, which fills the box evenly whatever their number; best a power of 2. It
/// starts with its corner point (-1, ..., -1), without which the first 2^m points are not balanced (Sobol 1967;
/// direction numbers of Joe and Kuo 2008, "Constructing Sobol sequences with better two-dimensional projections").
/// Refuses more inputs than there are direction numbers for.
Matrix SobolSequence(std::uint64_t num_points, std::uint64_t num_inputs);

}  // namespace kestrel::math::doe
