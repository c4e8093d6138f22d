#pragma once

#include <string>
#include <vector>

#include "handle.h"
#include "table.h"

namespace kestrel::cli {

/// The models of a built handle, asked at points. The outputs are called by the names given, in the library's order;
/// without `extrapolate` a point outside the bounds of the designs is refused. All throw WorkError.
struct Evaluation {
  const Handle& handle;
  const std::vector<std::string>& outputs;
  bool extrapolate;
};

/// One column per output. `points` has one column per input, in the library's order; so below.
Table Predictions(const Evaluation& models, const Table& points);

/// The same and, behind them, one column per criterion of the handle.
Table PredictionsWithCriteria(const Evaluation& models, const std::vector<std::string>& criteria, const Table& points);

/// Columns "dy/da", "dy/db", ... per output y for the inputs a, b, ...
Table Gradients(const Evaluation& models, const Table& points);

/// Columns "y_cop", "y_rmse", "y_mean", "y_mean_abs" and "y_density" per output y: local coefficient of prognosis,
/// local root mean squared error, weighted means of the residuals and of their absolute values, density of the designs.
Table LocalErrors(const Evaluation& models, const Table& points);

}  // namespace kestrel::cli
