#pragma once

#include "statistics/random.h"
#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// Exchanges entries within the columns of a Latin hypercube of cell centres as long as the sum of the squared
/// correlations between the columns falls: random pairs of points, an exchange that does not lower the sum is taken
/// back (Vorechovsky and Novak 2009, "Correlation control in small-sample Monte Carlo type simulations I", at
/// temperature 0). Goes on where ranking ends (`ReduceCorrelations`); never worse than what was given.
Matrix SwapForCorrelations(const MatrixIn& points, random::Generator& generator);

}  // namespace kestrel::math::doe
