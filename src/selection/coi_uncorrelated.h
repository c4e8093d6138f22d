#pragma once

#include "support/linear_algebra.h"
#include "surrogates/linear_regression.h"

namespace kestrel::math::statistics {

namespace RSquared {
/// The measure of an importance: R2 or adjusted R2 of the fit, R2 of the leave-one-out prediction.
enum eType : int { kR2 = 0, kR2adj = 1, kR2LeaveOneOut = 2, kR2CrossValidation = 3 };
}  // namespace RSquared

/// Coefficient of importance of each input of a regression: the loss of the measure when the terms of that input are
/// taken out. Zeros for a constant response, 0 for an input that has no terms. The regression must be built. Raises
/// std::logic_error "COI using cross validation not implemented" for type 3, "Invalid R square type" for any other
/// unknown type, and "CoiUncorrelated: ..." where a model cannot be built.
/// @param check_rank  test the rank of the full basis first.
Vector CoiUncorrelated(const metamodel::LinearRegression& regression, RSquared::eType r_squared_type,
                       bool check_rank = false);

}  // namespace kestrel::math::statistics
