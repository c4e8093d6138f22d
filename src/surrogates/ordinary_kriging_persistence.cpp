#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/matrix_equality.h"
#include "surrogates/kernels/kernel_constant_influence.h"
#include "surrogates/kernels/kernel_nodal_influence.h"
#include "surrogates/ordinary_kriging.h"

// How OrdinaryKriging is compared, copied, stored and read. The virtual functions here make sure that a program which
// has the class also has this file, and with it the registration under which the class is read through its base.

namespace kestrel::math::metamodel {
namespace {

Kernel::eType TypeOf(const KernelBase& kernel) {
  if (dynamic_cast<const KernelConstInflExp*>(&kernel) != nullptr) return Kernel::kConstInflExp;
  if (dynamic_cast<const KernelConstInflIsoReg*>(&kernel) != nullptr) return Kernel::kConstInflIsoReg;
  if (dynamic_cast<const KernelNodalInflExp*>(&kernel) != nullptr) return Kernel::kNodalInflExp;
  return Kernel::kConstInflIsoExp;
}

}  // namespace

bool OrdinaryKriging::operator==(const SurrogateBase& other) const {
  const auto* same_kind = dynamic_cast<const OrdinaryKriging*>(&other);
  return same_kind != nullptr && SurrogateBase::operator==(other) && SameValue(mean_, same_kind->mean_) &&
         SameValue(sigma2_, same_kind->sigma2_) && SameEntries(kernel_weights_, same_kind->kernel_weights_) &&
         settings_ == same_kind->settings_ && SameEntries(values_trans_, same_kind->values_trans_);
}

std::unique_ptr<SurrogateBase> OrdinaryKriging::Clone() const { return std::make_unique<OrdinaryKriging>(*this); }

void OrdinaryKriging::RequireConsistent() const {
  using persistence::RequireStored;
  if (need_build_) return;
  RequireStored(
      kernel_weights_.size() == values_trans_.size() && kernel_weights_.size() == points_trans_reduced_.rows(),
      L"Stored Kriging model: weights do not match the samples.");
  const auto parameters = static_cast<std::uint64_t>(settings_.GetKernelParameter().size());
  RequireStored(parameters > 0 && parameters == settings_.GetNumberKernelParameters(),
                L"Stored Kriging model: the kernel has no parameters.");
}

void OrdinaryKriging::RestoreSettings(const KernelBase* kernel, double nugget) {
  OrdinaryKrigingSettings settings(static_cast<std::uint64_t>(points_.cols()));
  if (kernel != nullptr) {
    settings.SetKernelType(TypeOf(*kernel));
    settings.SetKernelParameter(kernel->GetParameters());
  }
  settings.SetNugget(nugget);
  settings.SetCoordTransformation(trans_coord_ ? eTransformation::kMinMax : eTransformation::kNone);
  settings.SetValueTransformation(trans_value_ ? eTransformation::kBoxCox : eTransformation::kNone);
  settings.SetLimitTransformation(trans_limit_ ? eTransformation::kLimits : eTransformation::kNone);
  settings.SetState(eState::kGiven);
  settings_ = std::move(settings);
  WriteTransformationParameters(settings_);
}

template <class Archive>
void OrdinaryKriging::serialize(Archive& archive, const unsigned int version) {
  using boost::serialization::make_nvp;
  archive& make_nvp("SurrogateBase", boost::serialization::base_object<SurrogateBase>(*this));
  std::shared_ptr<KernelBase> kernel;  // with the nugget what class version 0 has instead of settings
  double nugget = 0.0;
  if (version < 1) archive& make_nvp("kernel_", kernel);
  archive& make_nvp("mean_", mean_);
  archive& make_nvp("sigma2_", sigma2_);
  archive& make_nvp("kernel_weights_", kernel_weights_);
  if (version >= 1) archive& make_nvp("settings_", settings_);
  if (version < 2) archive& make_nvp("points_trans_reduced_", points_trans_reduced_);
  archive& make_nvp("values_trans_", values_trans_);
  if (version < 1) archive& make_nvp("nugget_", nugget);
  if constexpr (Archive::is_loading::value) {
    if (version < 1) RestoreSettings(kernel.get(), nugget);
    DropFactor();
    negative_log_likelihood_ = 0.0;
    FinishLoading();
    RequireConsistent();
  }
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::OrdinaryKriging)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::OrdinaryKriging)
