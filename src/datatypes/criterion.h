#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

#include "datatypes/design_entry.h"
#include "datatypes/nvp_sequence.h"
#include "persistence/archive/persistent.h"

/// What a criterion asks for. The numbers are part of the file format. A constraint or a limit state compares its left
/// with its right side; the comparison named is the one that holds for an admissible or safe design.
namespace kestrel::enums::CriterionType {

enum eType : std::int32_t {
  UNDEFINED = 0,
  OBJECTIVE_MIN = 1,
  OBJECTIVE_MAX = 2,
  CONSTRAINT_LESS = 3,
  CONSTRAINT_GREATER = 4,
  CONSTRAINT_EQUAL = 5,
  LIMIT_STATE_LESS = 6,
  LIMIT_STATE_GREATER = 7
};

}  // namespace kestrel::enums::CriterionType

namespace kestrel::algorithm::datatypes {

/// What is asked: the kind and the two sides as texts of the expression language. An objective has a left side only.
class CriterionDescription {
 public:
  using eType = enums::CriterionType::eType;

  CriterionDescription() = default;
  CriterionDescription(eType type, std::wstring lhs, std::wstring rhs = {});

  eType GetType() const { return type_; }
  const std::wstring& GetLhs() const { return lhs_; }
  const std::wstring& GetRhs() const { return rhs_; }
  bool IsObjective() const;
  bool IsConstraint() const;
  bool IsLimitState() const;

  bool operator==(const CriterionDescription& other) const;

 protected:
  eType type_ = enums::CriterionType::UNDEFINED;
  std::wstring lhs_;
  std::wstring rhs_;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// What came out for one design: the value of the criterion and of its two sides.
class CriterionValue {
 public:
  const CDesignEntry& GetValue() const { return value_; }
  const CDesignEntry& GetLhsValue() const { return lhs_value_; }
  const CDesignEntry& GetRhsValue() const { return rhs_value_; }
  /// True if the value must be evaluated anew.
  bool NeedsEvaluation() const { return needeval_; }

  void SetValue(const CDesignEntry& value) { value_ = value; }
  void SetValues(const CDesignEntry& value, const CDesignEntry& lhs, const CDesignEntry& rhs, bool needs_evaluation);
  /// Uninitialized values that must be evaluated.
  void ResetValues() { SetValues({}, {}, {}, true); }

  /// True if the value is uninitialized, NaN or infinite.
  bool IsFailed() const { return value_.IsUninitialized() || value_.IsNaN() || value_.IsInf(); }

  bool operator==(const CriterionValue& other) const;

 protected:
  CDesignEntry value_;
  CDesignEntry lhs_value_;
  CDesignEntry rhs_value_;
  bool needeval_ = true;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// An objective, a constraint or a limit state of a design. Its name is its key in a sequence.
class Criterion : public CriterionDescription, public CriterionValue {
 public:
  Criterion() = default;
  explicit Criterion(CriterionDescription description) : CriterionDescription(std::move(description)) {}
  Criterion(eType type, std::wstring lhs, std::wstring rhs = {})
      : CriterionDescription(type, std::move(lhs), std::move(rhs)) {}

  /// True if a constraint or a limit state has both sides' values and the comparison of its type does not hold. Sides
  /// compare as real scalars; a side that is NaN or has no such value makes no statement, and the answer is false.
  bool IsViolated() const;

  bool operator==(const Criterion& other) const;
  bool operator!=(const Criterion& other) const { return !(*this == other); }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  template <class Archive>
  void LoadFlat(Archive& archive, unsigned int version);
};

/// Left side, comparison, right side and value, then " needeval:" and the flag.
std::wostream& operator<<(std::wostream& stream, const Criterion& criterion);

using CriterionSequence = CNVPSequence<std::wstring, Criterion, std::uint64_t>;

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::Criterion, 3)
