#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "persistence/archive/persistent.h"
#include "random_variables/random_variable.h"
#include "random_variables/random_variable_type.h"

namespace kestrel::enums::RandomProperties {

/// Whether there is a distribution, and which of its two descriptions the user gave: the other follows from it.
enum class eKind : std::int32_t { kDeterministic = 0, kByParameters = 1, kByMoments = 2 };

}  // namespace kestrel::enums::RandomProperties

namespace kestrel::algorithm::datatypes {

/// The distribution of a parameter, as plain numbers. The meaning of the parameters of each type stands with the
/// distributions (random_variables/). Moments are mean, standard deviation, skewness and excess kurtosis, as many of
/// them as are given.
class RandomProperties {
 public:
  using eKind = enums::RandomProperties::eKind;
  using eType = enums::RandomVariable::eType;

  /// No distribution.
  RandomProperties() = default;

  /// Both check the numbers by making the distribution; what that refuses raises utils::runtime_error.
  static RandomProperties FromParameters(eType type, std::vector<double> params);
  static RandomProperties FromMoments(eType type, std::vector<double> moments);

  eType GetType() const { return type_; }
  eKind GetKind() const { return kind_; }
  bool IsStochastic() const { return kind_ != eKind::kDeterministic; }
  const std::vector<double>& GetParams() const { return params_; }
  const std::vector<double>& GetMoments() const { return moments_; }
  /// The numbers have passed the checks of the distribution.
  bool IsValidated() const { return validated_; }

  /// A fixed coefficient of variation: the standard deviation follows the mean, stddev = cov x |mean|, at once in a
  /// distribution that is given by its moments, else when its mean is moved. It must be a positive finite number; else
  /// utils::runtime_error.
  void SetCOV(double cov);
  void ResetCOV();
  bool HasSetCOV() const { return has_set_cov_; }
  /// Raises utils::runtime_error if none is set.
  double GetCOV() const;

  /// The distribution with these numbers. Raises utils::runtime_error without one and for numbers that it refuses.
  std::unique_ptr<RV_Base> MakeRandomVariable() const;
  /// The same kind of distribution around another mean, with the standard deviation kept or, if a coefficient of
  /// variation is set, scaled with it. Refused for types that two moments do not determine.
  std::unique_ptr<RV_Base> MakeRandomVariableAround(double mean) const;

  bool operator==(const RandomProperties& other) const;
  bool operator!=(const RandomProperties& other) const { return !(*this == other); }

  /// Name in files, member, class version that brought it; in stored order.
  template <class Visit>
  static void ForEachField(Visit visit);

 private:
  friend class boost::serialization::access;
  friend class Parameter;  // makes a stochastic parameter whose distribution is given later
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  eType type_ = eType::NORMAL;
  eKind kind_ = eKind::kDeterministic;
  std::vector<double> params_;
  std::vector<double> moments_;
  bool has_set_cov_ = false;
  double cov_ = 0.0;
  bool validated_ = false;
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::algorithm::datatypes::RandomProperties, 4)
BOOST_CLASS_TRACKING(kestrel::algorithm::datatypes::RandomProperties, boost::serialization::track_never)
