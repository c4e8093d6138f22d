#include "optimizer/optimizer_base.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

#include "optimizer/optimizer_settings_nlpqlp.h"
#include "support/exceptions.h"
#include "support/log_lines.h"

namespace kestrel::algorithm::optimizer {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// Two designs of two inputs, one objective, one equality, two inequalities; ends in the given round. `failing` names
/// the step that throws.
class ScriptedOptimizer : public OptimizerBase<double> {
 public:
  explicit ScriptedOptimizer(int rounds = 2, std::string failing = "")
      : rounds_(rounds), failing_(std::move(failing)) {}

  Matrix GetBestInputs() const override { return {}; }
  Matrix GetBestObjectives() const override { return {}; }
  Matrix GetBestEqualities() const override { return {}; }
  Matrix GetBestInequalities() const override { return {}; }
  IndexVector GetBestDesignNumbers() const override { return {}; }
  std::unique_ptr<OptimizerBase> Clone() const override { return std::make_unique<ScriptedOptimizer>(*this); }

  int adapted = 0;

 protected:
  void InitializeImpl(const OptimizerSettingsBase&) override {
    FailIn("initialize");
    SetAwaitingDesigns(Matrix::Zero(2, 2));
  }
  void AppraiseImpl() override { FailIn("appraise"); }
  void AdaptImpl() override {
    FailIn("adapt");
    ++adapted;
  }
  void FinalizeImpl() override { FailIn("finalize"); }
  bool IsTerminatedImpl() const override { return adapted >= rounds_; }
  bool IsConvergedImpl() const override { return false; }
  void SetInputsImpl(const MatrixIn&) override { FailIn("inputs"); }

 private:
  void FailIn(const char* step) const {
    if (failing_ == step) throw std::runtime_error("Broken.");
  }

