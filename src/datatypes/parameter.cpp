#include "datatypes/parameter.h"

#include <algorithm>
#include <iterator>

#include "datatypes/type_names.h"
#include "persistence/archive/archives.h"
#include "persistence/archive/serialize_fields.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

using eKind = enums::Parameter::eKind;

/// How the kinds stand in the refusals of a reference value.
std::wstring WordOf(eKind kind) {
  if (kind == eKind::kStochastic) return L"stochastic";
  return kind == eKind::kMixed ? L"mixed" : L"optimization";
}

}  // namespace

Parameter::Parameter(std::wstring name, eKind kind) : name_(std::move(name)) {
  if (kind != eKind::kDependent) SetKind(kind);
}

bool Parameter::IsMutable(MutableMember member) const {
  const auto found = mutable_map_.find(member);
  return found == mutable_map_.end() || found->second;
}

void Parameter::SetMutable(MutableMember member, bool is_mutable) { mutable_map_[member] = is_mutable; }

eKind Parameter::GetKind() const {
  if (IsDependent()) return eKind::kDependent;
  if (!rprop_.IsStochastic()) return dprops_.empty() ? eKind::kUndefined : eKind::kOptimization;
  return dprops_.empty() ? eKind::kStochastic : eKind::kMixed;
}

void Parameter::SetKind(eKind kind) {
  if (kind == eKind::kDependent && !IsDependent()) {
    throw utils::runtime_error(L"Cannot make the parameter \"" + name_ + L"\" dependent without an expression.");
  }
  const bool by_range = kind == eKind::kOptimization || kind == eKind::kMixed;
  const bool by_distribution = kind == eKind::kStochastic || kind == eKind::kMixed;
  if (!by_range) dprops_.clear();
  if (by_range && dprops_.empty()) dprops_.emplace_back(name_, DeterministicProperties());
  if (!by_distribution) rprop_ = RandomProperties();
  if (by_distribution && !rprop_.IsStochastic()) rprop_.kind_ = RandomProperties::eKind::kByParameters;
  if (kind != eKind::kDependent) dependency_expression_.clear();
}

bool Parameter::IsOptimization() const { return !const_ && !IsDependent() && !dprops_.empty(); }

const std::wstring& Parameter::GetDetPropertyName(std::size_t index) const {
  if (index >= dprops_.size()) {
    const std::wstring number = std::to_wstring(index);
    throw utils::runtime_error(L"Cannot return the name of the requested deterministic property at index " + number +
                               L". The index given for the requested deterministic property of the parameter \"" +
                               name_ + L"\" is out of range: " + number + L" < " + std::to_wstring(dprops_.size()));
  }
  return std::next(dprops_.begin(), static_cast<std::ptrdiff_t>(index))->first;
}

const DeterministicProperties& Parameter::GetDetProperty(const std::wstring& property) const {
  const auto found = std::find_if(dprops_.begin(), dprops_.end(), [&](const auto& p) { return p.first == property; });
  if (found == dprops_.end()) {
    throw utils::runtime_error(L"Cannot return the the requested deterministic property \"" + property +
                               L"\". Cannot find the determinsitic property \"" + property + L"\" of the parameter \"" +
                               name_ + L"\".");
  }
  return found->second;
}

DeterministicProperties& Parameter::FindDetProperty(const std::wstring& property) {
  return const_cast<DeterministicProperties&>(GetDetProperty(property));
}

Parameter::eDetKind Parameter::GetDetKind() const {
  return dprops_.empty() ? eDetKind::kUndefined : dprops_.front().second.GetKind();
}

void Parameter::SetDetKind(eDetKind kind) {
  ChangeDetKind(kind, [kind](DeterministicProperties& properties) { properties.SetKind(kind); });
}

void Parameter::SetDetKind(eDetKind kind, const std::vector<CDesignEntry>& discrete_states) {
  ChangeDetKind(kind, [&](DeterministicProperties& properties) { properties.SetKind(kind, discrete_states); });
}

