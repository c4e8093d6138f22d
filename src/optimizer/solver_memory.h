#pragma once

#include "support/linear_algebra.h"

namespace kestrel::algorithm::optimizer {

using math::Index;
using math::Matrix;
using math::Vector;

/// What the solver has asked for and waits for.
enum class ePhase : int { kStartValues = 0, kTrialValues = 1, kGradients = 2, kEnded = 3 };

/// Hands out stretches of an array one after the other.
class ArrayCutter {
 public:
  explicit ArrayCutter(Eigen::Ref<Vector> array) : next_(array.data()) {}

  Eigen::Map<Vector> Take(Index count) {
    next_ += count;
    return {next_ - count, count};
  }
  double& TakeOne() { return *next_++; }

 private:
  double* next_;
};

/// What the solver remembers from call to call, laid over its work arrays, which outlive it: n inputs, m constraints.
struct SolverMemory {
  using Numbers = Eigen::Map<Vector>;

  /// Entries that the two work arrays need.
  static constexpr Index WorkLength(Index n, Index m, Index max_merits) {
    return 6 * n + 5 * m + m * n + max_merits + 6;
  }
  static constexpr Index kIntegerWorkLength = 8;
  /// Where the integers stand in their array.
  enum Position : Index {
    kPhase,
    kAwaitedPoints,
    kIterations,
    kFunctionCalls,
    kSearchCalls,
    kNumMerits,
    kIsFresh,
    kHasBest
  };

  SolverMemory(Index n, Index m, Index max_merits, ArrayCutter work, Eigen::Ref<Eigen::VectorXi> integers)
      : iterate(work.Take(n)),
        step(work.Take(n)),
        gradient(work.Take(n)),
        jacobian(work.Take(m * n).data(), m, n),
        lagrangian_gradient(work.Take(n)),
        start_diagonal(work.Take(n)),
        best(work.Take(n)),
        constraints(work.Take(m)),
        program_multipliers(work.Take(m)),
        multipliers(work.Take(m)),
        penalties(work.Take(m)),
        best_constraints(work.Take(m)),
        objective(work.TakeOne()),
        best_objective(work.TakeOne()),
        merit(work.TakeOne()),
        slope(work.TakeOne()),
        length(work.TakeOne()),
        penalty_bound(work.TakeOne()),
        merits(work.Take(max_merits)),
        phase(integers(kPhase)),
        awaited_points(integers(kAwaitedPoints)),
        iterations(integers(kIterations)),
        function_calls(integers(kFunctionCalls)),
        search_calls(integers(kSearchCalls)),
        num_merits(integers(kNumMerits)),
        is_fresh(integers(kIsFresh)),
        has_best(integers(kHasBest)) {}

  Numbers iterate;              ///< x
  Numbers step;                 ///< d, the solution of the quadratic program at x
  Numbers gradient;             ///< f' at x; the caller may write DF and DG at any time
  Eigen::Map<Matrix> jacobian;  ///< c' at x, m x n
  Numbers lagrangian_gradient;  ///< f' - u' c' at the iterate before, with its u
  Numbers start_diagonal;       ///< of the quasi-Newton matrix
  Numbers best;                 ///< the best point met
  Numbers constraints;          ///< c at x
  Numbers program_multipliers;  ///< u, of the quadratic program
  Numbers multipliers;          ///< v, of the merit function
  Numbers penalties;            ///< r
  Numbers best_constraints;     ///< c at the best point

  double& objective;       ///< f at x
  double& best_objective;  ///< f at the best point
  double& merit;           ///< psi at x
  double& slope;           ///< its derivative along the step
  double& length;          ///< of the (first) trial step, as a share of d
  double& penalty_bound;   ///< above it a penalty leads to a restart
  Numbers merits;          ///< of the last iterates, in a ring; last, since their number is an option

  int& phase;
  int& awaited_points;
  int& iterations;
  int& function_calls;  ///< rounds of function values
  int& search_calls;    ///< of these, in the present line search
  int& num_merits;      ///< number of merits put into the ring
  int& is_fresh;        ///< 1 while the quasi-Newton matrix is the starting one
  int& has_best;        ///< 1 once a point was evaluated
};

}  // namespace kestrel::algorithm::optimizer
