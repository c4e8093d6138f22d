#include "selection/candidate_measures.h"

#include <algorithm>
#include <limits>

#include "statistics/basic_statistics.h"

namespace kestrel::math::metamodel {

double TotalSumOfSquares(const VectorIn& y) { return y.size() == 0 ? 0.0 : (y.array() - y.mean()).square().sum(); }

double PredictionError(const VectorIn& y, const VectorIn& y_cv, double sst, std::uint64_t num_parameters,
                       bool adjusted) {
  if (y.size() == 0 || !(sst > 0.0)) return 0.0;
  if (y.size() != y_cv.size()) return std::numeric_limits<double>::quiet_NaN();
  const double error = statistics::SSE(y, y_cv) / sst;
  if (!adjusted) return error;

  const auto n = static_cast<double>(y.size());
  const double p = std::max(static_cast<double>(num_parameters), 1.0);
  // Without a degree of freedom the quotient would have no sign to rank by.
  return n > p ? error * (n - 1.0) / (n - p) : std::numeric_limits<double>::infinity();
}

SubspaceResults::Measures MeasureCandidate(const VectorIn& y, double sst, const CandidatePredictions& predictions,
                                           bool adjusted_error) {
  SubspaceResults::Measures measures;
  measures.CoD = statistics::R2(y, predictions.fit);
  measures.CoDadj = statistics::R2adj(y, predictions.fit, predictions.num_coefficients);
  measures.CoP = statistics::R2(y, predictions.cross_validation);
  measures.CoPadj = statistics::R2adj(y, predictions.cross_validation, predictions.num_parameters);
  measures.predError =
      PredictionError(y, predictions.cross_validation, sst, predictions.num_parameters, adjusted_error);
  return measures;
}

}  // namespace kestrel::math::metamodel
