#include "optimizer/optimizer_settings_base.h"

#include <string>
#include <typeinfo>

#include "support/exceptions.h"
#include "support/matrix_equality.h"

namespace kestrel::algorithm::optimizer {
namespace {

using math::SameEntries;
using math::SameValue;

Index ToIndex(std::uint64_t count) { return static_cast<Index>(count); }

bool AnyBelow(const MatrixIn& designs, const Vector& bounds, Index row) {
  return (designs.row(row).transpose().array() < bounds.array()).any();
}

bool AnyAbove(const MatrixIn& designs, const Vector& bounds, Index row) {
  return (designs.row(row).transpose().array() > bounds.array()).any();
}

bool SameStates(const std::vector<Vector>& a, const std::vector<Vector>& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!SameEntries(a[i], b[i])) return false;
  }
  return true;
}

}  // namespace

OptimizerSettingsBase::OptimizerSettingsBase(std::uint64_t inputs, std::uint64_t objectives, std::uint64_t equalities,
                                             std::uint64_t inequalities)
    : num_inputs_(inputs), num_objectives_(objectives), num_equalities_(equalities), num_inequalities_(inequalities) {
  SetDefaultsOfLocalMembers();
}

void OptimizerSettingsBase::SetDefaults() { SetDefaultsOfLocalMembers(); }

void OptimizerSettingsBase::SetDefaultsOfLocalMembers() {
  OptimizerSettingsBase::SetLowerBounds();
  OptimizerSettingsBase::SetUpperBounds();
  OptimizerSettingsBase::SetParameterTypes();
  OptimizerSettingsBase::SetDiscreteStates();
  OptimizerSettingsBase::SetStartDesigns();
}

void OptimizerSettingsBase::SetNumInputs(std::uint64_t count) {
  num_inputs_ = count;
  SetDefaultsOfLocalMembers();
}

void OptimizerSettingsBase::SetLowerBounds() {
  lower_bounds_.setConstant(ToIndex(num_inputs_), std::numeric_limits<double>::lowest());
}

void OptimizerSettingsBase::SetUpperBounds() {
  upper_bounds_.setConstant(ToIndex(num_inputs_), std::numeric_limits<double>::max());
}

void OptimizerSettingsBase::SetParameterTypes() { parameter_types_.assign(num_inputs_, eParameterType::kContinuous); }

void OptimizerSettingsBase::SetDiscreteStates(std::uint64_t index, const VectorIn& states) {
  if (index >= discrete_states_.size()) {
    throw utils::out_of_range(L"There is no input #" + std::to_wstring(index) + L" to set discrete states of.");
  }
  discrete_states_[index] = states;
}

void OptimizerSettingsBase::SetDiscreteStates() { discrete_states_.assign(num_inputs_, Vector()); }

void OptimizerSettingsBase::SetStartDesigns() { start_designs_.resize(0, ToIndex(num_inputs_)); }

bool OptimizerSettingsBase::operator==(const OptimizerSettingsBase& other) const {
  return typeid(*this) == typeid(other) && num_inputs_ == other.num_inputs_ &&
         num_objectives_ == other.num_objectives_ && num_equalities_ == other.num_equalities_ &&
         num_inequalities_ == other.num_inequalities_ && SameEntries(lower_bounds_, other.lower_bounds_) &&
         SameEntries(upper_bounds_, other.upper_bounds_) && parameter_types_ == other.parameter_types_ &&
         SameStates(discrete_states_, other.discrete_states_) && SameEntries(start_designs_, other.start_designs_);
}

bool OptimizerSettingsBase::CheckSettings(utils::log::LogBase& log) const {
  const bool counts = CheckCounts(log);
  const bool bounds = CheckBounds(log);
  return bounds && CheckStartDesigns(log) && counts;
}

bool OptimizerSettingsBase::CheckCounts(utils::log::LogBase& log) const {
  bool valid = true;
  if (num_inputs_ < 1) {
    log.Error() << L"An optimization problem was defined with < 1 parameter.";
    valid = false;
  }
  if (num_objectives_ < 1) {
    log.Error() << L"An optimization problem was defined with < 1 objective functions.";
    valid = false;
  }
  if (num_equalities_ > num_inputs_) {
    log.Error() << L"An optimization problem was defined with too many constraints (num equality constraints > num "
                   L"parameter : "
                << num_equalities_ << L" > " << num_inputs_ << L").";
    valid = false;
  }
  return valid;
}

