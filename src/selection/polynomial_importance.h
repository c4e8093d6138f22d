#pragma once

#include "support/linear_algebra.h"
#include "surrogates/linear_regression.h"

namespace kestrel::math::metamodel {

/// Importance of each input of a polynomial: the loss of adjusted R2 when its terms are taken out and the others fitted
/// anew. 0 for an input that has no terms. The same as `statistics::CoiUncorrelated` of type R2adj without its refits.
///
/// With A = P'P and c the coefficients of the full fit, the fit without the columns T has the coefficients
/// c - A^-1[:, T] (A^-1[T, T])^-1 c[T], zero in T (least squares under the constraint c[T] = 0). So one inverse serves
/// all inputs. Where A is too close to singular for that, the regression is fitted anew without each input.
/// @param regression  built, without weights.
Vector ImportanceByR2adj(const LinearRegression& regression);

}  // namespace kestrel::math::metamodel
