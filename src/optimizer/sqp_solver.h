#pragma once

#include <algorithm>
#include <cmath>

#include "optimizer/merit_function.h"
#include "optimizer/nlpqlp_solver.h"
#include "optimizer/solver_memory.h"
#include "optimizer/step_program.h"

namespace kestrel::algorithm::optimizer {

/// One call of the solver: the arguments, and what stands in the work arrays.
class SqpSolver {
 public:
  explicit SqpSolver(const SolverArguments& arguments)
      : arg_(arguments),
        m_(arguments.M),
        n_(arguments.N),
        at_(n_, m_, std::max(0, arguments.MAXNM), ArrayCutter(arguments.WA), arguments.KWA) {}

  /// Starts, or goes on from what the caller was asked for.
  void Step();

 private:
  void Start();
  void TakeGradients();
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

  Vector LagrangianGradient() const { return at_.gradient - at_.jacobian.transpose() * at_.program_multipliers; }
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

}  // namespace kestrel::algorithm::optimizer
