#pragma once

#include "random_variables/random_variable_typed.h"

/// Variables of finitely many values. Their Pdf is the probability of a value.
namespace kestrel::algorithm {

/// 1 with the given probability, else 0. Parameter: the probability, inside (0, 1).
class RV_Bernoulli final : public RV_Typed<RV_Bernoulli, enums::RandomVariable::eType::BERNOULLI> {
 public:
  using RV_Typed::RV_Typed;
  static void CheckParameters(const std::vector<double>& params);
  double Pdf(double x) const override;
  double Cdf(double x) const override;
  RVMoments Moments() const override;

 private:
  friend class boost::serialization::access;
  RV_Bernoulli() = default;
  double InverseCdf(double p, double complement) const override;
};

/// Parameters: each value, in ascending order, and its weight; weights are positive, only their ratios count. The
/// skewness and the kurtosis of a single value are NaN.
class RV_GeneralDiscrete final : public RV_Typed<RV_GeneralDiscrete, enums::RandomVariable::eType::DISCRETE> {
 public:
  using RV_Typed::RV_Typed;
  static void CheckParameters(const std::vector<double>& params);
  double Pdf(double x) const override;
  double Cdf(double x) const override;
  RVMoments Moments() const override;

 private:
  friend class boost::serialization::access;
  RV_GeneralDiscrete() = default;
  double InverseCdf(double p, double complement) const override;
  double TotalWeight() const;
};

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Bernoulli, "kestrel::algorithm::RV_Bernoulli")
BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_GeneralDiscrete, "kestrel::algorithm::RV_GeneralDiscrete")
