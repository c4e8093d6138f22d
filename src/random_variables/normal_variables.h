#pragma once

#include <boost/math/distributions/lognormal.hpp>
#include <boost/math/distributions/normal.hpp>

#include "random_variables/random_variable_typed.h"

/// The normal variable and those that are made from it.
namespace kestrel::algorithm {

/// Parameters: mean, standard deviation.
class RV_Normal final : public RV_FromBoost<RV_Normal, enums::RandomVariable::eType::NORMAL> {
 public:
  using RV_FromBoost::RV_FromBoost;
  static void CheckParameters(const std::vector<double>& params);
  auto Distribution() const { return boost::math::normal_distribution<double, DistributionPolicy>(Param(0), Param(1)); }

 private:
  friend class boost::serialization::access;
  RV_Normal() = default;
};

/// A normal variable given that it lies between two bounds. Parameters: mean and standard deviation of the normal
/// variable, lower, upper.
class RV_Truncatednormal final : public RV_Typed<RV_Truncatednormal, enums::RandomVariable::eType::TRUNCATEDNORMAL> {
 public:
  using RV_Typed::RV_Typed;
  static void CheckParameters(const std::vector<double>& params);
  double Pdf(double x) const override;
  double Cdf(double x) const override;

 private:
  friend class boost::serialization::access;
  RV_Truncatednormal() = default;
  double InverseCdf(double p, double complement) const override;
};

/// The logarithm is normal. Parameters: mean and standard deviation of the logarithm.
class RV_Lognormal final : public RV_FromBoost<RV_Lognormal, enums::RandomVariable::eType::LOGNORMAL> {
 public:
  using RV_FromBoost::RV_FromBoost;
  static void CheckParameters(const std::vector<double>& params);
  auto Distribution() const {
    return boost::math::lognormal_distribution<double, DistributionPolicy>(Param(0), Param(1));
  }

 private:
  friend class boost::serialization::access;
  RV_Lognormal() = default;
};

/// A polynomial c_0 + c_1 z + ... of a standard normal variable z, increasing for |z| <= 9; z is cut there, which has a
/// probability of 2e-19. Parameters: the coefficients.
class RV_Polymap final : public RV_Typed<RV_Polymap, enums::RandomVariable::eType::POLYMAP> {
 public:
  using RV_Typed::RV_Typed;
  static void CheckParameters(const std::vector<double>& params);
  double Pdf(double x) const override;
  double Cdf(double x) const override;

 private:
  friend class boost::serialization::access;
  RV_Polymap() = default;
  double InverseCdf(double p, double complement) const override;
  /// The z that the polynomial maps to x.
  double NormalOf(double x) const;
};

/// Density of samples with a normal kernel, 1 / N sum_i phi((x - s_i) / h) / h. Parameters: the bandwidth h, then the
/// samples s_i.
class RV_Kernel final : public RV_Typed<RV_Kernel, enums::RandomVariable::eType::KERNEL> {
 public:
  using RV_Typed::RV_Typed;
  static void CheckParameters(const std::vector<double>& params);
  double Pdf(double x) const override;
  double Cdf(double x) const override;
  RVMoments Moments() const override;

 private:
  friend class boost::serialization::access;
  RV_Kernel() = default;
  double InverseCdf(double p, double complement) const override;
  /// Mean of a function of the samples.
  template <class Function>
  double SampleMean(const Function& function) const;
};

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Normal, "kestrel::algorithm::RV_Normal")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Truncatednormal, "kestrel::algorithm::RV_Truncatednormal")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Lognormal, "kestrel::algorithm::RV_Lognormal")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Polymap, "kestrel::algorithm::RV_Polymap")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Kernel, "kestrel::algorithm::RV_Kernel")
