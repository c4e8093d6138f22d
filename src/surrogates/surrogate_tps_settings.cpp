#include "surrogates/surrogate_tps_settings.h"

#include <cmath>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/error_report.h"

namespace kestrel::math::metamodel {
namespace {

const Selection kNoTerms;

}  // namespace

SurrogateTPSSettings::SurrogateTPSSettings(std::uint64_t num_inputs) : SurrogateSettingsBase(num_inputs) {
  SetDefaultsOfLocalMembers();
}

void SurrogateTPSSettings::SetDefaults() {
  SurrogateSettingsBase::SetDefaults();
  SetDefaultsOfLocalMembers();
}

void SurrogateTPSSettings::SetDefaultsOfLocalMembers() {
  smoothing_ = 0.0;
  selection_ = Selection(ninputs_).set();
}

void SurrogateTPSSettings::SetNumInputs(std::uint64_t count) {
  SurrogateSettingsBase::SetNumInputs(count);
  SetDefaultsOfLocalMembers();
}

const Selection& SurrogateTPSSettings::GetMainTermSelection() const { return kNoTerms; }

const Selection& SurrogateTPSSettings::GetInteractionSelection() const { return kNoTerms; }

std::uint64_t SurrogateTPSSettings::GetNumberParameter() const {
  return GetNumberCoefficients() + (smoothing_ > 0.0 ? 1 : 0) + (HasBoxCoxExponent() ? 1 : 0);
}

bool SurrogateTPSSettings::IsSmoothingValid() const { return std::isfinite(smoothing_) && smoothing_ >= 0.0; }

void SurrogateTPSSettings::CheckSettings(utils::log::LogBase& log) const {
  SurrogateSettingsBase::CheckSettings(log);
  if (selection_.size() != ninputs_) {
    error::Report(L"size of variable selection vector is not consistent to number of inputs");
  }
  if (!IsSmoothingValid()) error::Report(L"smoothing of a thin plate spline must be finite and not negative");
}

bool SurrogateTPSSettings::operator==(const SurrogateSettingsBase& other) const {
  const auto* same_kind = dynamic_cast<const SurrogateTPSSettings*>(&other);
  return same_kind != nullptr && SurrogateSettingsBase::operator==(other) && smoothing_ == same_kind->smoothing_ &&
         selection_ == same_kind->selection_;
}

std::unique_ptr<SurrogateSettingsBase> SurrogateTPSSettings::Clone() const {
  return std::make_unique<SurrogateTPSSettings>(*this);
}

template <class Archive>
void SurrogateTPSSettings::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("SurrogateSettingsBase", boost::serialization::base_object<SurrogateSettingsBase>(*this));
  archive& make_nvp("smoothing_", smoothing_);
  archive& make_nvp("selection_", selection_);
  if constexpr (Archive::is_loading::value) {
    persistence::RequireStored(selection_.size() == ninputs_ && IsSmoothingValid(),
                               L"Stored settings: selection or smoothing of a thin plate spline is not valid.");
  }
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::SurrogateTPSSettings)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::SurrogateTPSSettings)
