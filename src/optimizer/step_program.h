#pragma once

#include "optimizer/quadratic_program.h"

namespace kestrel::algorithm::optimizer {

struct StepSolution {
  eProgramResult result = eProgramResult::kNotSolved;
  Vector step;         ///< d, n
  Vector multipliers;  ///< m + 2 n: constraints, lower bounds, upper bounds
  /// 0 where the linearised constraints can be met. Else the share of the violation that d leaves as it is: 1 if no
  /// step makes it smaller.
  double relaxation = 0.0;
};

/// Solves the quadratic program of an iteration. If its constraints contradict each other, a further variable t in
/// [0, 1] relaxes those that are violated to a_j d + (1 - t) b_j and costs rho / 2 t^2; rho grows until t < 0.9
/// (Schittkowski 1983), so that d leads towards the feasible region where there is a way.
StepSolution SolveForStep(const QuadraticProgram& program, double tolerance);

}  // namespace kestrel::algorithm::optimizer
