#include "random_variables/discrete_variables.h"

#include <cmath>

#include "persistence/archive/archives.h"
#include "random_variables/parameter_checks.h"

namespace kestrel::algorithm {

void RV_Bernoulli::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Bernoulli", params, 1);
  Require(params[0] > 0.0 && params[0] < 1.0, L"Bernoulli", L"The probability must lie between 0 and 1.");
}

double RV_Bernoulli::Pdf(double x) const {
  if (x == 0.0) return 1.0 - Param(0);
  return x == 1.0 ? Param(0) : 0.0;
}

double RV_Bernoulli::Cdf(double x) const {
  if (x < 0.0) return 0.0;
  return x < 1.0 ? 1.0 - Param(0) : 1.0;
}

double RV_Bernoulli::InverseCdf(double p, double /*complement*/) const { return p <= 1.0 - Param(0) ? 0.0 : 1.0; }

RVMoments RV_Bernoulli::Moments() const {
  const double variance = Param(0) * (1.0 - Param(0));
  const double stddev = std::sqrt(variance);
  return {Param(0), stddev, (1.0 - 2.0 * Param(0)) / stddev, (1.0 - 6.0 * variance) / variance};
}

void RV_GeneralDiscrete::CheckParameters(const std::vector<double>& params) {
  constexpr const wchar_t* kName = L"Discrete";
  RequireGroups(kName, params, 0, 2);
  for (std::size_t i = 0; i < params.size(); i += 2) {
    RequirePositive(kName, L"weight", params[i + 1]);
    if (i > 0) RequireAscending(kName, L"values", params[i - 2], params[i]);
  }
}

double RV_GeneralDiscrete::TotalWeight() const {
  double total = 0.0;
  for (std::size_t i = 1; i < Parameters().size(); i += 2) total += Param(i);
  return total;
}

double RV_GeneralDiscrete::Pdf(double x) const {
  for (std::size_t i = 0; i < Parameters().size(); i += 2) {
    if (x == Param(i)) return Param(i + 1) / TotalWeight();
  }
  return 0.0;
}

double RV_GeneralDiscrete::Cdf(double x) const {
  double weight = 0.0;
  for (std::size_t i = 0; i < Parameters().size() && Param(i) <= x; i += 2) weight += Param(i + 1);
  return weight / TotalWeight();
}

double RV_GeneralDiscrete::InverseCdf(double p, double /*complement*/) const {
  const double total = TotalWeight();
  double weight = 0.0;
  for (std::size_t i = 0; i < Parameters().size(); i += 2) {
    weight += Param(i + 1);
    if (weight / total >= p) return Param(i);
  }
  return Param(Parameters().size() - 2);
}

RVMoments RV_GeneralDiscrete::Moments() const {
  double centre = 0.0;
  const auto central_moment = [&](int order) {
    double sum = 0.0;
    for (std::size_t i = 0; i < Parameters().size(); i += 2) sum += Param(i + 1) * std::pow(Param(i) - centre, order);
    return sum / TotalWeight();
  };
  centre = central_moment(1);
  const double variance = central_moment(2);
  const double stddev = std::sqrt(variance);
  return {centre, stddev, central_moment(3) / (variance * stddev), central_moment(4) / (variance * variance) - 3.0};
}

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Bernoulli)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_GeneralDiscrete)
