#include "random_variables/lambda_variable.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "persistence/archive/archives.h"
#include "random_variables/find_root.h"
#include "random_variables/parameter_checks.h"

namespace kestrel::algorithm {
namespace {

constexpr double kLargestLogit = 700.0;  // where the smaller of p and 1 - p comes near to the smallest double

/// (p^exponent - 1) / exponent, continuous at exponent 0.
double PowerTerm(double p, double exponent) {
  return exponent == 0.0 ? std::log(p) : std::expm1(exponent * std::log(p)) / exponent;
}

double Logistic(double t) { return 1.0 / (1.0 + std::exp(-t)); }

}  // namespace

void RV_Lambda::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Lambda", params, 4);
  RequirePositive(L"Lambda", L"steepness", params[1]);
}

double RV_Lambda::InverseCdf(double p, double complement) const {
  return Param(0) + (PowerTerm(p, Param(2)) - PowerTerm(complement, Param(3))) / Param(1);
}

double RV_Lambda::LogitOf(double x) const {
  // Heavy tails overflow; between -1 and 1 the search keeps its interpolation.
  const auto bounded_distance = [&](double t) {
    const double distance = InverseCdf(Logistic(t), Logistic(-t)) - x;
    return std::isfinite(distance) ? distance / (1.0 + std::abs(distance)) : std::copysign(1.0, distance);
  };
  return FindRoot(bounded_distance, -kLargestLogit, kLargestLogit);
}

double RV_Lambda::Cdf(double x) const {
  const double t = LogitOf(x);
  return std::abs(t) < kLargestLogit ? Logistic(t) : (t < 0.0 ? 0.0 : 1.0);
}

double RV_Lambda::Pdf(double x) const {
  const double t = LogitOf(x);
  if (!(std::abs(t) < kLargestLogit)) return 0.0;
  return Param(1) / (std::pow(Logistic(t), Param(2) - 1.0) + std::pow(Logistic(-t), Param(3) - 1.0));
}

RVMoments RV_Lambda::Moments() const {
  const double heavier_tail = std::min(Param(2), Param(3));
  return IntegratedMoments(heavier_tail < 0.0 ? -1.0 / heavier_tail : std::numeric_limits<double>::infinity());
}

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Lambda)
