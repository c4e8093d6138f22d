#pragma once

#include <cstdint>

#include "statistics/random.h"
#include "support/linear_algebra.h"
#include "support/log.h"
#include "surrogates/surrogate2_base.h"

namespace kestrel::math::statistics {

/// Sobol indices of a surrogate (Sobol 1993; total effect after Homma and Saltelli 1996) by a pick-and-freeze estimate
/// on resampled support points, or on an orthogonal Latin hypercube over their range if `uniform`.
/// @returns n x 2, one row per input: first-order index, total-effect index, both in 0..1. NaN for inputs that the
/// surrogate does not use and where the surrogate is constant; 1 and 1 if it uses a single input.
/// @param log  may be null; told how many resampled points were dropped because the surrogate had no value there.
Matrix SobolIndices(const metamodel::SurrogateBase& surrogate, utils::log::LogBase* log, std::uint64_t num_samples,
                    bool uniform, random::Generator& generator);

}  // namespace kestrel::math::statistics
