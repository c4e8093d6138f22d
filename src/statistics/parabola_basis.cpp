#include "statistics/parabola_basis.h"

#include <cmath>
#include <limits>

#include "statistics/basic_statistics.h"

namespace kestrel::math::statistics {
namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// x^2 whose part off the line is below this share of it is rounding: x has two levels.
constexpr double kStraight = 1e-13;

struct Deviations {
  Vector unit;
  double norm;  // 0 where x is constant
};

Deviations CalcDeviations(const VectorIn& x) {
  if (ContainsNan(x)) return {Vector::Constant(x.size(), kNaN), kNaN};
  if (isConst(x)) return {Vector::Zero(x.size()), 0.0};
  // The second step takes out the rounding of the first mean (corrected two-pass algorithm, Chan, Golub and LeVeque
  // 1983); without it a small spread about a large mean would lose digits.
  Vector deviations = x.array() - x.mean();
  deviations.array() -= deviations.mean();
  const double norm = deviations.stableNorm();
  return {deviations / norm, norm};
}

// What t^2 has beyond 1 and t, for centred t of unit length. Gram-Schmidt twice: the first pass leaves rounding of the
// size of t^2, which matters where the remainder is small.
Vector CalcCurve(const Vector& t) {
  Vector curve = t.array().square();
  for (int pass = 0; pass < 2; ++pass) {
    curve.array() -= curve.mean();
    curve -= t.dot(curve) * t;
  }
  return curve;
}

}  // namespace

Vector UnitDeviations(const VectorIn& x) { return CalcDeviations(x).unit; }

ParabolaBasis BuildParabolaBasis(const VectorIn& x) {
  const ParabolaBasis none{Vector::Zero(x.size()), Vector::Zero(x.size())};
  Deviations line = CalcDeviations(x);
  if (line.norm == 0.0) return none;
  Vector curve = CalcCurve(line.unit);
  const double remainder = curve.norm();
  // A Gram determinant is the product of the squared lengths that Gram-Schmidt leaves, here sqrt(n), norm and
  // norm^2 x remainder. Unlike the sum of products of raw moments it does not cancel.
  const double determinant = static_cast<double>(x.size()) * remainder * remainder * std::pow(line.norm, 6);
  const bool straight = remainder <= kStraight * line.unit.array().square().matrix().norm();
  if (straight || determinant <= kEpsilon) return none;
  return {std::move(line.unit), curve / remainder};
}

double LimitLinear(double r) {
  if (r <= -1.0) return -1.0;
  if (r > 1.0) return 1.0;
  return std::abs(r) < kEpsilon ? 0.0 : r;
}

double LimitQuadratic(double r) {
  if (r > 1.0) return 1.0;
  return r < kEpsilon ? 0.0 : r;
}

double QuadraticCorrelation(double along_line, double along_curve) {
  return LimitQuadratic(std::hypot(along_line, along_curve));
}

}  // namespace kestrel::math::statistics
