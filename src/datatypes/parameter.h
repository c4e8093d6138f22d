#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/design_entry.h"
#include "datatypes/deterministic_properties.h"
#include "datatypes/hierarchical_id.h"
#include "datatypes/random_properties.h"
#include "persistence/archive/persistent.h"

namespace kestrel::enums::Parameter {

/// What a parameter is varied by: its bounds or states, its distribution, both, or an expression in other parameters.
enum class eKind : std::int32_t { kUndefined = 0, kOptimization = 1, kStochastic = 2, kMixed = 3, kDependent = 4 };

}  // namespace kestrel::enums::Parameter

namespace kestrel::algorithm::datatypes {

/// The members of a parameter that a user interface may be told not to change.
enum class MutableMember : std::int32_t {
  kName = 0,
  kActive = 1,
  kConst = 2,
  kRandomProperties = 3,
  kDeterministicProperties = 4,
  kReferenceValue = 5,
  kDependencyExpression = 6,
};

/// One input of a study. Failures are utils::runtime_error and leave the parameter as it was.
class Parameter {
 public:
  using eKind = enums::Parameter::eKind;
  using eDetKind = enums::DeterministicProperties::eKind;
  using eType = enums::DesignEntry::eType;
  /// Named ranges, one in the usual case: the parameter's own, under its name.
  using DeterministicPropertyList = std::list<std::pair<std::wstring, DeterministicProperties>>;

  Parameter() = default;
  /// An active parameter. Optimization and mixed ones get a continuous range without bounds; stochastic and mixed ones
  /// await their distribution, dependent ones their expression.
  explicit Parameter(std::wstring name, eKind kind = eKind::kOptimization);

  const std::wstring& GetName() const { return name_; }
  bool IsActive() const { return active_; }
  void SetActive(bool active) { active_ = active; }
  /// A constant parameter keeps its reference value in every design.
  bool IsConst() const { return const_; }
  void SetConst(bool is_const) { const_ = is_const; }
  bool IsModifiable() const { return modifiable_; }
  void SetModifiable(bool modifiable) { modifiable_ = modifiable; }
  bool IsRemovable() const { return removable_; }
  void SetRemovable(bool removable) { removable_ = removable; }
  const std::wstring& GetUnit() const { return unit_; }
  void SetUnit(std::wstring unit) { unit_ = std::move(unit); }
  /// Where the parameter comes from, for display.
  const std::wstring& GetOrigin() const { return origin_; }
  void SetOrigin(std::wstring origin) { origin_ = std::move(origin); }
  const CHierachicalId& GetId() const { return id_; }
  void SetId(CHierachicalId id) { id_ = std::move(id); }
  /// True unless it was set otherwise.
  bool IsMutable(MutableMember member) const;
  void SetMutable(MutableMember member, bool is_mutable);

  /// Follows from what the parameter has: an expression, deterministic properties, a distribution.
  eKind GetKind() const;
  /// Drops what the kind does not have and adds what it misses, as the constructor does. Dependent is refused while
  /// there is no expression.
  void SetKind(eKind kind);
  /// Not constant, not dependent, with deterministic properties (optimization or mixed).
  bool IsOptimization() const;
  bool IsStochastic() const { return !IsDependent() && rprop_.IsStochastic(); }
  bool IsDependent() const { return !dependency_expression_.empty(); }
  const std::wstring& GetDependencyExpression() const { return dependency_expression_; }
  void SetDependencyExpression(std::wstring expression) { dependency_expression_ = std::move(expression); }

  /// The deterministic properties. Without an index it is about the first of them. The kind is `kUndefined` if there
  /// are none.
  const DeterministicPropertyList& GetDeterministicProperties() const { return dprops_; }
  const std::wstring& GetDetPropertyName(std::size_t index) const;
  const DeterministicProperties& GetDetProperty(const std::wstring& property) const;
  eDetKind GetDetKind() const;
  bool IsNominalDiscrete() const { return GetDetKind() == eDetKind::kNominalDiscrete; }
  /// Sets the kind of all deterministic properties, see `DeterministicProperties::SetKind`. A continuous kind makes the
  /// reference value a Real.
  void SetDetKind(eDetKind kind);
  void SetDetKind(eDetKind kind, const std::vector<CDesignEntry>& discrete_states);
  void SetDiscreteStates(const std::vector<CDesignEntry>& discrete_states);

  /// Bounds of the first property; uninitialized entries if there is none or they are not set.
  bool HasBounds() const;
  CDesignEntry GetLowerBound() const;
  CDesignEntry GetUpperBound() const;
  /// See `DeterministicProperties::SetBounds`. Refused unless `IsOptimization()`.
  void SetBoundaries(const CDesignEntry& lower_bound, const CDesignEntry& upper_bound);
  void SetDetBounds(const std::wstring& property, const CDesignEntry& lower_bound, const CDesignEntry& upper_bound);

  const RandomProperties& GetRandomProperties() const { return rprop_; }
  void SetRandomProperties(RandomProperties properties) { rprop_ = std::move(properties); }

  const CDesignEntry& GetReferenceValue() const { return reference_value_; }
  /// The value must be of the type of the deterministic properties, Real for a stochastic parameter.
  void SetReferenceValue(const CDesignEntry& value);

  /// Converts the reference value and the discrete states to another type; raises what the conversion of an entry
  /// raises.
  void ConvertData(eType type);

  bool operator==(const Parameter& other) const;
  bool operator!=(const Parameter& other) const { return !(*this == other); }

  /// Name in files, member, class version that brought it; in stored order.
  template <class Visit>
  static void ForEachField(Visit visit);

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  DeterministicProperties& FindDetProperty(const std::wstring& property);
  template <class Change>
  void ChangeDetKind(eDetKind kind, const Change& change);
  /// The type that the reference value must have; none if it is free.
  std::optional<eType> AwaitedType() const;

  std::wstring name_;
  bool active_ = true;
  bool const_ = false;
  RandomProperties rprop_;
  DeterministicPropertyList dprops_;
  CDesignEntry reference_value_;
  std::map<MutableMember, bool> mutable_map_;
  std::wstring dependency_expression_;
  CHierachicalId id_;
  bool modifiable_ = true;
  std::wstring unit_;
  bool removable_ = true;
  std::wstring origin_;
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::Parameter, 7)
