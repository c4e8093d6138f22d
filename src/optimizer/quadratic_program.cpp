#include "optimizer/quadratic_program.h"

#include <Eigen/Cholesky>
#include <Eigen/Jacobi>
#include <cmath>
#include <limits>
#include <vector>

namespace kestrel::algorithm::optimizer {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kNoBound = std::numeric_limits<double>::max() / 4;

/// The active set with the two matrices that the method keeps for it. With N the normals of the q active constraints,
///
///   J' B J = I,  J' N = (R; 0),  R upper triangular q x q,
///
/// so that the last n - q columns of J span the steps that leave the active constraints alone.
class DualActiveSet {
 public:
  DualActiveSet(const QuadraticProgram& program, double tolerance);

  eProgramResult Run();
  ProgramSolution Solution(eProgramResult result) const;

 private:
  struct Active {
    Index constraint;
    double sign;  ///< -1 where an equality is approached from above
    double multiplier;
  };
  struct Direction {
    Vector primal;  ///< z = J2 J2' n, the step in d
    Vector dual;    ///< r = R^-1 J1' n, the fall of the active multipliers
    double slope;   ///< z' n, 0 if n depends on the active normals
  };

  Index NumConstraints() const { return program_.offsets.size() + 2 * step_.size(); }
  Index NumActive() const { return static_cast<Index>(active_.size()); }
  bool IsEquality(Index constraint) const { return constraint < program_.num_equalities; }
  Active& At(Index position) { return active_[static_cast<std::size_t>(position)]; }

  double Slack(Index constraint) const;
  double SlackTolerance(Index constraint) const;
  Vector ProjectedNormal(Index constraint) const;
  Index MostViolated() const;
  bool TakeEqualitiesIn();
  eProgramResult TakeIn(Index constraint, double sign);
  Direction FindDirection(const Vector& projected) const;
  Index BlockingConstraint(const Vector& dual, double& length) const;
  void Append(Active entry, Vector projected);
  void ReturnToActive();
  void Drop(Index position);

