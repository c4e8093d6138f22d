#pragma once

#include <cstdint>

#include "statistics/random.h"
#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// Points on the unit sphere around the centre that repel each other: a minimum of the logarithmic energy
/// - sum_{i<j} log |x_i - x_j|, that is, the largest product of distances (Fekete 1923). From a random start by
/// gradient steps along the sphere with the length of Barzilai and Borwein (1988); the minimum is a local one from some
/// dozen points on. A single input has two such points. Refuses fewer than 2 points and more than 4096.
Matrix FeketePoints(std::uint64_t num_points, std::uint64_t num_inputs, random::Generator& generator);

}  // namespace kestrel::math::doe
