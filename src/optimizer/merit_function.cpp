#include "optimizer/merit_function.h"

#include <algorithm>
#include <cmath>

namespace kestrel::algorithm::optimizer {
namespace {

/// Whether constraint j belongs to J.
bool Counts(const MeritPoint& point, const VectorIn& penalties, Index num_equalities, Index j) {
  return j < num_equalities || point.constraints(j) <= point.multipliers(j) / penalties(j);
}

}  // namespace

double merit1_(const MeritPoint& point, const VectorIn& penalties, Index num_equalities) {
  double merit = point.objective;
  for (Index j = 0; j < penalties.size(); ++j) {
    const double c = point.constraints(j);
    const double v = point.multipliers(j);
    const double r = penalties(j);
    merit -= Counts(point, penalties, num_equalities, j) ? (v - 0.5 * r * c) * c : 0.5 * v * v / r;
  }
  return merit;
}

double MeritSlope(const MeritPoint& point, const VectorIn& penalties, Index num_equalities, double objective_slope,
                  const VectorIn& constraint_slopes, const VectorIn& direction) {
  double slope = objective_slope;
  for (Index j = 0; j < penalties.size(); ++j) {
    const double c = point.constraints(j);
    const double v = point.multipliers(j);
    const double r = penalties(j);
    slope -= Counts(point, penalties, num_equalities, j) ? (v - r * c) * constraint_slopes(j) + c * direction(j)
                                                         : v / r * direction(j);
  }
  return slope;
}

double Violation(const VectorIn& constraints, Index num_equalities) {
  double violation = 0.0;
  for (Index j = 0; j < constraints.size(); ++j) {
    violation += j < num_equalities ? std::abs(constraints(j)) : std::max(0.0, -constraints(j));
  }
  return violation;
}

}  // namespace kestrel::algorithm::optimizer