  const QuadraticProgram& program_;
  double tolerance_;
  Vector step_;
  Matrix j_;
  Matrix r_;
  std::vector<Active> active_;
  std::vector<bool> is_active_;
  Vector normal_lengths_;
  Index exchanges_left_;
};

DualActiveSet::DualActiveSet(const QuadraticProgram& program, double tolerance)
    : program_(program),
      tolerance_(tolerance > 0.0 ? tolerance : 1e-14),
      step_(-program.gradient),
      j_(Matrix::Identity(program.gradient.size(), program.gradient.size())),
      r_(Matrix::Zero(program.gradient.size(), program.gradient.size())),
      is_active_(static_cast<std::size_t>(NumConstraints()), false),
      normal_lengths_(program.normals.rowwise().norm()),
      exchanges_left_(200 + 20 * NumConstraints()) {
  const auto lower = program.matrix.triangularView<Eigen::UnitLower>();
  lower.transpose().solveInPlace(j_);  // J = L^-T D^-1/2
  j_ = (j_ * program.diagonal.cwiseSqrt().cwiseInverse().asDiagonal()).eval();
  lower.solveInPlace(step_);  // d = -(L D L')^-1 g
  step_.array() /= program.diagonal.array();
  lower.transpose().solveInPlace(step_);
}

/// The left side of constraint >= 0, the bounds counted behind the m rows.
double DualActiveSet::Slack(Index constraint) const {
  const Index m = program_.offsets.size();
  const Index n = step_.size();
  if (constraint < m) return program_.normals.row(constraint).dot(step_) + program_.offsets(constraint);
  const Index input = constraint - m;
  if (input < n) return program_.lower(input) < -kNoBound ? kInfinity : step_(input) - program_.lower(input);
  return program_.upper(input - n) > kNoBound ? kInfinity : program_.upper(input - n) - step_(input - n);
}

/// What rounding alone may make of a slack of 0.
double DualActiveSet::SlackTolerance(Index constraint) const {
  const Index m = program_.offsets.size();
  const Index n = step_.size();
  if (constraint < m) {
    return tolerance_ * (std::abs(program_.offsets(constraint)) + normal_lengths_(constraint) * step_.norm());
  }
  return tolerance_ * std::abs(step_((constraint - m) % n));
}

/// J' n.
Vector DualActiveSet::ProjectedNormal(Index constraint) const {
  const Index m = program_.offsets.size();
  const Index n = step_.size();
  if (constraint < m) return j_.transpose() * program_.normals.row(constraint).transpose();
  const Index input = constraint - m;
  if (input < n) return j_.row(input).transpose();
  return -j_.row(input - n).transpose();
}

/// The inequality or bound whose plane is farthest on the wrong side; -1 if none is violated.
Index DualActiveSet::MostViolated() const {
  Index worst = -1;
  double worst_distance = 0.0;
  for (Index k = program_.num_equalities; k < NumConstraints(); ++k) {
    if (is_active_[static_cast<std::size_t>(k)]) continue;
    const double slack = Slack(k);
    if (slack >= -SlackTolerance(k)) continue;
    const bool is_row = k < program_.offsets.size();
    const double distance = is_row && normal_lengths_(k) > 0.0 ? slack / normal_lengths_(k) : slack;
    if (distance >= worst_distance) continue;
    worst_distance = distance;
    worst = k;
  }
  return worst;
}

eProgramResult DualActiveSet::Run() {
  if (!TakeEqualitiesIn()) return eProgramResult::kInconsistent;
  while (exchanges_left_ > 0) {
    const Index violated = MostViolated();
    if (violated < 0) return step_.allFinite() ? eProgramResult::kSolved : eProgramResult::kNotSolved;
    const eProgramResult taken = TakeIn(violated, 1.0);
    if (taken != eProgramResult::kSolved) return taken;
  }
  return eProgramResult::kNotSolved;
}

bool DualActiveSet::TakeEqualitiesIn() {
  for (Index k = 0; k < program_.num_equalities; ++k) {
    const double slack = Slack(k);
    if (TakeIn(k, slack > 0.0 ? -1.0 : 1.0) == eProgramResult::kSolved) continue;
    // An equality that depends on those before is harmless where it holds already.
    if (std::abs(slack) > 1e4 * SlackTolerance(k)) return false;
  }
  return true;
}

/// Moves until the constraint holds with equality. Constraints whose multiplier reaches 0 on the way are dropped.
eProgramResult DualActiveSet::TakeIn(Index constraint, double sign) {
  double multiplier = 0.0;
  while (exchanges_left_-- > 0) {
    const Vector projected = sign * ProjectedNormal(constraint);
    const Direction direction = FindDirection(projected);
    double dual_length = kInfinity;
    const Index blocking = BlockingConstraint(direction.dual, dual_length);
    const double primal_length = direction.slope > 0.0 ? -sign * Slack(constraint) / direction.slope : kInfinity;
    const double length = std::min(dual_length, primal_length);
    if (!(length < kInfinity)) return eProgramResult::kInconsistent;

    if (direction.slope > 0.0) step_ += length * direction.primal;
    for (Index i = 0; i < NumActive(); ++i) At(i).multiplier -= length * direction.dual(i);
    multiplier += length;
    if (primal_length <= dual_length) {
      Append({constraint, sign, multiplier}, projected);
      ReturnToActive();
      return eProgramResult::kSolved;
    }
    Drop(blocking);
  }
  return eProgramResult::kNotSolved;
}

DualActiveSet::Direction DualActiveSet::FindDirection(const Vector& projected) const {
  const Index q = NumActive();
  const Index free = step_.size() - q;
  Direction direction;
  direction.dual = projected.head(q);
  r_.topLeftCorner(q, q).triangularView<Eigen::Upper>().solveInPlace(direction.dual);
  direction.slope = projected.tail(free).squaredNorm();
  const double dependent = 100.0 * kEpsilon * static_cast<double>(step_.size()) * projected.norm();
  if (direction.slope <= dependent * dependent) {
    direction.slope = 0.0;
  } else {
    direction.primal = j_.rightCols(free) * projected.tail(free);
  }
  return direction;
}

/// The active inequality whose multiplier is the first to reach 0, and how far that is.
Index DualActiveSet::BlockingConstraint(const Vector& dual, double& length) const {
  Index blocking = -1;
  for (Index i = 0; i < NumActive(); ++i) {
    const Active& entry = active_[static_cast<std::size_t>(i)];
    if (IsEquality(entry.constraint) || !(dual(i) > 0.0)) continue;
    const double reach = std::max(0.0, entry.multiplier) / dual(i);
    if (reach >= length) continue;
    length = reach;
    blocking = i;
  }
  return blocking;
}

/// Rotates columns of J so that J' n of the new normal ends after entry q: that is the new column of R.
void DualActiveSet::Append(Active entry, Vector projected) {
  const Index q = NumActive();
  for (Index i = projected.size() - 1; i > q; --i) {
    Eigen::JacobiRotation<double> rotation;
    double length = 0.0;
    rotation.makeGivens(projected(i - 1), projected(i), &length);
    projected(i - 1) = length;
    projected(i) = 0.0;
    j_.applyOnTheRight(i - 1, i, rotation);
  }
  r_.col(q) = projected;
  is_active_[static_cast<std::size_t>(entry.constraint)] = true;
  active_.push_back(entry);
}

/// A step to the active constraints from far behind them, as under a gradient of 1e17, misses them by the digits it
/// loses: d - J1 R^-T s, with s the slacks of the active constraints, meets them again. Rounding alone is left as it
/// is.
void DualActiveSet::ReturnToActive() {
  constexpr double kMissed = 1e-8;  // of what the slack consists of
  const Index q = NumActive();
  Vector slacks(q);
  bool is_met = true;
  for (Index i = 0; i < q; ++i) {
    const Index constraint = At(i).constraint;
    const bool is_row = constraint < program_.offsets.size();
    const double offset = is_row ? std::abs(program_.offsets(constraint)) : 0.0;
    const double length = is_row ? normal_lengths_(constraint) : 1.0;
    slacks(i) = At(i).sign * Slack(constraint);
    is_met = is_met && std::abs(slacks(i)) <= kMissed * (offset + length * step_.norm());
  }
  if (is_met) return;
  r_.topLeftCorner(q, q).triangularView<Eigen::Upper>().transpose().solveInPlace(slacks);
  step_ -= j_.leftCols(q) * slacks;
}

/// Takes a column out of R; rotations of the rows below bring it back to a triangle.
void DualActiveSet::Drop(Index position) {
  const Index q = NumActive();
  is_active_[static_cast<std::size_t>(At(position).constraint)] = false;
  active_.erase(active_.begin() + position);
  for (Index i = position; i + 1 < q; ++i) r_.col(i) = r_.col(i + 1);
  r_.col(q - 1).setZero();
  for (Index i = position; i + 1 < q; ++i) {
    Eigen::JacobiRotation<double> rotation;
    rotation.makeGivens(r_(i, i), r_(i + 1, i));
    r_.applyOnTheLeft(i, i + 1, rotation.adjoint());
    r_(i + 1, i) = 0.0;
    j_.applyOnTheRight(i, i + 1, rotation);
  }
}

ProgramSolution DualActiveSet::Solution(eProgramResult result) const {
  ProgramSolution solution;
  solution.result = result;
  solution.step = step_.cwiseMax(program_.lower).cwiseMin(program_.upper);  // without the last digit of rounding
  solution.multipliers = Vector::Zero(NumConstraints());
  for (const Active& entry : active_) {
    const double multiplier = IsEquality(entry.constraint) ? entry.multiplier : std::max(0.0, entry.multiplier);
    solution.multipliers(entry.constraint) = entry.sign * multiplier;
  }
  return solution;
}

}  // namespace

