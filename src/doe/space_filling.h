#pragma once

#include <cstdint>

#include "statistics/random.h"
#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// A Latin hypercube of cell centres whose points keep away from each other: a small sum over all pairs of points of
/// d^-20, d their distance, which the smallest distances rule (Morris and Mitchell 1995, "Exploratory designs for
/// computational experiments"; Johnson, Moore and Ylvisaker 1990 for maximin distance). From a random start by
/// simulated annealing, exchanging entries within a column. Refuses more than 8192 points.
Matrix SpaceFillingLatinHypercube(std::uint64_t num_points, std::uint64_t num_inputs, random::Generator& generator);

}  // namespace kestrel::math::doe
