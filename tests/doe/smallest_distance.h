#pragma once

#include <algorithm>
#include <limits>

#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// Between any two of the points, one in each row.
inline double SmallestDistance(const Matrix& points) {
  double smallest = std::numeric_limits<double>::infinity();
  for (Index i = 0; i < points.rows(); ++i) {
    for (Index k = 0; k < i; ++k) smallest = std::min(smallest, (points.row(i) - points.row(k)).norm());
  }
  return smallest;
}

}  // namespace kestrel::math::doe
