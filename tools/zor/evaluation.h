#pragma once

#include <string>
#include <vector>

#include "handle.h"
#include "table.h"

namespace kestrel::cli {

/// The models of a built handle, asked at points. The outputs are called by the names given, in the library's order;
/// without `extrapolate` a point outside the bounds of the designs is refused. Throws WorkError.
struct Evaluation {
  const Handle& handle;
  const std::vector<std::string>& outputs;
  bool extrapolate;
};

/// One column per output. `points` has one column per input, in the library's order.
Table Predictions(const Evaluation& models, const Table& points);

}  // namespace kestrel::cli
