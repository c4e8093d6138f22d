#pragma once

#include "support/linear_algebra.h"

namespace kestrel::algorithm::optimizer {

using math::Index;
using math::MatrixIn;
using math::Vector;
using math::VectorIn;

/// A point (x, v) as the merit function sees it: objective, m constraints, and m multipliers of its own.
struct MeritPoint {
  double objective;
  VectorIn constraints;
  VectorIn multipliers;
};

/// The augmented Lagrangian (Rockafellar; Schittkowski 1983, "On the convergence of a sequential quadratic programming
/// method with an augmented Lagrangian line search function"). With penalties r_j > 0,
///
///   psi(x, v) = f - sum_{j in J} (v_j c_j - r_j c_j^2 / 2) - sum_{j not in J} v_j^2 / (2 r_j),
///
/// where J holds the equalities and the inequalities with c_j <= v_j / r_j.
double merit1_(const MeritPoint& point, const VectorIn& penalties, Index num_equalities);

/// The derivative of psi along (d, u - v), that is of psi(x + a d, v + a (u - v)) at a = 0.
/// @param objective_slope    f' d.  @param constraint_slopes  m, the c_j' d.  @param direction  m, u - v.
double MeritSlope(const MeritPoint& point, const VectorIn& penalties, Index num_equalities, double objective_slope,
                  const VectorIn& constraint_slopes, const VectorIn& direction);

/// sum_j |c_j| over the equalities + sum_j max(0, -c_j) over the inequalities.
double Violation(const VectorIn& constraints, Index num_equalities);

}  // namespace kestrel::algorithm::optimizer
