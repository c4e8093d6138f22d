#include "random_variables/bounded_variables.h"

#include <algorithm>
#include <cmath>

#include "persistence/archive/archives.h"
#include "random_variables/parameter_checks.h"

namespace kestrel::algorithm {

void RV_Uniform::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Uniform", params, 2);
  RequireAscending(L"Uniform", L"bounds", params[0], params[1]);
}

void RV_Triangular::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Triangular", params, 3);
  RequireAscending(L"Triangular", L"bounds", params[0], params[2]);
  Require(params[0] <= params[1] && params[1] <= params[2], L"Triangular", L"The mode must lie between the bounds.");
}

void RV_Beta::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Beta", params, 4);
  RequirePositive(L"Beta", L"first shape", params[0]);
  RequirePositive(L"Beta", L"second shape", params[1]);
  RequireAscending(L"Beta", L"bounds", params[2], params[3]);
}

void RV_Loguniform::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Loguniform", params, 2);
  RequirePositive(L"Loguniform", L"lower bound", params[0]);
  RequireAscending(L"Loguniform", L"bounds", params[0], params[1]);
}

double RV_Loguniform::Pdf(double x) const {
  return x < Param(0) || x > Param(1) ? 0.0 : 1.0 / (x * std::log(Param(1) / Param(0)));
}

double RV_Loguniform::Cdf(double x) const {
  if (x <= Param(0)) return 0.0;
  return x >= Param(1) ? 1.0 : std::log(x / Param(0)) / std::log(Param(1) / Param(0));
}

double RV_Loguniform::InverseCdf(double p, double complement) const {
  return std::pow(Param(0), complement) * std::pow(Param(1), p);
}

void RV_MultiUniform::CheckParameters(const std::vector<double>& params) {
  constexpr const wchar_t* kName = L"Multi-uniform";
  RequireGroups(kName, params, 0, 3);
  for (std::size_t i = 0; i < params.size(); i += 3) {
    RequireAscending(kName, L"bounds of an interval", params[i], params[i + 1]);
    RequirePositive(kName, L"weight", params[i + 2]);
    Require(i == 0 || params[i - 2] <= params[i], kName, L"The intervals must be in ascending order.");
  }
}

double RV_MultiUniform::TotalWeight() const {
  double total = 0.0;
  for (std::size_t i = 0; i < Parameters().size(); i += 3) total += Param(i + 2);
  return total;
}

double RV_MultiUniform::Pdf(double x) const {
  for (std::size_t i = 0; i < Parameters().size(); i += 3) {
    if (x >= Param(i) && x <= Param(i + 1)) return Param(i + 2) / (TotalWeight() * (Param(i + 1) - Param(i)));
  }
  return 0.0;
}

double RV_MultiUniform::Cdf(double x) const {
  double weight = 0.0;
  for (std::size_t i = 0; i < Parameters().size(); i += 3) {
    weight += Param(i + 2) * std::clamp((x - Param(i)) / (Param(i + 1) - Param(i)), 0.0, 1.0);
  }
  return weight / TotalWeight();
}

double RV_MultiUniform::InverseCdf(double p, double /*complement*/) const {
  double rest = p * TotalWeight();
  for (std::size_t i = 0; i < Parameters().size(); i += 3) {
    if (rest <= Param(i + 2)) return Param(i) + (Param(i + 1) - Param(i)) * (rest / Param(i + 2));
    rest -= Param(i + 2);
  }
  return Param(Parameters().size() - 2);
}

RVMoments RV_MultiUniform::Moments() const {
  double centre = 0.0;
  const auto central_moment = [&](int order) {
    double sum = 0.0;
    for (std::size_t i = 0; i < Parameters().size(); i += 3) {
      const double low = Param(i) - centre;
      const double high = Param(i + 1) - centre;
      sum += Param(i + 2) * (std::pow(high, order + 1) - std::pow(low, order + 1)) / ((order + 1) * (high - low));
    }
    return sum / TotalWeight();
  };
  centre = central_moment(1);
  const double variance = central_moment(2);
  const double stddev = std::sqrt(variance);
  return {centre, stddev, central_moment(3) / (variance * stddev), central_moment(4) / (variance * variance) - 3.0};
}

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Uniform)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Triangular)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Beta)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Loguniform)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_MultiUniform)
