#include "surrogates/surrogate_appraisal_data.h"

#include <cmath>

#include "persistence/archive/archives.h"
#include "support/exceptions.h"
#include "support/matrix_equality.h"

namespace kestrel::math::metamodel {
namespace {

double ValidEntry(const Vector& values, std::uint64_t index) {
  if (index >= static_cast<std::uint64_t>(values.size()) || std::isnan(values[static_cast<Index>(index)])) {
    throw utils::runtime_error(L"Single CoP is not valid.");
  }
  return values[static_cast<Index>(index)];
}

}  // namespace

void AppraisalData::SetSingleCoP(std::uint64_t index, double value) {
  const auto position = static_cast<Index>(index);
  const Index old_size = single_cop_.size();
  if (position >= old_size) {
    single_cop_.conservativeResize(position + 1);
    single_cop_.tail(position + 1 - old_size).setConstant(std::numeric_limits<double>::quiet_NaN());
  }
  single_cop_[position] = value;
}

double AppraisalData::GetCoP() const {
  if (std::isnan(cop_)) throw utils::runtime_error(L"CoP is not valid.");
  return cop_;
}

double AppraisalData::GetSingleCoP(std::uint64_t index) const { return ValidEntry(single_cop_, index); }

double AppraisalData::GetFirstOrderIndex(std::uint64_t index) const { return ValidEntry(first_order_indices_, index); }

bool AppraisalData::operator==(const AppraisalData& other) const {
  return SameValue(cop_, other.cop_) && SameValue(cod_, other.cod_) && SameValue(codadj_, other.codadj_) &&
         SameEntries(single_cop_, other.single_cop_) && SameEntries(first_order_indices_, other.first_order_indices_);
}

template <class Archive>
void AppraisalData::serialize(Archive& archive, const unsigned int version) {
  using boost::serialization::make_nvp;
  archive& make_nvp("cop_", cop_);
  archive& make_nvp("cod_", cod_);
  archive& make_nvp("codadj_", codadj_);
  archive& make_nvp("single_cop_", single_cop_);
  if (version >= 1) {
    archive& make_nvp("first_order_indices_", first_order_indices_);
  } else {
    first_order_indices_.resize(0);
  }
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::AppraisalData)
