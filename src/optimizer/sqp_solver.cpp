#include "optimizer/sqp_solver.h"

#include <limits>

namespace kestrel::algorithm::optimizer {
namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kLargestPenalty = 1e8;  ///< above it the merit function is all constraints
constexpr int kMaxRaises = 8;            ///< tenfold ones, of the penalties of an iteration

/// Up to which violation a point counts as feasible: an accuracy of 0 leaves room for rounding.
double AllowedViolation(double accuracy) { return std::max(accuracy, 10.0 * kEpsilon); }

}  // namespace

void SqpSolver::Step() {
  const auto answer = static_cast<eIfail>(arg_.IFAIL);
  const auto phase = static_cast<ePhase>(at_.phase);
  if (answer == eIfail::kConverged) return Start();
  if (answer == eIfail::kWantsValues && phase == ePhase::kStartValues) return TakeStartValues();
  if (answer == eIfail::kWantsValues && phase == ePhase::kTrialValues) return TakeTrialValues();
  if (answer == eIfail::kWantsGradients && phase == ePhase::kGradients) return TakeGradients();
  End(eIfail::kWrongArguments);
}

void SqpSolver::Start() {
  if (!arg_.X.col(0).allFinite()) return Request(eIfail::kNotFinite, ePhase::kEnded, 0);
  arg_.WA.setZero();
  arg_.KWA.setZero();
  at_.iterate = arg_.X.col(0).cwiseMax(arg_.XL).cwiseMin(arg_.XU);
  at_.start_diagonal = arg_.D.head(n_);
  at_.penalties.setOnes();
  at_.penalty_bound = arg_.RHOB;
  if (arg_.MODE == 1) {
    at_.multipliers = arg_.U.head(m_);
  } else {
    StoreDiagonal(1.0);
    at_.is_fresh = 1;
  }
  arg_.X.colwise() = Vector(at_.iterate);
  Request(eIfail::kWantsValues, ePhase::kStartValues, 1);
}

void SqpSolver::TakeStartValues() {
  if (!IsEvaluated(0)) return End(eIfail::kNotFinite);
  at_.iterate = arg_.X.col(0);
  at_.objective = arg_.F(0);
  at_.constraints = arg_.G.col(0).head(m_);
  Remember(0);
  Request(eIfail::kWantsGradients, ePhase::kGradients, 0);
}

void SqpSolver::TakeGradients() {
  at_.gradient = arg_.DF;
  at_.jacobian = arg_.DG.topRows(m_);
  if (!at_.gradient.allFinite() || !at_.jacobian.allFinite()) return End(eIfail::kNotFinite);
  if (at_.iterations > 0) UpdateHessian(at_.step, LagrangianGradient() - at_.lagrangian_gradient);
  Iterate();
}

/// From the values and gradients at x to the first trial points of a line search, or to the end.
void SqpSolver::Iterate() {
  for (;;) {
    const StepSolution solution = SolveSubproblem();
    if (solution.result == eProgramResult::kSolved) {
      KeepSolution(solution);
      if (IsOptimal()) return End(eIfail::kConverged);
      if (at_.iterations >= arg_.MAXIT) return End(eIfail::kIterationLimit);
      const bool violated = Violation(at_.constraints, arg_.ME) > AllowedViolation(arg_.ACC);
      if (violated && solution.relaxation > 1.0 - 1e-8) return End(eIfail::kInfeasible);
      if (FindDescent(solution)) return BeginLineSearch();
    }
    if (at_.is_fresh != 0) return EndWithoutProgress(eIfail::kNoDescent);
    Restart();
  }
}

StepSolution SqpSolver::SolveSubproblem() const {
  const Vector lower = arg_.XL - at_.iterate;
  const Vector upper = arg_.XU - at_.iterate;
  return SolveForStep({arg_.C.topLeftCorner(n_, n_), arg_.D.head(n_), arg_.LQL, at_.gradient, at_.jacobian,
                       at_.constraints, arg_.ME, lower, upper},
                      arg_.ACCQP);
}

void SqpSolver::KeepSolution(const StepSolution& solution) {
  at_.step = solution.step;
  at_.program_multipliers = solution.multipliers.head(m_);
  arg_.U.head(solution.multipliers.size()) = solution.multipliers;
  for (Index j = 0; j < m_; ++j) arg_.ACTIVE(j) = j < arg_.ME || solution.multipliers(j) > 0.0;
}

/// |f' d| + sum_j |u_j c_j| bounds the decrease that the quadratic program still promises; with the violation it is 0
/// at a stationary point only.
bool SqpSolver::PromisesNothing(double accuracy) const {
  const double tolerance = std::max(accuracy, 10.0 * kEpsilon * std::max(1.0, std::abs(at_.objective)));
  const double promised =
      std::abs(at_.gradient.dot(at_.step)) + at_.program_multipliers.cwiseProduct(at_.constraints).lpNorm<1>();
  return promised <= tolerance && Violation(at_.constraints, arg_.ME) <= tolerance;
}

