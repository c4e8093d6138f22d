#include "optimizer/optimizer_base.h"

#include <sstream>

#include "support/exceptions.h"

namespace kestrel::algorithm::optimizer {
namespace {

using State = eOptimizerState;

template <class... Pieces>
std::wstring Text(const Pieces&... pieces) {
  std::wostringstream text;
  (text << ... << pieces);
  return text.str();
}

}  // namespace

template <class Real>
OptimizerBase<Real>::OptimizerBase() : log_(std::make_shared<utils::log::LogDummy>()) {}

template <class Real>
void OptimizerBase<Real>::SetLog(std::shared_ptr<utils::log::LogBase> log) {
  log_ = log ? std::move(log) : std::make_shared<utils::log::LogDummy>();
}

template <class Real>
void OptimizerBase<Real>::Refuse(const std::wstring& message) const {
  log_->add(utils::log::LogLevel::kError, message);
  throw utils::runtime_error(message);
}

/// Runs a step of the algorithm; `failure` is the last line of what a failure raises.
template <class Real>
template <class Step>
void OptimizerBase<Real>::Guarded(Step step, const wchar_t* failure) const {
  std::wstring message;
  try {
    return step();
  } catch (const std::exception& error) {
    message = utils::exception_what(error);
  }
  Refuse(message + L"\n" + failure);
}

template <class Real>
void OptimizerBase<Real>::Initialize(const OptimizerSettingsBase& settings) {
  num_inputs_ = static_cast<Index>(settings.GetNumInputs());
  num_objectives_ = static_cast<Index>(settings.GetNumObjectives());
  num_equalities_ = static_cast<Index>(settings.GetNumEqualities());
  num_inequalities_ = static_cast<Index>(settings.GetNumInequalities());
  num_evaluations_ = 0;
  state_ = State::kNotInitialized;
  Guarded([&] { CheckAndInitialize(settings); },
          L"The optimizer algorithm can not be initialized. An error in the settings is very likely.");
  state_ = IsTerminatedImpl() ? State::kTerminated : State::kInitialized;
}

/// The lines at error level that the check of the settings logs become the message of a refusal.
template <class Real>
void OptimizerBase<Real>::CheckAndInitialize(const OptimizerSettingsBase& settings) {
  utils::log::VectorLog lines;
  const bool valid = settings.CheckSettings(lines);
  std::wstring message;
  for (const auto& [level, text] : lines.GetEntries()) {
    if (level != utils::log::LogLevel::kError) {
      log_->add(level, text);
    } else {
      message += message.empty() ? text : L"\n" + text;
    }
  }
  if (!valid) throw utils::runtime_error(message);
  InitializeImpl(settings);
}

template <class Real>
typename OptimizerBase<Real>::Matrix OptimizerBase<Real>::GetNextDesigns() {
  if (state_ != State::kInitialized && state_ != State::kDesignsHandedOut && state_ != State::kAdapted) {
    Refuse(L"GetNextDesigns requires Initialize or Adapt before.");
  }
  state_ = State::kDesignsHandedOut;
  const Index designs = awaiting_designs_.rows();
  inputs_.resize(0, 0);
  objectives_.resize(0, 0);
  equalities_.setZero(designs, 0);
  inequalities_.setZero(designs, 0);
  success_.assign(static_cast<std::size_t>(designs), true);
  return awaiting_designs_;
}

template <class Real>
void OptimizerBase<Real>::RequireHandedOut(const wchar_t* operation) const {
  if (state_ == State::kDesignsHandedOut) return;
  Refuse(Text(operation, L" requires GetNextDesigns before. State is: ", static_cast<std::int32_t>(state_)));
}

template <class Real>
void OptimizerBase<Real>::SetInputs(const MatrixIn& designs) {
  RequireHandedOut(L"SetInputs");
  if (designs.rows() != awaiting_designs_.rows()) {
    Refuse(Text(L"OptimizerBase::SetInputs: The number of the obtained designs ( ", designs.rows(),
                L") must be equal to the number expected designs (", awaiting_designs_.rows(), L")."));
  }
  if (designs.cols() != num_inputs_) {
    Refuse(Text(L"OptimizerBase::SetInputs: The dimension of the obtained design space ( ", designs.cols(),
                L") must be equal to the dimension of design space (", num_inputs_, L")."));
  }
  inputs_ = designs;
  Guarded([&] { SetInputsImpl(designs); },
          L"The optimizer algorithm can set the design point vectors where the previous designs were computed by the "
          L"solver.");
}

template <class Real>
void OptimizerBase<Real>::SetCriteriaSuccessInfo(const std::vector<bool>& flags) {
  RequireHandedOut(L"SetCriteriaSuccessInfo");
  success_ = flags;
}

template <class Real>
void OptimizerBase<Real>::RequireSets(const MatrixIn& values, Index dimension, const wchar_t* what) const {
  if (values.rows() != awaiting_designs_.rows()) {
    Refuse(Text(L"The number of obtained ", what, L" function sets (", values.rows(),
                L") must be equal to the number of expected designs (", awaiting_designs_.rows(), L")."));
  }
  if (values.cols() != dimension) {
    Refuse(Text(L"The dimension of obtained ", what, L" functions (", values.cols(), L") does not fit (expected ",
                dimension, L")."));
  }
}

template <class Real>
void OptimizerBase<Real>::SetObjectives(const MatrixIn& values) {
  RequireHandedOut(L"SetObjectives");
  RequireSets(values, num_objectives_, L"objective");
  objectives_ = values;
}

template <class Real>
void OptimizerBase<Real>::SetEqualities(const MatrixIn& values) {
  RequireHandedOut(L"SetEqualities");
  RequireSets(values, num_equalities_, L"equality constraint");
  equalities_ = values;
}

template <class Real>
void OptimizerBase<Real>::SetInequalities(const MatrixIn& values) {
  RequireHandedOut(L"SetInequalities");
  RequireSets(values, num_inequalities_, L"inequality constraint");
  inequalities_ = values;
}

template <class Real>
void OptimizerBase<Real>::Appraise() {
  if (state_ != State::kDesignsHandedOut) Refuse(L"Appraise requires GetNextDesigns before.");
  CheckNumbersOfDesigns();
  CheckDesignsFinite();
  CheckResponsesFinite();
  Guarded([&] { AppraiseImpl(); },
          L"The optimizer algorithm can not appraise the current data and prepare the next iteration.");
  num_evaluations_ += static_cast<std::uint64_t>(inputs_.rows());
  if (state_ != State::kTerminated) state_ = State::kAppraised;
}

/// All that was expected has come, and for each design. Constraints that do not exist need not be set.
template <class Real>
void OptimizerBase<Real>::CheckNumbersOfDesigns() const {
  const Index expected = awaiting_designs_.rows();
  const auto require = [&](Index obtained, const wchar_t* what) {
    if (obtained == expected) return;
    Refuse(Text(L"Optimizer::Appraise: ", what, obtained, L") is not equal to the number of expected designs (",
                expected, L")."));
  };
  const auto rows = [](const Matrix& values, Index dimension) {
    return values.cols() == dimension ? values.rows() : 0;
  };
  require(inputs_.rows(), L"The number of obtained designs (");
  require(objectives_.rows(), L"The number of obtained objective function values (");
  require(rows(equalities_, num_equalities_), L"The number of obtained equality constraint function values (");
  require(rows(inequalities_, num_inequalities_), L"The number of obtained inequality constraint function values (");
  require(static_cast<Index>(success_.size()), L"The dimension of 'success info' (");
}

template <class Real>
void OptimizerBase<Real>::CheckDesignsFinite() const {
  const auto message = [](const wchar_t* kind) {
    return Text(L"Optimizer::Appraise: The algorithm computed a response at design points which contain numbers being ",
                kind, L".");
  };
  if (inputs_.array().isNaN().any()) Refuse(message(L"NaN"));
  if (inputs_.array().isInf().any()) Refuse(message(L"INF"));
}

template <class Real>
void OptimizerBase<Real>::CheckResponsesFinite() const {
  CheckFinite(objectives_, L"The objective function value of design #");
  CheckFinite(equalities_, L"An equality constraint function value of design #");
  CheckFinite(inequalities_, L"An inequality constraint function value of design #");
}

template <class Real>
void OptimizerBase<Real>::CheckFinite(const MatrixIn& values, const wchar_t* what) const {
  for (Index design = 0; design < values.rows(); ++design) {
    if (!success_[static_cast<std::size_t>(design)] || values.row(design).allFinite()) continue;
    const wchar_t* const kind = values.row(design).array().isNaN().any() ? L"NaN" : L"INF";
    Refuse(Text(L"The algorithm obtained responses from the solver which contain numbers being ", kind, L".\n", what,
                design, L" (with numbers 0 .. ", values.rows() - 1, L") is ", kind, L". Check design number #",
                num_evaluations_ + static_cast<std::uint64_t>(design), L"."));
  }
}

template <class Real>
void OptimizerBase<Real>::Adapt() {
  if (state_ != State::kAppraised && state_ != State::kAdapted && state_ != State::kTerminated) {
    Refuse(L"Adapt requires Appraise before.");
  }
  if (state_ == State::kAppraised) {
    Guarded([&] { AdaptImpl(); },
            L"The optimizer algorithm can not adapt the next iterate and prepare the next design points to be "
            L"computed.");
    if (IsTerminatedImpl()) SetTerminated();
  }
  if (state_ != State::kTerminated) state_ = State::kAdapted;
}

template <class Real>
void OptimizerBase<Real>::Finalize() {
  if (state_ != State::kTerminated && state_ != State::kFinalized) {
    Refuse(L"Finalize must be called after terminating the algorithm loop  (in optimizer).");
  }
  Guarded([&] { FinalizeImpl(); }, L"The optimizer algorithm can not finalize the iteration.");
  state_ = State::kFinalized;
}

template <class Real>
void OptimizerBase<Real>::SetAwaitingDesigns(const MatrixIn& designs) {
  if (designs.cols() != num_inputs_) {
    Refuse(Text(L"Optimizer::SetAwaitingDesigns: The dimension of designs to be waiting for (", designs.cols(),
                L") is not equal to the dimension of design space (", num_inputs_, L")."));
  }
  awaiting_designs_ = designs;
}

template class OptimizerBase<double>;

}  // namespace kestrel::algorithm::optimizer
