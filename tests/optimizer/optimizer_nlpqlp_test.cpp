#include "optimizer/optimizer_nlpqlp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "optimizer/test_problems.h"
#include "support/exceptions.h"
#include "support/log.h"
#include "support/matrix_compare.h"

namespace kestrel::algorithm::optimizer {
namespace {

using kestrel::testing::Evaluate;
using kestrel::testing::MatrixNear;
using kestrel::testing::TestProblem;
using kestrel::testing::TestProblems;

using Settings = OptimizerSettingsNLPQLP<double>;
using Optimizer = OptimizerNLPQLP<double>;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// One row of responses, objective first; an empty vector says that the design failed.
using Model = std::function<Vector(const Vector&)>;

/// Hands one set of designs through the model, each moved by `shift` before it is evaluated.
void RunRound(Optimizer& optimizer, const Model& model, Index equalities, Index inequalities, double shift = 0.0) {
  const Matrix designs = optimizer.GetNextDesigns().array() + shift;
  Matrix responses = Matrix::Constant(designs.rows(), 1 + equalities + inequalities, kNaN);
  std::vector<bool> success;
  for (Index row = 0; row < designs.rows(); ++row) {
    const Vector values = model(designs.row(row).transpose());
    success.push_back(values.size() > 0);
    if (success.back()) responses.row(row) = values.transpose();
  }
  optimizer.SetInputs(designs);
  optimizer.SetCriteriaSuccessInfo(success);
  optimizer.SetObjectives(responses.leftCols(1));
  if (equalities > 0) optimizer.SetEqualities(responses.middleCols(1, equalities));
  if (inequalities > 0) optimizer.SetInequalities(responses.rightCols(inequalities));
  optimizer.Appraise();
  optimizer.Adapt();
}

void Solve(Optimizer& optimizer, const Model& model, Index equalities = 0, Index inequalities = 0, double shift = 0.0) {
  for (int round = 0; !optimizer.IsTerminated(); ++round) {
    ASSERT_LT(round, 2000) << "no end";
    RunRound(optimizer, model, equalities, inequalities, shift);
  }
  optimizer.Finalize();
}

Settings TwoInputs(double lower, double upper, double first, double second) {
  Settings settings(2);
  settings.SetLowerBounds(Vector::Constant(2, lower));
  settings.SetUpperBounds(Vector::Constant(2, upper));
  settings.SetStartDesigns((Matrix(1, 2) << first, second).finished());
  return settings;
}

Vector Value(double value) { return Vector::Constant(1, value); }

/// Minimum 2 at (0.3, -0.2).
Vector Bowl(const Vector& x) {
  return Value(2.0 + std::cosh(x(0) - 0.3) - 1.0 + 5.0 * (x(1) + 0.2) * (x(1) + 0.2) + (x(0) - 0.3) * (x(1) + 0.2));
}

struct Difference {
  eDiffType type;
  double step;
  double tolerance;  ///< relative, of the optimum
};

/// The whole loop with numerical gradients; the problems whose scale needs exact ones are left out.
TEST(OptimizerNlpqlp, SolvesTheProblemsWithNumericalGradients) {
  const Difference differences[] = {{eDiffType::kForward, 1e-6, 1e-5},
                                    {eDiffType::kBackward, 1e-6, 1e-5},
                                    {eDiffType::kCentral, 1e-5, 1e-6},
                                    {eDiffType::kFourthOrder, 1e-4, 1e-6}};
  for (const TestProblem& problem : TestProblems()) {
    if (problem.name == "Powell_badly_scaled" || problem.name == "Colville_38") continue;
    const auto n = static_cast<Index>(problem.start.size());
    Settings settings(problem.start.size(), 1, static_cast<std::uint64_t>(problem.equalities),
                      static_cast<std::uint64_t>(problem.inequalities));
    settings.SetLowerBounds(Eigen::Map<const Vector>(problem.lower.data(), n));
    settings.SetUpperBounds(Eigen::Map<const Vector>(problem.upper.data(), n));
    const Vector start = Eigen::Map<const Vector>(problem.start.data(), n);
    settings.SetStartDesigns(start.cwiseMax(settings.GetLowerBounds()).cwiseMin(settings.GetUpperBounds()).transpose());
    settings.SetAccuracy(1e-7);
    for (const Difference& difference : differences) {
      SCOPED_TRACE(problem.name + " with differences " + std::to_string(static_cast<int>(difference.type)));
      settings.SetNumericalDifferences(difference.type);
      settings.SetGradientDx(difference.step);
      Optimizer optimizer(settings);
      Solve(
          optimizer, [&](const Vector& x) { return Evaluate(problem, x).values; }, problem.equalities,
          problem.inequalities);
      EXPECT_TRUE(optimizer.IsConverged());
      const double scale = std::max(1.0, std::abs(problem.optimum));
      EXPECT_NEAR(optimizer.GetBestObjectives()(0, 0), problem.optimum, difference.tolerance * scale);
      const Vector values = Evaluate(problem, optimizer.GetBestInputs().transpose()).values;
      EXPECT_EQ(optimizer.GetBestObjectives()(0, 0), values(0));
      EXPECT_TRUE(MatrixNear(optimizer.GetBestEqualities(), values.segment(1, problem.equalities).transpose(), 0.0));
      EXPECT_TRUE(MatrixNear(optimizer.GetBestInequalities(), values.tail(problem.inequalities).transpose(), 0.0));
    }
  }
}

TEST(OptimizerNlpqlp, HandsOutStartThenTrialsThenGradient) {
  Settings settings = TwoInputs(-2.0, 2.0, 1.0, 1.0);
  settings.SetNumberOfParallelLineSearches(3);
  Optimizer optimizer(settings);
  const Index rows[] = {3, 3, 2, 3, 2};  // start with 2 extra designs, 3 trials, 2 extra designs, ...
  for (const Index expected : rows) {
    EXPECT_EQ(optimizer.GetNextDesigns().rows(), expected);
    EXPECT_EQ(optimizer.GetNumAwaitingDesigns(), static_cast<std::uint64_t>(expected));
    RunRound(optimizer, Bowl, 0, 0);
  }
  EXPECT_EQ(optimizer.GetNumEvaluations(), 13U);
}

TEST(OptimizerNlpqlp, BestDesignIsTheLowestOfAllEvaluatedWithoutBounds) {
  Settings settings(2);
  settings.SetStartDesigns(Matrix::Constant(1, 2, 1.5));
  Optimizer optimizer(settings);
  std::vector<double> values;
  Solve(optimizer, [&](const Vector& x) {
    values.push_back(Bowl(x)(0));
    return Value(values.back());
  });
  const auto best = std::min_element(values.begin(), values.end());
  EXPECT_EQ(optimizer.GetBestObjectives()(0, 0), *best);
  EXPECT_EQ(optimizer.GetBestDesignNumbers()(0), static_cast<std::uint64_t>(best - values.begin()));
  EXPECT_EQ(optimizer.GetNumEvaluations(), values.size());
  EXPECT_NEAR(*best, 2.0, 1e-5);
}

/// Right of x0 = 0.9, where the run starts, the model fails. Central differences then have the other side. Forward ones
/// learn nothing of x0: the run settles x1, to -0.2 - (x0 - 0.3) / 10, and does not claim an optimum.
TEST(OptimizerNlpqlp, LivesWithExtraDesignsThatFail) {
  const Model model = [](const Vector& x) { return x(0) > 0.9 ? Vector() : Bowl(x); };
  Settings settings = TwoInputs(-2.0, 2.0, 0.9, 1.0);
  settings.SetNumericalDifferences(eDiffType::kCentral);
  Optimizer central(settings);
  Solve(central, model);
  EXPECT_TRUE(central.IsConverged());
  EXPECT_NEAR(central.GetBestObjectives()(0, 0), 2.0, 1e-5);

  settings.SetNumericalDifferences(eDiffType::kForward);
  Optimizer forward(settings);
  Solve(forward, model);
  EXPECT_FALSE(forward.IsConverged());
  EXPECT_TRUE(MatrixNear(forward.GetBestInputs(), (Matrix(1, 2) << 0.9, -0.26).finished(), 1e-3));
}

struct RunEnding {
  const wchar_t* reason;
  Settings settings;
  Model model;
  bool converged;
  std::uint64_t most_designs;
};

TEST(OptimizerNlpqlp, LogsWhyItEnded) {
  Settings plain = TwoInputs(-2.0, 2.0, 0.5, 0.25);
  Settings constrained(2, 1, 0, 2);
  constrained.SetLowerBounds(plain.GetLowerBounds());
  constrained.SetUpperBounds(plain.GetUpperBounds());
  constrained.SetStartDesigns(plain.GetStartDesigns());
  Settings valley(40);
  valley.SetStartDesigns(Matrix::Constant(1, 40, -1.0));
  valley.SetAccuracy(1e-10);
  Settings short_run = plain;
  short_run.SetMaxNumFunctionCalls(4);
  const auto start_and_gradient = [calls = 0](const Vector& x) mutable { return ++calls > 3 ? Vector() : Bowl(x); };
  const RunEnding endings[] = {
      {L"The conditions of an optimum are fulfilled.", plain, Bowl, true, 60},
      {L"The largest number of function calls is reached.", short_run, Bowl, false, 4},
      {L"The start design or a gradient can not be evaluated.", plain, [](const Vector&) { return Vector(); }, false,
       3},
      {L"The line search found no better design.", plain, start_and_gradient, false, 60},
      {L"The constraints contradict each other around the present design.", constrained,
       [](const Vector& x) { return (Vector(3) << x.squaredNorm(), x(0) - 1.0, -1.0 - x(0)).finished(); }, false, 60},
      {L"The largest number of iterations is reached.", valley,
       [](const Vector& x) {
         const auto turns = x.tail(39).array() - x.head(39).array().square();
         return Value(100.0 * turns.square().sum() + (1.0 - x.head(39).array()).square().sum());
       },
       false, 10000},
  };
  for (const RunEnding& ending : endings) {
    SCOPED_TRACE(&ending - endings);
    std::wostringstream log;
    Optimizer optimizer(ending.settings, std::make_shared<utils::log::BasicStreamLog>(log));
    double start = kNaN;
    const Model model = [&](const Vector& x) {
      const Vector values = ending.model(x);
      if (std::isnan(start) && values.size() > 0) start = values(0);
      return values;
    };
    Solve(optimizer, model, 0, static_cast<Index>(ending.settings.GetNumInequalities()));
    EXPECT_THAT(log.str(), ::testing::HasSubstr(ending.reason));
    EXPECT_EQ(optimizer.IsConverged(), ending.converged);
    EXPECT_LE(optimizer.GetNumEvaluations(), ending.most_designs);
    EXPECT_EQ(std::isnan(optimizer.GetBestObjectives()(0, 0)), std::isnan(start));
    EXPECT_FALSE(optimizer.GetBestObjectives()(0, 0) > start);
    if (std::isnan(start)) {
      EXPECT_EQ(optimizer.GetBestInputs(), ending.settings.GetStartDesigns());
    }
  }
}

/// Designs evaluated at a place of their own, here on a grid: the gradient comes from a regression over what was met.
TEST(OptimizerNlpqlp, TakesDesignsAsTheyWereEvaluated) {
  Settings settings = TwoInputs(-2.0, 2.0, 1.0, 1.0);
  settings.SetGradientDx(1e-3);
  settings.SetNumericalDifferences(eDiffType::kCentral);
  Optimizer optimizer(settings);
  for (int round = 0; round < 500 && !optimizer.IsTerminated(); ++round) {
    const Matrix designs = (optimizer.GetNextDesigns() * 2900.0).array().round() / 2900.0;
    Matrix values(designs.rows(), 1);
    for (Index row = 0; row < designs.rows(); ++row) values.row(row) = Bowl(designs.row(row).transpose());
    optimizer.SetInputs(designs);
    optimizer.SetObjectives(values);
    optimizer.Appraise();
    optimizer.Adapt();
  }
  ASSERT_TRUE(optimizer.IsTerminated());
  EXPECT_NEAR(optimizer.GetBestObjectives()(0, 0), 2.0, 1e-5);
  const Matrix on_grid = optimizer.GetBestInputs() * 2900.0;
  EXPECT_TRUE(MatrixNear(on_grid, on_grid.array().round(), 1e-9));
}

TEST(OptimizerNlpqlp, KeepsToTheNumberOfFunctionCalls) {
  for (const std::int64_t limit : {1, 4, 10, 17}) {
    Settings settings = TwoInputs(-2.0, 2.0, -1.9, 1.9);
    settings.SetMaxNumFunctionCalls(limit);
    Optimizer optimizer(settings);
    Solve(optimizer,
          [](const Vector& x) { return Value(100.0 * std::pow(x(1) - x(0) * x(0), 2) + std::pow(1.0 - x(0), 2)); });
    EXPECT_LE(optimizer.GetNumEvaluations(), std::max<std::uint64_t>(3, static_cast<std::uint64_t>(limit)));
    EXPECT_FALSE(optimizer.IsConverged());
  }
}

TEST(OptimizerNlpqlp, LimitsTheFirstStepOnly) {
  Settings settings = TwoInputs(-50.0, 50.0, 40.0, 40.0);
  settings.SetUseInitialStepsizeLimit(true);
  settings.SetMaxStepsize((Vector(2) << 0.5, 2.0).finished());
  Optimizer optimizer(settings);
  const Model model = [](const Vector& x) { return Value(x.squaredNorm()); };
  RunRound(optimizer, model, 0, 0);
  EXPECT_TRUE(MatrixNear(optimizer.GetNextDesigns(), (Matrix(1, 2) << 39.5, 38.0).finished(), 1e-9));
  Solve(optimizer, model);
  EXPECT_NEAR(optimizer.GetBestObjectives()(0, 0), 0.0, 1e-5);
}

/// From the 12th design on the model fails, until the first run has given up: a restart then finishes the work. Where
/// it fails after the optimum was found, the optimum stays.
TEST(OptimizerNlpqlp, RestartsGoOnFromTheBestDesign) {
  OptimizerSettingsNLPQLPRestart<double> settings(2);
  settings.SetLowerBounds(Vector::Constant(2, -2.0));
  settings.SetUpperBounds(Vector::Constant(2, 2.0));
  settings.SetStartDesigns(Matrix::Constant(1, 2, 1.5));
  const auto solve = [&](std::uint64_t restarts, std::uint64_t first_failing, std::uint64_t last_failing) {
    settings.SetMaxRestarts(restarts);
    Optimizer optimizer(settings);
    std::uint64_t calls = 0;
    Solve(optimizer, [&](const Vector& x) {
      ++calls;
      return calls >= first_failing && calls <= last_failing ? Vector() : Bowl(x);
    });
    return optimizer;
  };
  constexpr std::uint64_t kAlways = 1000000;
  const Optimizer given_up = solve(0, 12, kAlways);
  EXPECT_FALSE(given_up.IsConverged());
  const Optimizer restarted = solve(3, 12, given_up.GetNumEvaluations());
  EXPECT_TRUE(restarted.IsConverged());
  EXPECT_NEAR(restarted.GetBestObjectives()(0, 0), 2.0, 1e-5);
  EXPECT_GT(given_up.GetBestObjectives()(0, 0), restarted.GetBestObjectives()(0, 0) + 1e-3);
  EXPECT_LT(restarted.GetNumEvaluations(), given_up.GetNumEvaluations() + 60);
  const std::uint64_t enough = solve(0, kAlways, kAlways).GetNumEvaluations();
  const Optimizer found = solve(3, enough + 1, kAlways);
  EXPECT_GT(found.GetNumEvaluations(), enough);
  EXPECT_TRUE(found.IsConverged());
}

TEST(OptimizerNlpqlp, ResetBeginsAnewAtTheBestDesign) {
  Optimizer optimizer(TwoInputs(-2.0, 2.0, 1.5, 1.5));
  for (int round = 0; round < 4; ++round) RunRound(optimizer, Bowl, 0, 0);
  optimizer.ResetBFGS(10.0);
  EXPECT_EQ(optimizer.GetNextDesigns().row(0), optimizer.GetBestInputs());
  EXPECT_THROW(optimizer.ResetBFGS(0.0), utils::runtime_error);
  EXPECT_THROW(optimizer.ResetBFGS(std::numeric_limits<double>::infinity()), utils::runtime_error);
  Optimizer appraised(TwoInputs(-2.0, 2.0, 1.5, 1.5));
  appraised.SetInputs(appraised.GetNextDesigns());
  appraised.SetObjectives(Matrix::Ones(3, 1));
  appraised.Appraise();
  EXPECT_THROW(appraised.ResetBFGS(), utils::runtime_error);
  Solve(optimizer, Bowl);
  optimizer.ResetBFGS();  // behind the end without effect
  EXPECT_TRUE(optimizer.IsTerminated());
  EXPECT_TRUE(optimizer.IsConverged());
  EXPECT_NEAR(optimizer.GetBestObjectives()(0, 0), 2.0, 1e-5);
}

TEST(OptimizerNlpqlp, CloneGoesOnByItself) {
  Optimizer optimizer(TwoInputs(-2.0, 2.0, 1.5, 1.5));
  for (int round = 0; round < 3; ++round) RunRound(optimizer, Bowl, 0, 0);
  const auto clone = optimizer.Clone();
  Solve(optimizer, Bowl);
  Optimizer& copy = dynamic_cast<Optimizer&>(*clone);
  EXPECT_FALSE(copy.IsTerminated());
  Solve(copy, Bowl);
  EXPECT_EQ(copy.GetBestInputs(), optimizer.GetBestInputs());
  EXPECT_EQ(copy.GetNumEvaluations(), optimizer.GetNumEvaluations());
}

TEST(OptimizerNlpqlp, RefusesSettingsThatCannotWork) {
  Settings coarse = TwoInputs(-2.0, 2.0, 1.0, 0.0);
  coarse.SetAccuracy(0.5);
  std::wostringstream log;
  Optimizer(coarse, std::make_shared<utils::log::BasicStreamLog>(log));  // a warning, which goes to the log
  EXPECT_THAT(log.str(), ::testing::HasSubstr(L"The desired accuracy should be between 1e-10 and 0.1, obtained 0.5"));
  Settings settings = TwoInputs(-2.0, 2.0, 5.0, 0.0);
  EXPECT_THROW(Optimizer{settings}, utils::runtime_error);
  settings = TwoInputs(-2.0, 2.0, 1.0, 0.0);
  settings.SetNumericalDifferences(static_cast<eDiffType>(9));
  EXPECT_THROW(Optimizer{settings}, utils::runtime_error);
}

}  // namespace
}  // namespace kestrel::algorithm::optimizer
