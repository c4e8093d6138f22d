#pragma once

#include "support/linear_algebra.h"

/// The directions from which the linear and the quadratic correlation are read as scalar products. With v the unit
/// deviations of y, the linear correlation of x and y is  line' v, and the multiple correlation of y with its
/// least-squares parabola in x is  sqrt((line' v)^2 + (curve' v)^2): the normal equations are diagonal in this basis.
namespace kestrel::math::statistics {

/// (x - mean) / |x - mean|; zeros for a constant x, NaN throughout if x holds a NaN.
Vector UnitDeviations(const VectorIn& x);

/// Orthonormal basis of the parabolas a + b x + c x^2 without the constant ones: `line` spans x, `curve` what x^2 adds.
/// Both are zeros where no parabola can be fitted: x constant or of two levels, or a determinant of the raw moments
/// (the Gram determinant of 1, x and x^2) at or below machine epsilon.
struct ParabolaBasis {
  Vector line;
  Vector curve;
};
ParabolaBasis BuildParabolaBasis(const VectorIn& x);

/// A correlation within its bounds: 1.0 above 1, -1.0 below -1, 0.0 for |r| below machine epsilon. A NaN stays NaN.
double LimitLinear(double r);

/// The same for a multiple correlation, which is never negative.
double LimitQuadratic(double r);

/// Multiple correlation of y with its parabola from the scalar products of its unit deviations with the basis.
double QuadraticCorrelation(double along_line, double along_curve);

}  // namespace kestrel::math::statistics
