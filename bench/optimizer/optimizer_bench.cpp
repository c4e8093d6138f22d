#include <benchmark/benchmark.h>

#include "optimizer/nlpqlp.h"
#include "optimizer/optimizer_nlpqlp.h"

namespace kestrel::algorithm::optimizer {
namespace {

/// sum_i 100 (x_{i+1} - x_i^2)^2 + (1 - x_i)^2, minimum 0 at (1, ..., 1).
double Valley(const VectorIn& x) {
  const Index n = x.size();
  return 100.0 * (x.tail(n - 1) - x.head(n - 1).cwiseAbs2()).squaredNorm() +
         (1.0 - x.head(n - 1).array()).square().sum();
}

Vector ValleyGradient(const VectorIn& x) {
  const Index n = x.size();
  const Vector off = x.tail(n - 1) - x.head(n - 1).cwiseAbs2();
  Vector gradient = Vector::Zero(n);
  gradient.head(n - 1) = -400.0 * off.cwiseProduct(x.head(n - 1)) + 2.0 * (x.head(n - 1).array() - 1.0).matrix();
  gradient.tail(n - 1) += 200.0 * off;
  return gradient;
}

/// The solver by itself with exact gradients; n inputs between bounds. `calls` are rounds of function values.
void SolveValley(benchmark::State& state) {
  const auto n = static_cast<int>(state.range(0));
  int calls = 0;
  for (auto _ : state) {
    NLPQLP solver(n, 0, 0, 1);
    solver.SetBoundsLower(Vector::Constant(n, -2.0));
    solver.SetBoundsUpper(Vector::Constant(n, 2.0));
    solver.X.setConstant(-1.0);
    solver.MAXIT = 500;
    solver.DoStep();
    while (solver.IFAIL < 0) {
      if (solver.IFAIL == -1) {
        solver.F(0) = Valley(solver.X.col(0));
      } else {
        solver.DF = ValleyGradient(solver.X.col(0));
      }
      solver.DoStep();
    }
    calls = solver.GetNumFunctionCalls();
    benchmark::DoNotOptimize(solver.F);
  }
  state.counters["calls"] = calls;
}
BENCHMARK(SolveValley)->Arg(2)->Arg(5)->Arg(10)->Arg(20)->Unit(benchmark::kMicrosecond);

/// The whole loop of the optimizer with backward differences, as for two hyperparameters. `designs` are all
/// evaluations.
void OptimizeValley(benchmark::State& state) {
  const auto n = static_cast<Index>(state.range(0));
  OptimizerSettingsNLPQLP<double> settings(static_cast<std::uint64_t>(n));
  settings.SetLowerBounds(Vector::Constant(n, -2.0));
  settings.SetUpperBounds(Vector::Constant(n, 2.0));
  settings.SetStartDesigns(Matrix::Constant(1, n, -1.0));
  settings.SetNumericalDifferences(eDiffType::kBackward);
  std::uint64_t designs = 0;
  for (auto _ : state) {
    OptimizerNLPQLP<double> optimizer(settings);
    while (!optimizer.IsTerminated()) {
      const Matrix next = optimizer.GetNextDesigns();
      Matrix values(next.rows(), 1);
      for (Index row = 0; row < next.rows(); ++row) values(row, 0) = Valley(next.row(row).transpose());
      optimizer.SetInputs(next);
      optimizer.SetObjectives(values);
      optimizer.Appraise();
      optimizer.Adapt();
    }
    designs = optimizer.GetNumEvaluations();
  }
  state.counters["designs"] = static_cast<double>(designs);
}
BENCHMARK(OptimizeValley)->Arg(2)->Arg(5)->Arg(10)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kestrel::algorithm::optimizer
