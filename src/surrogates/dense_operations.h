#pragma once

#include "support/linear_algebra.h"
#include "support/stop_helper.h"

/// The operations that Kriging spends its time in. What they give does not depend on where in memory the numbers lie.
namespace kestrel::math::metamodel {

/// A = L L' in place, in the lower triangle, N^3 / 3 operations; nothing above is read or written. False at a pivot of
/// 0 or below; NaN passes on into the pivots.
bool FactoriseLower(Eigen::Ref<Matrix> A, const utils::StopHelper* stop);

/// L <- L^-1 of a lower triangle, in place, N^3 / 3.
void InvertLower(Eigen::Ref<Matrix> L, const utils::StopHelper* stop);

/// V <- the lower triangle of V'V for a lower triangular V with zeros above, in place, N^3 / 3. What stands above is
/// not defined behind it.
void SquareLower(Eigen::Ref<Matrix> V, const utils::StopHelper* stop);

/// exp(x) of each number in place, and 0 where that would be below `least`.
void ReplaceByExponentials(Eigen::Ref<Vector> exponents, double least);

}  // namespace kestrel::math::metamodel
