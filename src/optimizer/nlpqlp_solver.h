#pragma once

#include <Eigen/Core>

#include "support/linear_algebra.h"

namespace kestrel::algorithm::optimizer {

using math::Index;
using math::Matrix;
using math::Vector;
using math::VectorIn;

using IntegerVector = Eigen::VectorXi;
using FlagVector = Eigen::Array<bool, Eigen::Dynamic, 1>;

/// What IFAIL says. Below 0 the solver wants something; above 0 it stopped and X holds the best point known.
enum class eIfail : int {
  kWantsGradients = -2,   ///< DF and DG at column 0 of X
  kWantsValues = -1,      ///< F and G at the columns of X that are to be evaluated
  kConverged = 0,         ///< on the way in: start
  kIterationLimit = 1,    ///< MAXIT iterations made
  kNoDescent = 2,         ///< the quadratic program has no solution or leads nowhere, even with a fresh matrix
  kLineSearchFailed = 3,  ///< MAXFUN calls without a better point, even with a fresh matrix
  kInfeasible = 4,        ///< the linearised constraints contradict each other; no step takes a share off every one
  kNotFinite = 5,         ///< start or gradient could not be evaluated
  kWrongArguments = 6,    ///< sizes or options that do not fit each other
  kWorkArraysTooShort = 7,
  kWrongBounds = 8  ///< a lower bound above the upper, or not a number
};

/// The arguments of the solver in their order; `NLPQLP` says what each is.
struct SolverArguments {
  int L, M, ME, MMAX, N, NMAX, MNN2;
  Eigen::Ref<Matrix> X;
  Eigen::Ref<Vector> F;
  Eigen::Ref<Matrix> G;
  Eigen::Ref<Vector> DF;
  Eigen::Ref<Matrix> DG;
  Eigen::Ref<Vector> U;
  Eigen::Ref<Vector> XL, XU;
  Eigen::Ref<Matrix> C;
  Eigen::Ref<Vector> D;
  double ACC, ACCQP, STPMIN;
  int MAXFUN, MAXIT, MAXNM;
  double RHOB;
  int IPRINT, MODE, IOUT;
  int& IFAIL;
  Eigen::Ref<Vector> WA;
  int LWA;
  Eigen::Ref<IntegerVector> KWA;
  int LKWA;
  Eigen::Ref<FlagVector> ACTIVE;
  int LACTIV;
  bool LQL;
};

/// One call of the sequential quadratic programming method, in reverse communication: it goes on from what IFAIL says
/// the caller was asked for, up to the next request or the end. All that it remembers stands in the arguments.
///
/// An iteration at x solves the quadratic program with the quasi-Newton matrix B and the linearised constraints for a
/// step d and multipliers u; moves along (d, u - v) by a line search on the augmented Lagrangian (merit_function.h),
/// which accepts any point better than the worst of the last MAXNM merit values; and updates B by the damped BFGS
/// formula. (Wilson; Han; Powell 1978, "A fast algorithm for nonlinearly constrained optimization calculations";
/// Schittkowski 1983, as for the merit function; Grippo, Lampariello and Lucidi 1986, "A nonmonotone line search
/// technique for Newton's method"; Dai and Schittkowski 2008, "A sequential quadratic programming algorithm with
/// non-monotone line search".)
void nlpqp2_(const SolverArguments& arguments);

}  // namespace kestrel::algorithm::optimizer
