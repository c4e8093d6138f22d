#pragma once

#include <cstdint>

#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// The smallest set from which a polynomial of the given order >= 1 with all its mixed terms can be told: C(n + d, d)
/// points for n inputs and order d (Koshal 1933, "Application of the method of maximum likelihood to the improvement of
/// curves fitted by the method of moments"; Myers and Montgomery, "Response Surface Methodology").
///
/// Input j is at level k_j of 0, 1, -1 and then further equally spaced levels between, for all k with
/// k_1 + ... + k_n <= d; distinct levels make that solvable. Order 1: the centre and the e_i. Order 2: these, the -e_i
/// and the e_i + e_j.
Matrix KoshalPoints(std::uint64_t num_inputs, std::uint64_t order);

}  // namespace kestrel::math::doe
