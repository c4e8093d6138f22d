#include <boost/math/constants/constants.hpp>
#include <cmath>
#include <string>

#include "random_variables/bounded_variables.h"
#include "random_variables/discrete_variables.h"
#include "random_variables/extreme_value_variables.h"
#include "random_variables/find_root.h"
#include "random_variables/lambda_variable.h"
#include "random_variables/normal_variables.h"
#include "random_variables/random_variable.h"
#include "support/exceptions.h"

namespace kestrel::algorithm {
namespace {

using eType = RV_Base::eType;

template <class Variable>
std::unique_ptr<RV_Base> Make(const std::vector<double>& params) {
  return std::make_unique<Variable>(params);
}

/// The shape of a Weibull (sign 1) or a Frechet variable (sign -1) with this coefficient of variation v:
///   v^2 = Gamma(1 + 2 s / shape) / Gamma(1 + s / shape)^2 - 1,  descending in the shape.
double ShapeOf(double variation, double sign, double lowest_shape) {
  constexpr double kLargestShape = 1e4;
  const auto squared_variation = [sign](double shape) {
    return std::expm1(std::lgamma(1.0 + 2.0 * sign / shape) - 2.0 * std::lgamma(1.0 + sign / shape));
  };
  const auto shortfall = [&](double log_shape) {
    return std::log(variation * variation) - std::log(squared_variation(std::exp(log_shape)));
  };
  const double shape = std::exp(FindRoot(shortfall, std::log(lowest_shape), std::log(kLargestShape)));
  if (!(shape > lowest_shape * 1.0001 && shape < kLargestShape * 0.9999)) {
    throw utils::runtime_error(L"There is no distribution of this type with this coefficient of variation.");
  }
  return shape;
}

std::vector<double> LognormalParameters(double mean, double stddev) {
  const double variance = std::log1p(std::pow(stddev / mean, 2));
  return {std::log(mean) - 0.5 * variance, std::sqrt(variance)};
}

std::vector<double> GumbelParameters(double mean, double stddev) {
  namespace constants = boost::math::double_constants;
  const double scale = stddev * std::sqrt(6.0) / constants::pi;
  return {mean - constants::euler * scale, scale};
}

/// Weibull and Frechet: shape and scale.
std::vector<double> ShapeAndScale(double mean, double stddev, double sign, double lowest_shape) {
  const double shape = ShapeOf(stddev / mean, sign, lowest_shape);
  return {shape, mean / std::tgamma(1.0 + sign / shape)};
}

void RequirePositiveMean(double mean) {
  if (!(mean > 0.0)) throw utils::runtime_error(L"A distribution of positive values needs a positive mean.");
}

}  // namespace

std::unique_ptr<RV_Base> MakeRandomVariable(eType type, const std::vector<double>& params) {
  switch (type) {
    case eType::UNIFORM: return Make<RV_Uniform>(params);
    case eType::NORMAL: return Make<RV_Normal>(params);
    case eType::TRUNCATEDNORMAL: return Make<RV_Truncatednormal>(params);
    case eType::LOGNORMAL: return Make<RV_Lognormal>(params);
    case eType::EXPONENTIAL: return Make<RV_Exponential>(params);
    case eType::TRIANGULAR: return Make<RV_Triangular>(params);
    case eType::WEIBULL: return Make<RV_Weibull>(params);
    case eType::GUMBEL: return Make<RV_Gumbel>(params);
    case eType::FRECHET: return Make<RV_Frechet>(params);
    case eType::POLYMAP: return Make<RV_Polymap>(params);
    case eType::KERNEL: return Make<RV_Kernel>(params);
    case eType::BERNOULLI: return Make<RV_Bernoulli>(params);
    case eType::BETA: return Make<RV_Beta>(params);
    case eType::LOGUNIFORM: return Make<RV_Loguniform>(params);
    case eType::DISCRETE: return Make<RV_GeneralDiscrete>(params);
    case eType::MULTIUNIFORM: return Make<RV_MultiUniform>(params);
    case eType::LAMBDA: return Make<RV_Lambda>(params);
  }
  throw utils::runtime_error(L"There is no distribution type " + std::to_wstring(static_cast<int>(type)) + L".");
}

std::vector<double> ParametersFromMoments(eType type, double mean, double stddev) {
  if (!std::isfinite(mean) || !std::isfinite(stddev) || !(stddev > 0.0)) {
    throw utils::runtime_error(L"A distribution needs a finite mean and a positive finite standard deviation.");
  }
  if (type == eType::LOGNORMAL || type == eType::WEIBULL || type == eType::FRECHET) RequirePositiveMean(mean);
  switch (type) {
    case eType::UNIFORM: return {mean - std::sqrt(3.0) * stddev, mean + std::sqrt(3.0) * stddev};
    case eType::NORMAL: return {mean, stddev};
    case eType::LOGNORMAL: return LognormalParameters(mean, stddev);
    case eType::EXPONENTIAL: return {1.0 / stddev, mean - stddev};
    case eType::GUMBEL: return GumbelParameters(mean, stddev);
    case eType::WEIBULL: return ShapeAndScale(mean, stddev, 1.0, 0.05);
    case eType::FRECHET: return ShapeAndScale(mean, stddev, -1.0, 2.000001);
    default: break;
  }
  throw utils::runtime_error(L"Mean and standard deviation do not determine a distribution of type " +
                             std::to_wstring(static_cast<int>(type)) + L".");
}

}  // namespace kestrel::algorithm
