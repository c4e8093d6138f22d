#pragma once

#include "selection/search_context.h"
#include "surrogates/linear_regression_settings.h"

namespace kestrel::math::metamodel {

/// A polynomial grown term by term: linear terms, then quadratic ones, a reduction, interactions of the inputs that are
/// left, and a reduction again. The term enters that raises the adjusted R2 most, by at least 0.01, less the dependence
/// of its input on those selected before; inputs of importance 2 are in from the start, those of importance 0 never
/// enter. `coeff_factor_poly_` samples are demanded per coefficient.
LinearRegressionSettings StepwisePolynomialBottomUp(const SearchContext& context);

/// Takes out of the polynomial, one by one, the input of importance 1 whose coefficient of importance is lowest, until
/// that is above the tolerance.
/// @param use_loo  the importance is that for the leave-one-out prediction instead of the adjusted R2.
/// @returns the settings with the inputs that are left. There are as many rounds as inputs at the start, and what the
/// last round takes out stays in.
LinearRegressionSettings StepwisePolynomialRemove(const SearchContext& context, LinearRegressionSettings settings,
                                                  bool use_loo, double tolerance);

}  // namespace kestrel::math::metamodel
