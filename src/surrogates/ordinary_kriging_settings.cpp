#include "surrogates/ordinary_kriging_settings.h"

#include <cmath>
#include <limits>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/error_report.h"

namespace kestrel::math::metamodel {
namespace {

/// The model has no polynomial terms.
const Selection kNoTerms;

bool IsKnownKernel(Kernel::eType type) {
  return type == Kernel::kConstInflExp || type == Kernel::kConstInflIsoExp || type == Kernel::kConstInflIsoReg ||
         type == Kernel::kNodalInflExp;
}

}  // namespace

OrdinaryKrigingSettings::OrdinaryKrigingSettings(std::uint64_t num_inputs) : SurrogateSettingsBase(num_inputs) {
  SetDefaultsOfLocalMembers();
}

void OrdinaryKrigingSettings::SetDefaults() {
  SurrogateSettingsBase::SetDefaults();
  SetDefaultsOfLocalMembers();
}

void OrdinaryKrigingSettings::SetDefaultsOfLocalMembers() {
  nugget_ = 1e-6;
  use_likelihood_ = true;
  kernel_type_ = Kernel::kConstInflIsoExp;
  kernel_parameter_.resize(0);
  selection_ = Selection(ninputs_).set();
}

void OrdinaryKrigingSettings::SetNumInputs(std::uint64_t count) {
  SurrogateSettingsBase::SetNumInputs(count);
  SetDefaultsOfLocalMembers();
}

void OrdinaryKrigingSettings::DeselectInput(std::uint64_t input) {
  if (kernel_type_ == Kernel::kConstInflExp && kernel_parameter_.size() > 0) {
    Vector radii(kernel_parameter_.size() - 1);
    Index from = 0;
    Index to = 0;
    for (auto bit = selection_.find_first(); bit != Selection::npos; bit = selection_.find_next(bit), ++from) {
      if (bit != input) radii[to++] = kernel_parameter_[from];
    }
    kernel_parameter_ = radii;
  }
  selection_.reset(input);
}

const Selection& OrdinaryKrigingSettings::GetMainTermSelection() const { return kNoTerms; }

const Selection& OrdinaryKrigingSettings::GetInteractionSelection() const { return kNoTerms; }

std::uint64_t OrdinaryKrigingSettings::GetNumberKernelParameters() const {
  return kernel_type_ == Kernel::kConstInflExp ? selection_.count() : 1;
}

std::uint64_t OrdinaryKrigingSettings::GetNumberParameter() const {
  const auto given = static_cast<std::uint64_t>(kernel_parameter_.size());
  return 1 + (HasBoxCoxExponent() ? 1 : 0) + (given > 0 ? given : GetNumberKernelParameters());
}

void OrdinaryKrigingSettings::CheckSettings(utils::log::LogBase& log) const {
  SurrogateSettingsBase::CheckSettings(log);
  if (selection_.size() != ninputs_) {
    error::Report(L"size of variable selection vector is not consistent to number of inputs");
  }
  const std::unique_ptr<KernelBase> kernel = MakeKernel();
  if (!kernel->IsCorrelation()) error::Report(L"Kernel is not of type correlation");
  // A neighbour count, the parameter of the other kernel that is not isotropic, is one whatever the inputs are.
  const auto given = static_cast<std::uint64_t>(kernel_parameter_.size());
  if (!kernel->IsIsotropic() && given > 0 && given != GetNumberKernelParameters()) {
    error::Report(L"Wrong number of dimensions in anisotropic kernel");
  }
}

bool OrdinaryKrigingSettings::operator==(const SurrogateSettingsBase& other) const {
  const auto* same_kind = dynamic_cast<const OrdinaryKrigingSettings*>(&other);
  return same_kind != nullptr && SurrogateSettingsBase::operator==(other) &&
         use_likelihood_ == same_kind->use_likelihood_ && MakeCorrelationKey() == same_kind->MakeCorrelationKey();
}

CorrelationKey OrdinaryKrigingSettings::MakeCorrelationKey() const {
  return {selection_, kernel_type_, {kernel_parameter_.begin(), kernel_parameter_.end()}, nugget_};
}

std::unique_ptr<SurrogateSettingsBase> OrdinaryKrigingSettings::Clone() const {
  return std::make_unique<OrdinaryKrigingSettings>(*this);
}

void OrdinaryKrigingSettings::RequireConsistent() const {
  using persistence::RequireStored;
  RequireStored(IsKnownKernel(kernel_type_), L"Stored settings: unknown kernel type.");
  RequireStored(selection_.size() == ninputs_, L"Stored settings: the selection does not match the number of inputs.");
  const auto given = static_cast<std::uint64_t>(kernel_parameter_.size());
  const double least = kernel_type_ == Kernel::kNodalInflExp ? 1.0 : std::numeric_limits<double>::min();
  RequireStored(given == 0 || (given == GetNumberKernelParameters() && (kernel_parameter_.array() >= least).all()),
                L"Stored settings: the kernel parameters do not match the kernel.");
  RequireStored(std::isfinite(nugget_), L"Stored settings: the nugget is not a finite number.");
}

template <class Archive>
void OrdinaryKrigingSettings::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("SurrogateSettingsBase", boost::serialization::base_object<SurrogateSettingsBase>(*this));
  archive& make_nvp("nugget_", nugget_);
  archive& make_nvp("use_likelihood_", use_likelihood_);
  archive& make_nvp("kernel_type_", kernel_type_);
  archive& make_nvp("kernel_parameter_", kernel_parameter_);
  archive& make_nvp("selection_", selection_);
  if constexpr (Archive::is_loading::value) RequireConsistent();
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::OrdinaryKrigingSettings)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::OrdinaryKrigingSettings)
