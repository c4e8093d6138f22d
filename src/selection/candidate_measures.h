#pragma once

#include <cstdint>

#include "selection/subspace_results.h"
#include "support/linear_algebra.h"

namespace kestrel::math::metamodel {

/// A candidate's predictions of the responses y, and what they cost.
struct CandidatePredictions {
  Vector fit;               ///< at the samples, by the model itself
  Vector cross_validation;  ///< at the samples, by models that did not see them
  std::uint64_t num_coefficients = 0;
  std::uint64_t num_parameters = 0;  ///< coefficients and what else was fitted
};

/// Sum of squares of y around its mean.
double TotalSumOfSquares(const VectorIn& y);

/// SSE / SST of a cross-validation prediction, not limited: above 1 for a model worse than the mean. 0 for an empty y
/// or an SST that is not above 0, NaN for different lengths.
/// @param sst       `TotalSumOfSquares` of y.
/// @param adjusted  times (n - 1) / (n - p), p the number of parameters, at least 1; infinite for n <= p.
double PredictionError(const VectorIn& y, const VectorIn& y_cv, double sst, std::uint64_t num_parameters,
                       bool adjusted);

/// All measures of a candidate but that of separate test samples.
SubspaceResults::Measures MeasureCandidate(const VectorIn& y, double sst, const CandidatePredictions& predictions,
                                           bool adjusted_error);

}  // namespace kestrel::math::metamodel
