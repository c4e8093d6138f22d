#include "datatypes/criterion.h"

#include <cmath>
#include <limits>
#include <ostream>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "values/real_comparison.h"

namespace kestrel::algorithm::datatypes {
namespace {

using boost::serialization::make_nvp;
using namespace enums::CriterionType;

/// The side as a real number; NaN if it is none.
double RealSide(const CDesignEntry& side) {
  const bool is_text = side.GetDomainType() == enums::DesignEntry::STRING;
  if (is_text || !side.IsScalarType()) return std::numeric_limits<double>::quiet_NaN();
  return ConvertDesignpointEntry<double>(side);
}

const wchar_t* ComparisonSign(eType type) {
  switch (type) {
    case CONSTRAINT_LESS:
    case LIMIT_STATE_LESS: return L" <= ";
    case CONSTRAINT_GREATER:
    case LIMIT_STATE_GREATER: return L" >= ";
    case CONSTRAINT_EQUAL: return L" == ";
    default: return L" ";
  }
}

}  // namespace

CriterionDescription::CriterionDescription(eType type, std::wstring lhs, std::wstring rhs)
    : type_(type), lhs_(std::move(lhs)), rhs_(std::move(rhs)) {}

bool CriterionDescription::IsObjective() const { return type_ == OBJECTIVE_MIN || type_ == OBJECTIVE_MAX; }

bool CriterionDescription::IsConstraint() const { return type_ >= CONSTRAINT_LESS && type_ <= CONSTRAINT_EQUAL; }

bool CriterionDescription::IsLimitState() const { return type_ == LIMIT_STATE_LESS || type_ == LIMIT_STATE_GREATER; }

bool CriterionDescription::operator==(const CriterionDescription& other) const {
  return type_ == other.type_ && lhs_ == other.lhs_ && rhs_ == other.rhs_;
}

void CriterionValue::SetValues(const CDesignEntry& value, const CDesignEntry& lhs, const CDesignEntry& rhs,
                               bool needs_evaluation) {
  value_ = value;
  lhs_value_ = lhs;
  rhs_value_ = rhs;
  needeval_ = needs_evaluation;
}

bool CriterionValue::operator==(const CriterionValue& other) const {
  return value_ == other.value_ && lhs_value_ == other.lhs_value_ && rhs_value_ == other.rhs_value_ &&
         needeval_ == other.needeval_;
}

bool Criterion::IsViolated() const {
  const double lhs = RealSide(lhs_value_);
  const double rhs = RealSide(rhs_value_);
  if (std::isnan(lhs) || std::isnan(rhs)) return false;
  switch (type_) {
    case CONSTRAINT_LESS:
    case LIMIT_STATE_LESS: return lhs > rhs;
    case CONSTRAINT_GREATER:
    case LIMIT_STATE_GREATER: return lhs < rhs;
    case CONSTRAINT_EQUAL: return !math::Equal(lhs, rhs);
    default: return false;
  }
}

bool Criterion::operator==(const Criterion& other) const {
  return CriterionDescription::operator==(other) && CriterionValue::operator==(other);
}

std::wostream& operator<<(std::wostream& stream, const Criterion& criterion) {
  return stream << criterion.GetLhs() << ComparisonSign(criterion.GetType()) << criterion.GetRhs() << L" value:"
                << criterion.GetValue() << L" needeval:" << criterion.NeedsEvaluation();
}

template <class Archive>
void CriterionDescription::serialize(Archive& archive, unsigned int) {
  archive& make_nvp("type_", type_);
  archive& make_nvp("lhs_", lhs_);
  archive& make_nvp("rhs_", rhs_);
}

template <class Archive>
void CriterionValue::serialize(Archive& archive, unsigned int) {
  archive& make_nvp("value_", value_);
  archive& make_nvp("lhs_value_", lhs_value_);
  archive& make_nvp("rhs_value_", rhs_value_);
  archive& make_nvp("needeval_", needeval_);
}

template <class Archive>
void Criterion::serialize(Archive& archive, unsigned int version) {
  if constexpr (Archive::is_loading::value) {
    if (version < 3) return LoadFlat(archive, version);
  }
  archive& make_nvp("CriterionDescription", boost::serialization::base_object<CriterionDescription>(*this));
  archive& make_nvp("CriterionValue", boost::serialization::base_object<CriterionValue>(*this));
}

template <class Archive>
void Criterion::LoadFlat(Archive& archive, unsigned int version) {
  bool converted = false;  // a mark of the program that wrote the file; it says nothing about the criterion
  archive >> make_nvp("type_", type_);
  archive >> make_nvp("value_", value_);
  archive >> make_nvp("lhs_", lhs_);
  archive >> make_nvp("rhs_", rhs_);
  archive >> make_nvp("needeval_", needeval_);
  archive >> make_nvp("qmk3_converted_", converted);
  if (version < 2) return;
  archive >> make_nvp("lhs_value_", lhs_value_);
  archive >> make_nvp("rhs_value_", rhs_value_);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::CriterionDescription)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::CriterionValue)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::Criterion)
