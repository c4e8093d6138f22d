#pragma once

#include <boost/math/distributions/beta.hpp>
#include <boost/math/distributions/triangular.hpp>
#include <boost/math/distributions/uniform.hpp>

#include "random_variables/random_variable_typed.h"

/// Variables between two bounds.
namespace kestrel::algorithm {

/// Constant density. Parameters: lower, upper.
class RV_Uniform final : public RV_FromBoost<RV_Uniform, enums::RandomVariable::eType::UNIFORM> {
 public:
  using RV_FromBoost::RV_FromBoost;
  static void CheckParameters(const std::vector<double>& params);
  auto Distribution() const {
    return boost::math::uniform_distribution<double, DistributionPolicy>(Param(0), Param(1));
  }

 private:
  friend class boost::serialization::access;
  RV_Uniform() = default;
};

/// Linear up to the mode and down from it. Parameters: lower, mode, upper.
class RV_Triangular final : public RV_FromBoost<RV_Triangular, enums::RandomVariable::eType::TRIANGULAR> {
 public:
  using RV_FromBoost::RV_FromBoost;
  static void CheckParameters(const std::vector<double>& params);
  auto Distribution() const {
    return boost::math::triangular_distribution<double, DistributionPolicy>(Param(0), Param(1), Param(2));
  }

 private:
  friend class boost::serialization::access;
  RV_Triangular() = default;
};

/// Density proportional to t^(alpha - 1) (1 - t)^(beta - 1), t = (x - lower) / (upper - lower). Parameters: alpha,
/// beta, lower, upper.
class RV_Beta final : public RV_FromBoost<RV_Beta, enums::RandomVariable::eType::BETA> {
 public:
  using RV_FromBoost::RV_FromBoost;
  static void CheckParameters(const std::vector<double>& params);
  auto Distribution() const { return boost::math::beta_distribution<double, DistributionPolicy>(Param(0), Param(1)); }
  double Shift() const { return Param(2); }
  double Scale() const { return Param(3) - Param(2); }

 private:
  friend class boost::serialization::access;
  RV_Beta() = default;
};

/// The logarithm is uniform. Parameters: lower, upper, both positive.
class RV_Loguniform final : public RV_Typed<RV_Loguniform, enums::RandomVariable::eType::LOGUNIFORM> {
 public:
  using RV_Typed::RV_Typed;
  static void CheckParameters(const std::vector<double>& params);
  double Pdf(double x) const override;
  double Cdf(double x) const override;

 private:
  friend class boost::serialization::access;
  RV_Loguniform() = default;
  double InverseCdf(double p, double complement) const override;
};

/// A mixture of uniform variables on intervals that do not overlap. Parameters: lower, upper and weight of each
/// interval, in ascending order; weights are positive, only their ratios count.
class RV_MultiUniform final : public RV_Typed<RV_MultiUniform, enums::RandomVariable::eType::MULTIUNIFORM> {
 public:
  using RV_Typed::RV_Typed;
  static void CheckParameters(const std::vector<double>& params);
  double Pdf(double x) const override;
  double Cdf(double x) const override;
  RVMoments Moments() const override;

 private:
  friend class boost::serialization::access;
  RV_MultiUniform() = default;
  double InverseCdf(double p, double complement) const override;
  double TotalWeight() const;
};

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Uniform, "kestrel::algorithm::RV_Uniform")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Triangular, "kestrel::algorithm::RV_Triangular")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Beta, "kestrel::algorithm::RV_Beta")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Loguniform, "kestrel::algorithm::RV_Loguniform")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_MultiUniform, "kestrel::algorithm::RV_MultiUniform")