bool ldl001_(const MatrixIn& b, Eigen::Ref<Matrix> factor, Eigen::Ref<Vector> diagonal) {
  const Eigen::LLT<Matrix> cholesky(b);
  if (cholesky.info() != Eigen::Success) return false;
  const Vector roots = cholesky.matrixLLT().diagonal();
  if (!roots.allFinite() || !(roots.minCoeff() > kEpsilon * roots.maxCoeff())) return false;
  factor = cholesky.matrixLLT() * roots.cwiseInverse().asDiagonal();
  diagonal = roots.cwiseAbs2();
  return true;
}

ProgramSolution ql_(const QuadraticProgram& program, double tolerance) {
  if (!program.is_full) return ql0002_(program, tolerance);
  const Index n = program.gradient.size();
  Matrix factor(n, n);
  Vector diagonal(n);
  if (!ldl001_(program.matrix, factor, diagonal)) return {};
  return ql0002_({factor, diagonal, false, program.gradient, program.normals, program.offsets, program.num_equalities,
                  program.lower, program.upper},
                 tolerance);
}

ProgramSolution ql0002_(const QuadraticProgram& factorised, double tolerance) {
  DualActiveSet method(factorised, tolerance);
  return method.Solution(method.Run());
}

}  // namespace kestrel::algorithm::optimizer
