#pragma once

#include <cstdint>

#include "statistics/random.h"
#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// The points that tell the coefficients of a polynomial model best: the largest determinant of F'F, F the terms of the
/// model at the points. Found by exchanging one coordinate of one point at a time (Meyer and Nachtsheim 1995, "The
/// coordinate-exchange algorithm for constructing exact optimal experimental designs") as long as the determinant, by
/// the formula of Fedorov (1972), grows; the best of 200 random starts, of fewer where there are many terms. Unlike an
/// exchange of points (Mitchell 1974) it needs no list of candidates. Points may repeat.
///
/// Input j takes the levels -1, 1 where its largest exponent is 1; -1, 0, 1 for 2; 4 e + 1 equally spaced ones for e
/// > 2.
///
/// @param exponents  of each input in each term, m x n (model_terms.h).
/// @param num_points  at least m.
Matrix DOptimal(const IndexMatrix& exponents, std::uint64_t num_points, random::Generator& generator);

}  // namespace kestrel::math::doe
