#pragma once

#include <cstdint>

#include "support/linear_algebra.h"
#include "surrogates/surrogate2_settings_base.h"

/// The polynomial basis, chosen term by term for n inputs:
///  - main terms: bit k n + j (k = 0 .. order - 1, j = 0 .. n - 1) selects x_j^(k+1);
///  - interactions: one bit for each pair i < j in the order (0,1), (0,2), ..., (1,2), ..., or none at all.
/// The constant term is always there and always first.
///
/// A subspace has one code per input, a bit mask in which bit k wants x_j^(k+1): 0 out, 1 linear, 3 linear and
/// quadratic. A code of 2 or more also admits the input to interactions.
namespace kestrel::math::metamodel {

std::uint64_t NumberMainTerms(std::uint64_t n, std::uint64_t order);
std::uint64_t NumberInteractionTerms(std::uint64_t n);

Selection BuildMainTermSelection(std::uint64_t n, std::uint64_t order, bool value);
Selection BuildInteractionSelection(std::uint64_t n, bool value);

/// Bit of the pair i < j in an interaction selection of n inputs.
std::uint64_t InteractionBit(std::uint64_t i, std::uint64_t j, std::uint64_t n);

/// Bit length of the largest code, at most 10.
std::uint64_t OrderFromSubspace(const IndexVector& subspace);
Selection BuildMainTermSelectionFromSubspace(const IndexVector& subspace);
/// Pairs of inputs whose codes are both at least 2; of size 0 if there is none.
Selection BuildInteractionSelectionFromSubspace(const IndexVector& subspace);

/// The basis at N points of n inputs, N x (1 + selected terms): constant, main terms by rising power and within a power
/// by input, interactions. Raises std::logic_error "size of interaction vector is not consistent to regression
/// dimension" for an interaction selection of another size than 0 or n (n - 1) / 2.
Matrix BuildCoefficientMatrix(const MatrixIn& points, const Selection& main_terms, const Selection& interactions);

}  // namespace kestrel::math::metamodel
