#include "datatypes/deterministic_properties.h"

#include <algorithm>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "persistence/archive/serialize_fields.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

using eType = enums::DesignEntry::eType;
using eKind = enums::DeterministicProperties::eKind;

void RequireStates(const std::vector<CDesignEntry>& states) {
  if (states.empty()) {
    throw utils::runtime_error(
        L"A discrete deterministic property requires at least one discrete state but you passed an empty discrete "
        L"states vector.");
  }
}

void RequireStatesOfType(const std::vector<CDesignEntry>& states, eType type) {
  const bool same = std::all_of(states.begin(), states.end(),
                                [type](const CDesignEntry& state) { return state.GetDomainType() == type; });
  if (!same) {
    throw utils::runtime_error(
        L"The data type of each discrete state of a deterministic property must match the data type of the parameter");
  }
}

bool IsNumber(const CDesignEntry& entry) {
  const eType type = entry.GetDomainType();
  return type == eType::REAL || type == eType::INTEGER || type == eType::BOOL;
}

/// The smallest and the largest number among the entries; nothing if all numbers are equal.
std::pair<CDesignEntry, CDesignEntry> SpanOf(const std::vector<CDesignEntry>& entries) {
  std::vector<double> numbers;
  for (const CDesignEntry& entry : entries) {
    if (IsNumber(entry)) numbers.push_back(ConvertDesignpointEntry<double>(entry));
  }
  const auto [lowest, highest] = std::minmax_element(numbers.begin(), numbers.end());
  if (numbers.empty() || !(*lowest < *highest)) return {};
  return {*lowest, *highest};
}

/// Bounds of a file, which in old ones need not be of the present type, may be used as numbers.
bool AreOrderedNumbers(const CDesignEntry& low, const CDesignEntry& high) {
  return IsNumber(low) && IsNumber(high) &&
         ConvertDesignpointEntry<double>(low) <= ConvertDesignpointEntry<double>(high);
}

}  // namespace

CDesignEntry ConvertEntry(const CDesignEntry& entry, eType type) {
  if (entry.GetDomainType() == eType::UNINITIALIZED) return entry;
  switch (type) {
    case eType::BOOL: return ConvertDesignpointEntry<bool>(entry);
    case eType::REAL: return ConvertDesignpointEntry<double>(entry);
    case eType::INTEGER: return ConvertDesignpointEntry<std::int64_t>(entry);
    case eType::STRING: return ConvertDesignpointEntry<std::wstring>(entry);
    case eType::VARIANT: return ConvertDesignpointEntry<math::Variant<double>>(entry);
    case eType::UNINITIALIZED: break;
  }
  throw utils::runtime_error(L"Unknown domain type");
}

DeterministicProperties::DeterministicProperties(const CDesignEntry& lower_bound, const CDesignEntry& upper_bound) {
  SetBounds(lower_bound, upper_bound);
}

DeterministicProperties::DeterministicProperties(eKind kind, std::vector<CDesignEntry> discrete_states) {
  if (kind != eKind::kContinuous && discrete_states.empty()) {
    throw utils::runtime_error(
        L"You must not constuct an discrete deterministic property with an empty discrete states vector.");
  }
  SetKind(kind, std::move(discrete_states));
}

eKind DeterministicProperties::GetKind() const {
  if (IsContinuous()) return eKind::kContinuous;
  return ordered_flag_ ? eKind::kOrdinalDiscrete : eKind::kNominalDiscrete;
}

bool DeterministicProperties::HasBounds() const {
  return !lower_bound_.IsUninitialized() && !upper_bound_.IsUninitialized();
}

void DeterministicProperties::SetBounds(const CDesignEntry& lower_bound, const CDesignEntry& upper_bound) {
  CheckBounds(lower_bound, upper_bound);
  lower_bound_ = lower_bound;
  upper_bound_ = upper_bound;
}

void DeterministicProperties::CheckBounds(const CDesignEntry& lower_bound, const CDesignEntry& upper_bound) const {
  const eType awaited = IsContinuous() ? eType::REAL : eType::INTEGER;
  const bool of_type = lower_bound.GetDomainType() == awaited && upper_bound.GetDomainType() == awaited;
  if (!of_type || lower_bound.IsNaN() || upper_bound.IsNaN()) {
    throw utils::runtime_error(IsContinuous() ? L"Boundaries of continuous parameters may only be float type values."
                                              : L"Boundaries of discrete parameters may only be integer index types.");
  }
  if (IsContinuous() && lower_bound == upper_bound) {
    throw utils::runtime_error(L"Lower and Upper bounds may not have the same value.");
  }
  const CDesignEntry first_index = 0;
  const CDesignEntry last_index = discrete_states_.size() - 1;
  if (IsDiscrete() && (lower_bound < first_index || last_index < lower_bound || upper_bound < first_index ||
                       last_index < upper_bound)) {
    throw utils::runtime_error(L"One or both boundaries are outside the accepted discrete state map index range.");
  }
  if (upper_bound < lower_bound) throw utils::runtime_error(L"The lower bound must not exceed the upper bound.");
}

