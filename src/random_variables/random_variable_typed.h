#pragma once

#include <boost/math/distributions/complement.hpp>
#include <boost/math/policies/policy.hpp>
#include <boost/serialization/base_object.hpp>
#include <boost/serialization/nvp.hpp>
#include <utility>
#include <vector>

#include "random_variables/random_variable.h"

namespace kestrel::algorithm {

/// What every distribution has in common. `Derived` states the checks of its parameters as the static function
/// `CheckParameters(const std::vector<double>&)`, which raises utils::runtime_error; they run when a variable is made
/// and when it is read.
template <class Derived, RV_Base::eType kType>
class RV_Typed : public RV_Base {
 public:
  explicit RV_Typed(std::vector<double> params) : RV_Base(std::move(params)) { Derived::CheckParameters(Parameters()); }

  eType Type() const override { return kType; }
  std::unique_ptr<RV_Base> Clone() const override { return std::make_unique<Derived>(This()); }

 protected:
  RV_Typed() = default;
  const Derived& This() const { return static_cast<const Derived&>(*this); }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int /*version*/) {
    archive& boost::serialization::make_nvp("RV_Base",
                                            boost::serialization::base_object<RV_Base>(static_cast<Derived&>(*this)));
    if constexpr (Archive::is_loading::value) Derived::CheckParameters(Parameters());
  }
};

/// Densities that are infinite at an end of the support, and ends at infinity, are values and no errors.
using DistributionPolicy =
    boost::math::policies::policy<boost::math::policies::overflow_error<boost::math::policies::ignore_error>>;

/// A distribution of Boost.Math behind the interface of a random variable. `Derived` makes it as `Distribution()` from
/// its parameters; the variable is Shift() + Scale() times what that describes.
template <class Derived, RV_Base::eType kType>
class RV_FromBoost : public RV_Typed<Derived, kType> {
 public:
  using RV_Typed<Derived, kType>::RV_Typed;

  double Pdf(double x) const override {
    const auto distribution = this->This().Distribution();
    const double standard = Standardised(x);
    const auto [lowest, highest] = support(distribution);
    return standard < lowest || standard > highest ? 0.0 : pdf(distribution, standard) / this->This().Scale();
  }
  double Cdf(double x) const override {
    const auto distribution = this->This().Distribution();
    const double standard = Standardised(x);
    const auto [lowest, highest] = support(distribution);
    if (standard <= lowest) return 0.0;
    return standard >= highest ? 1.0 : cdf(distribution, standard);
  }
  RVMoments Moments() const override {
    const auto distribution = this->This().Distribution();
    const double scale = this->This().Scale();
    return {this->This().Shift() + scale * mean(distribution), scale * standard_deviation(distribution),
            skewness(distribution), kurtosis_excess(distribution)};
  }
  double Shift() const { return 0.0; }
  double Scale() const { return 1.0; }

 protected:
  RV_FromBoost() = default;
  double InverseCdf(double p, double complement_of_p) const override {
    const auto distribution = this->This().Distribution();
    const double standard =
        p < 0.5 ? quantile(distribution, p) : quantile(boost::math::complement(distribution, complement_of_p));
    return this->This().Shift() + this->This().Scale() * standard;
  }

 private:
  double Standardised(double x) const { return (x - this->This().Shift()) / this->This().Scale(); }
};

}  // namespace kestrel::algorithm
