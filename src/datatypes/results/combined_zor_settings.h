#pragma once

#include <cstdint>
#include <filesystem>
#include <limits>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/nvp_sequence.h"
#include "persistence/archive/persistent.h"
#include "selection/zor2_settings.h"
#include "support/log.h"
#include "surrogates/surrogate2_settings_base.h"

/// What describes one build. The records are stored with its results: their fields have the names of the stored form
/// and `ForEachField` visits them in its order.
namespace kestrel::zor {

/// The level of settings in force.
enum class eSettingsType : std::int32_t { kAutomatic = 0, kClassic = 1, kAdvanced = 2 };

/// A few choices from which the advanced settings are derived.
struct ZORAutomaticSettings {
  std::int32_t model_complexity_ = 1;     ///< 0 polynomials only ... 3 all models, 4 polynomials only
  std::int32_t variables_reduction_ = 2;  ///< 1 keeps more variables (tolerances 0.001 instead of 0.01)
  std::uint64_t num_parallel_ = 4;
  bool write_cv_values_ = false;
  std::wstring cv_values_suffix_ = L"_cv";

  bool Check(utils::log::LogBase& log) const;

  template <class Visit>
  static void ForEachField(Visit visit);
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// All choices of a build.
struct ZORAdvancedSettings {
  std::uint64_t num_parallel_ = 4;  ///< responses worked on at once
  bool use_incomplete_ = true;
  bool adapt_bounds_ = true;
  double adapt_bounds_safety_factor_ = 0.0;
  math::metamodel::ZORSettings pzor_settings_;
  std::list<std::shared_ptr<math::metamodel::SurrogateSettingsBase>> custom_surrogates_;  ///< not null
  bool log_in_project_log_ = false;
  bool log_in_file_ = false;
  std::filesystem::path log_file_path_ = "message_log.txt";
  bool write_function_string_ = false;
  bool write_cv_values_ = false;
  std::wstring cv_values_suffix_ = L"_cv";
  std::map<std::wstring, std::wstring> zor_custom_id_settings_container_;  ///< settings text by custom id
  std::map<std::wstring, bool> zor_custom_id_usage_container_;             ///< whether a custom id may compete
  bool export_fmu_ = false;

  bool Check(utils::log::LogBase& log) const;
  /// A surrogate from outside the library may compete.
  bool AnyCustomModelUsed() const;

  template <class Visit>
  static void ForEachField(Visit visit);
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// Settings of earlier files, carried along: no build runs on them.
struct ZORClassicSettings {
  double delta_cop_ = 0.0;
  bool signi_filter_ = false;
  bool corr_filter_ = false;
  bool coi_filter_ = false;
  double min_signi_quantil_ = 0.0;
  std::uint64_t corr_steps_ = 0;
  double max_coi_ = 0.0;
  bool spearman_ = false;
  bool adjusted_ = false;
  bool cross_validation_ = false;
  double splitting_ratio_ = 0.0;
  bool polynom_ = false;
  bool cmls_ = false;
  bool imls_ = false;
  bool adapt_bounds_ = false;

  template <class Visit>
  static void ForEachField(Visit visit);
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// Which parameters and responses take part.
struct ZORData {
  CDesignEntrySequence parameters_;  ///< in the order of the samples' columns, as the responses
  CDesignEntrySequence responses_;
  std::map<std::wstring, std::pair<double, double>> responses_boundaries_;
  std::map<std::wstring, std::uint64_t> parameter_importance_;  ///< 0, 1 or 2; empty: all 1
  std::map<std::wstring, bool> responses_usage_;
  std::map<std::wstring, bool> responses_zorability_;  ///< whether a model can be found for the response

  void SetParameters(CDesignEntrySequence parameters) { parameters_ = std::move(parameters); }
  void SetResponses(CDesignEntrySequence responses) { responses_ = std::move(responses); }
  /// The same by names alone, with entries that hold no value. A name that comes twice raises what the sequence raises.
  void SetParameters(const std::vector<std::wstring>& names);
  void SetResponses(const std::vector<std::wstring>& names);
  void SetResponsesBoundaries(std::map<std::wstring, std::pair<double, double>> boundaries);
  void SetResponsesZORability(std::map<std::wstring, bool> zorability);
  /// Take over what is given for the names in the map; the other names keep theirs.
  void UpdateParameterImportance(const std::map<std::wstring, std::uint64_t>& importance);
  void UpdateResponsesUsage(const std::map<std::wstring, bool>& usage);
  /// To other parameters and responses: what was said of names that are gone is forgotten.
  void Adapt(CDesignEntrySequence parameters, CDesignEntrySequence responses);

