#pragma once

#include "statistics/random.h"
#include "support/linear_algebra.h"

/// Cross-validation subsets: one subset number per sample, counted from 0.
namespace kestrel::math::statistics {

/// Number of subsets for n samples: 5 up to 99, n / 20 in whole numbers from 100 to 219, 10 from 220.
std::uint64_t NumberOfSubsets(std::uint64_t n);

/// `SampleSplittingPotential` up to 200 samples, `SampleSplittingRandom` above.
/// @param inputs  N x n, one row per sample.
IndexVector CalculateCVIndices(const MatrixIn& inputs, random::Generator& generator);

/// The sample at position i of a random order gets subset i modulo k.
IndexVector SampleSplittingRandom(std::uint64_t n, std::uint64_t k, random::Generator& generator);

/// Subsets that each cover the design space: samples are exchanged between subsets as long as that lowers the total
/// potential, the sum over the pairs within a subset of 1 / (d^2 + 0.0001), d the distance of the scaled inputs.
/// Samples are swept in ascending order; the partner with the largest fall, the first of equal ones, is taken at once;
/// a fall counts above 1e-12 of the total. Deterministic.
IndexVector SampleSplittingPotential(const MatrixIn& inputs, std::uint64_t k);

}  // namespace kestrel::math::statistics
