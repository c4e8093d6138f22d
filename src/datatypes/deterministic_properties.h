#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "datatypes/design_entry.h"
#include "persistence/archive/persistent.h"

namespace kestrel::enums::DeterministicProperties {

/// How the values of a property are given. A continuous one has two real bounds; a discrete one has states and two
/// bounds that are state indices, and its states have a natural order (ordinal) or none (nominal).
enum class eKind : std::int32_t { kUndefined = 0, kContinuous = 1, kOrdinalDiscrete = 2, kNominalDiscrete = 3 };

}  // namespace kestrel::enums::DeterministicProperties

namespace kestrel::algorithm::datatypes {

/// The value as another type; an uninitialized entry stays one. Raises what the conversion of an entry raises, and
/// utils::runtime_error for a type that no value has.
CDesignEntry ConvertEntry(const CDesignEntry& entry, enums::DesignEntry::eType type);

/// The range of values that a parameter may take in an optimization or a sampling. The failures below are
/// utils::runtime_error and leave the property as it was.
class DeterministicProperties {
 public:
  using eKind = enums::DeterministicProperties::eKind;
  using eType = enums::DesignEntry::eType;

  /// Continuous, of type Real, without bounds.
  DeterministicProperties() = default;
  /// Continuous between two bounds, see `SetBounds`.
  DeterministicProperties(const CDesignEntry& lower_bound, const CDesignEntry& upper_bound);
  /// Discrete with at least one state; all states are of one type, which becomes the type of the values, and the bounds
  /// span them all. A continuous kind takes no states.
  DeterministicProperties(eKind kind, std::vector<CDesignEntry> discrete_states);

  /// Continuous if there are no states; else by the flag of the order.
  eKind GetKind() const;
  bool IsContinuous() const { return discrete_states_.empty(); }
  bool IsDiscrete() const { return !discrete_states_.empty(); }

  /// The type of the values: Real for a continuous property, that of the states for a discrete one.
  eType GetDomainType() const { return domain_flag_; }

  /// Both bounds are set.
  bool HasBounds() const;
  /// Uninitialized entries until they are set; Real if continuous, Integer (index into the states) if discrete.
  const CDesignEntry& GetLowerBound() const { return lower_bound_; }
  const CDesignEntry& GetUpperBound() const { return upper_bound_; }
  /// Continuous: both Real, lower below upper. Discrete: both Integer, indices of states, lower not above upper.
  void SetBounds(const CDesignEntry& lower_bound, const CDesignEntry& upper_bound);

  /// The bounds as parts of the reference value (0.1: a tenth of it away); 0 where a bound is absolute. Kept for those
  /// who set the bounds, not evaluated here.
  double GetRelativeLowerBound() const { return lower_bound_relative_; }
  double GetRelativeUpperBound() const { return upper_bound_relative_; }
  void SetRelativeBounds(double lower_bound, double upper_bound);

  const std::vector<CDesignEntry>& GetDiscreteStates() const { return discrete_states_; }
  /// Replaces the states of a discrete property by at least one state of the same type; the bounds span them all.
  void SetDiscreteStates(std::vector<CDesignEntry> discrete_states);

  /// Continuous drops the states; the bounds stay if they are real numbers, else they become the smallest and the
  /// largest number among the states, and are unset where there are no two of them. Discrete needs states.
  void SetKind(eKind kind);
  void SetKind(eKind kind, std::vector<CDesignEntry> discrete_states);

  /// Converts the states to another type; raises what the conversion of an entry raises. A continuous property is Real
  /// and refuses every other type.
  void ConvertData(eType type);

  bool operator==(const DeterministicProperties& other) const;
  bool operator!=(const DeterministicProperties& other) const { return !(*this == other); }

  /// Name in files, member, class version that brought it; in stored order.
  template <class Visit>
  static void ForEachField(Visit visit);

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  void CheckBounds(const CDesignEntry& lower_bound, const CDesignEntry& upper_bound) const;
  void CheckAfterReading() const;

  bool ordered_flag_ = true;  // continuous values and ordinal states have an order
  eType domain_flag_ = eType::REAL;
  CDesignEntry lower_bound_;
  CDesignEntry upper_bound_;
  std::vector<CDesignEntry> discrete_states_;
  double lower_bound_relative_ = 0.0;
  double upper_bound_relative_ = 0.0;
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::DeterministicProperties, 1)
