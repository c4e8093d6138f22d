#pragma once

#include "support/linear_algebra.h"

namespace kestrel::algorithm::optimizer {

using math::Matrix;
using math::Vector;
using math::VectorIn;

/// Updates B by the BFGS formula for a step s over which the gradient of the Lagrangian changed by y,
///
///   B <- B - B s s' B / (s' B s) + q q' / (q' s),   q = t y + (1 - t) B s,
///
/// with the largest t of [0, 1] for which q' s >= 0.2 s' B s, so that B stays positive definite (Powell 1978). A step
/// without curvature by B changes nothing.
void UpdateByBfgs(const VectorIn& step, const VectorIn& change, Matrix& matrix);

/// The factor y' s / (s' D s) that gives the starting matrix diag(D) the curvature which the first step has met
/// (Shanno and Phua 1978, "Matrix conditioning and nonlinear optimization"); 1 if that is not positive.
double CurvatureScale(const VectorIn& step, const VectorIn& change, const VectorIn& diagonal);

}  // namespace kestrel::algorithm::optimizer
