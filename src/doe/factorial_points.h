#pragma once

#include <cstdint>
#include <vector>

#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// All combinations of equally spaced levels from -1 to 1, levels_per_input(j) of them for input j (1: the centre
/// alone). The first input changes fastest. Refuses an input without levels and sets that are too large.
Matrix FullCombinatorial(const std::vector<std::uint64_t>& levels_per_input);

/// The same with `levels` >= 2 levels for every input: levels^n points.
Matrix FullFactorial(std::uint64_t num_inputs, std::uint64_t levels);

}  // namespace kestrel::math::doe
