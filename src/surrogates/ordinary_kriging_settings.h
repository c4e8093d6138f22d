#pragma once

#include <tuple>
#include <vector>

#include "support/linear_algebra.h"
#include "surrogates/kernels/kernel_base.h"
#include "surrogates/surrogate2_settings_base.h"

namespace kestrel::math::metamodel {

/// Selection, kernel, radii and nugget, as a value to compare.
using CorrelationKey = std::tuple<Selection, Kernel::eType, std::vector<double>, double>;

/// The correlation function of a Kriging model: a kernel with its influence radii, and a nugget.
class OrdinaryKrigingSettings final : public SurrogateSettingsBase {
 public:
  OrdinaryKrigingSettings() = default;
  explicit OrdinaryKrigingSettings(std::uint64_t num_inputs);

  void SetDefaults() override;
  /// An isotropic exponential kernel on all inputs, its radius unknown; nugget 1e-6.
  void SetDefaultsOfLocalMembers();
  /// Also selects all inputs again.
  void SetNumInputs(std::uint64_t count) override;

  /// What is added to the unit diagonal of the correlation matrix.
  void SetNugget(double nugget) { nugget_ = nugget; }
  /// Whether the search for radii and nugget minimises the negative log likelihood, or the error of the cross
  /// validation.
  void SetUseLikelihood(bool use) { use_likelihood_ = use; }
  void SetKernelType(Kernel::eType type) { kernel_type_ = type; }
  /// The influence radii, in the coordinates of the model; empty: to be searched.
  void SetKernelParameter(const VectorIn& parameter) { kernel_parameter_ = parameter; }
  void SetVariableSelection(Selection variables) { selection_ = std::move(variables); }

  /// Takes an input out, and with it its radius where the kernel has one per input.
  void DeselectInput(std::uint64_t input);

  double GetNugget() const { return nugget_; }
  bool GetUseLikelihood() const { return use_likelihood_; }
  const Vector& GetKernelParameter() const { return kernel_parameter_; }
  Selection GetVariableSelection() const override { return selection_; }
  const Selection& GetMainTermSelection() const override;
  const Selection& GetInteractionSelection() const override;
  std::uint64_t GetOrder() const override { return 0; }
  /// One, the mean.
  std::uint64_t GetNumberCoefficients() const override { return 1; }
  /// The mean, the radii, and one more for a fitted Box-Cox exponent.
  std::uint64_t GetNumberParameter() const override;
  /// 11 with a radius for each input, else 10.
  std::uint64_t GetComplexity() const override { return kernel_type_ == Kernel::kConstInflExp ? 11 : 10; }
  std::int32_t GetKernelType() const override { return kernel_type_; }

  /// The kernel with its radii; raises as `CreateKernel` and `KernelBase::SetParameters` do.
  std::unique_ptr<KernelBase> MakeKernel() const { return CreateKernel(kernel_type_, kernel_parameter_); }
  /// How many parameters the kernel has for the selected inputs.
  std::uint64_t GetNumberKernelParameters() const;

  /// What the correlation matrix of a sample follows from.
  CorrelationKey MakeCorrelationKey() const;

  /// Reports a kernel that is no correlation, and numbers of radii and of selection bits that do not fit the inputs.
  void CheckSettings(utils::log::LogBase& log) const override;
  bool operator==(const SurrogateSettingsBase& other) const override;
  std::unique_ptr<SurrogateSettingsBase> Clone() const override;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  /// Refuses stored fields that do not fit each other.
  void RequireConsistent() const;

  double nugget_ = 1e-6;
  bool use_likelihood_ = true;
  Kernel::eType kernel_type_ = Kernel::kConstInflIsoExp;
  Vector kernel_parameter_;
  Selection selection_;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::OrdinaryKrigingSettings,
                        "kestrel::math::metamodel::OrdinaryKrigingSettings")