/// The Karush-Kuhn-Tucker conditions. Where B is too large the promise is too low, so the gradient of the Lagrangian,
/// bounds included, which is -B d, has to be small as well: its square is what a step with B = I would promise.
bool SqpSolver::IsOptimal() const {
  const double tolerance = std::max(arg_.ACC, 10.0 * kEpsilon * std::max(1.0, std::abs(at_.objective)));
  const Vector gradient = Hessian().selfadjointView<Eigen::Lower>() * at_.step;
  return PromisesNothing(arg_.ACC) && gradient.squaredNorm() <= tolerance;
}

/// Makes (d, u - v) a direction of descent of the merit function and sets its value and slope. False where that fails,
/// or where it takes a penalty that calls for a restart.
bool SqpSolver::FindDescent(const StepSolution& solution) {
  const double curvature = at_.step.dot(Hessian().selfadjointView<Eigen::Lower>() * at_.step);
  RaisePenalties(curvature, solution.relaxation);
  const Vector constraint_slopes = at_.jacobian * at_.step;
  const auto slope = [&] {
    return MeritSlope(CurrentPoint(), at_.penalties, arg_.ME, at_.gradient.dot(at_.step), constraint_slopes,
                      at_.program_multipliers - at_.multipliers);
  };
  at_.slope = slope();
  // The penalties suffice but for relaxed constraints and rounding; further growth acts on what is violated.
  const bool violated = Violation(at_.constraints, arg_.ME) > 0.0;
  for (int raise = 0; raise < kMaxRaises && violated && !(at_.slope <= -0.1 * curvature); ++raise) {
    for (Index j = 0; j < m_; ++j) {
      if (j < arg_.ME || at_.constraints(j) < 0.0) at_.penalties(j) *= 10.0;
    }
    at_.num_merits = 0;
    at_.slope = slope();
  }
  at_.merit = merit1_(CurrentPoint(), at_.penalties, arg_.ME);
  if (!(at_.slope < 0.0)) return false;
  if (at_.is_fresh != 0 || !(arg_.RHOB > 0.0) || m_ == 0 || at_.penalties.maxCoeff() <= at_.penalty_bound) return true;
  at_.penalty_bound *= 10.0;  // so that a problem that needs large penalties gets them after a few restarts
  return false;
}

/// r_j = max(s_j r_j, 2 m (u_j - v_j)^2 / ((1 - t) d' B d)), s_j = min(1, k / sqrt(r_j)), in iteration k
/// (Schittkowski 1983). Where that leaves all measure, v_j takes the value u_j instead, for which any r_j will do.
void SqpSolver::RaisePenalties(double curvature, double relaxation) {
  const double iteration = 1.0 + at_.iterations;
  for (Index j = 0; j < m_; ++j) {
    const double distance = at_.program_multipliers(j) - at_.multipliers(j);
    const double needed = 2.0 * static_cast<double>(m_) * distance * distance / ((1.0 - relaxation) * curvature);
    const double kept = at_.penalties(j) * std::min(1.0, iteration / std::sqrt(at_.penalties(j)));
    if (distance != 0.0 && !(needed <= kLargestPenalty)) at_.multipliers(j) = at_.program_multipliers(j);
    const double penalty = needed <= kLargestPenalty ? std::max(kept, needed) : kept;
    if (penalty > at_.penalties(j)) at_.num_merits = 0;  // earlier merit values no longer compare
    at_.penalties(j) = penalty;
  }
}

/// Keeps a point if it is the best so far: first comes a violation within the accuracy, then the objective.
void SqpSolver::Remember(Index column) {
  const auto constraints = arg_.G.col(column).head(m_);
  if (at_.has_best != 0) {
    const double allowed = AllowedViolation(arg_.ACC);
    const double violation = std::max(allowed, Violation(constraints, arg_.ME));
    const double best_violation = std::max(allowed, Violation(at_.best_constraints, arg_.ME));
    const bool better =
        violation < best_violation || (violation == best_violation && arg_.F(column) < at_.best_objective);
    if (!better) return;
  }
  at_.has_best = 1;
  at_.best = arg_.X.col(column);
  at_.best_objective = arg_.F(column);
  at_.best_constraints = constraints;
}

void SqpSolver::ShowIterate(const VectorIn& point, double objective, const VectorIn& constraints) {
  const Vector kept_constraints = constraints;
  arg_.X.col(0) = point;
  arg_.F(0) = objective;
  arg_.G.col(0).head(m_) = kept_constraints;
}

void SqpSolver::Request(eIfail what, ePhase phase, Index points) {
  arg_.IFAIL = static_cast<int>(what);
  at_.phase = static_cast<int>(phase);
  at_.awaited_points = static_cast<int>(points);
  if (points > 0) ++at_.function_calls;
}

/// Where only rounding is left to gain, nothing failed.
void SqpSolver::EndWithoutProgress(eIfail result) {
  const double rounding = 1e4 * kEpsilon * std::max(1.0, std::abs(at_.objective));
  End(PromisesNothing(std::max(arg_.ACC, rounding)) ? eIfail::kConverged : result);
}

void SqpSolver::End(eIfail result) {
  Request(result, ePhase::kEnded, 0);
  if (at_.has_best == 0) return;
  if (result == eIfail::kConverged) {
    ShowIterate(at_.iterate, at_.objective, at_.constraints);
  } else {
    ShowIterate(at_.best, at_.best_objective, at_.best_constraints);
  }
}

}  // namespace kestrel::algorithm::optimizer
