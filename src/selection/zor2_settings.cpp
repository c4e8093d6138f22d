#include "selection/zor2_settings.h"

#include <algorithm>
#include <cmath>

#include "persistence/archive/archives.h"
#include "persistence/archive/serialize_fields.h"
#include "support/error_report.h"

namespace kestrel::math {

bool nearTo(double a, double b, double tolerance) {
  return a == b || std::abs(a - b) <= tolerance;  // the difference of two equal infinities is a NaN
}

}  // namespace kestrel::math

namespace kestrel::math::metamodel {
namespace {

constexpr double kSimilarityTolerance = 2.220446049250313e-16;

template <class Value>
bool Similar(const Value& a, const Value& b) {
  return a == b;
}

bool Similar(double a, double b) { return nearTo(a, b, kSimilarityTolerance); }

bool Similar(const std::pair<double, double>& a, const std::pair<double, double>& b) {
  return Similar(a.first, b.first) && Similar(a.second, b.second);
}

template <class Settings>
bool FieldsSimilar(const Settings& a, const Settings& b) {
  bool similar = true;
  Settings::ForEachField([&](const char*, auto field, unsigned) { similar = similar && Similar(a.*field, b.*field); });
  return similar;
}

template <class Settings>
bool FieldsEqual(const Settings& a, const Settings& b) {
  bool equal = true;
  Settings::ForEachField([&](const char*, auto field, unsigned) { equal = equal && a.*field == b.*field; });
  return equal;
}

// Reports a fault of the settings unless `holds`, and hands `holds` on.
bool Require(bool holds, const wchar_t* message, utils::log::LogBase& log) {
  if (holds) return true;
  if (error::replace_exception_by_assert) {
    error::Report(message);
  } else {
    log.Error() << message;
  }
  return false;
}

bool IsFraction(double value) { return value >= 0.0 && value <= 1.0; }

}  // namespace

std::unique_ptr<MetamodelSettings> MetamodelSettings::Clone() const {
  return std::make_unique<MetamodelSettings>(*this);
}

bool MetamodelSettings::IsSimilar(const MetamodelSettings& other) const { return FieldsSimilar(*this, other); }

bool MetamodelSettings::operator==(const MetamodelSettings& other) const { return FieldsEqual(*this, other); }

bool MetamodelSettings::AnyModelSelected() const {
  const auto competes = [](const auto& surrogate) { return surrogate.second; };
  return use_polynomials_ || use_MLS_ || use_Kriging_ || use_ASCMO_ ||
         std::any_of(custom_.begin(), custom_.end(), competes);
}

bool MetamodelSettings::CheckSettings(utils::log::LogBase& log) const {
  return Require(AnyModelSelected(), L"No model selected.", log);
}

std::unique_ptr<MetamodelSettings> ZORSettings::Clone() const { return std::make_unique<ZORSettings>(*this); }

bool ZORSettings::IsSimilar(const MetamodelSettings& other) const {
  const auto* const same_class = dynamic_cast<const ZORSettings*>(&other);
  return same_class != nullptr && MetamodelSettings::IsSimilar(other) && FieldsSimilar(*this, *same_class);
}

bool ZORSettings::operator==(const MetamodelSettings& other) const {
  const auto* const same_class = dynamic_cast<const ZORSettings*>(&other);
  return same_class != nullptr && MetamodelSettings::operator==(other) && FieldsEqual(*this, *same_class);
}

void ZORSettings::SetDefaults() {
  ZORSettings defaults;
  defaults.info_important_ = std::move(info_important_);
  ForEachField([&](const char*, auto field, unsigned) { this->*field = defaults.*field; });
}

bool ZORSettings::CheckSettings(utils::log::LogBase& log) const {
  bool good = MetamodelSettings::CheckSettings(log);
  const auto require = [&](bool holds, const wchar_t* message) { good = Require(holds, message, log) && good; };
  require(IsFraction(min_significance_), L"Significance quantile must be between 0 and 1.");
  require(IsFraction(max_CoI_), L"Importance limit must be between 0 and 1.");
  require(IsFraction(toleranceCoP_model_), L"CoP tolerance of model must be between 0 and 1.");
  require(IsFraction(toleranceCoP_variables_), L"CoP tolerance of variables must be between 0 and 1.");
  require(num_corr_steps_ <= kMaxFilterSteps, L"Number of correlation steps must not exceed 10000.");
  return good;
}

template <class Archive>
void MetamodelSettings::serialize(Archive& archive, const unsigned int version) {
  // A testing type that this version does not know stays: it is reported where it is asked for.
  persistence::SerializeFields(archive, *this, version);
}

template <class Archive>
void ZORSettings::serialize(Archive& archive, const unsigned int version) {
  archive& boost::serialization::make_nvp("MetamodelSettings",
                                          boost::serialization::base_object<MetamodelSettings>(*this));
  persistence::SerializeFields(archive, *this, version);
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::MetamodelSettings)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::ZORSettings)
