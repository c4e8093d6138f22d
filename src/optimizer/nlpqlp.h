#pragma once

#include "optimizer/nlpqlp_solver.h"
#include "support/linear_algebra.h"

namespace kestrel::algorithm::optimizer {

using math::MatrixIn;

/// Owns the arguments and work arrays of the sequential quadratic programming solver (nlpqlp_solver.h) for
///
///   minimise F(x)  subject to  G_j(x) = 0 (j < ME),  G_j(x) >= 0 (ME <= j < M),  XL <= x <= XU
///
/// and drives it by reverse communication. The members carry the names of the solver's arguments; the caller reads and
/// writes them between two steps:
///
///   NLPQLP solver(n, equalities, inequalities, 1);
///   solver.SetBoundsLower(lower); solver.SetBoundsUpper(upper);
///   solver.X.col(0) = start;
///   solver.DoStep();
///   while (solver.IFAIL < 0) {
///     if (solver.IFAIL == -1) { for each of the first GetNumAwaitedPoints() columns k of X: fill F(k), G.col(k) }
///     if (solver.IFAIL == -2) { fill DF and the rows of DG at X.col(0) }
///     solver.DoStep();
///   }
///
/// The first step asks for the values and then for the gradients at the start; nothing needs to be filled before. A
/// value that is not finite says that the point could not be evaluated: the line search then tries a shorter step, and
/// a start that cannot be evaluated ends the run. The points asked for lie within the bounds.
class NLPQLP {
 public:
  NLPQLP(int inputs, int equalities, int inequalities, int parallel_searches);

  /// n x 1 or 1 x n. Raises utils::runtime_error if the number of entries differs.
  void SetBoundsLower(const MatrixIn& bounds);
  void SetBoundsUpper(const MatrixIn& bounds);
  /// Options, bounds and the starting diagonal; the sizes stay.
  void SetDefaultParameters();
  /// Calls the solver once.
  void DoStep();
  /// Forgets the run: the next step starts anew at the first column of X. Options and bounds stay, in mode 1 also what
  /// the run has learnt: U, C and D.
  void Clear();

  /// How many columns of X are to be evaluated after IFAIL = -1: one at the start, L in the line search.
  Index GetNumAwaitedPoints() const;
  /// Iterations and rounds of function values so far.
  int GetNumIterations() const;
  int GetNumFunctionCalls() const;

  int L = 1;     ///< number of points that a line search evaluates at once
  int M = 0;     ///< number of constraints
  int ME = 0;    ///< of these, equalities; they stand first
  int MMAX = 1;  ///< rows of G and DG, at least max(1, M)
  int N = 0;     ///< number of inputs
  int NMAX = 2;  ///< rows of C, above N
  int MNN2 = 0;  ///< M + 2 N + 2

  Matrix X;   ///< N x L; column 0 is the start, later the iterate
  Vector F;   ///< L objectives
  Matrix G;   ///< MMAX x L constraints
  Vector DF;  ///< N, gradient of F at column 0
  Matrix DG;  ///< MMAX x N, gradients of the constraints in its rows
  Vector U;   ///< MNN2 multipliers: constraints, lower bounds, upper bounds, 2 of the solver's own
  Vector XL;  ///< N lower bounds
  Vector XU;  ///< N upper bounds
  Matrix C;   ///< NMAX x NMAX, the quasi-Newton matrix B, or L of B = L D L'
  Vector D;   ///< NMAX, the diagonal that B starts with; later that of B = L D L' if LQL is false

  double ACC = 0.0;     ///< final accuracy
  double ACCQP = 0.0;   ///< tolerance of the quadratic program; 0: its own default
  double STPMIN = 0.0;  ///< minimal step of the line search
  int MAXFUN = 0;       ///< largest number of calls in one line search
  int MAXIT = 0;        ///< largest number of iterations
  int MAXNM = 0;        ///< how many merit values the non-monotone line search looks back to; 0: monotone
  double RHOB = 0.0;    ///< penalty parameter that leads to a restart
  int IPRINT = 0;       ///< 0; the solver prints nothing
  int MODE = 0;         ///< 0 normal; 1: U, C and D hold multipliers and matrix to start with
  int IOUT = 1;         ///< output unit, not used
  int IFAIL = 0;        ///< what the solver wants or how it ended; see eIfail

  Vector WA;  ///< LWA
  int LWA = 0;
  IntegerVector KWA;  ///< LKWA
  int LKWA = 0;
  FlagVector ACTIVE;  ///< LACTIV; true for constraints that the last quadratic program took into account
  int LACTIV = 0;
  bool LQL = true;  ///< C holds B itself

 private:
  void Allocate();
};

}  // namespace kestrel::algorithm::optimizer
