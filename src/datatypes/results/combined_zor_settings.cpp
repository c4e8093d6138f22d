#include "datatypes/results/combined_zor_settings.h"

#include <algorithm>
#include <iterator>

#include "persistence/archive/archives.h"
#include "persistence/archive/serialize_fields.h"

namespace kestrel::zor {
namespace {

constexpr std::int32_t kModelComplexities = 5;
constexpr std::int32_t kVariablesReductions = 4;
constexpr std::uint64_t kMandatory = 2;

/// Collects the refusals of one check: each fault is an error line, and all of them are looked for.
class Checker {
 public:
  explicit Checker(utils::log::LogBase& log) : log_(log) {}

  void Require(bool holds, const wchar_t* message) {
    if (holds) return;
    log_.Error() << message;
    good_ = false;
  }
  bool Good() const { return good_; }

 private:
  utils::log::LogBase& log_;
  bool good_ = true;
};

/// The search that a model complexity and a variables reduction stand for.
math::metamodel::ZORSettings DeriveSearchSettings(std::int32_t complexity, std::int32_t reduction) {
  const bool with_local_models = complexity >= 1 && complexity <= 3;
  const double tolerance = reduction == 1 ? 0.001 : 0.01;
  math::metamodel::ZORSettings settings;
  settings.SetUsePolynomials(true);
  settings.SetUseMLS(with_local_models);
  settings.SetUseKriging(with_local_models);
  settings.SetUseKrigingAnisotropicKernel(complexity == 2 || complexity == 3);
  settings.SetToleranceCOPVariables(tolerance);
  settings.SetToleranceCOPModel(tolerance);
  return settings;
}

/// Entries without a value.
CDesignEntrySequence MakeSequence(const std::vector<std::wstring>& names) {
  CDesignEntrySequence sequence;
  for (const std::wstring& name : names) sequence.Add(name, CDesignEntry());
  return sequence;
}

template <class Value>
void Overwrite(std::map<std::wstring, Value>& target, const std::map<std::wstring, Value>& source) {
  for (const auto& [name, value] : source) target[name] = value;
}

template <class Value>
void ForgetOthers(std::map<std::wstring, Value>& map, const CDesignEntrySequence& names) {
  for (auto entry = map.begin(); entry != map.end();) {
    entry = names.Contains(entry->first) ? std::next(entry) : map.erase(entry);
  }
}

}  // namespace

bool ZORAutomaticSettings::Check(utils::log::LogBase& log) const {
  Checker check(log);
  check.Require(model_complexity_ >= 0 && model_complexity_ < kModelComplexities, L"Unknown model selection.");
  check.Require(variables_reduction_ >= 0 && variables_reduction_ < kVariablesReductions,
                L"Unknown variables reduction.");
  check.Require(num_parallel_ != 0, L"Number of parallelism must be positive.");
  return check.Good();
}

bool ZORAdvancedSettings::Check(utils::log::LogBase& log) const {
  Checker check(log);
  check.Require(num_parallel_ != 0, L"Number of parallelism must be positive.");
  check.Require(adapt_bounds_safety_factor_ >= 0.0 && adapt_bounds_safety_factor_ <= 1.0,
                L"Safety factor to adapt bounds needs to be between 0 and 1.");
  check.Require(!write_cv_values_ || !cv_values_suffix_.empty(),
                L"Suffix for crossvalidation values must not be empty.");
  const bool leave_one_out = pzor_settings_.testing_type_ == math::metamodel::TestingType::kLeaveOneOut;
  check.Require(!pzor_settings_.use_ASCMO_ || leave_one_out,
                L"ASCMO is supported with testing type leave one out only.");
  check.Require(!pzor_settings_.use_ASCMO_, L"ASCMO is available on Windows only.");
  return pzor_settings_.CheckSettings(log) && check.Good();  // it reports a missing model, too
}

bool ZORAdvancedSettings::AnyCustomModelUsed() const {
  const auto competes = [](const auto& entry) { return entry.second; };
  const auto any = [&](const auto& usage) { return std::any_of(usage.begin(), usage.end(), competes); };
  return !custom_surrogates_.empty() || any(zor_custom_id_usage_container_) || any(pzor_settings_.custom_);
}

void ZORData::SetParameters(const std::vector<std::wstring>& names) { parameters_ = MakeSequence(names); }

void ZORData::SetResponses(const std::vector<std::wstring>& names) { responses_ = MakeSequence(names); }

void ZORData::SetResponsesBoundaries(std::map<std::wstring, std::pair<double, double>> boundaries) {
  responses_boundaries_ = std::move(boundaries);
}

void ZORData::SetResponsesZORability(std::map<std::wstring, bool> zorability) {
  responses_zorability_ = std::move(zorability);
}

void ZORData::UpdateParameterImportance(const std::map<std::wstring, std::uint64_t>& importance) {
  Overwrite(parameter_importance_, importance);
}

void ZORData::UpdateResponsesUsage(const std::map<std::wstring, bool>& usage) { Overwrite(responses_usage_, usage); }

void ZORData::Adapt(CDesignEntrySequence parameters, CDesignEntrySequence responses) {
  SetParameters(std::move(parameters));
  SetResponses(std::move(responses));
  ForgetOthers(parameter_importance_, parameters_);
  ForgetOthers(responses_boundaries_, responses_);
  ForgetOthers(responses_usage_, responses_);
  ForgetOthers(responses_zorability_, responses_);
}

bool ZORData::Check(utils::log::LogBase& log) const {
  Checker check(log);
  for (const auto& [name, importance] : parameter_importance_) {
    if (!parameters_.Contains(name)) {
      log.Warning() << L"Parameter in importancy list does not exist in manager.";
    }
    check.Require(importance <= kMandatory, L"Parameter importancy must be mandatory, selectable or important.");
  }
  bool any_used = false;
  for (const auto& [name, used] : responses_usage_) {
    if (!responses_.Contains(name)) log.Warning() << L"Response in usage list does not exist in responses.";
    any_used = any_used || used;
  }
  check.Require(any_used, L"No response is chosen.");
  return check.Good();
}

ZORCombinedSettings::ZORCombinedSettings(eSettingsType type, ZORData data, bool show_pp, ZORAutomaticSettings automatic,
                                         ZORAdvancedSettings advanced)
    : settings_type_(type),
      data_(std::move(data)),
      show_pp_(show_pp),
      automatic_settings_(std::move(automatic)),
      advanced_settings_(std::move(advanced)) {}

eSettingsType ZORCombinedSettings::GetSettingsTypeUsed() const {
  return settings_type_ == eSettingsType::kAutomatic ? settings_type_ : eSettingsType::kAdvanced;
}

std::uint64_t ZORCombinedSettings::NumResponsesParallel() const {
  switch (settings_type_) {
    case eSettingsType::kAutomatic: return automatic_settings_.num_parallel_;
    case eSettingsType::kAdvanced: return advanced_settings_.num_parallel_;
    default: return 0;
  }
}

bool ZORCombinedSettings::WriteCVValues() const {
  return settings_type_ == eSettingsType::kAdvanced && advanced_settings_.write_cv_values_;
}

std::wstring ZORCombinedSettings::CVValuesSuffix() const {
  return settings_type_ == eSettingsType::kAdvanced ? advanced_settings_.cv_values_suffix_ : std::wstring();
}

bool ZORCombinedSettings::AnySurrogateZORModelUsed() const {
  return ExtractAdvancedSettingsByType().AnyCustomModelUsed();
}

ZORAdvancedSettings ZORCombinedSettings::ExtractAdvancedSettingsByType() const {
  if (settings_type_ != eSettingsType::kAutomatic) return advanced_settings_;
  ZORAdvancedSettings settings;
  settings.num_parallel_ = automatic_settings_.num_parallel_;
  settings.pzor_settings_ =
      DeriveSearchSettings(automatic_settings_.model_complexity_, automatic_settings_.variables_reduction_);
  return settings;
}

bool ZORCombinedSettings::Check(utils::log::LogBase& log, bool with_data) const {
  if (settings_type_ != eSettingsType::kAutomatic && settings_type_ != eSettingsType::kAdvanced) {
    log.Error() << L"Unknown settings type.";
    return false;
  }
  if (settings_type_ == eSettingsType::kAutomatic && !automatic_settings_.Check(log)) return false;
  if (!ExtractAdvancedSettingsByType().Check(log)) return false;
  return !with_data || data_.Check(log);
}

template <class Archive>
void ZORAutomaticSettings::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

template <class Archive>
void ZORAdvancedSettings::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
  if constexpr (Archive::is_loading::value) custom_surrogates_.remove(nullptr);
}

template <class Archive>
void ZORClassicSettings::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

template <class Archive>
void ZORData::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

template <class Archive>
void ZORCombinedSettings::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

}  // namespace kestrel::zor

KESTREL_INSTANTIATE_SERIALIZE(kestrel::zor::ZORAutomaticSettings)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::zor::ZORAdvancedSettings)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::zor::ZORClassicSettings)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::zor::ZORData)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::zor::ZORCombinedSettings)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::zor::ZORAutomaticSettings)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::zor::ZORAdvancedSettings)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::zor::ZORClassicSettings)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::zor::ZORData)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::zor::ZORCombinedSettings)
