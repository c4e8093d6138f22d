#pragma once

#include <Eigen/Core>
#include <type_traits>

#include "calculator/functions/numbers.h"

/// Numbers as matrices of Eigen, real ones where no entry is complex, so that real algebra costs real operations.
namespace kestrel::calculator {

template <class Scalar>
using Dense = Eigen::Matrix<Scalar, Eigen::Dynamic, Eigen::Dynamic>;

/// The cells; a vector is one row, or one column if `as_column`.
template <class Scalar>
Dense<Scalar> ToDense(const Numbers& numbers, bool as_column = false) {
  Dense<Scalar> cells;
  if constexpr (std::is_same_v<Scalar, double>) {
    cells = numbers.Cells().real();
  } else {
    cells = numbers.Cells();
  }
  if (as_column && numbers.Kind() <= Value::VECTOR) cells.transposeInPlace();
  return cells;
}

/// work(double()) if all these numbers are real, else work(Complex()).
template <class Work>
Value WithScalarOf(const Numbers& numbers, Work work) {
  return numbers.IsReal() ? work(double()) : work(Complex());
}
template <class Work>
Value WithScalarOf(const Numbers& a, const Numbers& b, Work work) {
  return a.IsReal() && b.IsReal() ? work(double()) : work(Complex());
}

}  // namespace kestrel::calculator