bool OptimizerSettingsBase::CheckBounds(utils::log::LogBase& log) const {
  const auto check = [&](const Vector& bounds, const wchar_t* dimension, const wchar_t* finite) {
    if (bounds.size() != ToIndex(num_inputs_)) {
      log.Error() << dimension << bounds.size() << L") does not match (=" << num_inputs_ << L").";
      return false;
    }
    if (bounds.allFinite()) return true;
    log.Error() << finite;
    return false;
  };
  const bool lower = check(lower_bounds_, L"The dimension of lower bounds (=",
                           L"Lower bound must be a valid finite number (no NaN, no INF).");
  const bool upper = check(upper_bounds_, L"The dimension of upper bounds (=",
                           L"Upper bound must be a valid finite number (no NaN, no INF).");
  if (!lower || !upper) return false;
  if ((upper_bounds_.array() > lower_bounds_.array()).all()) return true;
  log.Error() << L"At least one upper bound is not larger than the lower bound.";
  return false;
}

bool OptimizerSettingsBase::CheckStartDesigns(utils::log::LogBase& log) const {
  if (start_designs_.rows() == 0) return true;
  if (start_designs_.cols() != ToIndex(num_inputs_)) {
    log.Error() << L"Start designs have wrong dimension. Expected number of cols: " << num_inputs_ << L", obtained: "
                << start_designs_.cols();
    return false;
  }
  bool below = false;
  bool above = false;
  for (Index row = 0; row < start_designs_.rows(); ++row) {
    below = below || AnyBelow(start_designs_, lower_bounds_, row);
    above = above || AnyAbove(start_designs_, upper_bounds_, row);
  }
  if (below) log.Error() << L"At least one entry is lower than lower bound";
  if (above) log.Error() << L"At least one entry is greater than upper bound";
  return !below && !above;
}

template <class Real>
void OptimizerSettingsGradientBase<Real>::SetDefaults() {
  OptimizerSettingsBase::SetDefaults();
  max_num_function_calls_ = 10000;
  accuracy_ = Real(1e-7);
}

template <class Real>
std::uint64_t OptimizerSettingsGradientBase<Real>::GetMaxEvaluations() const {
  return max_num_function_calls_ > 0 ? static_cast<std::uint64_t>(max_num_function_calls_) : 0;
}

template <class Real>
bool OptimizerSettingsGradientBase<Real>::operator==(const OptimizerSettingsBase& other) const {
  if (!OptimizerSettingsBase::operator==(other)) return false;
  const auto& same = static_cast<const OptimizerSettingsGradientBase&>(other);
  return max_num_function_calls_ == same.max_num_function_calls_ && SameValue(accuracy_, same.accuracy_);
}

template <class Real>
bool OptimizerSettingsGradientBase<Real>::CheckSettings(utils::log::LogBase& log) const {
  bool valid = OptimizerSettingsBase::CheckSettings(log);
  if (max_num_function_calls_ <= 0) {
    log.Error() << L"An optimization problem was defined where <= 0 function calls are permitted ("
                << max_num_function_calls_ << L").";
    valid = false;
  }
  if (!CheckStart(log)) valid = false;
  if (!(accuracy_ >= Real(0))) {
    log.Error() << L"The desired accuracy (tolerance) can not be smaller than zero, obtained " << accuracy_;
    valid = false;
  }
  return valid;
}

template <class Real>
bool OptimizerSettingsGradientBase<Real>::CheckStart(utils::log::LogBase& log) const {
  if (start_designs_.rows() == 0) {
    log.Error() << L"At least one start design must be defined.";
    return false;
  }
  if (start_designs_.cols() != ToIndex(num_inputs_)) {
    log.Error() << L"The dimension of the start design does not match. obtained " << start_designs_.rows()
                << L" designs with " << start_designs_.cols() << L" columns, expected " << num_inputs_;
    return false;
  }
  if (lower_bounds_.size() != start_designs_.cols() || upper_bounds_.size() != start_designs_.cols()) return false;
  bool valid = true;
  for (Index row = 0; row < start_designs_.rows(); ++row) {
    if (AnyBelow(start_designs_, lower_bounds_, row)) {
      log.Error() << L"A start design violates the lower bounds (see design #" << row << L").";
      valid = false;
    }
    if (AnyAbove(start_designs_, upper_bounds_, row)) {
      log.Error() << L"A start design violates the upper bounds (see design #" << row << L").";
      valid = false;
    }
  }
  return valid;
}

template class OptimizerSettingsGradientBase<double>;

}  // namespace kestrel::algorithm::optimizer
