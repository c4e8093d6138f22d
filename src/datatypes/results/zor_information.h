#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/parameter_manager.h"
#include "datatypes/results/algorithm_info.h"
#include "datatypes/results/combined_zor_settings.h"
#include "datatypes/results/surrogate_info.h"
#include "selection/subspace_results.h"

namespace kestrel::algorithm::datatypes {

/// What a metamodel run leaves: the models and what evaluating them needs.
class AlgorithmInfo::ZORInformation : public AlgorithmInfo::DetailedInformationBase {
 public:
  using Limits = std::vector<std::pair<double, double>>;
  using SubspaceResultContainer = math::metamodel::SubspaceResultContainer;

  /// Without parameters of its own it takes those of the database.
  void UpdateUsedDesignHIds(const DesignManager& designs, const ParameterManager& parameters) override;
  void ResetSupportData() override;
  void RestoreSupportData(const DesignManager& designs, const ParameterManager& parameters) override;
  void UpdateSurrogateSettings(const std::wstring& key, const std::wstring& value) override;
  std::unique_ptr<DetailedInformationBase> Clone() const override;

  const CVIndexes& GetCVIndexes() const { return cv_indexes_; }
  const SurrogateInfoContainer& GetSurrogateInfos() const { return surrogate_infos_; }
  SurrogateInfoContainer& GetNonConstSurrogateInfos() { return surrogate_infos_; }
  const ParameterManager& GetParameterManager() const { return parameter_manager_; }
  const zor::ZORCombinedSettings& GetCombinedZORSettings() const { return zor_settings_; }
  /// The component names of the surrogates, in their order.
  std::vector<std::wstring> GetResponseNames() const { return surrogate_infos_.GetComponentNames(); }

  CVIndexes cv_indexes_;  ///< by component name
  std::map<std::wstring, std::wstring>
      response_to_cv_mapping_;          ///< response to the name of its cross-validation values
  ParameterManager parameter_manager_;  ///< the parameters that the surrogates were built on
  SurrogateInfoContainer surrogate_infos_;
  bool was_deterministic_sampling_ = false;
  zor::ZORCombinedSettings zor_settings_{zor::eSettingsType::kAutomatic};
  std::vector<std::wstring> parameter_names_;  ///< columns of the samples
  Limits sampling_limits_;                     ///< smallest and largest sampled value of each parameter
  Limits defined_limits_;                      ///< lower and upper bound of each parameter
  std::vector<std::wstring> distribution_settings_;
  std::shared_ptr<SubspaceResultContainer> calculated_models_;  ///< all candidates; null if they were not kept
  std::shared_ptr<SubspaceResultContainer> best_models_;
  std::map<std::wstring, std::wstring> function_strings_;       ///< by response
  std::map<std::wstring, double> relative_freq_of_importance_;  ///< by parameter, 0 to 1
  std::map<std::wstring, std::wstring> custom_zor_logs_;        ///< by custom id

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  /// Raises if a list with one entry per parameter has another length.
  void RequireFittingSizes() const;
};

using ZORInformation = AlgorithmInfo::ZORInformation;

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::AlgorithmInfo::ZORInformation, 9)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::AlgorithmInfo::ZORInformation, boost::serialization::track_always)
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::datatypes::AlgorithmInfo::ZORInformation,
                        "kestrel::algorithm::datatypes::AlgorithmInfo::ZORInformation")
