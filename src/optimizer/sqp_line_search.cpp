#include <limits>

#include "optimizer/sqp_solver.h"

namespace kestrel::algorithm::optimizer {
namespace {

constexpr double kArmijo = 1e-4;            ///< share of the first-order decrease that a step has to bring
constexpr double kParallelRatio = 0.3;      ///< from one parallel trial step to the next, if STPMIN says nothing
constexpr double kFailedShortening = 0.25;  ///< after a trial point that could not be evaluated

}  // namespace

void SqpSolver::BeginLineSearch() {
  if (arg_.MAXNM > 0) at_.merits(at_.num_merits++ % arg_.MAXNM) = at_.merit;
  at_.length = 1.0;
  at_.search_calls = 0;
  RequestTrials();
}

void SqpSolver::RequestTrials() {
  for (Index k = 0; k < arg_.L; ++k) {
    arg_.X.col(k) = (at_.iterate + TrialLength(k) * at_.step).cwiseMax(arg_.XL).cwiseMin(arg_.XU);
  }
  if (arg_.X.col(0) == at_.iterate) return FailLineSearch();
  ++at_.search_calls;
  Request(eIfail::kWantsValues, ePhase::kTrialValues, arg_.L);
}

/// From one parallel trial step to the next: down to STPMIN within the L steps.
double SqpSolver::Ratio() const {
  if (arg_.L == 1 || !(arg_.STPMIN > 0.0)) return kParallelRatio;
  return std::pow(arg_.STPMIN, 1.0 / (arg_.L - 1));
}

void SqpSolver::TakeTrialValues() {
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

bool SqpSolver::IsEvaluated(Index column) const {
  return std::isfinite(arg_.F(column)) && arg_.G.col(column).head(m_).allFinite() && arg_.X.col(column).allFinite();
}

double SqpSolver::MeritOfTrial(Index column) const {
  const Vector multipliers = at_.multipliers + TrialLength(column) * (at_.program_multipliers - at_.multipliers);
  return merit1_({arg_.F(column), arg_.G.col(column).head(m_), multipliers}, at_.penalties, arg_.ME);
}

/// The condition of Armijo, measured from the worst of the last merit values; the last digits of these do not count.
bool SqpSolver::IsAccepted(double merit, double length) const {
  const int kept = std::min(at_.num_merits, arg_.MAXNM);
  const double worst = kept > 0 ? std::max(at_.merit, at_.merits.head(kept).maxCoeff()) : at_.merit;
  return merit <= worst + kArmijo * length * at_.slope + 2.0 * std::numeric_limits<double>::epsilon() * std::abs(worst);
}

void SqpSolver::Accept(Index column) {
  at_.lagrangian_gradient = LagrangianGradient();  // of the old iterate still
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
void SqpSolver::ShortenStep() {
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

void SqpSolver::FailLineSearch() {
  if (at_.is_fresh != 0) return EndWithoutProgress(eIfail::kLineSearchFailed);
  Restart();
  Iterate();
}

}  // namespace kestrel::algorithm::optimizer
