#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "persistence/archive/persistent.h"
#include "random_variables/random_variable_type.h"
#include "statistics/random.h"

namespace kestrel::algorithm {

/// Mean and standard deviation in units of the variable; skewness and excess kurtosis (0 for a normal variable) without
/// unit. Infinite or NaN where the distribution has none.
struct RVMoments {
  double mean;
  double stddev;
  double skewness;
  double kurtosis;
};

/// A scalar random variable, defined by its type and a vector of parameters whose order each class states. It never
/// changes; a class's constructor checks the parameters and raises utils::runtime_error.
class RV_Base {
 public:
  using eType = enums::RandomVariable::eType;

  virtual ~RV_Base() = default;

  virtual eType Type() const = 0;
  virtual std::unique_ptr<RV_Base> Clone() const = 0;
  const std::vector<double>& Parameters() const { return params_; }

  /// Density at x; the probability of x itself where the variable is discrete.
  virtual double Pdf(double x) const = 0;
  /// Probability of a value up to and with x.
  virtual double Cdf(double x) const = 0;
  /// The smallest x with Cdf(x) >= p. Raises utils::runtime_error for p outside [0, 1]; 0 and 1 give the ends of the
  /// support, which may be infinite.
  double Quantile(double p) const;
  virtual RVMoments Moments() const;

  /// One value by inversion.
  double Sample(math::random::Generator& generator) const;

  /// The isoprobabilistic map u = Phi^-1(Cdf(x)) to a standard normal variable, and its inverse. Probabilities are kept
  /// away from 0 and 1, so that finite values stay finite; above u = 8 a Cdf has no digits left.
  double ToStandardNormal(double x) const;
  double FromStandardNormal(double u) const;

  bool operator==(const RV_Base& other) const { return Type() == other.Type() && params_ == other.params_; }
  bool operator!=(const RV_Base& other) const { return !(*this == other); }

 protected:
  RV_Base() = default;
  explicit RV_Base(std::vector<double> params) : params_(std::move(params)) {}
  RV_Base(const RV_Base&) = default;
  RV_Base& operator=(const RV_Base&) = default;

  /// Quantile at p with 1 - p given beside it, which near 1 has digits that p has not.
  virtual double InverseCdf(double p, double complement) const = 0;
  /// The moments of an order below `limit`, those that exist, by integration of the quantile function.
  RVMoments IntegratedMoments(double limit) const;
  double Param(std::size_t index) const { return params_[index]; }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  std::vector<double> params_;
};

/// The distribution of a type with these parameters. Raises utils::runtime_error for a type that does not exist, a
/// wrong number of parameters and values that the distribution refuses.
std::unique_ptr<RV_Base> MakeRandomVariable(RV_Base::eType type, const std::vector<double>& params);

/// The parameters that give a distribution this mean and standard deviation, for the types that two moments determine:
/// uniform, normal, lognormal, exponential, Weibull, Gumbel, Frechet. Others, and moments that the type cannot have,
/// raise utils::runtime_error.
std::vector<double> ParametersFromMoments(RV_Base::eType type, double mean, double stddev);

}  // namespace kestrel::algorithm
