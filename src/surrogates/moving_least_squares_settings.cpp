#include "surrogates/moving_least_squares_settings.h"

#include <algorithm>

#include "persistence/archive/archives.h"
#include "persistence/archive/require_stored.h"
#include "support/error_report.h"

namespace kestrel::math::metamodel {
namespace {

constexpr std::uint64_t kLargestOrder = 2;

/// Order 0 keeps one block of bits, for the distances.
std::uint64_t NumberBlocks(std::uint64_t order) { return std::max<std::uint64_t>(order, 1); }

}  // namespace

MovingLeastSquaresSettings::MovingLeastSquaresSettings(std::uint64_t num_inputs) : SurrogateSettingsBase(num_inputs) {
  SetDefaultsOfLocalMembers();
}

void MovingLeastSquaresSettings::SetDefaults() {
  SurrogateSettingsBase::SetDefaults();
  SetDefaultsOfLocalMembers();
}

void MovingLeastSquaresSettings::SetDefaultsOfLocalMembers() {
  SetOrder(1);
  kernel_type_ = Kernel::kConstInflIsoExp;
  kernel_parameter_.resize(0);
}

void MovingLeastSquaresSettings::SetNumInputs(std::uint64_t count) {
  SurrogateSettingsBase::SetNumInputs(count);
  SetDefaultsOfLocalMembers();
}

void MovingLeastSquaresSettings::SetOrder(std::uint64_t order) {
  order_ = order;
  // An order that no check accepts makes no terms.
  main_term_selection_ = BuildMainTermSelection(ninputs_, NumberBlocks(std::min(order, kLargestOrder)), true);
}

void MovingLeastSquaresSettings::SetVariableSelection(const Selection& variables) {
  for (std::uint64_t input = 0; input < ninputs_; ++input) {
    if (input < variables.size() && variables[input]) continue;
    for (Selection::size_type bit = input; bit < main_term_selection_.size(); bit += ninputs_) {
      main_term_selection_.reset(bit);
    }
  }
}

Selection MovingLeastSquaresSettings::GetVariableSelection() const {
  Selection variables(ninputs_);
  const std::uint64_t bits =
      order_ == 0 ? std::min<std::uint64_t>(ninputs_, main_term_selection_.size()) : main_term_selection_.size();
  for (auto bit = main_term_selection_.find_first(); bit < bits; bit = main_term_selection_.find_next(bit)) {
    variables.set(bit % ninputs_);
  }
  return variables;
}

const Selection& MovingLeastSquaresSettings::GetInteractionSelection() const {
  static const Selection none;
  return none;
}

std::uint64_t MovingLeastSquaresSettings::GetNumberCoefficients() const {
  return order_ == 0 ? 1 : 1 + main_term_selection_.count();
}

std::uint64_t MovingLeastSquaresSettings::NumberKernelParameters() const {
  return kernel_type_ == Kernel::kConstInflExp ? GetVariableSelection().count() : 1;
}

std::uint64_t MovingLeastSquaresSettings::GetNumberParameter() const {
  const auto kernel_parameters = static_cast<std::uint64_t>(kernel_parameter_.size());
  return GetNumberCoefficients() + (HasBoxCoxExponent() ? 1 : 0) +
         (kernel_parameters > 0 ? kernel_parameters : NumberKernelParameters()) +
         (order_ == 0 ? GetVariableSelection().count() : 0);
}

bool MovingLeastSquaresSettings::KernelParametersFit() const {
  return kernel_parameter_.size() == 0 ||
         static_cast<std::uint64_t>(kernel_parameter_.size()) == NumberKernelParameters();
}

void MovingLeastSquaresSettings::CheckSettings(utils::log::LogBase& log) const {
  SurrogateSettingsBase::CheckSettings(log);
  if (order_ > kLargestOrder) error::Report(L"can not set mls order >2");
  if (order_ > 0 && main_term_selection_.size() != NumberMainTerms(ninputs_, order_)) {
    error::Report(L"size of selection vector is not consistent to order");
  }
  if (!KernelParametersFit()) error::Report(L"size of kernel parameter vector is not consistent to selected inputs");
}

bool MovingLeastSquaresSettings::operator==(const SurrogateSettingsBase& other) const {
  const auto* same_kind = dynamic_cast<const MovingLeastSquaresSettings*>(&other);
  return same_kind != nullptr && SurrogateSettingsBase::operator==(other) && order_ == same_kind->order_ &&
         main_term_selection_ == same_kind->main_term_selection_ && kernel_type_ == same_kind->kernel_type_ &&
         kernel_parameter_.size() == same_kind->kernel_parameter_.size() &&
         (kernel_parameter_.array() == same_kind->kernel_parameter_.array()).all();
}

std::unique_ptr<SurrogateSettingsBase> MovingLeastSquaresSettings::Clone() const {
  return std::make_unique<MovingLeastSquaresSettings>(*this);
}

void MovingLeastSquaresSettings::RequireConsistent() const {
  using persistence::RequireStored;
  // More inputs than any sample has; products of the counts below stay within 64 bits.
  constexpr std::uint64_t kMaxInputs = std::uint64_t{1} << 24U;
  RequireStored(ninputs_ <= kMaxInputs && order_ <= kLargestOrder &&
                    main_term_selection_.size() == NumberMainTerms(ninputs_, NumberBlocks(order_)),
                L"Stored settings: the selected terms do not match the number of inputs and the order.");
  const auto type = kernel_type_;
  RequireStored(type == Kernel::kConstInflExp || type == Kernel::kConstInflIsoExp || type == Kernel::kConstInflIsoReg ||
                    type == Kernel::kNodalInflExp,
                L"Stored settings: unknown kernel type.");
  RequireStored(KernelParametersFit(), L"Stored settings: the kernel parameters do not match the kernel.");
  if (kernel_parameter_.size() > 0) static_cast<void>(CreateKernel(type, kernel_parameter_));  // its own checks
}

template <class Archive>
void MovingLeastSquaresSettings::serialize(Archive& archive, const unsigned int /*version*/) {
  using boost::serialization::make_nvp;
  archive& make_nvp("SurrogateSettingsBase", boost::serialization::base_object<SurrogateSettingsBase>(*this));
  archive& make_nvp("order_", order_);
  archive& make_nvp("main_term_selection_", main_term_selection_);
  archive& make_nvp("kernel_type_", kernel_type_);
  archive& make_nvp("kernel_parameter_", kernel_parameter_);
  if constexpr (Archive::is_loading::value) RequireConsistent();
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::MovingLeastSquaresSettings)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::MovingLeastSquaresSettings)
