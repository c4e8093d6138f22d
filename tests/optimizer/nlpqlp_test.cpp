#include "optimizer/nlpqlp.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "optimizer/merit_function.h"
#include "optimizer/test_problems.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"

namespace kestrel::testing {

static std::ostream& operator<<(std::ostream& stream, const TestProblem& problem) { return stream << problem.name; }

}  // namespace kestrel::testing

namespace kestrel::algorithm::optimizer {
namespace {

using kestrel::testing::Evaluate;
using kestrel::testing::MatrixNear;
using kestrel::testing::ProblemValues;
using kestrel::testing::TestProblem;
using kestrel::testing::TestProblems;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Vector ToVector(const std::vector<double>& values) {
  return Eigen::Map<const Vector>(values.data(), static_cast<Index>(values.size()));
}

NLPQLP SolverFor(const TestProblem& problem, int parallel_searches = 1) {
  NLPQLP solver(static_cast<int>(problem.start.size()), problem.equalities, problem.inequalities, parallel_searches);
  solver.SetBoundsLower(ToVector(problem.lower));
  solver.SetBoundsUpper(ToVector(problem.upper));
  solver.X.col(0) = ToVector(problem.start);
  solver.ACC = 1e-10;
  solver.MAXIT = 300;
  return solver;
}

/// Answers one request and goes on.
void AnswerAndStep(const TestProblem& problem, NLPQLP& solver) {
  if (solver.IFAIL == -1) {
    for (Index k = 0; k < solver.GetNumAwaitedPoints(); ++k) {
      const ProblemValues at = Evaluate(problem, solver.X.col(k));
      solver.F(k) = at.values(0);
      solver.G.col(k).head(solver.M) = at.values.tail(solver.M);
    }
  } else {
    const ProblemValues at = Evaluate(problem, solver.X.col(0));
    solver.DF = at.gradients.row(0).transpose();
    solver.DG.topRows(solver.M) = at.gradients.bottomRows(solver.M);
  }
  solver.DoStep();
}

void Solve(const TestProblem& problem, NLPQLP& solver) {
  solver.DoStep();
  for (int step = 0; solver.IFAIL < 0; ++step) {
    ASSERT_LT(step, 5000) << "no end";
    ASSERT_TRUE((solver.X.colwise() - solver.XL).minCoeff() >= 0.0 &&
                (solver.X.colwise() - solver.XU).maxCoeff() <= 0.0);
    AnswerAndStep(problem, solver);
  }
}

void ExpectSolved(const TestProblem& problem, const NLPQLP& solver) {
  EXPECT_EQ(solver.IFAIL, 0);
  EXPECT_NEAR(solver.F(0), problem.optimum, 1e-6 * std::max(1.0, std::abs(problem.optimum)));
  // Values, multipliers and point belong together: the gradient of the Lagrangian is 0.
  const ProblemValues at = Evaluate(problem, solver.X.col(0));
  EXPECT_EQ(solver.F(0), at.values(0));
  const Vector bounds = solver.U.segment(solver.M, solver.N) - solver.U.segment(solver.M + solver.N, solver.N);
  const Vector lagrangian = at.gradients.row(0).transpose() -
                            at.gradients.bottomRows(solver.M).transpose() * solver.U.head(solver.M) - bounds;
  EXPECT_LT(lagrangian.norm(), 1e-4);
  EXPECT_GE(solver.U.segment(solver.ME, solver.M - solver.ME + 2 * solver.N).minCoeff(), 0.0);
}

class NlpqlpProblem : public ::testing::TestWithParam<TestProblem> {};

TEST_P(NlpqlpProblem, IsSolvedWithinItsNumberOfCalls) {
  NLPQLP solver = SolverFor(GetParam());
  Solve(GetParam(), solver);
  ExpectSolved(GetParam(), solver);
  EXPECT_LE(solver.GetNumFunctionCalls(), GetParam().max_function_calls);
  EXPECT_LE(solver.GetNumIterations(), solver.GetNumFunctionCalls());
}

TEST_P(NlpqlpProblem, IsSolvedByParallelLineSearches) {
  NLPQLP solver = SolverFor(GetParam(), 4);
  Solve(GetParam(), solver);
  ExpectSolved(GetParam(), solver);
}

TEST_P(NlpqlpProblem, IsSolvedByMonotoneSearchWithFactorisedMatrix) {
  NLPQLP solver = SolverFor(GetParam());
  solver.LQL = false;
  solver.MAXNM = 0;
  Solve(GetParam(), solver);
  ExpectSolved(GetParam(), solver);
}

INSTANTIATE_TEST_SUITE_P(, NlpqlpProblem, ::testing::ValuesIn(TestProblems()),
                         [](const auto& tested) { return tested.param.name; });

TestProblem Parabola() {
  return {"Parabola",
          [](const kestrel::testing::ComplexVector& x) {
            return kestrel::testing::ComplexVector{(x[0] - 3.0) * (x[0] - 3.0) + x[1] * x[1]};
          },
          0,
          0,
          {-10, -10},
          {10, 10},
          {-5, 1},
          0.0,
          10};
}

TEST(Nlpqlp, FirstStepsAskForTheStart) {
  NLPQLP solver = SolverFor(Parabola(), 3);
  solver.X.col(0) << -20.0, 1.0;  // outside: moved to the bound
  solver.DoStep();
  EXPECT_EQ(solver.IFAIL, -1);
  EXPECT_EQ(solver.GetNumAwaitedPoints(), 1);
  EXPECT_EQ(solver.X(0, 0), -10.0);
  AnswerAndStep(Parabola(), solver);
  EXPECT_EQ(solver.IFAIL, -2);
  AnswerAndStep(Parabola(), solver);
  EXPECT_EQ(solver.IFAIL, -1);
  EXPECT_EQ(solver.GetNumAwaitedPoints(), 3);
}

/// All state is in the object: a copy made on the way ends at the same bits.
TEST(Nlpqlp, CopyGoesOnLikeTheOriginal) {
  const TestProblem problem = TestProblems().back();
  NLPQLP solver = SolverFor(problem);
  solver.DoStep();
  for (int step = 0; step < 11; ++step) AnswerAndStep(problem, solver);
  NLPQLP copy = solver;
  while (solver.IFAIL < 0) AnswerAndStep(problem, solver);
  while (copy.IFAIL < 0) AnswerAndStep(problem, copy);
  EXPECT_EQ(copy.X, solver.X);
  EXPECT_EQ(copy.GetNumFunctionCalls(), solver.GetNumFunctionCalls());

  copy.Clear();
  copy.X.col(0) = ToVector(problem.start);
  Solve(problem, copy);
  EXPECT_EQ(copy.X.col(0), solver.X.col(0));
}

/// Left of x = 1 nothing can be evaluated, and the first step leads there.
TEST(Nlpqlp, StepsBackFromWhereNothingCanBeEvaluated) {
  for (const int parallel_searches : {1, 3}) {
    NLPQLP solver(1, 0, 0, parallel_searches);
    solver.SetBoundsLower(Vector::Constant(1, -100.0));
    solver.X(0, 0) = 4.0;
    solver.ACC = 1e-12;
    solver.DoStep();
    int failed = 0;
    for (int step = 0; step < 500 && solver.IFAIL < 0; ++step) {
      for (Index k = 0; k < solver.GetNumAwaitedPoints(); ++k) {
        const double x = solver.X(0, k);
        solver.F(k) = x <= 1.0 ? kNaN : 10.0 * x - std::log(x - 1.0);  // optimum at 1.1
        failed += x <= 1.0 ? 1 : 0;
      }
      solver.DF(0) = 10.0 - 1.0 / (solver.X(0, 0) - 1.0);
      solver.DoStep();
    }
    EXPECT_EQ(solver.IFAIL, 0);
    EXPECT_GT(failed, 0);
    EXPECT_NEAR(solver.X(0, 0), 1.1, 1e-6);
  }
}

TestProblem Named(const std::string& name) {
  for (TestProblem& problem : TestProblems()) {
    if (problem.name == name) return std::move(problem);
  }
  throw std::invalid_argument(name);
}

/// In how many iterations behind the first the search began with B = I again.
int SolveAndCountRestarts(const TestProblem& problem, NLPQLP& solver) {
  int restarts = 0;
  int last = 0;
  solver.DoStep();
  while (solver.IFAIL < 0) {
    AnswerAndStep(problem, solver);
    if (solver.IFAIL != -1 || solver.GetNumIterations() == last) continue;
    if (!solver.C.topLeftCorner(solver.N, solver.N).isIdentity(0.0)) continue;
    last = solver.GetNumIterations();
    ++restarts;
  }
  return restarts;
}

/// The curve times 1e-3 has a multiplier of 289 and needs penalties above 100; a short line search gets stuck as well.
TEST(Nlpqlp, RestartsWithHigherPenaltyAndWhereTheLineSearchIsStuck) {
  struct Restart {
    double scale;  ///< of the constraint
    double penalty_bound;
    int calls_of_search;
    double shortest_step;
    bool restarts;
  };
  const Restart cases[] = {{1e-3, 0.0, 20, 0.0, false}, {1e-3, 1e12, 20, 0.0, false}, {1e-3, 100.0, 20, 0.0, true},
                           {1e-3, 1.0, 20, 0.0, true},  {1.0, 0.0, 20, 0.0, false},   {1.0, 0.0, 2, 0.0, true},
                           {1.0, 0.0, 20, 0.1, true}};
  for (const Restart& tested : cases) {
    SCOPED_TRACE(&tested - cases);
    TestProblem problem = Named("Logarithm_on_oval_7");
    problem.functions = [&tested, plain = problem.functions](const kestrel::testing::ComplexVector& x) {
      auto values = plain(x);
      values[1] *= tested.scale;
      return values;
    };
    NLPQLP solver = SolverFor(problem);
    solver.RHOB = tested.penalty_bound;
    solver.MAXFUN = tested.calls_of_search;
    solver.STPMIN = tested.shortest_step;
    EXPECT_EQ(SolveAndCountRestarts(problem, solver) > 0, tested.restarts);
    ExpectSolved(problem, solver);
  }
}

/// With the multipliers and the matrix of a run before, a problem that has moved a little takes few steps.
TEST(Nlpqlp, Mode1GoesOnWithMultipliersAndMatrix) {
  const TestProblem problem = Named("Seven_inputs_100");
  for (const bool full_matrix : {true, false}) {
    SCOPED_TRACE(full_matrix);
    NLPQLP warm = SolverFor(problem);
    warm.LQL = full_matrix;
    Solve(problem, warm);
    const Vector near = warm.X.col(0).array() + 0.01;
    NLPQLP cold = SolverFor(problem);
    cold.LQL = full_matrix;
    cold.X.col(0) = near;
    Solve(problem, cold);
    warm.MODE = 1;
    warm.Clear();
    warm.X.col(0) = near;
    NLPQLP misled = warm;
    Solve(problem, warm);
    ExpectSolved(problem, warm);
    EXPECT_LT(warm.GetNumFunctionCalls(), cold.GetNumFunctionCalls() - 3);

    misled.C.setConstant(kNaN);
    misled.U.setConstant(kNaN);
    Solve(problem, misled);
    ExpectSolved(problem, misled);
  }
}

/// Under such gradients the free minimum of the quadratic program lies so far outside of the box that its digits do not
/// reach the bounds; above 1e154 the squares of the update overflow, too, and by the last bits of the steps the end is
/// seen or the limit of iterations comes first.
TEST(Nlpqlp, FindsTheOptimumOfHugeObjectives) {
  for (const double scale : {1e17, 1e170}) {
    SCOPED_TRACE(scale);
    TestProblem problem = Parabola();
    problem.functions = [scale](const kestrel::testing::ComplexVector& x) {
      return kestrel::testing::ComplexVector{
          scale * (kestrel::testing::Square(x[0] - 3.0) + kestrel::testing::Square(x[1] - 1.0))};
    };
    NLPQLP solver = SolverFor(problem);
    Solve(problem, solver);
    EXPECT_TRUE(solver.IFAIL == 0 || (scale > 1e154 && solver.IFAIL == 1)) << solver.IFAIL;
    EXPECT_TRUE(MatrixNear(solver.X, (Vector(2) << 3.0, 1.0).finished(), 1e-6));
  }
}

TEST(Nlpqlp, SpreadsParallelStepsDownToTheShortest) {
  const TestProblem problem = Parabola();
  NLPQLP solver = SolverFor(problem, 3);
  solver.STPMIN = 0.01;
  solver.X.col(0) << 4.0, 1.0;
  solver.DoStep();
  AnswerAndStep(problem, solver);
  AnswerAndStep(problem, solver);  // along -(2, 2)
  EXPECT_TRUE(MatrixNear(solver.X, (Matrix(2, 3) << 2.0, 3.8, 3.98, -1.0, 0.8, 0.98).finished(), 1e-12));
}

struct Ending {
  const char* name;
  eIfail expected;
  std::function<void(NLPQLP&)> prepare;
  std::function<double(double)> value;
  std::function<double(double)> slope;
  double constraint_slope = 1.0;
};

/// One input in [-5, 5] from 2, with the constraint x >= -4.
TEST(Nlpqlp, EndsWithTheReason) {
  const auto nothing = [](NLPQLP&) {};
  const auto square = [](double x) { return x * x; };
  const auto twice = [](double x) { return 2.0 * x; };
  const auto only_start = [](double x) { return x == 2.0 ? 4.0 : kNaN; };
  const auto far_away = [](NLPQLP& s) {
    s.XU(0) = 1e30;
    s.X(0, 0) = 1e20;
  };
  const auto answering = [](int what) {
    return [what](NLPQLP& s) {
      s.DoStep();
      s.IFAIL = what;
    };
  };
  const Ending endings[] = {
      {"optimum", eIfail::kConverged, nothing, square, twice},
      {"iteration limit", eIfail::kIterationLimit, [](NLPQLP& s) { s.MAXIT = 0; }, square, twice},
      {"start not finite", eIfail::kNotFinite, nothing, [](double) { return kNaN; }, twice},
      {"gradient not finite", eIfail::kNotFinite, nothing, square, [](double) { return kNaN; }},
      {"constraint gradient not finite", eIfail::kNotFinite, nothing, square, twice, kNaN},
      {"start not a number", eIfail::kNotFinite, [](NLPQLP& s) { s.X(0, 0) = kNaN; }, square, twice},
      {"slope of the wrong sign", eIfail::kLineSearchFailed, nothing, square, [](double x) { return -2.0 * x; }},
      {"everything fails but the start", eIfail::kLineSearchFailed, nothing, only_start, twice},
      {"step that rounding swallows", eIfail::kLineSearchFailed, far_away, [](double x) { return std::sin(x); },
       [](double x) { return std::cos(x); }},
      {"answer out of turn", eIfail::kWrongArguments, answering(-2), square, twice},
      {"unknown answer", eIfail::kWrongArguments, answering(-3), square, twice},
      {"accuracy below zero", eIfail::kWrongArguments, [](NLPQLP& s) { s.ACC = -1.0; }, square, twice},
      {"accuracy not a number", eIfail::kWrongArguments, [](NLPQLP& s) { s.ACC = kNaN; }, square, twice},
      {"unknown mode", eIfail::kWrongArguments, [](NLPQLP& s) { s.MODE = 7; }, square, twice},
      {"no calls", eIfail::kWrongArguments, [](NLPQLP& s) { s.MAXFUN = 0; }, square, twice},
      {"diagonal not positive", eIfail::kWrongArguments, [](NLPQLP& s) { s.D(0) = 0.0; }, square, twice},
      {"arrays of another size", eIfail::kWrongArguments, [](NLPQLP& s) { s.G.resize(3, 1); }, square, twice},
      {"short integer array", eIfail::kWorkArraysTooShort, [](NLPQLP& s) { s.KWA.resize(2); }, square, twice},
      {"bounds crossed", eIfail::kWrongBounds, [](NLPQLP& s) { s.XL(0) = 6.0; }, square, twice},
      {"bound not a number", eIfail::kWrongBounds, [](NLPQLP& s) { s.XU(0) = kNaN; }, square, twice},
  };
  for (const Ending& ending : endings) {
    SCOPED_TRACE(ending.name);
    NLPQLP solver(1, 0, 1, 1);
    solver.SetBoundsLower(Vector::Constant(1, -5.0));
    solver.SetBoundsUpper(Vector::Constant(1, 5.0));
    solver.X(0, 0) = 2.0;
    ending.prepare(solver);
    const double start = solver.X(0, 0);
    solver.DoStep();
    for (int step = 0; step < 500 && solver.IFAIL < 0; ++step) {
      solver.F(0) = ending.value(solver.X(0, 0));
      solver.G(0, 0) = solver.X(0, 0) + 4.0;
      solver.DF(0) = ending.slope(solver.X(0, 0));
      solver.DG(0, 0) = ending.constraint_slope;
      solver.DoStep();
    }
    EXPECT_EQ(solver.IFAIL, static_cast<int>(ending.expected));
    if (ending.expected == eIfail::kLineSearchFailed) {
      EXPECT_EQ(solver.X(0, 0), start);  // the best point known
    }
    const int ended = solver.IFAIL;
    if (ended > 0) solver.DoStep();
    EXPECT_EQ(solver.IFAIL, ended);  // nothing happens any more
  }
}

struct Degenerate {
  eIfail expected;
  double violation;  ///< the least
  double x;          ///< first input at the end
  double tolerance;
  TestProblem problem;
};

/// What can not be fulfilled ends where its violation is least. The last two have optima without multipliers, because
/// the constraint has no slope there (the second of them is number 13 of Hock and Schittkowski).
TEST(Nlpqlp, EndsAtConstraintsThatContradictEachOtherOrHaveNoSlope) {
  using X = kestrel::testing::ComplexVector;
  using kestrel::testing::Cube;
  using kestrel::testing::Square;
  const Degenerate problems[] = {
      {eIfail::kInfeasible,
       2.0,
       0.0,
       1.0 + 1e-6,
       {"above_1_and_below_minus_1",
        [](const X& x) {
          return X{Square(x[0]), x[0] - 1.0, -1.0 - x[0]};
        },  //
        0,
        2,
        {-5},
        {5},
        {4},
        0.0,
        0}},
      {eIfail::kInfeasible,
       1.0,
       0.0,
       1e-6,
       {"square_is_minus_1",
        [](const X& x) {
          return X{x[0], Square(x[0]) + 1.0};
        },
        1,
        0,
        {-5},
        {5},
        {1},
        0.0,
        0}},
      {eIfail::kConverged,
       0.0,
       0.0,
       1e-6,
       {"square_is_0",
        [](const X& x) {
          return X{x[0], Square(x[0])};
        },
        1,
        0,
        {-5},
        {5},
        {1},
        0.0,
        0}},
      {eIfail::kNoDescent,
       0.0,
       1.0,
       1e-2,
       {"cusp_13",
        [](const X& x) {
          return X{Square(x[0] - 2.0) + Square(x[1]), Cube(1.0 - x[0]) - x[1]};
        },  //
        0,
        1,
        {0, 0},
        {10, 10},
        {0, 0},
        0.0,
        0}},
  };
  for (const Degenerate& tested : problems) {
    for (const bool full_matrix : {true, false}) {
      SCOPED_TRACE(tested.problem.name);
      NLPQLP solver = SolverFor(tested.problem);
      solver.LQL = full_matrix;
      Solve(tested.problem, solver);
      EXPECT_EQ(solver.IFAIL, static_cast<int>(tested.expected));
      EXPECT_NEAR(Violation(solver.G.col(0).head(solver.M), solver.ME), tested.violation, 1e-6);
      EXPECT_NEAR(solver.X(0, 0), tested.x, tested.tolerance);
    }
  }
}

TEST(Nlpqlp, RefusesSizesAndBoundsThatDoNotFit) {
  EXPECT_THROW(NLPQLP(0, 0, 0, 1), utils::runtime_error);
  EXPECT_THROW(NLPQLP(1, -1, 0, 1), utils::runtime_error);
  EXPECT_THROW(NLPQLP(1, 0, 0, 0), utils::runtime_error);
  NLPQLP solver(2, 0, 0, 1);
  EXPECT_THROW(solver.SetBoundsLower(Vector::Zero(3)), utils::runtime_error);
  EXPECT_THROW(solver.SetBoundsUpper(Matrix::Zero(2, 2)), utils::runtime_error);
  solver.SetBoundsUpper(Matrix::Constant(1, 2, 4.0));
  EXPECT_EQ(solver.XU, Vector::Constant(2, 4.0));
}

}  // namespace
}  // namespace kestrel::algorithm::optimizer
