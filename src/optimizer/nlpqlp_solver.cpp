#include "optimizer/nlpqlp_solver.h"

#include <algorithm>

#include "optimizer/solver_memory.h"
#include "optimizer/sqp_solver.h"

namespace kestrel::algorithm::optimizer {
namespace {

bool SizesFit(const SolverArguments& arg) {
  return arg.L >= 1 && arg.N >= 1 && arg.ME >= 0 && arg.M >= arg.ME && arg.MMAX >= std::max(1, arg.M) &&
         arg.NMAX > arg.N && arg.MNN2 == arg.M + 2 * arg.N + 2 && arg.X.rows() == arg.N && arg.X.cols() == arg.L &&
         arg.F.size() == arg.L && arg.G.rows() == arg.MMAX && arg.G.cols() == arg.L && arg.DF.size() == arg.N &&
         arg.DG.rows() == arg.MMAX && arg.DG.cols() == arg.N && arg.U.size() == arg.MNN2 && arg.XL.size() == arg.N &&
         arg.XU.size() == arg.N && arg.C.rows() == arg.NMAX && arg.C.cols() == arg.NMAX && arg.D.size() == arg.NMAX;
}

bool OptionsFit(const SolverArguments& arg) {
  return arg.ACC >= 0.0 && arg.ACCQP >= 0.0 && arg.STPMIN >= 0.0 && arg.STPMIN < 1.0 && arg.MAXFUN >= 1 &&
         arg.MAXIT >= 0 && (arg.MODE == 0 || arg.MODE == 1) && arg.D.head(arg.N).minCoeff() > 0.0 && arg.D.allFinite();
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
  SqpSolver(arguments).Step();
}

}  // namespace kestrel::algorithm::optimizer
