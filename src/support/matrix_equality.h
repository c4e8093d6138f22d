#pragma once

#include <cmath>

#include "support/linear_algebra.h"

namespace kestrel::math {

/// Equal numbers, or both NaN.
inline bool SameValue(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

/// Same shape and `SameValue` everywhere. (Eigen's own `==` asserts on different shapes.)
inline bool SameEntries(const MatrixIn& a, const MatrixIn& b) {
  return a.rows() == b.rows() && a.cols() == b.cols() &&
         (a.array() == b.array() || (a.array().isNaN() && b.array().isNaN())).all();
}

}  // namespace kestrel::math