  bool Check(utils::log::LogBase& log) const;

  template <class Visit>
  static void ForEachField(Visit visit);
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// Everything that describes one build.
class ZORCombinedSettings {
 public:
  explicit ZORCombinedSettings(eSettingsType type = eSettingsType::kAutomatic) : settings_type_(type) {}
  ZORCombinedSettings(eSettingsType type, ZORData data, bool show_pp, ZORAutomaticSettings automatic,
                      ZORAdvancedSettings advanced);

  eSettingsType GetSettingsType() const { return settings_type_; }
  /// The level whose values a build takes: the advanced one unless they are derived from the automatic one.
  eSettingsType GetSettingsTypeUsed() const;
  const ZORAutomaticSettings& GetAutomaticSettings() const { return automatic_settings_; }
  const ZORAdvancedSettings& GetAdvancedSettings() const { return advanced_settings_; }
  const ZORClassicSettings& GetClassicSettings() const { return classic_settings_; }
  const ZORData& GetZORData() const { return data_; }
  void SetZORData(ZORData data) { data_ = std::move(data); }
  const std::map<std::wstring, std::uint64_t>& GetParameterImportance() const { return data_.parameter_importance_; }
  const std::map<std::wstring, bool>& GetResponsesUsage() const { return data_.responses_usage_; }
  bool ShowPP() const { return show_pp_; }
  /// Of the predictions of every response; infinite where there is none.
  std::pair<double, double> GetLimits() const { return limits_; }
  void SetLimits(std::pair<double, double> limits) { limits_ = limits; }
  /// How far parameters without bounds reach beyond their samples at either end, as a fraction of the sampled range.
  double GetDefaultParameterBoundsAdjustmentMin() const { return default_parameter_bounds_adjustment_min_; }
  double GetDefaultParameterBoundsAdjustmentMax() const { return default_parameter_bounds_adjustment_max_; }

  /// `num_parallel_` of the level in force; 0 for the classic level.
  std::uint64_t NumResponsesParallel() const;
  /// Of the advanced settings for the advanced level; false and empty otherwise.
  bool WriteCVValues() const;
  std::wstring CVValuesSuffix() const;
  /// A model from outside the library may compete.
  bool AnySurrogateZORModelUsed() const;

  /// The advanced settings in force: derived for the automatic level, as they stand otherwise.
  ZORAdvancedSettings ExtractAdvancedSettingsByType() const;

  /// Each refusal is one error line in the log. @param with_data  check the parameters and responses too.
  bool Check(utils::log::LogBase& log, bool with_data) const;

