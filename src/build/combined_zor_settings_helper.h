#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "selection/zor2_settings.h"
#include "support/log.h"

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
};

/// All choices of a build.
struct ZORAdvancedSettings {
  std::uint64_t num_parallel_ = 4;  ///< responses worked on at once
  bool use_incomplete_ = true;
  bool adapt_bounds_ = true;
  double adapt_bounds_safety_factor_ = 0.0;
  math::metamodel::ZORSettings pzor_settings_;
  bool log_in_project_log_ = false;
  bool log_in_file_ = false;
  std::wstring log_file_path_ = L"message_log.txt";
  bool write_function_string_ = false;
  bool write_cv_values_ = false;
  std::wstring cv_values_suffix_ = L"_cv";
  bool export_fmu_ = false;

  bool Check(utils::log::LogBase& log) const;
};

/// Which parameters and responses take part.
struct ZORData {
  std::vector<std::wstring> parameters_;
  std::vector<std::wstring> responses_;
  std::map<std::wstring, std::pair<double, double>> responses_boundaries_;
  std::map<std::wstring, std::uint64_t> parameter_importance_;  ///< 0, 1 or 2; empty: all 1
  std::map<std::wstring, bool> responses_usage_;
  std::map<std::wstring, bool> responses_zorability_;  ///< whether a model can be found for the response

  bool Check(utils::log::LogBase& log) const;
};

/// Everything that describes one build.
class ZORCombinedSettings {
 public:
  explicit ZORCombinedSettings(eSettingsType type) : settings_type_(type) {}
  ZORCombinedSettings(eSettingsType type, ZORData data, bool show_pp, ZORAutomaticSettings automatic,
                      ZORAdvancedSettings advanced);

  eSettingsType GetSettingsType() const { return settings_type_; }
  const ZORData& GetZORData() const { return data_; }
  void SetZORData(ZORData data) { data_ = std::move(data); }
  const std::map<std::wstring, std::uint64_t>& GetParameterImportance() const { return data_.parameter_importance_; }
  const std::map<std::wstring, bool>& GetResponsesUsage() const { return data_.responses_usage_; }
  bool ShowPP() const { return show_pp_; }
  /// Of the predictions of every response; infinite where there is none.
  std::pair<double, double> GetLimits() const { return limits_; }
  void SetLimits(std::pair<double, double> limits) { limits_ = limits; }

  /// `num_parallel_` of the level in force; 0 for the classic level.
  std::uint64_t NumResponsesParallel() const;
  /// Of the advanced settings for the advanced level; false and empty otherwise.
  bool WriteCVValues() const;
  std::wstring CVValuesSuffix() const;

  /// The advanced settings in force: derived for the automatic level, as they stand otherwise.
  ZORAdvancedSettings ExtractAdvancedSettingsByType() const;

  /// Each refusal is one error line in the log. @param with_data  check the parameters and responses too.
  bool Check(utils::log::LogBase& log, bool with_data) const;

 private:
  eSettingsType settings_type_;
  ZORData data_;
  bool show_pp_ = false;
  ZORAutomaticSettings automatic_settings_;
  ZORAdvancedSettings advanced_settings_;
  std::pair<double, double> limits_{-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
};

}  // namespace kestrel::zor
