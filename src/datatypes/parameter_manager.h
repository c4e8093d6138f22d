#pragma once

#include <cstddef>
#include <list>
#include <string>
#include <vector>

#include "datatypes/correlation_matrix.h"
#include "datatypes/parameter.h"
#include "persistence/archive/persistent.h"

namespace kestrel::algorithm::datatypes {

/// The ordered parameters of a study, whose names are unique, and the correlations between them. Failures are
/// utils::runtime_error and leave the manager as it was.
class ParameterManager {
 public:
  using eKind = enums::Parameter::eKind;
  using eDetKind = enums::DeterministicProperties::eKind;

  const std::list<Parameter>& GetParameters() const { return parameters_; }
  std::vector<std::wstring> GetNames() const;
  std::size_t size() const { return parameters_.size(); }
  bool empty() const { return parameters_.empty(); }

  /// The position of the parameter, counted from 1; 0 if there is none of this name.
  std::size_t ContainsParameter(const std::wstring& name) const;

  /// Appends it; refused if the name is in use.
  void AddParameter(Parameter parameter);
  /// Removes the parameter and its correlations; false if there is none of this name.
  bool EraseParameter(const std::wstring& name);

  /// By index from 0, or by name.
  const Parameter& GetParameter(std::size_t index) const;
  Parameter& GetParameter(std::size_t index);
  const Parameter& GetParameter(const std::wstring& name) const;
  Parameter& GetParameter(const std::wstring& name);

  /// The setters of the named parameter; refused if there is none. `SetDetBounds` sets one of several ranges.
  void SetBoundaries(const std::wstring& name, const CDesignEntry& lower_bound, const CDesignEntry& upper_bound);
  void SetDetBounds(const std::wstring& name, const std::wstring& property, const CDesignEntry& lower_bound,
                    const CDesignEntry& upper_bound);
  void SetConst(const std::wstring& name, bool is_const);
  void SetReferenceValue(const std::wstring& name, const CDesignEntry& value);
  void SetKind(const std::wstring& name, eKind kind);
  /// The kind of its deterministic properties. `kContinuous` brings those of old files, which are neither ordinal nor
  /// nominal, to their present form.
  void SetKind(const std::wstring& name, eDetKind kind);

  /// The ranges of all optimization parameters in their order; refused if two have one name.
  Parameter::DeterministicPropertyList GetDeterministicProperties() const;

  const CorrelationMatrix& GetCorrelations() const { return coherences_; }
  /// Both parameters must exist.
  void SetCorrelation(const std::wstring& a, const std::wstring& b, double correlation);
  /// The correlations between these names, in their order; refused if a name stands there twice.
  math::Matrix BuildCorrelationMatrix(const std::vector<std::wstring>& names) const { return coherences_.Build(names); }

  bool operator==(const ParameterManager& other) const;
  bool operator!=(const ParameterManager& other) const { return !(*this == other); }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  std::list<Parameter>::const_iterator Find(const std::wstring& name) const;
  const Parameter& Require(const std::wstring& name, const wchar_t* refusal) const;
  Parameter& Require(const std::wstring& name, const wchar_t* refusal);

  std::list<Parameter> parameters_;
  CorrelationMatrix coherences_;
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::ParameterManager, 1)
