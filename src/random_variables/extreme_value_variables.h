#pragma once

#include <boost/math/distributions/exponential.hpp>
#include <boost/math/distributions/extreme_value.hpp>
#include <boost/math/distributions/weibull.hpp>

#include "random_variables/random_variable_typed.h"

/// Waiting times and extremes.
namespace kestrel::algorithm {

/// Cdf 1 - exp(-rate (x - shift)) from shift on. Parameters: rate, shift.
class RV_Exponential final : public RV_FromBoost<RV_Exponential, enums::RandomVariable::eType::EXPONENTIAL> {
 public:
  using RV_FromBoost::RV_FromBoost;
  static void CheckParameters(const std::vector<double>& params);
  auto Distribution() const { return boost::math::exponential_distribution<double, DistributionPolicy>(Param(0)); }
  double Shift() const { return Param(1); }

 private:
  friend class boost::serialization::access;
  RV_Exponential() = default;
};

/// Of minima: Cdf 1 - exp(-(x / scale)^shape) from 0 on. Parameters: shape, scale.
class RV_Weibull final : public RV_FromBoost<RV_Weibull, enums::RandomVariable::eType::WEIBULL> {
 public:
  using RV_FromBoost::RV_FromBoost;
  static void CheckParameters(const std::vector<double>& params);
  auto Distribution() const {
    return boost::math::weibull_distribution<double, DistributionPolicy>(Param(0), Param(1));
  }

 private:
  friend class boost::serialization::access;
  RV_Weibull() = default;
};

/// Of maxima: Cdf exp(-exp(-(x - location) / scale)). Parameters: location, scale.
class RV_Gumbel final : public RV_FromBoost<RV_Gumbel, enums::RandomVariable::eType::GUMBEL> {
 public:
  using RV_FromBoost::RV_FromBoost;
  static void CheckParameters(const std::vector<double>& params);
  auto Distribution() const {
    return boost::math::extreme_value_distribution<double, DistributionPolicy>(Param(0), Param(1));
  }

 private:
  friend class boost::serialization::access;
  RV_Gumbel() = default;
};

/// Of maxima: Cdf exp(-(x / scale)^-shape) from 0 on. Moments of an order at or above the shape do not exist.
/// Parameters: shape, scale.
class RV_Frechet final : public RV_Typed<RV_Frechet, enums::RandomVariable::eType::FRECHET> {
 public:
  using RV_Typed::RV_Typed;
  static void CheckParameters(const std::vector<double>& params);
  double Pdf(double x) const override;
  double Cdf(double x) const override;
  RVMoments Moments() const override { return IntegratedMoments(Param(0)); }

 private:
  friend class boost::serialization::access;
  RV_Frechet() = default;
  double InverseCdf(double p, double complement) const override;
};

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Exponential, "kestrel::algorithm::RV_Exponential")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Weibull, "kestrel::algorithm::RV_Weibull")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Gumbel, "kestrel::algorithm::RV_Gumbel")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Frechet, "kestrel::algorithm::RV_Frechet")