template <class Change>
void Parameter::ChangeDetKind(eDetKind kind, const Change& change) {
  if (!IsOptimization()) {
    throw utils::runtime_error(L"Cannot set the deterministic property \"kind\" for the non optimization parameter \"" +
                               name_ + L"\".");
  }
  DeterministicPropertyList changed = dprops_;
  for (auto& [name, properties] : changed) change(properties);
  if (kind == eDetKind::kContinuous) reference_value_ = ConvertEntry(reference_value_, eType::REAL);
  dprops_ = std::move(changed);
}

void Parameter::SetDiscreteStates(const std::vector<CDesignEntry>& discrete_states) {
  DeterministicPropertyList changed = dprops_;
  for (auto& [name, properties] : changed) properties.SetDiscreteStates(discrete_states);
  dprops_ = std::move(changed);
}

bool Parameter::HasBounds() const { return !dprops_.empty() && dprops_.front().second.HasBounds(); }

CDesignEntry Parameter::GetLowerBound() const {
  return dprops_.empty() ? CDesignEntry() : dprops_.front().second.GetLowerBound();
}

CDesignEntry Parameter::GetUpperBound() const {
  return dprops_.empty() ? CDesignEntry() : dprops_.front().second.GetUpperBound();
}

void Parameter::SetBoundaries(const CDesignEntry& lower_bound, const CDesignEntry& upper_bound) {
  if (!IsOptimization()) {
    throw utils::runtime_error(L"Cannot set boundaries for the non optimization parameter \"" + name_ + L"\".");
  }
  dprops_.front().second.SetBounds(lower_bound, upper_bound);
}

void Parameter::SetDetBounds(const std::wstring& property, const CDesignEntry& lower_bound,
                             const CDesignEntry& upper_bound) {
  if (!IsOptimization()) {
    throw utils::runtime_error(
        L"Cannot set the deterministic property \"bounds\" for the non optimization parameter \"" + name_ + L"\".");
  }
  FindDetProperty(property).SetBounds(lower_bound, upper_bound);
}

std::optional<Parameter::eType> Parameter::AwaitedType() const {
  switch (GetKind()) {
    case eKind::kStochastic: return eType::REAL;
    case eKind::kOptimization:
    case eKind::kMixed: return dprops_.front().second.GetDomainType();
    default: return std::nullopt;
  }
}

void Parameter::SetReferenceValue(const CDesignEntry& value) {
  const std::optional<eType> awaited = AwaitedType();
  if (awaited && *awaited != value.GetDomainType()) {
    const eKind kind = GetKind();
    throw utils::runtime_error(
        L"Cannot set reference value for " + WordOf(kind) + L" parameter \"" + name_ +
        (kind == eKind::kStochastic ? L"\". Data type needs to be " : L"\". Data type doesn't match. Awaited ") +
        EDesignEntry::TypeMap(*awaited) + L", got " + EDesignEntry::TypeMap(value.GetDomainType()));
  }
  reference_value_ = value;
}

void Parameter::ConvertData(eType type) {
  const CDesignEntry converted_value = ConvertEntry(reference_value_, type);
  DeterministicPropertyList changed = dprops_;
  for (auto& [name, properties] : changed) properties.ConvertData(type);
  dprops_ = std::move(changed);
  reference_value_ = converted_value;
}

bool Parameter::operator==(const Parameter& other) const {
  bool equal = true;
  ForEachField([&](const char*, auto field, unsigned) { equal = equal && this->*field == other.*field; });
  return equal;
}

template <class Visit>
void Parameter::ForEachField(Visit visit) {
  visit("name_", &Parameter::name_, 0u);
  visit("active_", &Parameter::active_, 0u);
  visit("const_", &Parameter::const_, 0u);
  visit("rprop_", &Parameter::rprop_, 0u);
  visit("dprops_", &Parameter::dprops_, 0u);
  visit("reference_value_", &Parameter::reference_value_, 0u);
  visit("mutable_map_", &Parameter::mutable_map_, 0u);
  visit("dependency_expression_", &Parameter::dependency_expression_, 2u);
  visit("id_", &Parameter::id_, 3u);
  visit("modifiable_", &Parameter::modifiable_, 4u);
  visit("unit_", &Parameter::unit_, 5u);
  visit("removable_", &Parameter::removable_, 6u);
  visit("origin_", &Parameter::origin_, 7u);
}

template <class Archive>
void Parameter::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::Parameter)