  int rounds_;
  std::string failing_;
};

OptimizerSettingsNLPQLP<double> Settings() {
  OptimizerSettingsNLPQLP<double> settings(2, 1, 1, 2);
  settings.SetStartDesigns(Matrix::Zero(1, 2));
  return settings;
}

using Steps = std::function<void(ScriptedOptimizer&)>;

void Answer(ScriptedOptimizer& optimizer) {
  optimizer.SetInputs(Matrix::Zero(2, 2));
  optimizer.SetCriteriaSuccessInfo({true, true});
  optimizer.SetObjectives(Matrix::Zero(2, 1));
  optimizer.SetEqualities(Matrix::Zero(2, 1));
  optimizer.SetInequalities(Matrix::Zero(2, 2));
}

void ToState(ScriptedOptimizer& optimizer, int state) {
  if (state >= 1) optimizer.Initialize(Settings());
  if (state >= 2) optimizer.GetNextDesigns();
  if (state >= 3) Answer(optimizer);
  if (state >= 3) optimizer.Appraise();
  if (state >= 4) optimizer.Adapt();
  if (state >= 5) optimizer.SetTerminated();
  if (state >= 6) optimizer.Finalize();
  ASSERT_EQ(static_cast<int>(optimizer.GetState()), state);
}

/// What the step raises and logs as its only line; empty if nothing.
std::wstring RefusalOf(ScriptedOptimizer& optimizer, const Steps& steps) {
  const auto log = std::make_shared<utils::log::VectorLog>();
  optimizer.SetLog(log);
  try {
    steps(optimizer);
  } catch (const utils::runtime_error& error) {
    EXPECT_EQ(log->GetEntries().size(), 1U);
    if (!log->GetEntries().empty()) {
      EXPECT_EQ(log->GetEntries()[0].first, utils::log::LogLevel::kError);
      EXPECT_EQ(log->GetEntries()[0].second, error.What());
    }
    return error.What();
  }
  EXPECT_TRUE(log->GetEntries().empty());
  return L"";
}

struct Operation {
  const char* name;
  Steps call;
  std::wstring allowed;  ///< the digits of the states in which it is
  std::wstring refusal;
  bool names_state;
};

TEST(OptimizerBase, StateMachineRefusesWhatIsOutOfOrder) {
  const Matrix two = Matrix::Zero(2, 2);
  const Matrix one = Matrix::Zero(2, 1);
  const Operation operations[] = {
      {"GetNextDesigns", [](auto& o) { o.GetNextDesigns(); }, L"124",
       L"GetNextDesigns requires Initialize or Adapt before.", false},
      {"SetInputs", [&](auto& o) { o.SetInputs(two); }, L"2", L"SetInputs requires GetNextDesigns before. State is: ",
       true},
      {"SetObjectives", [&](auto& o) { o.SetObjectives(one); }, L"2",
       L"SetObjectives requires GetNextDesigns before. State is: ", true},
      {"SetEqualities", [&](auto& o) { o.SetEqualities(one); }, L"2",
       L"SetEqualities requires GetNextDesigns before. State is: ", true},
      {"SetInequalities", [&](auto& o) { o.SetInequalities(two); }, L"2",
       L"SetInequalities requires GetNextDesigns before. State is: ", true},
      {"SetCriteriaSuccessInfo",
       [](auto& o) {
         o.SetCriteriaSuccessInfo({true, false});
       },
       L"2", L"SetCriteriaSuccessInfo requires GetNextDesigns before. State is: ", true},
      {"Adapt", [](auto& o) { o.Adapt(); }, L"345", L"Adapt requires Appraise before.", false},
      {"Finalize", [](auto& o) { o.Finalize(); }, L"56",
       L"Finalize must be called after terminating the algorithm loop  (in optimizer).", false},
  };
  for (const Operation& operation : operations) {
    for (int state = 0; state <= 6; ++state) {
      SCOPED_TRACE(::testing::Message() << operation.name << " in state " << state);
      ScriptedOptimizer optimizer;
      ToState(optimizer, state);
      const std::wstring digit = std::to_wstring(state);
      const bool allowed = operation.allowed.find(digit) != std::wstring::npos;
      const std::wstring refusal = operation.refusal + (operation.names_state ? digit : L"");
      EXPECT_EQ(RefusalOf(optimizer, operation.call), allowed ? L"" : refusal);
    }
  }
  for (const int state : {0, 1, 3, 4, 5, 6}) {
    ScriptedOptimizer optimizer;
    ToState(optimizer, state);
    EXPECT_EQ(RefusalOf(optimizer, [](auto& o) { o.Appraise(); }), L"Appraise requires GetNextDesigns before.");
  }
}

TEST(OptimizerBase, AdaptsOnceForEachAppraisal) {
  ScriptedOptimizer optimizer;
  ToState(optimizer, 4);
  optimizer.Adapt();
  EXPECT_EQ(optimizer.adapted, 1);
  EXPECT_EQ(optimizer.GetNumAwaitingDesigns(), 2U);
  EXPECT_FALSE(optimizer.IsTerminated());
  optimizer.GetNextDesigns();
  Answer(optimizer);
  optimizer.Appraise();
  optimizer.Adapt();  // the last round
  EXPECT_TRUE(optimizer.IsTerminated());
  optimizer.Adapt();
  EXPECT_EQ(optimizer.adapted, 2);
  EXPECT_EQ(optimizer.GetState(), eOptimizerState::kTerminated);
  EXPECT_EQ(optimizer.GetNumEvaluations(), 4U);
}

struct Failure {
  const char* step;
  std::wstring last_line;
};

TEST(OptimizerBase, FailingStepsSayWhichOneFailed) {
  const Failure failures[] = {
      {"initialize", L"The optimizer algorithm can not be initialized. An error in the settings is very likely."},
      {"inputs",
       L"The optimizer algorithm can set the design point vectors where the previous designs were computed by the "
       L"solver."},
      {"appraise", L"The optimizer algorithm can not appraise the current data and prepare the next iteration."},
      {"adapt",
       L"The optimizer algorithm can not adapt the next iterate and prepare the next design points to be computed."},
      {"finalize", L"The optimizer algorithm can not finalize the iteration."},
  };
  for (const Failure& failure : failures) {
    SCOPED_TRACE(failure.step);
    ScriptedOptimizer optimizer(2, failure.step);
    EXPECT_EQ(RefusalOf(optimizer, [](auto& o) { ToState(o, 6); }), L"Broken.\n" + failure.last_line);
  }
  ScriptedOptimizer optimizer;
  OptimizerSettingsNLPQLP<double> settings = Settings();
  settings.SetStartDesigns();
  settings.SetNumEqualities(5);
  const std::wstring refusal = RefusalOf(optimizer, [&](auto& o) {
    try {
      o.Initialize(settings);
    } catch (const utils::runtime_error&) {
      EXPECT_EQ(o.GetState(), eOptimizerState::kNotInitialized);
      throw;
    }
  });
  EXPECT_NE(refusal.find(L"\nAt least one start design must be defined.\nThe optimizer algorithm"), std::wstring::npos);
  EXPECT_EQ(refusal.find(L"An optimization problem was defined with too many constraints"), 0U);
}

struct BadData {
  const char* name;
  Steps change;  ///< after everything was answered well
  std::wstring refusal;
};

TEST(OptimizerBase, RefusesDataThatDoNotFit) {
  const Matrix good = Matrix::Zero(2, 2);
  Matrix bad_inputs = good;
  bad_inputs(1, 0) = kNaN;
  Matrix far_inputs = good;
  far_inputs(0, 1) = -kInfinity;
  Matrix bad_values = Matrix::Zero(2, 1);
  bad_values(1, 0) = kNaN;
  Matrix far_values = good;
  far_values(0, 1) = kInfinity;
  const std::wstring nan = L"The algorithm obtained responses from the solver which contain numbers being NaN.\n";
  const std::wstring inf = L"The algorithm obtained responses from the solver which contain numbers being INF.\n";
  const BadData table[] = {
      {"designs", [](auto& o) { o.SetInputs(Matrix::Zero(3, 2)); },
       L"OptimizerBase::SetInputs: The number of the obtained designs ( 3) must be equal to the number expected "
       L"designs (2)."},
      {"inputs", [](auto& o) { o.SetInputs(Matrix::Zero(2, 1)); },
       L"OptimizerBase::SetInputs: The dimension of the obtained design space ( 1) must be equal to the dimension of "
       L"design space (2)."},
      {"objective sets", [](auto& o) { o.SetObjectives(Matrix::Zero(1, 1)); },
       L"The number of obtained objective function sets (1) must be equal to the number of expected designs (2)."},
      {"objectives", [](auto& o) { o.SetObjectives(Matrix::Zero(2, 3)); },
       L"The dimension of obtained objective functions (3) does not fit (expected 1)."},
      {"inequalities", [](auto& o) { o.SetInequalities(Matrix::Zero(2, 1)); },
       L"The dimension of obtained inequality constraint functions (1) does not fit (expected 2)."},
      {"flags", [](auto& o) { o.SetCriteriaSuccessInfo({true}); },
       L"Optimizer::Appraise: The dimension of 'success info' (1) is not equal to the number of expected designs (2)."},
      {"nothing handed back", [](auto& o) { o.GetNextDesigns(); },
       L"Optimizer::Appraise: The number of obtained designs (0) is not equal to the number of expected designs (2)."},
      {"no objectives",
       [&](auto& o) {
         o.GetNextDesigns();
         o.SetInputs(good);
       },
       L"Optimizer::Appraise: The number of obtained objective function values (0) is not equal to the number of "
       L"expected designs (2)."},
      {"no equalities",
       [&](auto& o) {
         o.GetNextDesigns();
         o.SetInputs(good);
         o.SetObjectives(Matrix::Zero(2, 1));
       },
       L"Optimizer::Appraise: The number of obtained equality constraint function values (0) is not equal to the "
       L"number of expected designs (2)."},
      {"NaN input", [&](auto& o) { o.SetInputs(bad_inputs); },
       L"Optimizer::Appraise: The algorithm computed a response at design points which contain numbers being NaN."},
      {"infinite input", [&](auto& o) { o.SetInputs(far_inputs); },
       L"Optimizer::Appraise: The algorithm computed a response at design points which contain numbers being INF."},
      {"NaN objective", [&](auto& o) { o.SetObjectives(bad_values); },
       nan + L"The objective function value of design #1 (with numbers 0 .. 1) is NaN. Check design number #1."},
      {"NaN equality", [&](auto& o) { o.SetEqualities(bad_values); },
       nan + L"An equality constraint function value of design #1 (with numbers 0 .. 1) is NaN. Check design number "
             L"#1."},
      {"infinite inequality", [&](auto& o) { o.SetInequalities(far_values); },
       inf + L"An inequality constraint function value of design #0 (with numbers 0 .. 1) is INF. Check design number "
             L"#0."},
      {"NaN of a design that failed",
       [&](auto& o) {
         o.SetObjectives(bad_values);
         o.SetCriteriaSuccessInfo({true, false});
       },
       L""},
      {"designs to wait for", [](auto& o) { o.SetAwaitingDesigns(Matrix::Zero(1, 5)); },
       L"Optimizer::SetAwaitingDesigns: The dimension of designs to be waiting for (5) is not equal to the dimension "
       L"of design space (2)."},
  };
  for (const BadData& row : table) {
    SCOPED_TRACE(row.name);
    ScriptedOptimizer optimizer;
    ToState(optimizer, 2);
    Answer(optimizer);
    const auto appraise = [&](auto& o) {
      row.change(o);
      o.Appraise();
    };
    EXPECT_EQ(RefusalOf(optimizer, appraise), row.refusal);
  }
}

}  // namespace
}  // namespace kestrel::algorithm::optimizer
