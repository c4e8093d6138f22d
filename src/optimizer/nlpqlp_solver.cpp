#include "optimizer/nlpqlp_solver.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "optimizer/merit_function.h"
#include "optimizer/quasi_newton.h"
#include "optimizer/solver_memory.h"
#include "optimizer/step_program.h"

namespace kestrel::algorithm::optimizer {
namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kArmijo = 1e-4;            ///< share of the first-order decrease that a step has to bring
constexpr double kLargestPenalty = 1e8;     ///< above it the merit function is all constraints
constexpr double kParallelRatio = 0.3;      ///< from one parallel trial step to the next, if STPMIN says nothing
constexpr double kFailedShortening = 0.25;  ///< after a trial point that could not be evaluated

/// One call of the solver: the arguments, and what stands in the work arrays.
class Solver {
 public:
  explicit Solver(const SolverArguments& arguments)
      : arg_(arguments),
        m_(arguments.M),
        n_(arguments.N),
        at_(n_, m_, std::max(0, arguments.MAXNM), ArrayCutter(arguments.WA), arguments.KWA) {}

  void Start();
  void TakeValues() { at_.phase == static_cast<int>(ePhase::kStartValues) ? TakeStartValues() : TakeTrialValues(); }
  void TakeGradients();

 private:
  void TakeStartValues();
  void TakeTrialValues();
  void Iterate();
  StepSolution SolveSubproblem() const;
  void KeepSolution(const StepSolution& solution);
  bool PromisesNothing(double accuracy) const;
  bool IsOptimal() const;
  void RaisePenalties(double curvature, double relaxation);
  bool FindDescent(const StepSolution& solution);
  void BeginLineSearch();
  void RequestTrials();
  bool IsAccepted(double merit, double length) const;
  void Accept(Index column);
  void ShortenStep();
  void FailLineSearch();
  void UpdateHessian(const VectorIn& moved, const VectorIn& change);
  void Restart();
  void Request(eIfail what, ePhase phase, Index points);
  void ShowIterate(const VectorIn& point, double objective, const VectorIn& constraints);
  void End(eIfail result);
  void EndWithoutProgress(eIfail result);
  void Remember(Index column);

  auto Jacobian() const { return arg_.DG.topRows(m_); }
  Vector LagrangianGradient() const { return arg_.DF - Jacobian().transpose() * at_.program_multipliers; }
  MeritPoint CurrentPoint() const { return {at_.objective, at_.constraints, at_.multipliers}; }
  bool IsEvaluated(Index column) const;
  double Ratio() const;
  double TrialLength(Index column) const { return at_.length * std::pow(Ratio(), static_cast<double>(column)); }
  double MeritOfTrial(Index column) const;
  Matrix Hessian() const;
  bool StoreHessian(const Matrix& hessian);
  void StoreDiagonal(double scale);

