#include "optimizer/step_program.h"

#include <algorithm>

namespace kestrel::algorithm::optimizer {
namespace {

constexpr double kFirstCost = 1e3;  ///< rho, in units of the largest slope of the objective
constexpr double kCostGrowth = 100.0;
constexpr int kMaxRaises = 5;
constexpr double kHelpless = 0.9;  ///< a relaxation above it hardly leaves a step

/// The program with the variable t behind the n of d.
class RelaxedProgram {
 public:
  explicit RelaxedProgram(const QuadraticProgram& plain);
  ProgramSolution Solve(double cost, double tolerance);

 private:
  const QuadraticProgram& plain_;
  Index n_;
  Matrix matrix_;
  Vector diagonal_;
  Vector gradient_;
  Matrix normals_;
  Vector lower_;
  Vector upper_;
};

RelaxedProgram::RelaxedProgram(const QuadraticProgram& plain)
    : plain_(plain),
      n_(plain.gradient.size()),
      matrix_(Matrix::Identity(n_ + 1, n_ + 1)),
      diagonal_(Vector::Ones(n_ + 1)),
      gradient_(Vector::Zero(n_ + 1)),
      normals_(Matrix::Zero(plain.offsets.size(), n_ + 1)),
      lower_(Vector::Zero(n_ + 1)),
      upper_(Vector::Ones(n_ + 1)) {
  matrix_.topLeftCorner(n_, n_) = plain.matrix;
  diagonal_.head(n_) = plain.diagonal.head(n_);
  gradient_.head(n_) = plain.gradient;
  lower_.head(n_) = plain.lower;
  upper_.head(n_) = plain.upper;
  normals_.leftCols(n_) = plain.normals;
  for (Index j = 0; j < plain.offsets.size(); ++j) {
    if (j < plain.num_equalities || plain.offsets(j) < 0.0) normals_(j, n_) = -plain.offsets(j);
  }
}

ProgramSolution RelaxedProgram::Solve(double cost, double tolerance) {
  if (plain_.is_full) {
    matrix_(n_, n_) = cost;
  } else {
    diagonal_(n_) = cost;
  }
  return ql_(
      {matrix_, diagonal_, plain_.is_full, gradient_, normals_, plain_.offsets, plain_.num_equalities, lower_, upper_},
      tolerance);
}

StepSolution WithoutRelaxation(const ProgramSolution& solution) {
  return {solution.result, solution.step, solution.multipliers, 0.0};
}

/// d, t and the multipliers of the constraints and of the bounds of d.
StepSolution WithRelaxation(const ProgramSolution& solution, Index n, Index m) {
  StepSolution result{solution.result, solution.step.head(n), Vector(m + 2 * n), solution.step(n)};
  result.multipliers << solution.multipliers.head(m + n), solution.multipliers.segment(m + n + 1, n);
  return result;
}

}  // namespace

StepSolution SolveForStep(const QuadraticProgram& program, double tolerance) {
  const ProgramSolution plain = ql_(program, tolerance);
  if (plain.result != eProgramResult::kInconsistent) return WithoutRelaxation(plain);
  RelaxedProgram relaxed(program);
  double cost = kFirstCost * std::max(1.0, program.gradient.lpNorm<Eigen::Infinity>());
  StepSolution solution;
  for (int raise = 0; raise <= kMaxRaises; ++raise, cost *= kCostGrowth) {
    const ProgramSolution attempt = relaxed.Solve(cost, tolerance);
    if (attempt.result != eProgramResult::kSolved) break;
    solution = WithRelaxation(attempt, program.gradient.size(), program.offsets.size());
    if (solution.relaxation < kHelpless) break;
  }
  return solution;
}

}  // namespace kestrel::algorithm::optimizer
