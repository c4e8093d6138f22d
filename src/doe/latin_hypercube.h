#pragma once

#include "statistics/random.h"
#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// A random Latin hypercube in [-1, 1]: num_samples x num_inputs, each column a random order of the cell centres
/// (2 c + 1 - N) / N, c = 0 .. N - 1.
Matrix RandomLatinHypercube(Index num_samples, Index num_inputs, random::Generator& generator);

/// Moves each entry of such a hypercube to a random place in its cell, 2 / N wide (McKay, Beckman and Conover 1979, "A
/// comparison of three methods for selecting values of input variables in the analysis of output from a computer
/// code").
Matrix ScatterInCells(Matrix points, random::Generator& generator);

/// Reorders the entries of each column of a Latin hypercube so that the correlations between the columns come close to
/// 0, to about 1 / N where there are few inputs beside samples: ranked Gram-Schmidt (Owen 1994, "Controlling
/// correlations in Latin hypercube samples"). The result is the best of the sweeps by root mean square correlation and
/// never worse than what was given. More than N - 1 columns cannot all be uncorrelated; the sweeps then end early.
Matrix ReduceCorrelations(Matrix points);

}  // namespace kestrel::math::doe
