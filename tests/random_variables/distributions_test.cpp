#include <gtest/gtest.h>

#include <boost/serialization/unique_ptr.hpp>
#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "persistence/archive/archives.h"
#include "random_variables/random_variable.h"
#include "support/exceptions.h"

namespace kestrel::algorithm {
namespace {

using eType = enums::RandomVariable::eType;

struct Case {
  const char* name;
  eType type;
  std::vector<double> params;
  bool discrete = false;
};

class Distribution : public testing::TestWithParam<Case> {
 protected:
  std::unique_ptr<RV_Base> variable_ = MakeRandomVariable(GetParam().type, GetParam().params);
};

TEST_P(Distribution, CdfInvertsTheQuantile) {
  for (const double p : {1e-9, 1e-3, 0.1, 0.3, 0.5, 0.77, 0.95, 0.999}) {
    const double x = variable_->Quantile(p);
    if (GetParam().discrete) {
      EXPECT_GE(variable_->Cdf(x), p);
      EXPECT_LT(variable_->Cdf(x - 1e-9), p);
    } else {
      EXPECT_NEAR(variable_->Cdf(x), p, 1e-9 * p + 1e-15) << "p " << p;
    }
  }
  EXPECT_LE(variable_->Quantile(0.0), variable_->Quantile(1e-9));
  EXPECT_GE(variable_->Quantile(1.0), variable_->Quantile(0.999));
}

TEST_P(Distribution, PdfIsTheSlopeOfTheCdf) {
  for (const double p : {0.02, 0.2, 0.45, 0.6, 0.9}) {
    const double x = variable_->Quantile(p);
    const double h = 1e-5 * (1.0 + std::abs(x));
    const double rise = variable_->Cdf(x + h) - variable_->Cdf(x - h);
    EXPECT_NEAR(variable_->Pdf(x) * (GetParam().discrete ? 1.0 : 2.0 * h), rise, 1e-5 * rise) << "p " << p;
  }
}

TEST_P(Distribution, DensityVanishesOutsideTheSupport) {
  const double low = variable_->Quantile(0.0);
  const double high = variable_->Quantile(1.0);
  if (std::isfinite(low)) {
    EXPECT_EQ(variable_->Pdf(low - 1.0), 0.0);
    EXPECT_EQ(variable_->Cdf(low - 1.0), 0.0);
  }
  if (std::isfinite(high)) {
    EXPECT_EQ(variable_->Pdf(high + 1.0), 0.0);
    EXPECT_EQ(variable_->Cdf(high + 1.0), 1.0);
  }
}

// Midpoint rule over the quantile function on the scale of a standard normal variable: blind to how the class
// integrates.
TEST_P(Distribution, MomentsAreThoseOfTheQuantiles) {
  constexpr int kSteps = 50000;
  constexpr double kRange = 9.0;
  const RVMoments moments = variable_->Moments();
  double mass = 0.0;
  double sums[5] = {};
  for (int i = 0; i < kSteps; ++i) {
    const double u = kRange * ((2.0 * i + 1.0) / kSteps - 1.0);
    const double weight = std::exp(-0.5 * u * u);
    const double standard = (variable_->FromStandardNormal(u) - moments.mean) / moments.stddev;
    mass += weight;
    for (int order = 1; order <= 4; ++order) sums[order] += weight * std::pow(standard, order);
  }
  EXPECT_NEAR(sums[1] / mass, 0.0, 5e-4);
  EXPECT_NEAR(sums[2] / mass, 1.0, 5e-4);
  EXPECT_NEAR(sums[3] / mass, moments.skewness, 5e-4 * (1.0 + std::abs(moments.skewness)));
  EXPECT_NEAR(sums[4] / mass - 3.0, moments.kurtosis, 5e-4 * (1.0 + std::abs(moments.kurtosis)));
}

TEST_P(Distribution, SamplesHaveTheMeanAndTheDeviation) {
  constexpr int kCount = 40000;
  math::random::Generator generator = math::random::MakeStream(7, 1);
  const RVMoments moments = variable_->Moments();
  double sum = 0.0;
  double squares = 0.0;
  for (int i = 0; i < kCount; ++i) {
    const double standard = (variable_->Sample(generator) - moments.mean) / moments.stddev;
    sum += standard;
    squares += standard * standard;
  }
  const double deviation_of_variance = std::sqrt((moments.kurtosis + 2.0) / kCount);
  EXPECT_NEAR(sum / kCount, 0.0, 4.0 / std::sqrt(kCount));
  EXPECT_NEAR(squares / kCount, 1.0, 4.0 * deviation_of_variance);
}

TEST_P(Distribution, StandardNormalMapReturns) {
  if (GetParam().discrete) return;
  for (const double u : {-6.0, -1.5, 0.0, 0.4, 3.0, 5.0}) {
    EXPECT_NEAR(variable_->ToStandardNormal(variable_->FromStandardNormal(u)), u, 1e-6);
  }
}

TEST_P(Distribution, IsReadAsItWasStored) {
  std::stringstream stream;
  {
    portable_binary_oarchive archive(stream);
    archive << boost::serialization::make_nvp("variable", variable_);
  }
  const std::string stored = stream.str();
  std::unique_ptr<RV_Base> read;
  portable_binary_iarchive archive(stream, 0x100000);
  archive >> boost::serialization::make_nvp("variable", read);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(*read, *variable_);
  EXPECT_EQ(*read->Clone(), *variable_);
  EXPECT_NE(stored.find("kestrel::algorithm::RV_"), std::string::npos);
}

TEST_P(Distribution, RefusesParametersThatAreNotFinite) {
  for (std::size_t i = 0; i < GetParam().params.size(); ++i) {
    for (const double fault : {std::nan(""), std::numeric_limits<double>::infinity()}) {
      std::vector<double> params = GetParam().params;
      params[i] = fault;
      EXPECT_THROW(MakeRandomVariable(GetParam().type, params), utils::runtime_error);
    }
  }
  EXPECT_THROW(MakeRandomVariable(GetParam().type, {}), utils::runtime_error);
}

INSTANTIATE_TEST_SUITE_P(
    All, Distribution,
    testing::Values(Case{"Uniform", eType::UNIFORM, {-2.0, 5.0}}, Case{"Normal", eType::NORMAL, {3.0, 0.5}},
                    Case{"Truncatednormal", eType::TRUNCATEDNORMAL, {1.0, 2.0, 0.0, 4.0}},
                    Case{"TruncatednormalUpperTail", eType::TRUNCATEDNORMAL, {0.0, 1.0, 3.0, 20.0}},
                    Case{"TruncatednormalLowerTail", eType::TRUNCATEDNORMAL, {0.0, 1.0, -20.0, -3.0}},
                    Case{"Lognormal", eType::LOGNORMAL, {0.3, 0.4}},
                    Case{"Exponential", eType::EXPONENTIAL, {2.0, 1.0}},
                    Case{"Triangular", eType::TRIANGULAR, {-1.0, 0.0, 4.0}},
                    Case{"Weibull", eType::WEIBULL, {2.0, 3.0}}, Case{"Gumbel", eType::GUMBEL, {1.0, 0.7}},
                    Case{"Frechet", eType::FRECHET, {9.0, 2.0}}, Case{"Polymap", eType::POLYMAP, {1.0, 1.0, 0.0, 0.1}},
                    Case{"Kernel", eType::KERNEL, {0.3, 1.0, -0.5, 2.5}},
                    Case{"Bernoulli", eType::BERNOULLI, {0.3}, true}, Case{"Beta", eType::BETA, {2.0, 3.5, -1.0, 1.0}},
                    Case{"Loguniform", eType::LOGUNIFORM, {0.1, 10.0}},
                    Case{"Discrete", eType::DISCRETE, {-1.0, 1.0, 0.5, 2.0, 4.0, 1.0}, true},
                    Case{"Multiuniform", eType::MULTIUNIFORM, {0.0, 1.0, 1.0, 1.5, 2.0, 3.0}},
                    Case{"Lambda", eType::LAMBDA, {1.0, 2.0, 0.2, 0.1}},
                    Case{"LambdaLogistic", eType::LAMBDA, {0.0, 1.0, 0.0, 0.0}}),
    [](const testing::TestParamInfo<Case>& test) { return std::string(test.param.name); });

TEST(RandomVariableFactory, RefusesParametersOutsideTheirRange) {
  const struct {
    eType type;
    std::vector<double> params;
    std::wstring text;
  } cases[] = {
      {eType::UNIFORM, {1.0, 1.0}, L"Uniform distribution: The bounds must be in ascending order."},
      {eType::NORMAL, {1.0, 0.0}, L"Normal distribution: The standard deviation must be positive."},
      {eType::NORMAL, {1.0, 1.0, 1.0}, L"Normal distribution: 2 parameter(s) expected, got 3."},
      {eType::TRUNCATEDNORMAL,
       {0.0, 1.0, 50.0, 60.0},
       L"Truncated normal distribution: There is no probability between the bounds."},
      {eType::TRIANGULAR, {0.0, 2.0, 1.0}, L"Triangular distribution: The mode must lie between the bounds."},
      {eType::BERNOULLI, {1.0}, L"Bernoulli distribution: The probability must lie between 0 and 1."},
      {eType::POLYMAP, {0.0, 1.0, 1.0}, L"Polymap distribution: The polynomial must increase."},
      {eType::KERNEL, {1.0}, L"Kernel distribution: 1 is not a possible number of parameters."},
      {eType::DISCRETE, {1.0, 1.0, 1.0, 1.0}, L"Discrete distribution: The values must be in ascending order."},
      {eType::MULTIUNIFORM,
       {0.0, 2.0, 1.0, 1.0, 3.0, 1.0},
       L"Multi-uniform distribution: The intervals must be in ascending order."},
      {static_cast<eType>(17), {1.0}, L"There is no distribution type 17."},
  };
  for (const auto& refused : cases) {
    try {
      MakeRandomVariable(refused.type, refused.params);
      ADD_FAILURE() << "accepted type " << refused.type;
    } catch (const utils::runtime_error& error) {
      EXPECT_EQ(error.What(), refused.text);
    }
  }
}

TEST(RandomVariableFactory, MomentsGiveTheParameters) {
  for (const eType type : {eType::UNIFORM, eType::NORMAL, eType::LOGNORMAL, eType::EXPONENTIAL, eType::WEIBULL,
                           eType::GUMBEL, eType::FRECHET}) {
    for (const double stddev : {0.02, 0.5, 3.0}) {
      const RVMoments moments = MakeRandomVariable(type, ParametersFromMoments(type, 2.0, stddev))->Moments();
      EXPECT_NEAR(moments.mean, 2.0, 1e-6) << "type " << type;
      EXPECT_NEAR(moments.stddev, stddev, 1e-4 * stddev) << "type " << type;
    }
  }
  EXPECT_THROW(ParametersFromMoments(eType::LOGNORMAL, -1.0, 1.0), utils::runtime_error);
  EXPECT_THROW(ParametersFromMoments(eType::WEIBULL, 1.0, 1e-9), utils::runtime_error);
  EXPECT_THROW(ParametersFromMoments(eType::BETA, 1.0, 1.0), utils::runtime_error);
}

TEST(Frechet, HigherMomentsNeedAHigherShape) {
  const RVMoments moments = MakeRandomVariable(eType::FRECHET, {2.5, 1.0})->Moments();
  EXPECT_NEAR(moments.mean, std::tgamma(1.0 - 1.0 / 2.5), 1e-9);
  EXPECT_TRUE(std::isfinite(moments.stddev));
  EXPECT_TRUE(std::isnan(moments.skewness) && std::isnan(moments.kurtosis));
  EXPECT_TRUE(std::isinf(MakeRandomVariable(eType::FRECHET, {1.5, 1.0})->Moments().stddev));
}

TEST(Quantile, RefusesWhatIsNoProbability) {
  const auto normal = MakeRandomVariable(eType::NORMAL, {0.0, 1.0});
  for (const double p : {-0.1, 1.1, std::nan("")}) EXPECT_THROW(normal->Quantile(p), utils::runtime_error);
}

}  // namespace
}  // namespace kestrel::algorithm