  template <class Visit>
  static void ForEachField(Visit visit);

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  eSettingsType settings_type_;
  ZORData data_;
  bool show_pp_ = false;
  ZORAutomaticSettings automatic_settings_;
  ZORAdvancedSettings advanced_settings_;
  double default_parameter_bounds_adjustment_min_ = 0.1;
  double default_parameter_bounds_adjustment_max_ = 0.1;
  std::pair<double, double> limits_{-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
  ZORClassicSettings classic_settings_;
};

template <class Visit>
void ZORAutomaticSettings::ForEachField(Visit visit) {
  using Self = ZORAutomaticSettings;
  visit("model_complexity_", &Self::model_complexity_, 0u);
  visit("variables_reduction_", &Self::variables_reduction_, 0u);
  visit("num_parallel_", &Self::num_parallel_, 0u);
  visit("write_cv_values_", &Self::write_cv_values_, 0u);
  visit("cv_values_suffix_", &Self::cv_values_suffix_, 0u);
}

template <class Visit>
void ZORAdvancedSettings::ForEachField(Visit visit) {
  using Self = ZORAdvancedSettings;
  visit("num_parallel_", &Self::num_parallel_, 0u);
  visit("use_incomplete_", &Self::use_incomplete_, 0u);
  visit("adapt_bounds_", &Self::adapt_bounds_, 0u);
  visit("adapt_bounds_safety_factor_", &Self::adapt_bounds_safety_factor_, 0u);
  visit("pzor_settings_", &Self::pzor_settings_, 0u);
  visit("custom_surrogates_", &Self::custom_surrogates_, 0u);
  visit("log_in_project_log_", &Self::log_in_project_log_, 0u);
  visit("log_in_file_", &Self::log_in_file_, 0u);
  visit("log_file_path_", &Self::log_file_path_, 0u);
  visit("write_function_string_", &Self::write_function_string_, 0u);
  visit("write_cv_values_", &Self::write_cv_values_, 0u);
  visit("cv_values_suffix_", &Self::cv_values_suffix_, 0u);
  visit("zor_custom_id_settings_container_", &Self::zor_custom_id_settings_container_, 0u);
  visit("zor_custom_id_usage_container_", &Self::zor_custom_id_usage_container_, 0u);
  visit("export_fmu_", &Self::export_fmu_, 0u);
}

template <class Visit>
void ZORClassicSettings::ForEachField(Visit visit) {
  using Self = ZORClassicSettings;
  visit("delta_cop_", &Self::delta_cop_, 0u);
  visit("signi_filter_", &Self::signi_filter_, 0u);
  visit("corr_filter_", &Self::corr_filter_, 0u);
  visit("coi_filter_", &Self::coi_filter_, 0u);
  visit("min_signi_quantil_", &Self::min_signi_quantil_, 0u);
  visit("corr_steps_", &Self::corr_steps_, 0u);
  visit("max_coi_", &Self::max_coi_, 0u);
  visit("spearman_", &Self::spearman_, 0u);
  visit("adjusted_", &Self::adjusted_, 0u);
  visit("cross_validation_", &Self::cross_validation_, 0u);
  visit("splitting_ratio_", &Self::splitting_ratio_, 0u);
  visit("polynom_", &Self::polynom_, 0u);
  visit("cmls_", &Self::cmls_, 0u);
  visit("imls_", &Self::imls_, 0u);
  visit("adapt_bounds_", &Self::adapt_bounds_, 0u);
}

template <class Visit>
void ZORData::ForEachField(Visit visit) {
  using Self = ZORData;
  visit("parameters_", &Self::parameters_, 0u);
  visit("responses_", &Self::responses_, 0u);
  visit("responses_boundaries_", &Self::responses_boundaries_, 0u);
  visit("parameter_importance_", &Self::parameter_importance_, 0u);
  visit("responses_usage_", &Self::responses_usage_, 0u);
  visit("responses_zorability_", &Self::responses_zorability_, 0u);
}

template <class Visit>
void ZORCombinedSettings::ForEachField(Visit visit) {
  using Self = ZORCombinedSettings;
  visit("settings_type_", &Self::settings_type_, 0u);
  visit("data_", &Self::data_, 0u);
  visit("show_pp_", &Self::show_pp_, 0u);
  visit("automatic_settings_", &Self::automatic_settings_, 0u);
  visit("advanced_settings_", &Self::advanced_settings_, 0u);
  visit("default_parameter_bounds_adjustment_min_", &Self::default_parameter_bounds_adjustment_min_, 0u);
  visit("default_parameter_bounds_adjustment_max_", &Self::default_parameter_bounds_adjustment_max_, 0u);
  visit("limits_", &Self::limits_, 0u);
  visit("classic_settings_", &Self::classic_settings_, 0u);
}

}  // namespace kestrel::zor

BOOST_CLASS_VERSION(kestrel::zor::ZORAutomaticSettings, 2)
BOOST_CLASS_VERSION(kestrel::zor::ZORAdvancedSettings, 2)
BOOST_CLASS_VERSION(kestrel::zor::ZORData, 4)
BOOST_CLASS_VERSION(kestrel::zor::ZORCombinedSettings, 2)
BOOST_CLASS_TRACKING(kestrel::zor::ZORAutomaticSettings, boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::zor::ZORAdvancedSettings, boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::zor::ZORData, boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::zor::ZORCombinedSettings, boost::serialization::track_always)
BOOST_CLASS_EXPORT_KEY2(kestrel::zor::ZORAutomaticSettings, "kestrel::zor::ZORAutomaticSettings")
BOOST_CLASS_EXPORT_KEY2(kestrel::zor::ZORAdvancedSettings, "kestrel::zor::ZORAdvancedSettings")
BOOST_CLASS_EXPORT_KEY2(kestrel::zor::ZORClassicSettings, "kestrel::zor::ZORClassicSettings")
BOOST_CLASS_EXPORT_KEY2(kestrel::zor::ZORData, "kestrel::zor::ZORData")
BOOST_CLASS_EXPORT_KEY2(kestrel::zor::ZORCombinedSettings, "kestrel::zor::ZORCombinedSettings")
