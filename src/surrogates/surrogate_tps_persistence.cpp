#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/matrix_equality.h"
#include "surrogates/surrogate_tps.h"

// How SurrogateTPS is compared, copied, stored and read. The virtual functions here make sure that a program which has
// the class also has this file, and with it the registration under which the class is read through its base.

namespace kestrel::math::metamodel {

bool SurrogateTPS::operator==(const SurrogateBase& other) const {
  const auto* same_kind = dynamic_cast<const SurrogateTPS*>(&other);
  return same_kind != nullptr && SurrogateBase::operator==(other) &&
         SameEntries(spline_.radial, same_kind->spline_.radial) &&
         SameEntries(spline_.linear, same_kind->spline_.linear) && settings_ == same_kind->settings_;
}

std::unique_ptr<SurrogateBase> SurrogateTPS::Clone() const { return std::make_unique<SurrogateTPS>(*this); }

template <class Archive>
void SurrogateTPS::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("SurrogateBase", boost::serialization::base_object<SurrogateBase>(*this));
  archive& make_nvp("radial_coefficients_", spline_.radial);
  archive& make_nvp("linear_coefficients_", spline_.linear);
  archive& make_nvp("settings_", settings_);
  if constexpr (Archive::is_loading::value) {
    system_.reset();
    // Without its reduced points, from which distances are taken, a built model cannot be evaluated.
    const auto terms = static_cast<Index>(GetNumberCoefficients());
    persistence::RequireStored(
        need_build_ || (spline_.radial.size() > 0 && spline_.radial.size() == points_trans_reduced_.rows() &&
                        spline_.linear.size() == terms && points_trans_reduced_.cols() + 1 == terms),
        L"Stored thin plate spline: coefficients do not match the samples and inputs.");
    FinishLoading();
  }
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::SurrogateTPS)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::SurrogateTPS)