void DeterministicProperties::SetRelativeBounds(double lower_bound, double upper_bound) {
  lower_bound_relative_ = lower_bound;
  upper_bound_relative_ = upper_bound;
}

void DeterministicProperties::SetDiscreteStates(std::vector<CDesignEntry> discrete_states) {
  if (IsContinuous()) {
    throw utils::runtime_error(L"Cannot set discrete states for a continuous deterministic property");
  }
  RequireStates(discrete_states);
  RequireStatesOfType(discrete_states, domain_flag_);
  discrete_states_ = std::move(discrete_states);
  lower_bound_ = 0;
  upper_bound_ = discrete_states_.size() - 1;
}

void DeterministicProperties::SetKind(eKind kind) {
  if (kind != eKind::kContinuous) {
    if (GetKind() != kind) SetKind(kind, discrete_states_);
    return;
  }
  const auto [lowest, highest] = IsDiscrete() ? SpanOf(discrete_states_) : SpanOf({lower_bound_, upper_bound_});
  ordered_flag_ = true;
  domain_flag_ = eType::REAL;
  lower_bound_ = lowest;
  upper_bound_ = highest;
  discrete_states_.clear();
}

void DeterministicProperties::SetKind(eKind kind, std::vector<CDesignEntry> discrete_states) {
  if (kind == eKind::kContinuous) {
    if (!discrete_states.empty()) {
      throw utils::runtime_error(L"Cannot set discrete states for a continuous deterministic property");
    }
    return SetKind(kind);
  }
  if (kind != eKind::kOrdinalDiscrete && kind != eKind::kNominalDiscrete) {
    throw utils::runtime_error(L"A deterministic property is continuous, ordinal or nominal.");
  }
  RequireStates(discrete_states);
  DeterministicProperties changed = *this;
  changed.ordered_flag_ = kind == eKind::kOrdinalDiscrete;
  changed.domain_flag_ = discrete_states.front().GetDomainType();
  changed.discrete_states_ = discrete_states;  // discrete from here on, so that the states can be set
  changed.SetDiscreteStates(std::move(discrete_states));
  *this = std::move(changed);
}

void DeterministicProperties::ConvertData(eType type) {
  if (IsContinuous() && type != eType::REAL) {
    throw utils::runtime_error(L"Boundaries of continuous parameters may only be float type values.");
  }
  std::vector<CDesignEntry> converted;
  for (const CDesignEntry& state : discrete_states_) converted.push_back(ConvertEntry(state, type));
  discrete_states_ = std::move(converted);
  domain_flag_ = type;
}

bool DeterministicProperties::operator==(const DeterministicProperties& other) const {
  bool equal = true;
  ForEachField([&](const char*, auto field, unsigned) { equal = equal && this->*field == other.*field; });
  return equal;
}

void DeterministicProperties::CheckAfterReading() const {
  RequireStatesOfType(discrete_states_, domain_flag_);
  if (!HasBounds()) return;
  if (IsDiscrete()) {
    CheckBounds(lower_bound_, upper_bound_);
  } else {
    persistence::RequireStored(AreOrderedNumbers(lower_bound_, upper_bound_),
                               L"The bounds of a stored parameter are not numbers in ascending order.");
  }
}

template <class Visit>
void DeterministicProperties::ForEachField(Visit visit) {
  visit("ordered_flag_", &DeterministicProperties::ordered_flag_, 0u);
  visit("domain_flag_", &DeterministicProperties::domain_flag_, 0u);
  visit("lower_bound_", &DeterministicProperties::lower_bound_, 0u);
  visit("upper_bound_", &DeterministicProperties::upper_bound_, 0u);
  visit("discrete_states_", &DeterministicProperties::discrete_states_, 0u);
  visit("lower_bound_relative_", &DeterministicProperties::lower_bound_relative_, 0u);
  visit("upper_bound_relative_", &DeterministicProperties::upper_bound_relative_, 0u);
}

template <class Archive>
void DeterministicProperties::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
  if constexpr (Archive::is_loading::value) CheckAfterReading();
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::DeterministicProperties)
