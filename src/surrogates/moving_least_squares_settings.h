#pragma once

#include "surrogates/coefficient_matrix.h"
#include "surrogates/kernels/kernel_base.h"
#include "surrogates/surrogate2_settings_base.h"

namespace kestrel::math::metamodel {

/// The local polynomial of moving least squares and the kernel that weighs the support points. Order 0 is a local mean;
/// orders 1 and 2 have powers of single inputs only, no interactions.
class MovingLeastSquaresSettings final : public SurrogateSettingsBase {
 public:
  MovingLeastSquaresSettings() = default;
  explicit MovingLeastSquaresSettings(std::uint64_t num_inputs);

  void SetDefaults() override;
  /// Order 1, all inputs, the isotropic exponential kernel without a radius.
  void SetDefaultsOfLocalMembers();
  /// Also restores the terms to their defaults, whose number depends on the number of inputs.
  void SetNumInputs(std::uint64_t count) override;

  /// Selects all main terms. Order 0 has no terms, but keeps a bit per input: those that count for the distance.
  void SetOrder(std::uint64_t order);
  /// Clears all terms of the inputs whose bit is clear and sets none; call it after `SetOrder`.
  void SetVariableSelection(const Selection& variables);
  void SetKernelType(Kernel::eType type) { kernel_type_ = type; }
  void SetKernelParameter(const VectorIn& parameter) { kernel_parameter_ = parameter; }
  const Vector& GetKernelParameter() const { return kernel_parameter_; }

  Selection GetVariableSelection() const override;
  const Selection& GetMainTermSelection() const override { return main_term_selection_; }
  /// Empty: there are none.
  const Selection& GetInteractionSelection() const override;
  std::uint64_t GetOrder() const override { return order_; }
  std::uint64_t GetNumberCoefficients() const override;
  /// The coefficients, a fitted Box-Cox exponent, the kernel's parameters (or those that it will have), and for order 0
  /// the selected inputs.
  std::uint64_t GetNumberParameter() const override;
  /// The order plus 10: above those of polynomials.
  std::uint64_t GetComplexity() const override { return order_ + 10; }
  std::int32_t GetKernelType() const override { return kernel_type_; }

  /// Reports "can not set mls order >2" and selections and kernel parameters whose size does not fit.
  void CheckSettings(utils::log::LogBase& log) const override;
  bool operator==(const SurrogateSettingsBase& other) const override;
  std::unique_ptr<SurrogateSettingsBase> Clone() const override;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  /// Parameters that a kernel of the type takes, with the selected inputs.
  std::uint64_t NumberKernelParameters() const;
  bool KernelParametersFit() const;
  /// Refuses stored settings that no call could have made.
  void RequireConsistent() const;

  std::uint64_t order_ = 1;
  Selection main_term_selection_;
  Kernel::eType kernel_type_ = Kernel::kConstInflIsoExp;
  Vector kernel_parameter_;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::MovingLeastSquaresSettings,
                        "kestrel::math::metamodel::MovingLeastSquaresSettings")
