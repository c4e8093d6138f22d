#include "random_variables/extreme_value_variables.h"

#include <cmath>

#include "persistence/archive/archives.h"
#include "random_variables/parameter_checks.h"

namespace kestrel::algorithm {

void RV_Exponential::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Exponential", params, 2);
  RequirePositive(L"Exponential", L"rate", params[0]);
}

void RV_Weibull::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Weibull", params, 2);
  RequirePositive(L"Weibull", L"shape", params[0]);
  RequirePositive(L"Weibull", L"scale", params[1]);
}

void RV_Gumbel::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Gumbel", params, 2);
  RequirePositive(L"Gumbel", L"scale", params[1]);
}

void RV_Frechet::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Frechet", params, 2);
  RequirePositive(L"Frechet", L"shape", params[0]);
  RequirePositive(L"Frechet", L"scale", params[1]);
}

double RV_Frechet::Pdf(double x) const {
  if (x <= 0.0) return 0.0;
  const double standard = x / Param(1);
  return Param(0) / Param(1) * std::exp(-std::pow(standard, -Param(0)) - (Param(0) + 1.0) * std::log(standard));
}

double RV_Frechet::Cdf(double x) const { return x <= 0.0 ? 0.0 : std::exp(-std::pow(x / Param(1), -Param(0))); }

double RV_Frechet::InverseCdf(double p, double complement) const {
  const double exponent = p < 0.5 ? -std::log(p) : -std::log1p(-complement);
  return Param(1) * std::pow(exponent, -1.0 / Param(0));
}

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Exponential)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Weibull)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Gumbel)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Frechet)
