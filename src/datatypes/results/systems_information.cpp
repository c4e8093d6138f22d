#include "datatypes/results/systems_information.h"

#include "datatypes/results/serialize_old_field.h"
#include "persistence/archive/archives.h"
#include "persistence/archive/serialize_fields.h"

namespace kestrel::algorithm::datatypes {

using boost::serialization::base_object;
using boost::serialization::make_nvp;
using persistence::OldField;

std::unique_ptr<AlgorithmInfo::DetailedInformationBase> AlgorithmInfo::SystemsInformation::Clone() const {
  return std::make_unique<SystemsInformation>(*this);
}

template <class Archive>
void AlgorithmInfo::SystemsInformation::serialize(Archive& archive, unsigned int version) {
  archive& make_nvp("DetailedInformationBase", base_object<DetailedInformationBase>(*this));
  DesignSets old_sets;
  if (version < 6) {
    OldField<HistoryMap>(archive, "history_map_");
    OldField<std::vector<std::wstring>>(archive, "internal_algo_history_names_");
    old_sets = OldField<DesignSets>(archive, "design_set_map_");
  }
  archive& make_nvp("index_id_map_", index_id_map_);
  archive& make_nvp("design_set_position_map_", design_set_position_map_);
  if (version >= 2) archive& make_nvp("prefered_design_set_", prefered_design_set_);
  if (version >= 3) archive& make_nvp("additional_designs_", additional_designs_);
  if (version >= 5) archive& make_nvp("design_sets_map_", design_sets_map_);
  design_sets_map_.merge(old_sets);
}

template <class Archive>
void AlgorithmInfo::SystemsInformation::DesignSet::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

template <class Archive>
void AlgorithmInfo::SystemsInformation::AdditionalDesignContainer::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::DesignSet)
KESTREL_INSTANTIATE_SERIALIZE(
    kestrel::algorithm::datatypes::AlgorithmInfo::SystemsInformation::AdditionalDesignContainer)
