#include "datatypes/results/zor_information.h"

#include "datatypes/results/serialize_old_field.h"
#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"

namespace kestrel::algorithm::datatypes {

using boost::serialization::make_nvp;
using persistence::OldField;
using persistence::RequireStored;

void AlgorithmInfo::ZORInformation::UpdateUsedDesignHIds(const DesignManager& designs,
                                                         const ParameterManager& parameters) {
  surrogate_infos_.UpdateUsedDesignHIds(designs, parameter_manager_.empty() ? parameters : parameter_manager_);
}

void AlgorithmInfo::ZORInformation::ResetSupportData() { surrogate_infos_.ResetSupportData(); }

void AlgorithmInfo::ZORInformation::RestoreSupportData(const DesignManager& designs,
                                                       const ParameterManager& parameters) {
  surrogate_infos_.RestoreSupportData(designs, parameter_manager_.empty() ? parameters : parameter_manager_);
}

void AlgorithmInfo::ZORInformation::UpdateSurrogateSettings(const std::wstring& key, const std::wstring& value) {
  surrogate_infos_.UpdateSurrogateSettings(key, value);
}

std::unique_ptr<AlgorithmInfo::DetailedInformationBase> AlgorithmInfo::ZORInformation::Clone() const {
  return std::make_unique<ZORInformation>(*this);
}

void AlgorithmInfo::ZORInformation::RequireFittingSizes() const {
  const auto fits = [&](const auto& list) { return list.empty() || list.size() == parameter_names_.size(); };
  RequireStored(fits(sampling_limits_) && fits(defined_limits_),
                L"Limits of the stored parameters do not match their names.");
}

template <class Archive>
void AlgorithmInfo::ZORInformation::serialize(Archive& archive, unsigned int version) {
  archive& make_nvp("DetailedInformationBase", boost::serialization::base_object<DetailedInformationBase>(*this));
  archive& make_nvp("cv_indexes_", cv_indexes_);
  archive& make_nvp("response_to_cv_mapping_", response_to_cv_mapping_);
  if (version >= 2) archive& make_nvp("parameter_manager_", parameter_manager_);
  archive& make_nvp("surrogate_infos_", surrogate_infos_);
  archive& make_nvp("was_deterministic_sampling_", was_deterministic_sampling_);
  if (version >= 5) archive& make_nvp("zor_settings_", zor_settings_);
  archive& make_nvp("parameter_names_", parameter_names_);
  archive& make_nvp("sampling_limits_", sampling_limits_);
  archive& make_nvp("defined_limits_", defined_limits_);
  archive& make_nvp("distribution_settings_", distribution_settings_);
  archive& make_nvp("calculated_models_", calculated_models_);
  archive& make_nvp("best_models_", best_models_);
  archive& make_nvp("function_strings_", function_strings_);
  if (version < 9) OldField<std::map<std::wstring, std::wstring>>(archive, "polynomial_info_");
  archive& make_nvp("relative_freq_of_importance_", relative_freq_of_importance_);
  if (version >= 8) archive& make_nvp("custom_zor_logs_", custom_zor_logs_);
  if constexpr (Archive::is_loading::value) RequireFittingSizes();
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::AlgorithmInfo::ZORInformation)
