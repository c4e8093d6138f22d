#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "statistics/transform/transform_boxcox.h"
#include "surrogates/linear_regression.h"

// How LinearRegression is compared, copied, stored and read. The virtual functions here make sure that a program which
// has the class also has this file, and with it the registration under which the class is read through its base.

namespace kestrel::math::metamodel {
namespace {

eTransformation TypeOf(const transform::Transform* transformation) {
  if (transformation == nullptr) return eTransformation::kNone;
  if (dynamic_cast<const transform::TransMinMax*>(transformation) != nullptr) return eTransformation::kMinMax;
  if (dynamic_cast<const transform::TransBoxCox*>(transformation) != nullptr) return eTransformation::kBoxCox;
  return eTransformation::kLimits;
}

}  // namespace

bool LinearRegression::operator==(const SurrogateBase& other) const {
  const auto* same_kind = dynamic_cast<const LinearRegression*>(&other);
  return same_kind != nullptr && SurrogateBase::operator==(other) &&
         coefficients_.size() == same_kind->coefficients_.size() &&
         (coefficients_.array() == same_kind->coefficients_.array()).all() && settings_ == same_kind->settings_;
}

std::unique_ptr<SurrogateBase> LinearRegression::Clone() const { return std::make_unique<LinearRegression>(*this); }

void LinearRegression::RestoreDerivedData() { DropBasis(); }

template <class Archive>
void LinearRegression::LoadVersion0(Archive& archive) {
  using boost::serialization::make_nvp;
  Matrix basis;  // what the points give
  std::uint64_t order = 0;
  Selection main_terms;
  Selection interactions;
  archive >> make_nvp("coefficient_matrix_", basis);
  archive >> make_nvp("order_", order);
  archive >> make_nvp("main_term_selection_", main_terms);
  archive >> make_nvp("interaction_selection_", interactions);
  archive >> make_nvp("weights_", weights_);
  RestoreSettings({static_cast<std::uint64_t>(points_.cols()), order, std::move(main_terms), std::move(interactions)});
}

void LinearRegression::RestoreSettings(LinearRegressionSettings settings) {
  settings.RequireConsistent();
  settings_ = std::move(settings);
  settings_.SetCoordTransformation(TypeOf(trans_coord_.get()));
  settings_.SetValueTransformation(TypeOf(trans_value_.get()));
  settings_.SetLimitTransformation(TypeOf(trans_limit_.get()));
  WriteTransformationParameters(settings_);
  if (!(settings_ == LinearRegressionSettings(settings_.GetNumInputs()))) settings_.SetState(eState::kGiven);
}

template <class Archive>
void LinearRegression::serialize(Archive& archive, const unsigned int version) {
  using boost::serialization::make_nvp;
  archive& make_nvp("SurrogateBase", boost::serialization::base_object<SurrogateBase>(*this));
  archive& make_nvp("coefficients_", coefficients_);
  if (version >= 1) archive& make_nvp("settings_", settings_);
  if constexpr (Archive::is_loading::value) {
    if (version == 0) LoadVersion0(archive);
    const auto count = static_cast<std::uint64_t>(coefficients_.size());
    persistence::RequireStored(need_build_ || count == GetNumberCoefficients(),
                               L"Stored regression: coefficients do not match the selected terms.");
    DropBasis();
    FinishLoading();
  }
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::LinearRegression)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::LinearRegression)
