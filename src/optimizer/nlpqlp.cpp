#include "optimizer/nlpqlp.h"

#include <algorithm>
#include <limits>
#include <string>

#include "optimizer/solver_memory.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::optimizer {
namespace {

/// A row or a column of n numbers as a vector.
Vector BoundsFrom(const MatrixIn& bounds, int inputs) {
  const bool is_column = bounds.cols() == 1;
  if (bounds.size() != inputs || (!is_column && bounds.rows() != 1)) {
    throw utils::runtime_error(L"NLPQLP: The number of bounds (" + std::to_wstring(bounds.size()) +
                               L") is not equal to the number of inputs (" + std::to_wstring(inputs) + L").");
  }
  return is_column ? Vector(bounds.col(0)) : Vector(bounds.row(0).transpose());
}

}  // namespace

NLPQLP::NLPQLP(int inputs, int equalities, int inequalities, int parallel_searches)
    : L(parallel_searches), M(equalities + inequalities), ME(equalities), N(inputs) {
  if (inputs < 1 || equalities < 0 || inequalities < 0 || parallel_searches < 1) {
    throw utils::runtime_error(L"NLPQLP needs at least one input and one line search, and no negative counts.");
  }
  Allocate();
  SetDefaultParameters();
}

void NLPQLP::Allocate() {
  MMAX = std::max(1, M);
  NMAX = N + 1;
  MNN2 = M + 2 * N + 2;
  LACTIV = MMAX;
  LKWA = static_cast<int>(SolverMemory::kIntegerWorkLength);
  X.setZero(N, L);
  F.setZero(L);
  G.setZero(MMAX, L);
  DF.setZero(N);
  DG.setZero(MMAX, N);
  U.setZero(MNN2);
  XL.resize(N);
  XU.resize(N);
  C.setZero(NMAX, NMAX);
  D.resize(NMAX);
  KWA.setZero(LKWA);
  ACTIVE.setConstant(LACTIV, false);
}

void NLPQLP::SetDefaultParameters() {
  ACC = 1e-7;
  ACCQP = 0.0;
  STPMIN = 0.0;
  MAXFUN = 20;
  MAXIT = 100;
  MAXNM = 10;
  RHOB = 100.0;
  IPRINT = 0;
  MODE = 0;
  IOUT = 1;
  LQL = true;
  XL.setConstant(std::numeric_limits<double>::lowest());
  XU.setConstant(std::numeric_limits<double>::max());
  D.setOnes();
}

void NLPQLP::SetBoundsLower(const MatrixIn& bounds) { XL = BoundsFrom(bounds, N); }
void NLPQLP::SetBoundsUpper(const MatrixIn& bounds) { XU = BoundsFrom(bounds, N); }

void NLPQLP::DoStep() {
  if (IFAIL == 0) {  // the stack of merit values may have got another size
    LWA = static_cast<int>(SolverMemory::WorkLength(N, M, std::max(0, MAXNM)));
    WA.setZero(LWA);
  }
  nlpqp2_({L,      M,    ME,   MMAX,  N,  NMAX, MNN2,  X,      F,      G,      DF,    DG,
           U,      XL,   XU,   C,     D,  ACC,  ACCQP, STPMIN, MAXFUN, MAXIT,  MAXNM, RHOB,
           IPRINT, MODE, IOUT, IFAIL, WA, LWA,  KWA,   LKWA,   ACTIVE, LACTIV, LQL});
}

void NLPQLP::Clear() {
  IFAIL = 0;
  KWA.setZero();
  if (!LQL && MODE == 0) D.setOnes();  // it held the factor of the last matrix
}

Index NLPQLP::GetNumAwaitedPoints() const { return KWA(SolverMemory::kAwaitedPoints); }
int NLPQLP::GetNumIterations() const { return KWA(SolverMemory::kIterations); }
int NLPQLP::GetNumFunctionCalls() const { return KWA(SolverMemory::kFunctionCalls); }

}  // namespace kestrel::algorithm::optimizer
