#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "optimizer/optimizer_settings_nlpqlp.h"
#include "support/exceptions.h"
#include "support/log_lines.h"

namespace kestrel::algorithm::optimizer {
namespace {

using Settings = OptimizerSettingsNLPQLP<double>;
using kestrel::testing::LogOf;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Two inputs in [0, 1].
Settings GoodSettings() {
  Settings settings(2);
  settings.SetLowerBounds(Vector::Zero(2));
  settings.SetUpperBounds(Vector::Ones(2));
  settings.SetStartDesigns(Matrix::Constant(1, 2, 0.5));
  return settings;
}

struct Check {
  const char* name;
  std::function<void(Settings&)> change;
  std::wstring lines;
};

TEST(OptimizerSettings, CheckReportsWhatCannotBeSolved) {
  const std::wstring lower = L"ERROR: Lower bound must be a valid finite number (no NaN, no INF).\n";
  const Check checks[] = {
      {"good", [](Settings&) {}, L""},
      {"no inputs",
       [](Settings& s) {
         s.SetNumInputs(0);
         s.SetStartDesigns(Matrix::Zero(1, 0));
       },
       L"ERROR: An optimization problem was defined with < 1 parameter.\n"},
      {"no objective", [](Settings& s) { s.SetNumObjectives(0); },
       L"ERROR: An optimization problem was defined with < 1 objective functions.\n"},
      {"too many equalities", [](Settings& s) { s.SetNumEqualities(3); },
       L"ERROR: An optimization problem was defined with too many constraints (num equality constraints > num "
       L"parameter "
       L": 3 > 2).\n"},
      {"short lower bounds", [](Settings& s) { s.SetLowerBounds(Vector::Zero(1)); },
       L"ERROR: The dimension of lower bounds (=1) does not match (=2).\n"},
      {"long upper bounds", [](Settings& s) { s.SetUpperBounds(Vector::Zero(3)); },
       L"ERROR: The dimension of upper bounds (=3) does not match (=2).\n"},
      {"NaN lower bound", [](Settings& s) { s.SetLowerBounds(Vector::Constant(2, kNaN)); }, lower},
      {"infinite upper bound", [](Settings& s) { s.SetUpperBounds(Vector::Constant(2, HUGE_VAL)); },
       L"ERROR: Upper bound must be a valid finite number (no NaN, no INF).\n"},
      {"equal bounds",
       [](Settings& s) {
         s.SetUpperBounds((Vector(2) << 1.0, 0.0).finished());
         s.SetStartDesigns(Matrix::Zero(1, 2));
       },
       L"ERROR: At least one upper bound is not larger than the lower bound.\n"
       L"WARNING: The step size for numerical differentiation should not exceed 10% of the parameter range.\n"},
      {"no start", [](Settings& s) { s.SetStartDesigns(); }, L"ERROR: At least one start design must be defined.\n"},
      {"start of another dimension", [](Settings& s) { s.SetStartDesigns(Matrix::Constant(1, 3, 0.5)); },
       L"ERROR: Start designs have wrong dimension. Expected number of cols: 2, obtained: 3\n"
       L"ERROR: The dimension of the start design does not match. obtained 1 designs with 3 columns, expected 2\n"},
      {"start below", [](Settings& s) { s.SetStartDesigns(Matrix::Constant(1, 2, -0.5)); },
       L"ERROR: At least one entry is lower than lower bound\n"
       L"ERROR: A start design violates the lower bounds (see design #0).\n"},
      {"start above", [](Settings& s) { s.SetStartDesigns(Matrix::Constant(1, 2, 1.5)); },
       L"ERROR: At least one entry is greater than upper bound\n"
       L"ERROR: A start design violates the upper bounds (see design #0).\n"},
      {"no calls", [](Settings& s) { s.SetMaxNumFunctionCalls(0); },
       L"ERROR: An optimization problem was defined where <= 0 function calls are permitted (0).\n"},
      {"negative accuracy", [](Settings& s) { s.SetAccuracy(-1.0); },
       L"ERROR: The desired accuracy (tolerance) can not be smaller than zero, obtained -1\n"
       L"WARNING: The desired accuracy should be between 1e-10 and 0.1, obtained -1\n"},
      {"rough accuracy", [](Settings& s) { s.SetAccuracy(0.2); },
       L"WARNING: The desired accuracy should be between 1e-10 and 0.1, obtained 0.2\n"},
      {"two objectives", [](Settings& s) { s.SetNumObjectives(2); },
       L"ERROR: NLPQLP supports only a single objective function, obtained 2\n"},
      {"two starts", [](Settings& s) { s.SetStartDesigns(Matrix::Constant(2, 2, 0.5)); },
       L"ERROR: NLPQLP requires a single start design, obtained 2\n"},
      {"no line search", [](Settings& s) { s.SetNumberOfParallelLineSearches(0); },
       L"ERROR: The number of parallel linesearches must be at least 1 and less than 16, obtained 0\n"},
      {"many line searches", [](Settings& s) { s.SetNumberOfParallelLineSearches(16); },
       L"ERROR: The number of parallel linesearches must be at least 1 and less than 16, obtained 16\n"},
      {"stack", [](Settings& s) { s.SetLineSearchStackSize(51); },
       L"ERROR: The stack size for nonmonotonous line search must be non-negative and not be greater than 50, obtained "
       L"51\n"},
      {"least step", [](Settings& s) { s.SetMinLineSearchStepsize(kNaN); },
       L"ERROR: The minimal line search step size must be at least 0 and less than 1, obtained nan\n"},
      {"steps of another dimension", [](Settings& s) { s.SetGradientDx(Vector::Ones(1)); },
       L"ERROR: The step size vector for numerical differentiation does not have correct dimension, expected 2, "
       L"obtained 1\n"},
      {"NaN step", [](Settings& s) { s.SetGradientDx(kNaN); },
       L"ERROR: The step sizes for numerical differentiation must be valid finite numbers (no NaN, no INF).\n"},
      {"no step", [](Settings& s) { s.SetGradientDx(0.0); },
       L"ERROR: The step size for numerical differentiation must be greater than zero.\n"},
      {"wide step",
       [](Settings& s) {
         s.SetGradientDx(0.11);
         s.SetMaxStepsize(3.0);
       },
       L"WARNING: The step size for numerical differentiation should not exceed 10% of the parameter range.\n"},
      {"maximum of another dimension", [](Settings& s) { s.SetMaxStepsize(Vector::Ones(3)); },
       L"ERROR: The vector containing the maximum allowed step size does not have the correct dimension, expected 2, "
       L"obtained 3\n"},
      {"infinite maximum", [](Settings& s) { s.SetMaxStepsize(HUGE_VAL); },
       L"ERROR: The maximum allowed step size vector must contain valid finite numbers (no NaN, no INF).\n"},
      {"maximum of 4 steps", [](Settings& s) { s.SetMaxStepsize(4e-6); },
       L"ERROR: The maximum step size must be more than 5x as large as the differentiation step size!\n"},
      {"maximum of 15 steps", [](Settings& s) { s.SetMaxStepsize(15e-6); },
       L"WARNING: The maximum step size should be more than 20x as large as the differentiation step size.\n"},
  };
  for (const Check& check : checks) {
    SCOPED_TRACE(check.name);
    Settings settings = GoodSettings();
    check.change(settings);
    bool valid = false;
    EXPECT_EQ(LogOf([&](auto& log) { valid = settings.CheckSettings(log); }), check.lines);
    EXPECT_EQ(valid, check.lines.find(L"ERROR") == std::wstring::npos);
  }
}

TEST(OptimizerSettings, CopiesAreEqualUntilAFieldDiffers) {
  const std::function<void(Settings&)> changes[] = {
      [](Settings& s) { s.SetNumInequalities(1); },
      [](Settings& s) { s.SetUpperBounds(); },
      [](Settings& s) {
        s.SetParameterTypes({eParameterType::kDiscrete, eParameterType::kContinuous});
      },
      [](Settings& s) { s.SetDiscreteStates(1, Vector::Ones(2)); },
      [](Settings& s) { s.SetStartDesigns(); },
      [](Settings& s) { s.SetMaxNumFunctionCalls(7); },
      [](Settings& s) { s.SetAccuracy(1e-3); },
      [](Settings& s) { s.SetNumberOfParallelLineSearches(2); },
      [](Settings& s) { s.SetLineSearchStackSize(0); },
      [](Settings& s) { s.SetNumericalDifferences(eDiffType::kCentral); },
      [](Settings& s) { s.SetUseInitialStepsizeLimit(true); },
      [](Settings& s) { s.SetMaxStepsize(0.5); },
      [](Settings& s) { s.SetMinLineSearchStepsize(0.1); },
      [](Settings& s) { s.SetGradientDx(1e-3); },
  };
  const Settings defaults(2);
  int number = 0;
  for (const auto& change : changes) {
    SCOPED_TRACE(number++);
    Settings settings = GoodSettings();
    change(settings);
    EXPECT_FALSE(settings == GoodSettings());
    EXPECT_TRUE(*settings.Clone() == settings);
    settings.SetNumInequalities(0);  // the counts are no defaults
    settings.SetDefaults();
    EXPECT_TRUE(settings == defaults);
  }
  OptimizerSettingsNLPQLPRestart<double> restarts(2);
  EXPECT_FALSE(restarts == defaults);
  EXPECT_TRUE(*restarts.Clone() == restarts);
  OptimizerSettingsNLPQLPRestart<double> more = restarts;
  more.SetMaxRestarts(9);
  EXPECT_FALSE(more == restarts);
  EXPECT_THROW(restarts.SetDiscreteStates(2, Vector::Ones(1)), utils::out_of_range);
}

}  // namespace
}  // namespace kestrel::algorithm::optimizer
