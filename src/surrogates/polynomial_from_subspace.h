#pragma once

#include <memory>

#include "surrogates/linear_regression.h"

namespace kestrel::math::metamodel {

/// The polynomial with the fewest coefficients among those whose adjusted R2 lies within 0.01 of the best, of up to
/// five term sets for a subspace: linear, quadratic, linear with interactions, quadratic with interactions, and the
/// subspace's own.
/// @param factor  samples demanded per coefficient; a term set that needs more is not tried.
/// @returns a regression on the sample, built by `BuildOptimalBoxCox`; initialised but unbuilt if no term set was
/// tried.
std::unique_ptr<LinearRegression> BestPolynomialFromSubspace(const IndexVector& subspace, const MatrixIn& points,
                                                             const VectorIn& values,
                                                             const LinearRegressionSettings& settings, double factor);

}  // namespace kestrel::math::metamodel
