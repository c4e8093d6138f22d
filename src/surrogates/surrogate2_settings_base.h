#pragma once

#include <boost/dynamic_bitset.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "persistence/archive/persistent.h"
#include "statistics/transform/transform_base.h"
#include "support/log.h"

namespace kestrel::math::metamodel {

/// One bit per input, or one per term of a polynomial basis.
using Selection = boost::dynamic_bitset<>;

enum class eTransformation : std::int32_t { kNone = 0, kMinMax = 1, kBoxCox = 2, kLimits = 3 };

/// Where settings come from: defaults, a caller, or a completed optimal build.
enum class eState : std::int32_t { kDefault = 0, kGiven = 1, kOptimal = 2 };

/// The transformation of a type, unbuilt; null for `kNone`. Parameters of the expected length (two for min-max and
/// limits, three for Box-Cox) are passed on, any other number gives the defaults. Raises std::logic_error
/// "Unknown transformation type." for any other type.
std::unique_ptr<transform::Transform> CreateTransformation(eTransformation type, const std::vector<double>& parameters);

/// What a surrogate is built with. The settings of a finished build suffice to build the same surrogate again.
class SurrogateSettingsBase {
 public:
  virtual ~SurrogateSettingsBase() = default;

  /// Restores the transformations and `handle_failed_`; leaves the number of inputs, the state and the names alone.
  virtual void SetDefaults();
  /// Reports "Number of inputs can not be 0."; concrete settings add checks of their own.
  virtual void CheckSettings(utils::log::LogBase& log) const;
  virtual void SetNumInputs(std::uint64_t count) { ninputs_ = count; }
  virtual void SetCoordTransformation(eTransformation type) { coord_transform_ = type; }
  virtual void SetValueTransformation(eTransformation type) { value_transform_ = type; }
  virtual void SetLimitTransformation(eTransformation type) { limit_transform_ = type; }
  virtual void SetCoordTransformationParameter(std::vector<double> values) {
    coord_transform_parameter_ = std::move(values);
  }
  virtual void SetValueTransformationParameter(std::vector<double> values) {
    value_transform_parameter_ = std::move(values);
  }
  virtual void SetLimitTransformationParameter(std::vector<double> values) {
    limit_transform_parameter_ = std::move(values);
  }
  virtual Selection GetVariableSelection() const = 0;
  virtual const Selection& GetMainTermSelection() const = 0;
  virtual const Selection& GetInteractionSelection() const = 0;
  virtual std::uint64_t GetOrder() const = 0;
  virtual std::uint64_t GetNumberCoefficients() const = 0;
  virtual std::uint64_t GetNumberParameter() const = 0;
  /// How involved the model is; of models about as good the one of lower complexity is chosen.
  virtual std::uint64_t GetComplexity() const = 0;
  virtual std::int32_t GetKernelType() const = 0;
  /// Compares all fields of the base; NaN parameters compare as different.
  virtual bool operator==(const SurrogateSettingsBase& other) const;
  virtual std::unique_ptr<SurrogateSettingsBase> Clone() const = 0;

  void SetState(eState state) { state_ = state; }
  void SetInputNames(std::vector<std::wstring> names) { input_names_ = std::move(names); }

  std::uint64_t GetNumInputs() const { return ninputs_; }
  eState GetState() const { return state_; }
  const std::vector<std::wstring>& GetInputNames() const { return input_names_; }
  eTransformation GetCoordTransformation() const { return coord_transform_; }
  eTransformation GetValueTransformation() const { return value_transform_; }
  eTransformation GetLimitTransformation() const { return limit_transform_; }
  const std::vector<double>& GetCoordTransformationParameter() const { return coord_transform_parameter_; }
  const std::vector<double>& GetValueTransformationParameter() const { return value_transform_parameter_; }
  const std::vector<double>& GetLimitTransformationParameter() const { return limit_transform_parameter_; }

  /// True when the value transformation has a fitted exponent that differs from 1 by more than 1e-10.
  bool HasBoxCoxExponent() const;

 protected:
  SurrogateSettingsBase() = default;
  explicit SurrogateSettingsBase(std::uint64_t num_inputs) : ninputs_(num_inputs) {}
  SurrogateSettingsBase(const SurrogateSettingsBase&) = default;
  SurrogateSettingsBase& operator=(const SurrogateSettingsBase&) = default;

  std::uint64_t ninputs_ = 0;
  eTransformation coord_transform_ = eTransformation::kMinMax;
  std::vector<double> coord_transform_parameter_;
  eTransformation value_transform_ = eTransformation::kNone;
  std::vector<double> value_transform_parameter_;
  eTransformation limit_transform_ = eTransformation::kNone;
  std::vector<double> limit_transform_parameter_;
  std::int32_t handle_failed_ = 0;
  eState state_ = eState::kDefault;
  std::vector<std::wstring> input_names_;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  void RequireEnumerators() const;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::SurrogateSettingsBase,
                        "kestrel::math::metamodel::SurrogateSettingsBase")
BOOST_CLASS_VERSION(kestrel::math::metamodel::SurrogateSettingsBase, 2)
BOOST_CLASS_TRACKING(kestrel::math::metamodel::SurrogateSettingsBase, boost::serialization::track_always)
