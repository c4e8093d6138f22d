#pragma once

#include <cmath>
#include <limits>

/// How two real values of designs are told apart, up to rounding.
namespace kestrel::math {

constexpr double kMachineEpsilon = std::numeric_limits<double>::epsilon();

/// True if both are strictly positive or both strictly negative and |1 - min/max| < tolerance.
inline bool RatioIsNearOne(double a, double b, double tolerance) {
  if (!((a > 0.0 && b > 0.0) || (a < 0.0 && b < 0.0))) return false;
  return std::abs(1.0 - std::fmin(a, b) / std::fmax(a, b)) < tolerance;
}

/// True for two NaN, for two infinities of whatever sign, for values of one sign whose ratio is 1 within the machine
/// epsilon, and for a zero beside a value smaller than the epsilon.
inline bool Equal(double a, double b) {
  if (std::isnan(a) && std::isnan(b)) return true;
  if (std::isinf(a)) return std::isinf(b);
  if (std::isnan(a) || std::isnan(b) || std::isinf(b)) return false;
  if (a == 0.0) return std::abs(b) < kMachineEpsilon;
  if (b == 0.0) return std::abs(a) < kMachineEpsilon;
  return RatioIsNearOne(a, b, kMachineEpsilon);
}

/// As `Equal`, or values of one sign whose ratio is 1 within the tolerance. Beside an exact zero the machine epsilon
/// counts and not the tolerance, which is relative.
inline bool NearTo(double a, double b, double tolerance) {
  if (Equal(a, b)) return true;
  return std::isfinite(a) && std::isfinite(b) && RatioIsNearOne(a, b, tolerance);
}

}  // namespace kestrel::math
