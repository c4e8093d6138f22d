#include "datatypes/results/algorithm_info.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <utility>

#include "datatypes/results/optimization_information.h"
#include "datatypes/results/reliability_information.h"
#include "datatypes/results/serialize_old_field.h"
#include "datatypes/results/systems_information.h"
#include "datatypes/results/zor_information.h"
#include "persistence/archive/archives.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {

using boost::serialization::make_nvp;
using persistence::OldField;

AlgorithmInfo::AlgorithmInfo(eKind kind) : algo_type_(kind) {
  if (kind == eKind::kMetamodel) detailed_info_ = boost::make_shared<ZORInformation>();
}

const AlgorithmInfo::ZORInformation* AlgorithmInfo::GetZORInfo() const {
  return dynamic_cast<const ZORInformation*>(detailed_info_.get());
}

AlgorithmInfo::ZORInformation* AlgorithmInfo::GetZORInfo() {
  return dynamic_cast<ZORInformation*>(detailed_info_.get());
}

void AlgorithmInfo::SetCombinedZORSettings(const zor::ZORCombinedSettings& settings) {
  ZORInformation* const information = GetZORInfo();
  if (information == nullptr) throw utils::runtime_error(L"ZOR information missing.");
  information->zor_settings_ = settings;
}

AlgorithmInfo::eSamplingType AlgorithmInfo::GetSamplingType() const {
  return detailed_info_ ? detailed_info_->GetSamplingType() : eSamplingType{};
}

void AlgorithmInfo::SetSamplingType(eSamplingType type) {
  if (detailed_info_) detailed_info_->SetSamplingType(type);
}

void AlgorithmInfo::SetDesignGroup(const std::wstring& name, std::vector<CHierachicalId> ids) {
  design_group_map_[name] = std::move(ids);
}

void AlgorithmInfo::SetSignal(const std::wstring& name, SignalInfo info) {
  if (signal_info_container_.insert_or_assign(name, std::move(info)).second) signal_info_names_.push_back(name);
}

boost::shared_ptr<AlgorithmInfo> AlgorithmInfo::CopyWithoutSupportData(const DesignManager& designs,
                                                                       const ParameterManager& parameters) const {
  auto copy = boost::make_shared<AlgorithmInfo>(*this);
  if (detailed_info_) {
    copy->detailed_info_.reset(detailed_info_->Clone().release());
    copy->detailed_info_->UpdateUsedDesignHIds(designs, parameters);
    copy->detailed_info_->ResetSupportData();
  }
  return copy;
}

template <class Archive>
void AlgorithmInfo::SerializeOldIterations(Archive& archive) {
  OldField<std::vector<std::map<std::wstring, double>>>(archive, "reli_iteration_infos_");
  OldField<std::map<std::uint64_t, std::vector<CHierachicalId>>>(archive, "desig_iteration_map_");
  if (algo_type_ != eKind::kMetamodel) OldField<CVIndexes>(archive, "zor_cv_indexes_");
}

template <class Archive>
void AlgorithmInfo::serialize(Archive& archive, unsigned int version) {
  archive& make_nvp("algo_type_", algo_type_);
  if (version < 4) OldField<std::pair<std::uint64_t, std::uint64_t>>(archive, "complete_directions_pair_");
  archive& make_nvp("design_group_map_", design_group_map_);
  archive& make_nvp("additional_data_", additional_data_);
  if (version >= 5) archive& make_nvp("signal_info_container_", signal_info_container_);
  if (version >= 7) archive& make_nvp("signal_info_names_", signal_info_names_);
  if (version < 6) SerializeOldIterations(archive);
  archive& make_nvp("detailed_info_", detailed_info_);
  if (version >= 5 && version < 7) {
    for (const auto& signal : signal_info_container_) signal_info_names_.push_back(signal.first);
  }
}

std::unique_ptr<AlgorithmInfo::DetailedInformationBase> AlgorithmInfo::DetailedInformationBase::Clone() const {
  return std::make_unique<DetailedInformationBase>(*this);
}

template <class Archive>
void AlgorithmInfo::DetailedInformationBase::serialize(Archive& archive, unsigned int) {
  archive& make_nvp("sampling_type_", sampling_type_);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::AlgorithmInfo)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::AlgorithmInfo::DetailedInformationBase)

// The exports of all details stand here, where the linker cannot leave them out: nothing but a file names these
// classes.
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::datatypes::AlgorithmInfo)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::datatypes::AlgorithmInfo::DetailedInformationBase)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::datatypes::AlgorithmInfo::ZORInformation)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::DesignSet)
BOOST_CLASS_EXPORT_IMPLEMENT(
    kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::AdditionalDesignContainer)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation)
BOOST_CLASS_EXPORT_IMPLEMENT(
    kestrel::algorithm::datatypes::AlgorithmInfo::OptimizationInformation::OptimizationDesignSet)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSet)
BOOST_CLASS_EXPORT_IMPLEMENT(
    kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSetInfo)
