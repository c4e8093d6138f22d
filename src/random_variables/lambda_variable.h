#pragma once

#include "random_variables/random_variable_typed.h"

namespace kestrel::algorithm {

/// Tukey's lambda distribution in the general form of Freimer, Kollia, Mudholkar and Lin (1988), defined by its
/// quantiles
///   Q(p) = location + ((p^a - 1) / a - ((1 - p)^b - 1) / b) / steepness,
/// with the logarithm in the place of a power of exponent 0. Parameters: location, steepness (positive), a, b. Moments
/// of an order at or above -1 / min(a, b) do not exist where a or b is negative.
class RV_Lambda final : public RV_Typed<RV_Lambda, enums::RandomVariable::eType::LAMBDA> {
 public:
  using RV_Typed::RV_Typed;
  static void CheckParameters(const std::vector<double>& params);
  double Pdf(double x) const override;
  double Cdf(double x) const override;
  RVMoments Moments() const override;

 private:
  friend class boost::serialization::access;
  RV_Lambda() = default;
  double InverseCdf(double p, double complement) const override;
  /// log(p / (1 - p)) of the p whose quantile is x.
  double LogitOf(double x) const;
};

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_KEY2(kestrel::algorithm::RV_Lambda, "kestrel::algorithm::RV_Lambda")
