#pragma once

#include "support/linear_algebra.h"
#include "support/stop_helper.h"

/// The operations that Kriging spends its time in, in one set of functions for each level of the processor. The library
/// runs on every x86-64, so its own code must do with two numbers at a time; these are chosen when the program runs.
/// What they give does not depend on where in memory the numbers lie.
namespace kestrel::math::metamodel {

/// A column-major matrix somewhere in memory; `stride` is the distance of the columns.
struct Block {
  double* data;
  Index rows;
  Index cols;
  Index stride;
};

struct DenseKernels {
  /// A = L L' in place, in the lower triangle, N^3 / 3 operations; nothing above is read or written. False at a pivot
  /// of 0 or below; NaN passes on into the pivots.
  bool (*factorise)(Block A, const utils::StopHelper* stop);
  /// L <- L^-1 of a lower triangle, in place, N^3 / 3.
  void (*invert_lower)(Block L, const utils::StopHelper* stop);
  /// V <- the lower triangle of V'V for a lower triangular V with zeros above, in place, N^3 / 3. What stands above is
  /// not defined behind it.
  void (*square_lower)(Block V, const utils::StopHelper* stop);
  /// exp(x) of each of `count` numbers in place, and 0 where that would be below `least`.
  void (*exponentials)(double* values, Index count, double least);
};

/// Those for any x86-64.
const DenseKernels& PortableKernels();
/// Those for this processor. They round otherwise where it fuses multiplications and additions.
const DenseKernels& FastestKernels();

inline Block AsBlock(Matrix& A) { return {A.data(), A.rows(), A.cols(), A.rows()}; }

}  // namespace kestrel::math::metamodel
