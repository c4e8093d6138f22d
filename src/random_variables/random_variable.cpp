#include "random_variables/random_variable.h"

#include <algorithm>
#include <boost/math/distributions/normal.hpp>
#include <boost/math/quadrature/tanh_sinh.hpp>
#include <boost/random/uniform_01.hpp>
#include <boost/serialization/vector.hpp>
#include <cmath>
#include <limits>

#include "persistence/archive/archives.h"
#include "support/exceptions.h"

namespace kestrel::algorithm {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kSmallestProbability = std::numeric_limits<double>::min();
constexpr double kRoundingUnit = std::numeric_limits<double>::epsilon() / 2.0;

double NormalCdf(double u) { return boost::math::cdf(boost::math::normal(), u); }

}  // namespace

double RV_Base::Quantile(double p) const {
  if (!(p >= 0.0 && p <= 1.0)) throw utils::runtime_error(L"A probability must be a number from 0 to 1.");
  return InverseCdf(p, 1.0 - p);
}

RVMoments RV_Base::Moments() const { return IntegratedMoments(kInfinity); }

RVMoments RV_Base::IntegratedMoments(double limit) const {
  boost::math::quadrature::tanh_sinh<double> rule;
  double centre = 0.0;
  const auto central_moment = [&](int order) {
    // The rule gives the distance to the nearer end beside x: so the upper tail keeps its digits.
    const auto integrand = [&](double p, double to_end) {
      const bool lower_half = p < 0.5;
      return std::pow(InverseCdf(p, lower_half ? 1.0 - p : std::abs(to_end)) - centre, order);
    };
    return order < limit ? rule.integrate(integrand, 0.0, 1.0) : kNan;
  };
  centre = limit > 1.0 ? central_moment(1) : kInfinity;
  const double variance = limit > 2.0 ? central_moment(2) : kInfinity;
  const double stddev = std::sqrt(variance);
  return {centre, stddev, central_moment(3) / (variance * stddev), central_moment(4) / (variance * variance) - 3.0};
}

double RV_Base::Sample(math::random::Generator& generator) const {
  const double p = boost::random::uniform_01<double>()(generator);
  return InverseCdf(std::max(p, kRoundingUnit), 1.0 - std::max(p, kRoundingUnit));
}

double RV_Base::ToStandardNormal(double x) const {
  return boost::math::quantile(boost::math::normal(), std::clamp(Cdf(x), kSmallestProbability, 1.0 - kRoundingUnit));
}

double RV_Base::FromStandardNormal(double u) const {
  return InverseCdf(std::max(NormalCdf(u), kSmallestProbability), std::max(NormalCdf(-u), kSmallestProbability));
}

template <class Archive>
void RV_Base::serialize(Archive& archive, unsigned int /*version*/) {
  archive& boost::serialization::make_nvp("params_", params_);
}

}  // namespace kestrel::algorithm

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::RV_Base)
