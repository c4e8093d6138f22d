#pragma once

#include <cstdint>
#include <vector>

#include "support/linear_algebra.h"
#include "support/stop_helper.h"

/// The errors of a Kriging model at samples that it did not see, with the mean estimated anew, from one factor.
///
/// With b = R^-1 1 and Q = R^-1 - b b' / 1'b the errors at the samples of a subset S, by the model of the others, are
/// z_S - f_S = (Q_SS)^-1 w_S (Dubrule 1983): the rows and columns of S leave R by block inversion, and so does their
/// nugget. Of R^-1 = V'V only the diagonal blocks are formed.
namespace kestrel::math::metamodel {

/// Each sample alone: w_i / Q_ii. @param V  N x N.  @param weights  w, length N.
Vector LeaveOneOutErrors(const Matrix& V, const VectorIn& weights);

/// @param subsets  length N, one number per sample. The samples of a subset that has them all get NaN.
Vector LeaveSubsetsOutErrors(const Matrix& V, const VectorIn& weights, const std::vector<std::uint64_t>& subsets,
                             const utils::StopHelper* stop);

}  // namespace kestrel::math::metamodel
