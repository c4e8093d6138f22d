#include "optimizer/optimizer_nlpqlp.h"

#include <Eigen/QR>
#include <algorithm>
#include <cmath>
#include <limits>
#include <type_traits>

#include "optimizer/merit_function.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::optimizer {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

const wchar_t* ReasonOf(eIfail result) {
  switch (result) {
    case eIfail::kConverged: return L"The conditions of an optimum are fulfilled.";
    case eIfail::kIterationLimit: return L"The largest number of iterations is reached.";
    case eIfail::kNoDescent: return L"No direction leads to better designs.";
    case eIfail::kLineSearchFailed: return L"The line search found no better design.";
    case eIfail::kInfeasible: return L"The constraints contradict each other around the present design.";
    case eIfail::kNotFinite: return L"The start design or a gradient can not be evaluated.";
    case eIfail::kWrongArguments: return L"The options of the solver do not fit each other.";
    case eIfail::kWorkArraysTooShort: return L"The work arrays of the solver are too short.";
    case eIfail::kWrongBounds: return L"A lower bound is above the upper bound.";
    case eIfail::kWantsValues:
    case eIfail::kWantsGradients: break;
  }
  return L"Programming error: This is not supposed to happen.";
}

}  // namespace

template <class Real>
OptimizerNLPQLP<Real>::OptimizerNLPQLP(const OptimizerSettingsBase& settings,
                                       std::shared_ptr<utils::log::LogBase> log) {
  static_assert(std::is_same_v<Real, double>, "The solver computes in double.");
  OptimizerBase<Real>::SetLog(std::move(log));
  this->Initialize(settings);
}

template <class Real>
std::unique_ptr<OptimizerBase<Real>> OptimizerNLPQLP<Real>::Clone() const {
  return std::make_unique<OptimizerNLPQLP>(*this);
}

template <class Real>
void OptimizerNLPQLP<Real>::InitializeImpl(const OptimizerSettingsBase& settings) {
  settings_ = std::dynamic_pointer_cast<const OptimizerSettingsNLPQLP<Real>>(
      std::shared_ptr<const OptimizerSettingsBase>(settings.Clone()));
  if (!settings_) throw utils::runtime_error(L"NLPQLP needs settings of its own kind.");
  const Matrix& start = settings_->GetStartDesigns();
  if (start.rows() == 0) throw utils::runtime_error(L"No initial start design was transferred to NLPQLP.");
  if (start.rows() != 1 || start.cols() != static_cast<Index>(settings_->GetNumInputs())) {
    throw utils::runtime_error(L"Wrong dimensions of start design.");
  }
  differences_ =
      MakeDifferences(settings_->GetNumericalDifferences(), settings_->GetLowerBounds(), settings_->GetUpperBounds());
  solver_ = NLPQLP(static_cast<int>(settings_->GetNumInputs()), static_cast<int>(settings_->GetNumEqualities()),
                   static_cast<int>(settings_->GetNumInequalities()),
                   static_cast<int>(settings_->GetNumberOfParallelLineSearches()));
  SetDefaultParameters();
  runs_ = 0;
  terminated_ = false;
  converged_ = false;
  best_ = {start.row(0).transpose(), kNaN, Vector::Constant(solver_.M, kNaN), 0};
  StartRun(best_.inputs);
}

template <class Real>
void OptimizerNLPQLP<Real>::SetDefaultParameters() {
  solver_.SetDefaultParameters();
  solver_.ACC = Accuracy();
  solver_.STPMIN = settings_->GetMinLineSearchStepsize();
  solver_.MAXNM = static_cast<int>(settings_->GetLineSearchStackSize());
  solver_.SetBoundsLower(settings_->GetLowerBounds());
  solver_.SetBoundsUpper(settings_->GetUpperBounds());
}

template <class Real>
void OptimizerNLPQLP<Real>::ResetBFGS(double diagonal) {
  if (!(diagonal > 0.0) || !std::isfinite(diagonal)) {
    this->Refuse(L"The diagonal of the quasi-Newton matrix must be greater than zero.");
  }
  if (this->GetState() == eOptimizerState::kAppraised) this->Refuse(L"ResetBFGS requires Adapt before.");
  if (this->IsTerminated()) return;
  solver_.D.setConstant(diagonal);
  StartRun(best_.inputs);
  --runs_;  // it is no restart of the settings
}

/// Hands out the start and the extra designs of its gradient. The bounds of the first step are those of the inputs, or
/// a box around the start.
template <class Real>
void OptimizerNLPQLP<Real>::StartRun(const Vector& design) {
  ++runs_;
  best_of_earlier_runs_ = best_;
  gradient_known_ = false;
  solver_.Clear();
  if (settings_->GetUseInitialStepsizeLimit()) {
    solver_.XL = settings_->GetLowerBounds().cwiseMax(design - settings_->GetMaxStepsize());
    solver_.XU = settings_->GetUpperBounds().cwiseMin(design + settings_->GetMaxStepsize());
  }
  solver_.X.col(0) = design;
  solver_.DoStep();
  if (solver_.IFAIL != static_cast<int>(eIfail::kWantsValues)) return EndRun();
  Ask(differences_->ProvideDesignsForFunctionAndGradient(solver_.X.col(0), settings_->GetGradientDx()),
      eRequest::kStart);
}

