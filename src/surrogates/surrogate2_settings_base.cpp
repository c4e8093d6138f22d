#include "surrogates/surrogate2_settings_base.h"

#include <cmath>
#include <stdexcept>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "statistics/transform/transform_boxcox.h"
#include "statistics/transform/transform_limits.h"
#include "statistics/transform/transform_minmax.h"
#include "support/error_report.h"

namespace kestrel::math::metamodel {

using transform::TransBoxCox;
using transform::TransLimits;
using transform::TransMinMax;

std::unique_ptr<transform::Transform> CreateTransformation(eTransformation type,
                                                           const std::vector<double>& parameters) {
  switch (type) {
    case eTransformation::kNone: return nullptr;
    case eTransformation::kMinMax:
      if (parameters.size() != 2) return std::make_unique<TransMinMax>();
      return std::make_unique<TransMinMax>(parameters[0], parameters[1]);
    case eTransformation::kBoxCox:
      if (parameters.size() != 3) return std::make_unique<TransBoxCox>();
      return std::make_unique<TransBoxCox>(TransBoxCox::InverseExponent(parameters[0]), parameters[1], parameters[2]);
    case eTransformation::kLimits:
      if (parameters.size() != 2) return std::make_unique<TransLimits>();
      return std::make_unique<TransLimits>(parameters[0], parameters[1]);
  }
  throw std::logic_error("Unknown transformation type.");
}

void SurrogateSettingsBase::SetDefaults() {
  coord_transform_ = eTransformation::kMinMax;
  value_transform_ = eTransformation::kNone;
  limit_transform_ = eTransformation::kNone;
  coord_transform_parameter_.clear();
  value_transform_parameter_.clear();
  limit_transform_parameter_.clear();
  handle_failed_ = 0;
}

void SurrogateSettingsBase::CheckSettings(utils::log::LogBase& /*log*/) const {
  if (ninputs_ == 0) error::Report(L"Number of inputs can not be 0.");
}

bool SurrogateSettingsBase::operator==(const SurrogateSettingsBase& other) const {
  return ninputs_ == other.ninputs_ && coord_transform_ == other.coord_transform_ &&
         coord_transform_parameter_ == other.coord_transform_parameter_ && value_transform_ == other.value_transform_ &&
         value_transform_parameter_ == other.value_transform_parameter_ && limit_transform_ == other.limit_transform_ &&
         limit_transform_parameter_ == other.limit_transform_parameter_ && handle_failed_ == other.handle_failed_ &&
         state_ == other.state_ && input_names_ == other.input_names_;
}

void SurrogateSettingsBase::RequireEnumerators() const {
  for (const eTransformation type : {coord_transform_, value_transform_, limit_transform_}) {
    persistence::RequireEnumerator(type, eTransformation::kLimits, L"Stored settings: unknown transformation type.");
  }
  persistence::RequireEnumerator(state_, eState::kOptimal, L"Stored settings: unknown state.");
}

bool SurrogateSettingsBase::HasBoxCoxExponent() const {
  return !value_transform_parameter_.empty() && std::abs(1.0 - value_transform_parameter_[0]) > 1e-10;
}

template <class Archive>
void SurrogateSettingsBase::serialize(Archive& archive, const unsigned int version) {
  using boost::serialization::make_nvp;
  archive& make_nvp("ninputs_", ninputs_);
  archive& make_nvp("coord_transform_", coord_transform_);
  archive& make_nvp("coord_transform_parameter_", coord_transform_parameter_);
  archive& make_nvp("value_transform_", value_transform_);
  archive& make_nvp("value_transform_parameter_", value_transform_parameter_);
  archive& make_nvp("handle_failed_", handle_failed_);
  archive& make_nvp("state_", state_);
  if (version >= 1) {
    archive& make_nvp("limit_transform_", limit_transform_);
    archive& make_nvp("limit_transform_parameter_", limit_transform_parameter_);
  } else {
    limit_transform_ = eTransformation::kNone;
    limit_transform_parameter_.clear();
  }
  if (version >= 2) {
    archive& make_nvp("input_names_", input_names_);
  } else {
    input_names_.clear();
  }
  if constexpr (Archive::is_loading::value) RequireEnumerators();
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::SurrogateSettingsBase)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::SurrogateSettingsBase)
