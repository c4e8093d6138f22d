#pragma once

#include "surrogates/coefficient_matrix.h"
#include "surrogates/surrogate2_settings_base.h"

namespace kestrel::math::metamodel {

/// The term set of a polynomial regression (see coefficient_matrix.h for the selections).
class LinearRegressionSettings final : public SurrogateSettingsBase {
 public:
  LinearRegressionSettings() = default;
  explicit LinearRegressionSettings(std::uint64_t num_inputs);
  LinearRegressionSettings(std::uint64_t num_inputs, std::uint64_t order, Selection main_terms, Selection interactions);

  void SetDefaults() override;
  /// Order 1, all main terms, no interactions.
  void SetDefaultsOfLocalMembers();
  /// Also restores the terms to their defaults, whose number depends on the number of inputs.
  void SetNumInputs(std::uint64_t count) override;

  /// Selects all main terms of the order and, for order above 1, all interactions; none otherwise.
  void SetOrder(std::uint64_t order);
  void SetInteraction(bool flag);
  void SetMainTermSelection(Selection bits) { main_term_selection_ = std::move(bits); }
  void SetInteractionSelection(Selection bits) { interaction_selection_ = std::move(bits); }
  /// Clears all terms of the inputs whose bit is clear and sets none; call it after `SetOrder` and `SetInteraction`.
  void SetVariableSelection(const Selection& variables);
  /// Both report "deselection input number can only between 0 and num_inputs - 1".
  void DeselectInputMainTerms(std::uint64_t input);
  void DeselectInputInteractionTerms(std::uint64_t input);

  Selection GetVariableMainTermSelection() const;
  Selection GetVariableInteractionSelection() const;
  Selection GetVariableSelection() const override;
  const Selection& GetMainTermSelection() const override { return main_term_selection_; }
  const Selection& GetInteractionSelection() const override { return interaction_selection_; }
  std::uint64_t GetOrder() const override { return order_; }
  std::uint64_t GetNumberCoefficients() const override;
  /// The coefficients, and one more for a fitted Box-Cox exponent.
  std::uint64_t GetNumberParameter() const override;
  /// The order from 2 on; for order 1 whether there are interactions or a fitted exponent; 0 for order 0.
  std::uint64_t GetComplexity() const override;
  std::int32_t GetKernelType() const override { return 0; }

  /// Reports selections whose size does not fit the number of inputs and the order.
  void CheckSettings(utils::log::LogBase& log) const override;
  bool operator==(const SurrogateSettingsBase& other) const override;
  std::unique_ptr<SurrogateSettingsBase> Clone() const override;

  /// True if both describe the same basis: order and selections.
  bool SameTerms(const LinearRegressionSettings& other) const;

 private:
  friend class LinearRegression;  // makes settings of what its oldest files hold
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  void RequireInput(std::uint64_t input) const;
  /// Refuses stored selections that do not fit the number of inputs and the order.
  void RequireConsistent() const;

  std::uint64_t order_ = 1;
  Selection main_term_selection_;
  Selection interaction_selection_;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::LinearRegressionSettings,
                        "kestrel::math::metamodel::LinearRegressionSettings")
