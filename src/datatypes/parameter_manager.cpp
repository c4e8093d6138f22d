#include "datatypes/parameter_manager.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {

std::vector<std::wstring> ParameterManager::GetNames() const {
  std::vector<std::wstring> names;
  for (const Parameter& parameter : parameters_) names.push_back(parameter.GetName());
  return names;
}

std::size_t ParameterManager::ContainsParameter(const std::wstring& name) const {
  const auto found = Find(name);
  return found == parameters_.end() ? 0 : static_cast<std::size_t>(std::distance(parameters_.begin(), found)) + 1;
}

std::list<Parameter>::const_iterator ParameterManager::Find(const std::wstring& name) const {
  return std::find_if(parameters_.begin(), parameters_.end(), [&](const Parameter& p) { return p.GetName() == name; });
}

void ParameterManager::AddParameter(Parameter parameter) {
  if (ContainsParameter(parameter.GetName()) != 0) {
    throw utils::runtime_error(L"Cannot add the parameter \"" + parameter.GetName() +
                               L"\" to the parametermanager because a parameter with the same name already exists. "
                               L"Parameter name MUST be unique.");
  }
  parameters_.push_back(std::move(parameter));
}

bool ParameterManager::EraseParameter(const std::wstring& name) {
  const auto found = Find(name);
  if (found == parameters_.end()) return false;
  coherences_.Remove(name);
  parameters_.erase(found);
  return true;
}

const Parameter& ParameterManager::GetParameter(std::size_t index) const {
  if (index >= parameters_.size()) {
    throw utils::runtime_error(L"Cannot return the parameter to the overflowing parameter index \"" +
                               std::to_wstring(index) + L"\". There are only " + std::to_wstring(parameters_.size()) +
                               L" parameters managed by the parametermanager.");
  }
  return *std::next(parameters_.begin(), static_cast<std::ptrdiff_t>(index));
}

Parameter& ParameterManager::GetParameter(std::size_t index) {
  return const_cast<Parameter&>(std::as_const(*this).GetParameter(index));
}

const Parameter& ParameterManager::GetParameter(const std::wstring& name) const {
  return Require(name, L"Cannot return non existing parameter \"");
}

Parameter& ParameterManager::GetParameter(const std::wstring& name) {
  return const_cast<Parameter&>(std::as_const(*this).GetParameter(name));
}

const Parameter& ParameterManager::Require(const std::wstring& name, const wchar_t* refusal) const {
  const auto found = Find(name);
  if (found == parameters_.end()) throw utils::runtime_error(refusal + name + L"\".");
  return *found;
}

Parameter& ParameterManager::Require(const std::wstring& name, const wchar_t* refusal) {
  return const_cast<Parameter&>(std::as_const(*this).Require(name, refusal));
}

void ParameterManager::SetBoundaries(const std::wstring& name, const CDesignEntry& lower_bound,
                                     const CDesignEntry& upper_bound) {
  Require(name, L"Cannot set boundaries of the non existing parameter \"").SetBoundaries(lower_bound, upper_bound);
}

void ParameterManager::SetDetBounds(const std::wstring& name, const std::wstring& property,
                                    const CDesignEntry& lower_bound, const CDesignEntry& upper_bound) {
  Require(name, L"Cannot set the boundaries of the non existing parameter \"")
      .SetDetBounds(property, lower_bound, upper_bound);
}

void ParameterManager::SetConst(const std::wstring& name, bool is_const) {
  Require(name, L"Cannot set the const flag state of the non existing parameter \"").SetConst(is_const);
}

void ParameterManager::SetReferenceValue(const std::wstring& name, const CDesignEntry& value) {
  Require(name, L"Cannot set the reference value of the non existing parameter \"").SetReferenceValue(value);
}

void ParameterManager::SetKind(const std::wstring& name, eKind kind) {
  Require(name, L"Cannot set the kind of the non existing parameter \"").SetKind(kind);
}

void ParameterManager::SetKind(const std::wstring& name, eDetKind kind) {
  Require(name, L"Cannot set the kind of the non existing parameter \"").SetDetKind(kind);
}

Parameter::DeterministicPropertyList ParameterManager::GetDeterministicProperties() const {
  Parameter::DeterministicPropertyList all;
  std::set<std::wstring> keys;
  for (const Parameter& parameter : parameters_) {
    if (!parameter.IsOptimization()) continue;
    for (const auto& property : parameter.GetDeterministicProperties()) {
      if (!keys.insert(property.first).second) {
        throw utils::runtime_error(
            L"Parametermanager: Something went wrong building up the deterministic property container; guess key "
            L"problems occured.");
      }
      all.push_back(property);
    }
  }
  return all;
}

void ParameterManager::SetCorrelation(const std::wstring& a, const std::wstring& b, double correlation) {
  for (const std::wstring& name : {a, b}) Require(name, L"Cannot return non existing parameter \"");
  coherences_.Set(a, b, correlation);
}

bool ParameterManager::operator==(const ParameterManager& other) const {
  return parameters_ == other.parameters_ && coherences_ == other.coherences_;
}

template <class Archive>
void ParameterManager::serialize(Archive& archive, unsigned int /*version*/) {
  archive& boost::serialization::make_nvp("parameters_", parameters_);
  archive& boost::serialization::make_nvp("coherences_", coherences_);
  if constexpr (Archive::is_loading::value) {
    const std::vector<std::wstring> names = GetNames();
    persistence::RequireStored(std::set<std::wstring>(names.begin(), names.end()).size() == names.size(),
                               L"The names of the stored parameters are not unique.");
  }
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::ParameterManager)
