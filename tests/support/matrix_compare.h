#pragma once

#include <gtest/gtest.h>

#include <cmath>

#include "support/linear_algebra.h"

/// Comparisons of dense matrices and vectors for tests: `EXPECT_TRUE(MatrixNear(actual, expected, kTolerance))`.
namespace kestrel::testing {

/// True if two numbers agree within `tolerance`; a NaN agrees with a NaN only, an infinity with the same infinity only.
inline bool NumberNear(double actual, double expected, double tolerance) {
  if (std::isnan(expected) || std::isnan(actual)) return std::isnan(expected) && std::isnan(actual);
  return actual == expected || std::abs(actual - expected) <= tolerance;
}

/// Compares sizes first and then entry by entry, by the absolute difference. A failure names the first entry that
/// differs, both values and the number of such entries.
inline ::testing::AssertionResult MatrixNear(const math::MatrixIn& actual, const math::MatrixIn& expected,
                                             double tolerance) {
  if (actual.rows() != expected.rows() || actual.cols() != expected.cols()) {
    return ::testing::AssertionFailure() << "sizes differ: " << actual.rows() << " x " << actual.cols() << ", expected "
                                         << expected.rows() << " x " << expected.cols();
  }
  ::testing::AssertionResult failure = ::testing::AssertionFailure();
  math::Index differing = 0;
  for (math::Index column = 0; column < expected.cols(); ++column) {
    for (math::Index row = 0; row < expected.rows(); ++row) {
      if (NumberNear(actual(row, column), expected(row, column), tolerance)) continue;
      if (differing++ > 0) continue;
      failure << "entry (" << row << ", " << column << ") is " << ::testing::PrintToString(actual(row, column))
              << ", expected " << ::testing::PrintToString(expected(row, column)) << " within " << tolerance;
    }
  }
  if (differing == 0) return ::testing::AssertionSuccess();
  return failure << "; " << differing << " of " << expected.size() << " entries differ";
}

/// The same with the tolerance as a share of the largest finite magnitude in `expected`.
inline ::testing::AssertionResult MatrixNearRelative(const math::MatrixIn& actual, const math::MatrixIn& expected,
                                                     double tolerance) {
  double scale = 0.0;
  for (math::Index i = 0; i < expected.size(); ++i) {
    const double magnitude = std::abs(expected(i % expected.rows(), i / expected.rows()));
    if (std::isfinite(magnitude)) scale = std::max(scale, magnitude);
  }
  return MatrixNear(actual, expected, tolerance * scale);
}

}  // namespace kestrel::testing