/// Hands out designs, or ends where that would be too many. The first set is always handed out.
template <class Real>
void OptimizerNLPQLP<Real>::Ask(const MatrixIn& designs, eRequest request) {
  const auto count = static_cast<std::uint64_t>(designs.rows());
  if (this->num_evaluations_ > 0 && this->num_evaluations_ + count > settings_->GetMaxEvaluations()) {
    return End(L"The largest number of function calls is reached.");
  }
  request_ = request;
  designs_as_asked_ = true;
  this->SetAwaitingDesigns(designs);
}

template <class Real>
void OptimizerNLPQLP<Real>::SetInputsImpl(const MatrixIn& designs) {
  designs_as_asked_ = true;
  for (Index row = 0; row < designs.rows() && designs_as_asked_; ++row) {
    designs_as_asked_ = differences_->IsDesignVectorSufficientlyAccurate(
        designs.row(row).transpose(), this->awaiting_designs_.row(row).transpose(), settings_->GetGradientDx());
  }
}

template <class Real>
void OptimizerNLPQLP<Real>::AppraiseImpl() {
  const Index rows = this->inputs_.rows();
  for (Index row = 0; row < rows; ++row) {
    if (!this->success_[static_cast<std::size_t>(row)]) continue;
    const Record record = RecordOf(row);
    if (std::isnan(best_.objective) || IsBetter(record, best_)) best_ = record;
  }
  if (request_ == eRequest::kGradient) return TakeGradient(iterate_);
  TakeValues(request_ == eRequest::kStart ? 1 : rows);
  if (request_ == eRequest::kStart && !trials_.empty()) TakeGradient(trials_.front());
}

template <class Real>
typename OptimizerNLPQLP<Real>::Record OptimizerNLPQLP<Real>::RecordOf(Index row) const {
  Vector constraints(solver_.M);
  constraints << this->equalities_.row(row).transpose(), this->inequalities_.row(row).transpose();
  return {this->inputs_.row(row).transpose(), this->objectives_(row, 0), constraints,
          this->num_evaluations_ + static_cast<std::uint64_t>(row)};
}

template <class Real>
double OptimizerNLPQLP<Real>::ViolationOf(const Record& record) const {
  return std::max(Accuracy(), Violation(record.constraints, solver_.ME));
}

/// A violation within the accuracy is none; what violates less is better, and then what has the lower objective.
template <class Real>
bool OptimizerNLPQLP<Real>::IsBetter(const Record& a, const Record& b) const {
  const double first = ViolationOf(a);
  const double second = ViolationOf(b);
  return first < second || (first == second && a.objective < b.objective);
}

/// The first `count` designs are the points that the solver asked for, or close to these.
template <class Real>
void OptimizerNLPQLP<Real>::TakeValues(Index count) {
  trials_.clear();
  for (Index k = 0; k < count; ++k) {
    Record record = RecordOf(k);
    solver_.X.col(k) = record.inputs;
    solver_.F(k) = this->success_[static_cast<std::size_t>(k)] ? record.objective : kNaN;
    solver_.G.col(k).head(solver_.M) = record.constraints;
    if (this->success_[static_cast<std::size_t>(k)]) trials_.push_back(std::move(record));
  }
}

/// From the last designs handed out, those of the gradient at the centre.
template <class Real>
void OptimizerNLPQLP<Real>::TakeGradient(const Record& centre) {
  const Index extra = differences_->GetNumberGDesigns();
  const auto designs = this->inputs_.bottomRows(extra);
  const std::vector<bool> usable(this->success_.end() - extra, this->success_.end());
  const Matrix responses = ResponsesOfExtraDesigns();
  Matrix gradient;
  if (designs_as_asked_ && std::all_of(usable.begin(), usable.end(), [](bool flag) { return flag; })) {
    Vector values(1 + solver_.M);
    values << centre.objective, centre.constraints;
    gradient = differences_->ProvideGradientFromGDesigns(centre.inputs, values, designs, responses);
    gradient_complete_ = true;
  } else {
    gradient = ProvideGradientFromRegression(centre, designs, responses, usable);
  }
  solver_.DF = gradient.col(0);
  solver_.DG.topRows(solver_.M) = gradient.rightCols(solver_.M).transpose();
  gradient_known_ = true;
}

template <class Real>
typename OptimizerNLPQLP<Real>::Matrix OptimizerNLPQLP<Real>::ResponsesOfExtraDesigns() const {
  const Index extra = differences_->GetNumberGDesigns();
  Matrix responses(extra, 1 + solver_.M);
  responses << this->objectives_.bottomRows(extra), this->equalities_.bottomRows(extra),
      this->inequalities_.bottomRows(extra);
  return responses;
}

