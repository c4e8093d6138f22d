#pragma once

#include "surrogates/surrogate2_settings_base.h"

namespace kestrel::math::metamodel {

/// The inputs of a thin plate spline and how much it is smoothed.
class SurrogateTPSSettings final : public SurrogateSettingsBase {
 public:
  SurrogateTPSSettings() = default;
  explicit SurrogateTPSSettings(std::uint64_t num_inputs);

  void SetDefaults() override;
  /// No smoothing, all inputs.
  void SetDefaultsOfLocalMembers();
  /// Also selects all inputs again.
  void SetNumInputs(std::uint64_t count) override;

  /// What is added to the diagonal of the radial matrix, which refers to inputs scaled as the model sees them. 0: the
  /// spline meets the values of the samples.
  void SetSmoothing(double smoothing) { smoothing_ = smoothing; }
  void SetVariableSelection(Selection variables) { selection_ = std::move(variables); }

  double GetSmoothing() const { return smoothing_; }
  Selection GetVariableSelection() const override { return selection_; }
  /// There are no terms to choose: both selections are empty.
  const Selection& GetMainTermSelection() const override;
  const Selection& GetInteractionSelection() const override;
  /// That of the linear part.
  std::uint64_t GetOrder() const override { return 1; }
  /// Those of the linear part.
  std::uint64_t GetNumberCoefficients() const override { return 1 + selection_.count(); }
  /// The coefficients, one more for smoothing and one more for a fitted Box-Cox exponent.
  std::uint64_t GetNumberParameter() const override;
  std::uint64_t GetComplexity() const override { return 10; }
  std::int32_t GetKernelType() const override { return 0; }

  /// Reports a selection of another number of inputs, and a smoothing that is negative or not finite.
  void CheckSettings(utils::log::LogBase& log) const override;
  bool operator==(const SurrogateSettingsBase& other) const override;
  std::unique_ptr<SurrogateSettingsBase> Clone() const override;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  bool IsSmoothingValid() const;

  double smoothing_ = 0.0;
  Selection selection_;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::SurrogateTPSSettings,
                        "kestrel::math::metamodel::SurrogateTPSSettings")
