#pragma once

#include <boost/dynamic_bitset.hpp>
#include <cstdint>

#include "support/linear_algebra.h"

/// The filters that map significance, importance and correlation to subspaces. A subspace has one entry per input: 0
/// out, 1 linear, 3 linear and quadratic terms. Importance has one entry per input: 0 left out, 1 may be filtered, 2
/// kept. Level counts have one entry per input: distinct values minus one (0 constant, 1 two levels).
namespace kestrel::math::metamodel {

/// True if there is one importance per input; otherwise reports "size of importance vector not consistent to number of
/// variables".
bool CheckImportanceSize(Index num_entries, Index num_inputs);

/// 3 limited by the level count: 1 for a count of one, 0 for a count of zero.
std::uint64_t FullEntry(std::uint64_t level_count);

/// All inputs of importance not 0, each with its full entry.
IndexVector FullSubspace(const IndexVector& importance, const IndexVector& level_counts);

/// Importance 2, or 1 with the quadratic bit: the full entry; importance 1 with only the linear bit: 1, 0 for a
/// constant input; else 0.
IndexVector MapImportance2Subspace(const boost::dynamic_bitset<>& linear_bits,
                                   const boost::dynamic_bitset<>& quadratic_bits, const IndexVector& importance,
                                   const IndexVector& level_counts);

/// Importance 2 keeps its entry, importance 1 keeps it if its value is at least the limit; else 0.
IndexVector CoIFilterSubspace(const IndexVector& subspace, const VectorIn& values, double limit,
                              const IndexVector& importance);

/// Importance 2 keeps its entry, importance 1 keeps it if `statistics::CorrFilter` keeps the input; else 0.
/// @param M  2 x n, the quadratic correlations of the inputs with the response.
IndexVector CorrFilterSubspace(const IndexVector& subspace, const MatrixIn& M, double significance, double fraction,
                               const IndexVector& importance);

}  // namespace kestrel::math::metamodel