/// Distances are measured in difference steps. Inputs on which no design has information get the slope 0 (the solution
/// of least norm), and the run does not count as converged; without any design there is no gradient at all.
template <class Real>
typename OptimizerNLPQLP<Real>::Matrix OptimizerNLPQLP<Real>::ProvideGradientFromRegression(
    const Record& centre, const MatrixIn& designs, const MatrixIn& responses, const std::vector<bool>& usable) {
  const Index n = solver_.N;
  Matrix distances = Matrix::Zero(designs.rows(), n);
  Matrix changes = Matrix::Zero(designs.rows(), responses.cols());
  for (Index row = 0; row < designs.rows(); ++row) {
    if (!usable[static_cast<std::size_t>(row)]) continue;
    distances.row(row) =
        (designs.row(row).transpose() - centre.inputs).cwiseQuotient(settings_->GetGradientDx()).transpose();
    changes(row, 0) = responses(row, 0) - centre.objective;
    changes.row(row).tail(solver_.M) = responses.row(row).tail(solver_.M) - centre.constraints.transpose();
  }
  const Eigen::CompleteOrthogonalDecomposition<Matrix> fit(distances);
  gradient_complete_ = fit.rank() == n;
  if (fit.rank() == 0) return Matrix::Constant(n, responses.cols(), kNaN);
  return settings_->GetGradientDx().cwiseInverse().asDiagonal() * Matrix(fit.solve(changes));
}

template <class Real>
void OptimizerNLPQLP<Real>::AdaptImpl() {
  for (;;) {
    if (solver_.IFAIL == static_cast<int>(eIfail::kWantsGradients)) gradient_known_ = false;  // this step takes them
    solver_.DoStep();
    if (solver_.IFAIL == static_cast<int>(eIfail::kWantsValues)) {
      return Ask(solver_.X.leftCols(solver_.GetNumAwaitedPoints()).transpose(), eRequest::kTrials);
    }
    if (solver_.IFAIL != static_cast<int>(eIfail::kWantsGradients)) break;
    FollowIterate();
    if (!gradient_known_) {
      return Ask(differences_->ProvideDesignsForGradient(iterate_.inputs, settings_->GetGradientDx()),
                 eRequest::kGradient);
    }
  }
  if (solver_.IFAIL < 0) throw utils::logic_error(ReasonOf(static_cast<eIfail>(solver_.IFAIL)));
  EndRun();
}

/// The solver has accepted a point. The box of the first step is no longer needed.
template <class Real>
void OptimizerNLPQLP<Real>::FollowIterate() {
  for (const Record& trial : trials_) {
    if (trial.inputs == solver_.X.col(0)) iterate_ = trial;
  }
  if (solver_.GetNumIterations() == 0) return;
  solver_.SetBoundsLower(settings_->GetLowerBounds());
  solver_.SetBoundsUpper(settings_->GetUpperBounds());
}

template <class Real>
void OptimizerNLPQLP<Real>::EndRun() {
  const auto result = static_cast<eIfail>(solver_.IFAIL);
  const bool is_optimum = result == eIfail::kConverged && gradient_complete_;
  if (is_optimum && solver_.M > 0) best_ = iterate_;
  const bool has_values = !std::isnan(best_.objective);
  const bool improved = runs_ == 1 || best_.objective < best_of_earlier_runs_.objective - Accuracy() ||
                        ViolationOf(best_) < ViolationOf(best_of_earlier_runs_) - Accuracy();
  converged_ = is_optimum || (converged_ && !improved);
  if (has_values && improved && runs_ <= settings_->GetMaxRestarts()) return StartRun(best_.inputs);
  End(ReasonOf(result));
}

template <class Real>
void OptimizerNLPQLP<Real>::End(const wchar_t* reason) {
  terminated_ = true;
  this->log_->Debug() << L"NLPQLP ended after " << this->num_evaluations_ << L" designs. " << reason;
}

template <class Real>
void OptimizerNLPQLP<Real>::FinalizeImpl() {
  this->awaiting_designs_.resize(0, solver_.N);
}

template <class Real>
typename OptimizerNLPQLP<Real>::Matrix OptimizerNLPQLP<Real>::GetBestInputs() const {
  return best_.inputs.transpose();
}

template <class Real>
typename OptimizerNLPQLP<Real>::Matrix OptimizerNLPQLP<Real>::GetBestObjectives() const {
  return Matrix::Constant(1, 1, best_.objective);
}

template <class Real>
typename OptimizerNLPQLP<Real>::Matrix OptimizerNLPQLP<Real>::GetBestEqualities() const {
  return best_.constraints.head(solver_.ME).transpose();
}

template <class Real>
typename OptimizerNLPQLP<Real>::Matrix OptimizerNLPQLP<Real>::GetBestInequalities() const {
  return best_.constraints.tail(solver_.M - solver_.ME).transpose();
}

template <class Real>
IndexVector OptimizerNLPQLP<Real>::GetBestDesignNumbers() const {
  return IndexVector::Constant(1, best_.number);
}

template class OptimizerNLPQLP<double>;

}  // namespace kestrel::algorithm::optimizer