  SolverArguments arg_;
  Index m_;
  Index n_;
  SolverMemory at_;
};

void Solver::Start() {
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

void Solver::TakeStartValues() {
  if (!IsEvaluated(0)) return End(eIfail::kNotFinite);
  at_.iterate = arg_.X.col(0);
  at_.objective = arg_.F(0);
  at_.constraints = arg_.G.col(0).head(m_);
  Remember(0);
  Request(eIfail::kWantsGradients, ePhase::kGradients, 0);
}

void Solver::TakeGradients() {
  if (!arg_.DF.allFinite() || !Jacobian().allFinite()) return End(eIfail::kNotFinite);
  if (at_.iterations > 0) UpdateHessian(at_.step, LagrangianGradient() - at_.lagrangian_gradient);
  Iterate();
}

/// From the values and gradients at x to the first trial points of a line search, or to the end.
void Solver::Iterate() {
  for (;;) {
    const StepSolution solution = SolveSubproblem();
    if (solution.result == eProgramResult::kSolved) {
      KeepSolution(solution);
      if (IsOptimal()) return End(eIfail::kConverged);
      if (at_.iterations >= arg_.MAXIT) return End(eIfail::kIterationLimit);
      if (solution.relaxation > 1.0 - 1e-8) return End(eIfail::kInfeasible);
      if (FindDescent(solution)) return BeginLineSearch();
    }
    if (at_.is_fresh != 0) return EndWithoutProgress(eIfail::kNoDescent);
    Restart();
  }
}

StepSolution Solver::SolveSubproblem() const {
  const Vector lower = arg_.XL - at_.iterate;
  const Vector upper = arg_.XU - at_.iterate;
  return SolveForStep({arg_.C.topLeftCorner(n_, n_), arg_.D.head(n_), arg_.LQL, arg_.DF, Jacobian(), at_.constraints,
                       arg_.ME, lower, upper},
                      arg_.ACCQP);
}

void Solver::KeepSolution(const StepSolution& solution) {
  at_.step = solution.step;
  at_.program_multipliers = solution.multipliers.head(m_);
  arg_.U.head(solution.multipliers.size()) = solution.multipliers;
  for (Index j = 0; j < m_; ++j) arg_.ACTIVE(j) = j < arg_.ME || solution.multipliers(j) > 0.0;
}

/// |f' d| + sum_j |u_j c_j| bounds the decrease that the quadratic program still promises; with the violation it is 0
/// at a stationary point only.
bool Solver::PromisesNothing(double accuracy) const {
  const double tolerance = std::max(accuracy, 10.0 * kEpsilon * std::max(1.0, std::abs(at_.objective)));
  const double promised =
      std::abs(arg_.DF.dot(at_.step)) + at_.program_multipliers.cwiseProduct(at_.constraints).lpNorm<1>();
  return promised <= tolerance && Violation(at_.constraints, arg_.ME) <= tolerance;
}

/// The Karush-Kuhn-Tucker conditions. Where B is too large the promise is too low, so the gradient of the Lagrangian,
/// bounds included, which is -B d, has to be small as well: its square is what a step with B = I would promise.
bool Solver::IsOptimal() const {
  const double tolerance = std::max(arg_.ACC, 10.0 * kEpsilon * std::max(1.0, std::abs(at_.objective)));
  const Vector gradient = Hessian().selfadjointView<Eigen::Lower>() * at_.step;
  return PromisesNothing(arg_.ACC) && gradient.squaredNorm() <= tolerance;
}

/// Makes (d, u - v) a direction of descent of the merit function and sets its value and slope. False where that fails,
/// or where it takes a penalty that calls for a restart.
bool Solver::FindDescent(const StepSolution& solution) {
  const double curvature = at_.step.dot(Hessian().selfadjointView<Eigen::Lower>() * at_.step);
  RaisePenalties(curvature, solution.relaxation);
  const Vector constraint_slopes = Jacobian() * at_.step;
  const auto slope = [&] {
    return MeritSlope(CurrentPoint(), at_.penalties, arg_.ME, arg_.DF.dot(at_.step), constraint_slopes,
                      at_.program_multipliers - at_.multipliers);
  };
  at_.slope = slope();
  // The penalties above suffice but for rounding and relaxed constraints; further growth acts on what is violated.
  for (int raise = 0; raise < 12 && m_ > 0 && !(at_.slope <= -0.1 * curvature); ++raise) {
    at_.penalties *= 10.0;
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
void Solver::RaisePenalties(double curvature, double relaxation) {
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

void Solver::BeginLineSearch() {
  if (arg_.MAXNM > 0) at_.merits(at_.num_merits++ % arg_.MAXNM) = at_.merit;
  at_.length = 1.0;
  at_.search_calls = 0;
  RequestTrials();
}

void Solver::RequestTrials() {
  for (Index k = 0; k < arg_.L; ++k) {
    arg_.X.col(k) = (at_.iterate + TrialLength(k) * at_.step).cwiseMax(arg_.XL).cwiseMin(arg_.XU);
  }
  if (arg_.X.col(0) == at_.iterate) return FailLineSearch();
  ++at_.search_calls;
  Request(eIfail::kWantsValues, ePhase::kTrialValues, arg_.L);
}

/// From one parallel trial step to the next: down to STPMIN within the L steps.
double Solver::Ratio() const {
  if (arg_.L == 1 || !(arg_.STPMIN > 0.0)) return kParallelRatio;
  return std::pow(arg_.STPMIN, 1.0 / (arg_.L - 1));
}

void Solver::TakeTrialValues() {
  Index accepted = -1;
  double lowest = std::numeric_limits<double>::infinity();
  for (Index k = 0; k < arg_.L; ++k) {
    if (!IsEvaluated(k)) continue;
    Remember(k);
    const double merit = MeritOfTrial(k);
    if (!(merit < lowest) || !IsAccepted(merit, TrialLength(k))) continue;
    lowest = merit;
    accepted = k;
  }
  accepted >= 0 ? Accept(accepted) : ShortenStep();
}

bool Solver::IsEvaluated(Index column) const {
  return std::isfinite(arg_.F(column)) && arg_.G.col(column).head(m_).allFinite() && arg_.X.col(column).allFinite();
}

double Solver::MeritOfTrial(Index column) const {
  const Vector multipliers = at_.multipliers + TrialLength(column) * (at_.program_multipliers - at_.multipliers);
  return merit1_({arg_.F(column), arg_.G.col(column).head(m_), multipliers}, at_.penalties, arg_.ME);
}

/// The condition of Armijo, measured from the worst of the last merit values; the last digits of these do not count.
bool Solver::IsAccepted(double merit, double length) const {
  const int kept = std::min(at_.num_merits, arg_.MAXNM);
  const double worst = kept > 0 ? std::max(at_.merit, at_.merits.head(kept).maxCoeff()) : at_.merit;
  return merit <= worst + kArmijo * length * at_.slope + 2.0 * kEpsilon * std::abs(worst);
}

void Solver::Accept(Index column) {
  at_.lagrangian_gradient = LagrangianGradient();  // the gradients are still those of the old iterate
  at_.multipliers += TrialLength(column) * (at_.program_multipliers - at_.multipliers);
  at_.step = arg_.X.col(column) - at_.iterate;
  at_.iterate = arg_.X.col(column);
  at_.objective = arg_.F(column);
  at_.constraints = arg_.G.col(column).head(m_);
  ShowIterate(at_.iterate, at_.objective, at_.constraints);
  ++at_.iterations;
  Request(eIfail::kWantsGradients, ePhase::kGradients, 0);
}

/// Goes on with the minimum of the parabola through merit, slope and the merit of the shortest trial step.
void Solver::ShortenStep() {
  const Index last = arg_.L - 1;
  const double length = TrialLength(last);
  double share = kFailedShortening;
  if (IsEvaluated(last)) {
    const double excess = MeritOfTrial(last) - at_.merit - length * at_.slope;
    const double minimum = -at_.slope * length / (2.0 * excess);
    share = std::isfinite(minimum) ? std::clamp(minimum, 0.1, 0.5) : 0.1;
  }
  at_.length = share * length;
  if (at_.search_calls >= arg_.MAXFUN || at_.length < arg_.STPMIN) return FailLineSearch();
  RequestTrials();
}

void Solver::FailLineSearch() {
  if (at_.is_fresh != 0) return EndWithoutProgress(eIfail::kLineSearchFailed);
  Restart();
  Iterate();
}

void Solver::UpdateHessian(const VectorIn& moved, const VectorIn& change) {
  if (at_.is_fresh != 0) StoreDiagonal(CurvatureScale(moved, change, at_.start_diagonal));
  Matrix hessian = Hessian();
  UpdateByBfgs(moved, change, hessian);
  at_.is_fresh = StoreHessian(hessian) ? 0 : 1;
  if (at_.is_fresh != 0) StoreDiagonal(1.0);
}

/// The starting matrix, the multipliers of the last quadratic program, small penalties and no memory.
void Solver::Restart() {
  StoreDiagonal(1.0);
  at_.is_fresh = 1;
  at_.multipliers = at_.program_multipliers;
  at_.penalties.setOnes();
  at_.num_merits = 0;
}

Matrix Solver::Hessian() const {
  if (arg_.LQL) return arg_.C.topLeftCorner(n_, n_);
  const Matrix lower = arg_.C.topLeftCorner(n_, n_).triangularView<Eigen::UnitLower>();
  return lower * arg_.D.head(n_).asDiagonal() * lower.transpose();
}

bool Solver::StoreHessian(const Matrix& hessian) {
  if (!arg_.LQL) return ldl001_(hessian, arg_.C.topLeftCorner(n_, n_), arg_.D.head(n_));
  arg_.C.topLeftCorner(n_, n_) = hessian;
  return hessian.allFinite();
}

void Solver::StoreDiagonal(double scale) {
  arg_.C.setZero();
  if (arg_.LQL) {
    arg_.C.diagonal().head(n_) = scale * at_.start_diagonal;
  } else {
    arg_.C.diagonal().setOnes();
    arg_.D.head(n_) = scale * at_.start_diagonal;
  }
}

/// Keeps a point if it is the best so far: first comes a violation within the accuracy, then the objective.
void Solver::Remember(Index column) {
  const auto constraints = arg_.G.col(column).head(m_);
  if (at_.has_best != 0) {
    const double violation = std::max(arg_.ACC, Violation(constraints, arg_.ME));
    const double best_violation = std::max(arg_.ACC, Violation(at_.best_constraints, arg_.ME));
    const bool better =
        violation < best_violation || (violation == best_violation && arg_.F(column) < at_.best_objective);
    if (!better) return;
  }
  at_.has_best = 1;
  at_.best = arg_.X.col(column);
  at_.best_objective = arg_.F(column);
  at_.best_constraints = constraints;
}

void Solver::ShowIterate(const VectorIn& point, double objective, const VectorIn& constraints) {
  const Vector kept_constraints = constraints;
  arg_.X.col(0) = point;
  arg_.F(0) = objective;
  arg_.G.col(0).head(m_) = kept_constraints;
}

void Solver::Request(eIfail what, ePhase phase, Index points) {
  arg_.IFAIL = static_cast<int>(what);
  at_.phase = static_cast<int>(phase);
  at_.awaited_points = static_cast<int>(points);
  if (points > 0) ++at_.function_calls;
}

/// Where only rounding is left to gain, nothing failed.
void Solver::EndWithoutProgress(eIfail result) {
  const double rounding = 1e4 * kEpsilon * std::max(1.0, std::abs(at_.objective));
  End(PromisesNothing(std::max(arg_.ACC, rounding)) ? eIfail::kConverged : result);
}

void Solver::End(eIfail result) {
  Request(result, ePhase::kEnded, 0);
  if (at_.has_best == 0) return;
  if (result == eIfail::kConverged) {
    ShowIterate(at_.iterate, at_.objective, at_.constraints);
  } else {
    ShowIterate(at_.best, at_.best_objective, at_.best_constraints);
  }
}

bool SizesFit(const SolverArguments& arg) {
  return arg.L >= 1 && arg.N >= 1 && arg.ME >= 0 && arg.M >= arg.ME && arg.MMAX >= std::max(1, arg.M) &&
         arg.NMAX > arg.N && arg.MNN2 == arg.M + 2 * arg.N + 2 && arg.X.rows() == arg.N && arg.X.cols() == arg.L &&
         arg.F.size() == arg.L && arg.G.rows() == arg.MMAX && arg.G.cols() == arg.L && arg.DF.size() == arg.N &&
         arg.DG.rows() == arg.MMAX && arg.DG.cols() == arg.N && arg.U.size() == arg.MNN2 && arg.XL.size() == arg.N &&
         arg.XU.size() == arg.N && arg.C.rows() == arg.NMAX && arg.C.cols() == arg.NMAX && arg.D.size() == arg.NMAX;
}

bool OptionsFit(const SolverArguments& arg) {
  return arg.ACC >= 0.0 && arg.ACCQP >= 0.0 && arg.STPMIN >= 0.0 && arg.STPMIN < 1.0 && arg.MAXFUN >= 1 &&
         arg.MAXIT >= 0 && (arg.MODE == 0 || arg.MODE == 1) && arg.D.head(arg.N).minCoeff() > 0.0 &&
         arg.D.allFinite() && arg.X.col(0).allFinite();
}

bool WorkArraysSuffice(const SolverArguments& arg) {
  return arg.WA.size() >= arg.LWA && arg.LWA >= SolverMemory::WorkLength(arg.N, arg.M, std::max(0, arg.MAXNM)) &&
         arg.KWA.size() >= arg.LKWA && arg.LKWA >= SolverMemory::kIntegerWorkLength &&
         arg.ACTIVE.size() >= arg.LACTIV && arg.LACTIV >= arg.M;
}

eIfail CheckArguments(const SolverArguments& arg) {
  if (!SizesFit(arg) || !OptionsFit(arg)) return eIfail::kWrongArguments;
  if (!WorkArraysSuffice(arg)) return eIfail::kWorkArraysTooShort;
  if (!(arg.XL.array() <= arg.XU.array()).all()) return eIfail::kWrongBounds;
  return eIfail::kConverged;
}

}  // namespace

void nlpqp2_(const SolverArguments& arguments) {
  if (arguments.IFAIL > 0) return;
  if (const eIfail check = CheckArguments(arguments); check != eIfail::kConverged) {
    arguments.IFAIL = static_cast<int>(check);
    return;
  }
  Solver solver(arguments);
  switch (static_cast<eIfail>(arguments.IFAIL)) {
    case eIfail::kConverged: return solver.Start();
    case eIfail::kWantsValues: return solver.TakeValues();
    case eIfail::kWantsGradients: return solver.TakeGradients();
    default: arguments.IFAIL = static_cast<int>(eIfail::kWrongArguments);
  }
}

}  // namespace kestrel::algorithm::optimizer
