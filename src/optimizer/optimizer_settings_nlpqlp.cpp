#include "optimizer/optimizer_settings_nlpqlp.h"

#include "support/matrix_equality.h"

namespace kestrel::algorithm::optimizer {

using math::SameEntries;
using math::SameValue;

template <class Real>
OptimizerSettingsNLPQLP<Real>::OptimizerSettingsNLPQLP(std::uint64_t inputs, std::uint64_t objectives,
                                                       std::uint64_t equalities, std::uint64_t inequalities)
    : OptimizerSettingsGradientBase<Real>(inputs, objectives, equalities, inequalities) {
  SetDefaultsOfLocalMembers();
}

template <class Real>
void OptimizerSettingsNLPQLP<Real>::SetDefaults() {
  OptimizerSettingsGradientBase<Real>::SetDefaults();
  SetDefaultsOfLocalMembers();
}

template <class Real>
void OptimizerSettingsNLPQLP<Real>::SetDefaultsOfLocalMembers() {
  num_parallel_line_searches_ = 1;
  SetGradientDx(1e-6);
  line_search_stack_size_ = 10;
  diff_type_ = eDiffType::kForward;
  OptimizerSettingsGradientBase<Real>::SetAccuracy(Real(5e-6));
  use_initial_stepsize_limit_ = false;
  max_stepsize_.setConstant(static_cast<Index>(this->num_inputs_), 0.2);
  min_line_search_stepsize_ = Real(0);
}

template <class Real>
void OptimizerSettingsNLPQLP<Real>::SetNumInputs(std::uint64_t count) {
  OptimizerSettingsGradientBase<Real>::SetNumInputs(count);
  SetGradientDx(1e-6);
  max_stepsize_.setConstant(static_cast<Index>(count), 0.2);
}

template <class Real>
void OptimizerSettingsNLPQLP<Real>::SetMaxStepsize(double size) {
  max_stepsize_.setConstant(static_cast<Index>(this->num_inputs_), size);
}

template <class Real>
void OptimizerSettingsNLPQLP<Real>::SetGradientDx(double step) {
  gradient_dx_.setConstant(static_cast<Index>(this->num_inputs_), step);
}

template <class Real>
bool OptimizerSettingsNLPQLP<Real>::operator==(const OptimizerSettingsBase& other) const {
  if (!OptimizerSettingsGradientBase<Real>::operator==(other)) return false;
  const auto& same = static_cast<const OptimizerSettingsNLPQLP&>(other);
  return num_parallel_line_searches_ == same.num_parallel_line_searches_ &&
         line_search_stack_size_ == same.line_search_stack_size_ && diff_type_ == same.diff_type_ &&
         use_initial_stepsize_limit_ == same.use_initial_stepsize_limit_ &&
         SameEntries(max_stepsize_, same.max_stepsize_) &&
         SameValue(min_line_search_stepsize_, same.min_line_search_stepsize_) &&
         SameEntries(gradient_dx_, same.gradient_dx_);
}

template <class Real>
std::unique_ptr<OptimizerSettingsBase> OptimizerSettingsNLPQLP<Real>::Clone() const {
  return std::make_unique<OptimizerSettingsNLPQLP>(*this);
}

template <class Real>
bool OptimizerSettingsNLPQLP<Real>::CheckSettings(utils::log::LogBase& log) const {
  const bool general = OptimizerSettingsGradientBase<Real>::CheckSettings(log);
  const bool search = CheckSearch(log);
  const bool steps = CheckGradientDx(log);
  return CheckMaxStepsize(log) && general && search && steps;
}

template <class Real>
bool OptimizerSettingsNLPQLP<Real>::CheckSearch(utils::log::LogBase& log) const {
  bool valid = true;
  if (this->num_objectives_ > 1) {
    log.Error() << L"NLPQLP supports only a single objective function, obtained " << this->num_objectives_;
    valid = false;
  }
  if (this->start_designs_.rows() > 1) {
    log.Error() << L"NLPQLP requires a single start design, obtained " << this->start_designs_.rows();
    valid = false;
  }
  const Real accuracy = this->GetAccuracy();
  if (!(accuracy >= Real(1e-10) && accuracy <= Real(0.1))) {
    log.Warning() << L"The desired accuracy should be between 1e-10 and 0.1, obtained " << accuracy;
  }
  if (num_parallel_line_searches_ < 1 || num_parallel_line_searches_ >= 16) {
    log.Error() << L"The number of parallel linesearches must be at least 1 and less than 16, obtained "
                << num_parallel_line_searches_;
    valid = false;
  }
  if (line_search_stack_size_ < 0 || line_search_stack_size_ > 50) {
    log.Error() << L"The stack size for nonmonotonous line search must be non-negative and not be greater than 50, "
                   L"obtained "
                << line_search_stack_size_;
    valid = false;
  }
  if (!(min_line_search_stepsize_ >= Real(0) && min_line_search_stepsize_ < Real(1))) {
    log.Error() << L"The minimal line search step size must be at least 0 and less than 1, obtained "
                << min_line_search_stepsize_;
    valid = false;
  }
  return valid;
}

template <class Real>
bool OptimizerSettingsNLPQLP<Real>::CheckGradientDx(utils::log::LogBase& log) const {
  const auto inputs = static_cast<Index>(this->num_inputs_);
  if (gradient_dx_.size() != inputs) {
    log.Error() << L"The step size vector for numerical differentiation does not have correct dimension, expected "
                << inputs << L", obtained " << gradient_dx_.size();
    return false;
  }
  if (!gradient_dx_.allFinite()) {
    log.Error() << L"The step sizes for numerical differentiation must be valid finite numbers (no NaN, no INF).";
    return false;
  }
  if ((gradient_dx_.array() <= 0.0).any()) {
    log.Error() << L"The step size for numerical differentiation must be greater than zero.";
    return false;
  }
  if (this->lower_bounds_.size() != inputs || this->upper_bounds_.size() != inputs) return false;
  if ((gradient_dx_.array() > 0.1 * (this->upper_bounds_ - this->lower_bounds_).array()).any()) {
    log.Warning() << L"The step size for numerical differentiation should not exceed 10% of the parameter range.";
  }
  return true;
}

template <class Real>
bool OptimizerSettingsNLPQLP<Real>::CheckMaxStepsize(utils::log::LogBase& log) const {
  const auto inputs = static_cast<Index>(this->num_inputs_);
  if (max_stepsize_.size() != inputs) {
    log.Error() << L"The vector containing the maximum allowed step size does not have the correct dimension, expected "
                << inputs << L", obtained " << max_stepsize_.size();
    return false;
  }
  if (!max_stepsize_.allFinite()) {
    log.Error() << L"The maximum allowed step size vector must contain valid finite numbers (no NaN, no INF).";
    return false;
  }
  if (gradient_dx_.size() != inputs) return false;
  if ((max_stepsize_.array() <= 5.0 * gradient_dx_.array()).any()) {
    log.Error() << L"The maximum step size must be more than 5x as large as the differentiation step size!";
    return false;
  }
  if ((max_stepsize_.array() <= 20.0 * gradient_dx_.array()).any()) {
    log.Warning() << L"The maximum step size should be more than 20x as large as the differentiation step size.";
  }
  return true;
}

template <class Real>
void OptimizerSettingsNLPQLPRestart<Real>::SetDefaults() {
  OptimizerSettingsNLPQLP<Real>::SetDefaults();
  max_restarts_ = 3;
}

template <class Real>
bool OptimizerSettingsNLPQLPRestart<Real>::operator==(const OptimizerSettingsBase& other) const {
  return OptimizerSettingsNLPQLP<Real>::operator==(other) &&
         max_restarts_ == static_cast<const OptimizerSettingsNLPQLPRestart&>(other).max_restarts_;
}

template <class Real>
std::unique_ptr<OptimizerSettingsBase> OptimizerSettingsNLPQLPRestart<Real>::Clone() const {
  return std::make_unique<OptimizerSettingsNLPQLPRestart>(*this);
}

template class OptimizerSettingsNLPQLP<double>;
template class OptimizerSettingsNLPQLPRestart<double>;

}  // namespace kestrel::algorithm::optimizer
