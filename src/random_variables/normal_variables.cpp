#include "random_variables/normal_variables.h"

#include <algorithm>
#include <cmath>

#include "persistence/archive/archives.h"
#include "random_variables/find_root.h"
#include "random_variables/parameter_checks.h"

namespace kestrel::algorithm {
namespace {

using StandardNormal = boost::math::normal_distribution<double, DistributionPolicy>;

constexpr double kLargestNormal = 9.0;  // where the polynomial map ends

double NormalPdf(double z) { return boost::math::pdf(StandardNormal(), z); }
double NormalCdf(double z) { return boost::math::cdf(StandardNormal(), z); }

/// The standard normal quantile from the smaller of p and 1 - p.
double NormalQuantile(double p, double complement) {
  return p < complement ? boost::math::quantile(StandardNormal(), p)
                        : -boost::math::quantile(StandardNormal(), complement);
}

/// A truncated normal variable in standard form, mirrored if needed so that its probability lies in the lower tail,
/// where differences of the distribution function keep their digits.
struct StandardTruncation {
  explicit StandardTruncation(const std::vector<double>& params)
      : mirrored(params[2] > params[0]),
        low((mirrored ? params[0] - params[3] : params[2] - params[0]) / params[1]),
        high((mirrored ? params[0] - params[2] : params[3] - params[0]) / params[1]),
        below(NormalCdf(low)),
        mass(NormalCdf(high) - below) {}

  bool mirrored;
  double low;
  double high;
  double below;
  double mass;
};

double Polynomial(const std::vector<double>& coefficients, double z) {
  double value = 0.0;
  for (auto c = coefficients.rbegin(); c != coefficients.rend(); ++c) value = value * z + *c;
  return value;
}

double Derivative(const std::vector<double>& coefficients, double z) {
  double value = 0.0;
  for (std::size_t i = coefficients.size() - 1; i > 0; --i)
    value = value * z + static_cast<double>(i) * coefficients[i];
  return value;
}

}  // namespace

void RV_Normal::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Normal", params, 2);
  RequirePositive(L"Normal", L"standard deviation", params[1]);
}

void RV_Lognormal::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Lognormal", params, 2);
  RequirePositive(L"Lognormal", L"standard deviation of the logarithm", params[1]);
}

void RV_Truncatednormal::CheckParameters(const std::vector<double>& params) {
  RequireCount(L"Truncated normal", params, 4);
  RequirePositive(L"Truncated normal", L"standard deviation", params[1]);
  RequireAscending(L"Truncated normal", L"bounds", params[2], params[3]);
  Require(StandardTruncation(params).mass > 0.0, L"Truncated normal", L"There is no probability between the bounds.");
}

double RV_Truncatednormal::Pdf(double x) const {
  if (x < Param(2) || x > Param(3)) return 0.0;
  return NormalPdf((x - Param(0)) / Param(1)) / (Param(1) * StandardTruncation(Parameters()).mass);
}

double RV_Truncatednormal::Cdf(double x) const {
  if (x <= Param(2)) return 0.0;
  if (x >= Param(3)) return 1.0;
  const StandardTruncation standard(Parameters());
  const double z = (x - Param(0)) / Param(1);
  const double part = (NormalCdf(standard.mirrored ? -z : z) - standard.below) / standard.mass;
  return standard.mirrored ? 1.0 - part : part;
}

double RV_Truncatednormal::InverseCdf(double p, double complement) const {
  const StandardTruncation standard(Parameters());
  const double below = standard.below + (standard.mirrored ? complement : p) * standard.mass;
  const double above = NormalCdf(-standard.high) + (standard.mirrored ? p : complement) * standard.mass;
  const double z = NormalQuantile(below, above);
  return std::clamp(Param(0) + Param(1) * (standard.mirrored ? -z : z), Param(2), Param(3));
}

void RV_Polymap::CheckParameters(const std::vector<double>& params) {
  RequireGroups(L"Polymap", params, 1, 1);
  constexpr int kSteps = 3600;
  for (int i = 0; i <= kSteps; ++i) {
    const double z = kLargestNormal * (2.0 * i / kSteps - 1.0);
    Require(Derivative(params, z) > 0.0, L"Polymap", L"The polynomial must increase.");
  }
}

double RV_Polymap::NormalOf(double x) const {
  return FindRoot([&](double z) { return Polynomial(Parameters(), z) - x; }, -kLargestNormal, kLargestNormal);
}

double RV_Polymap::Pdf(double x) const {
  const double z = NormalOf(x);
  return std::abs(z) < kLargestNormal ? NormalPdf(z) / Derivative(Parameters(), z) : 0.0;
}

double RV_Polymap::Cdf(double x) const {
  const double z = NormalOf(x);
  return std::abs(z) < kLargestNormal ? NormalCdf(z) : (z < 0.0 ? 0.0 : 1.0);
}

double RV_Polymap::InverseCdf(double p, double complement) const {
  return Polynomial(Parameters(), std::clamp(NormalQuantile(p, complement), -kLargestNormal, kLargestNormal));
}

void RV_Kernel::CheckParameters(const std::vector<double>& params) {
  RequireGroups(L"Kernel", params, 1, 1);
  RequirePositive(L"Kernel", L"bandwidth", params[0]);
}

template <class Function>
double RV_Kernel::SampleMean(const Function& function) const {
  double sum = 0.0;
  for (auto sample = Parameters().begin() + 1; sample != Parameters().end(); ++sample) sum += function(*sample);
  return sum / static_cast<double>(Parameters().size() - 1);
}

double RV_Kernel::Pdf(double x) const {
  return SampleMean([&](double sample) { return NormalPdf((x - sample) / Param(0)); }) / Param(0);
}

double RV_Kernel::Cdf(double x) const {
  return SampleMean([&](double sample) { return NormalCdf((x - sample) / Param(0)); });
}

double RV_Kernel::InverseCdf(double p, double complement) const {
  // The quantile of a mixture lies between the smallest and the largest quantile of its parts.
  const auto [lowest, highest] = std::minmax_element(Parameters().begin() + 1, Parameters().end());
  const double offset = Param(0) * NormalQuantile(p, complement);
  if (!std::isfinite(offset)) return offset;
  const auto excess = [&](double x) {
    if (p < complement) return Cdf(x) - p;
    return complement - SampleMean([&](double sample) { return NormalCdf((sample - x) / Param(0)); });
  };
  return FindRoot(excess, *lowest + offset, *highest + offset);
}

RVMoments RV_Kernel::Moments() const {
  const double variance_of_kernel = Param(0) * Param(0);
  const double mean = SampleMean([](double sample) { return sample; });
  const auto central = [&](int order) { return SampleMean([&](double s) { return std::pow(s - mean, order); }); };
  const double variance = central(2) + variance_of_kernel;
  const double stddev = std::sqrt(variance);
  const double fourth =
      central(4) + 6.0 * variance_of_kernel * central(2) + 3.0 * variance_of_kernel * variance_of_kernel;
  return {mean, stddev, central(3) / (variance * stddev), fourth / (variance * variance) - 3.0};
}

}  // namespace kestrel::algorithm

BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Normal)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Truncatednormal)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Lognormal)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Polymap)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::algorithm::RV_Kernel)
