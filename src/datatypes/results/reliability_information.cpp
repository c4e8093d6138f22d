#include "datatypes/results/reliability_information.h"

#include "datatypes/results/serialize_old_field.h"
#include "persistence/archive/archives.h"

namespace kestrel::algorithm::datatypes {

using boost::serialization::base_object;
using boost::serialization::make_nvp;
using persistence::OldField;

std::unique_ptr<AlgorithmInfo::DetailedInformationBase> AlgorithmInfo::ReliabilityInformation::Clone() const {
  return std::make_unique<ReliabilityInformation>(*this);
}

template <class Archive>
void AlgorithmInfo::ReliabilityInformation::serialize(Archive& archive, unsigned int version) {
  archive& make_nvp("SystemsInformation", base_object<SystemsInformation>(*this));
  if (version < 3) OldField<std::pair<std::uint64_t, std::uint64_t>>(archive, "complete_directions_pair_");
  archive& make_nvp("reli_total_infos_", reli_total_infos_);
  archive& make_nvp("stndrd_reli_infos_", stndrd_reli_infos_);
  archive& make_nvp("reli_iteration_infos_", reli_iteration_infos_);
  archive& make_nvp("design_iteration_map_", design_iteration_map_);
  archive& make_nvp("reli_design_set_infos_", reli_design_set_infos_);
  archive& make_nvp("design_type_map_", design_type_map_);
  archive& make_nvp("reli_method_name_", reli_method_name_);
  archive& make_nvp("is_converged_", is_converged_);
  archive& make_nvp("is_form_converged_", is_form_converged_);
}

template <class Archive>
void AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSet::serialize(Archive& archive, unsigned int) {
  archive& make_nvp("DesignSet", base_object<DesignSet>(*this));
  archive& make_nvp("probability_of_failure_", probability_of_failure_);
  archive& make_nvp("standard_deviation_error_", standard_deviation_error_);
  archive& make_nvp("reliability_index_", reliability_index_);
  archive& make_nvp("num_total_dir_", num_total_dir_);
  archive& make_nvp("num_done_dir_", num_done_dir_);
  archive& make_nvp("arsm_approx_errors_", arsm_approx_errors_);
  archive& make_nvp("input_importance_values_", input_importance_values_);
}

template <class Archive>
void AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSetInfo::serialize(Archive& archive,
                                                                                unsigned int version) {
  archive& make_nvp("safe_domain_designs_", safe_domain_designs_);
  archive& make_nvp("unsafe_domain_designs_", unsafe_domain_designs_);
  archive& make_nvp("failed_strings_", failed_strings_);
  archive& make_nvp("unsuccessful_designs_", unsuccessful_designs_);
  archive& make_nvp("total_designs_", total_designs_);
  archive& make_nvp("most_probable_failure_point_id_", most_probable_failure_point_id_);
  archive& make_nvp("probability_of_failure_", probability_of_failure_);
  archive& make_nvp("standard_deviation_error_", standard_deviation_error_);
  archive& make_nvp("reliability_index_", reliability_index_);
  archive& make_nvp("probability_of_failure_form_", probability_of_failure_form_);
  archive& make_nvp("reliability_index_form_", reliability_index_form_);
  archive& make_nvp("method_name_", method_name_);
  archive& make_nvp("error_r2_", error_r2_);
  archive& make_nvp("error_loo_", error_loo_);
  if (version < 5) OldField<HistoryMap>(archive, "history_map_");
  archive& make_nvp("arsm_ds_map_", arsm_ds_map_);
  if (version < 2) OldField<std::map<std::wstring, std::int32_t>>(archive, "arsm_ds_types_");
  if (version >= 3) archive& make_nvp("has_valid_data_", has_valid_data_);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation)
KESTREL_INSTANTIATE_SERIALIZE(
    kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSet)
KESTREL_INSTANTIATE_SERIALIZE(
    kestrel::algorithm::datatypes::AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSetInfo)
