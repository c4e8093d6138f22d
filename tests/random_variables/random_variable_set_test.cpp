#include "random_variables/random_variable_set.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "persistence/archive/archives.h"
#include "support/exceptions.h"

namespace kestrel::algorithm {
namespace {

using eType = enums::RandomVariable::eType;
using math::Matrix;
using math::Vector;

Matrix PairCorrelation(double correlation) { return (Matrix(2, 2) << 1.0, correlation, correlation, 1.0).finished(); }

RVSet_Base::Variables Pair(eType type, std::vector<double> first, std::vector<double> second) {
  return {MakeRandomVariable(type, first), MakeRandomVariable(type, second)};
}

// Closed forms of Liu and Der Kiureghian (1986); v the coefficient of variation of a lognormal variable.
TEST(Nataf, NormalCorrelationsFollowTheClosedForms) {
  const double sigma[] = {0.3, 0.8};
  for (const double rho : {-0.5, 0.0, 0.3, 0.9}) {
    const RVSet_Nataf normal(Pair(eType::NORMAL, {1.0, 2.0}, {-3.0, 0.1}), PairCorrelation(rho));
    EXPECT_NEAR(normal.NormalCorrelation()(0, 1), rho, 1e-12);

    const RVSet_Nataf uniform(Pair(eType::UNIFORM, {1.0, 2.0}, {-3.0, 0.1}), PairCorrelation(rho));
    EXPECT_NEAR(uniform.NormalCorrelation()(1, 0), 2.0 * std::sin(M_PI / 6.0 * rho), 1e-9);

    const RVSet_Nataf lognormal(Pair(eType::LOGNORMAL, {0.0, sigma[0]}, {2.0, sigma[1]}), PairCorrelation(rho));
    const double v1 = std::sqrt(std::expm1(sigma[0] * sigma[0]));
    const double v2 = std::sqrt(std::expm1(sigma[1] * sigma[1]));
    EXPECT_NEAR(lognormal.NormalCorrelation()(0, 1), std::log1p(rho * v1 * v2) / (sigma[0] * sigma[1]), 1e-9);
  }
}

TEST(Nataf, SamplesHaveThePrescribedCorrelation) {
  constexpr math::Index kCount = 40000;
  const RVSet_Nataf set(
      {MakeRandomVariable(eType::GUMBEL, {0.0, 1.0}), MakeRandomVariable(eType::EXPONENTIAL, {1.0, 0.0}),
       MakeRandomVariable(eType::BETA, {2.0, 5.0, 0.0, 1.0})},
      (Matrix(3, 3) << 1.0, 0.6, -0.4, 0.6, 1.0, 0.0, -0.4, 0.0, 1.0).finished());
  math::random::Generator generator = math::random::MakeStream(3, 1);
  const Matrix points = set.Sample(kCount, generator);
  const Matrix centred = points.rowwise() - points.colwise().mean();
  const Matrix covariance = centred.transpose() * centred / static_cast<double>(kCount);
  const Vector scale = covariance.diagonal().cwiseSqrt().cwiseInverse();
  EXPECT_LT((scale.asDiagonal() * covariance * scale.asDiagonal() - set.Correlation()).cwiseAbs().maxCoeff(), 0.02);

  const Vector x = points.row(5).transpose();
  EXPECT_LT((set.FromStandardNormal(set.ToStandardNormal(x)) - x).cwiseAbs().maxCoeff(), 1e-9);
}

TEST(Nataf, RefusesCorrelationsThatCannotBe) {
  const auto normals = Pair(eType::NORMAL, {0.0, 1.0}, {0.0, 1.0});
  const auto lognormals = Pair(eType::LOGNORMAL, {0.0, 1.5}, {0.0, 1.5});
  EXPECT_THROW(RVSet_Nataf(normals, Matrix::Identity(3, 3)), utils::runtime_error);
  EXPECT_THROW(RVSet_Nataf(normals, PairCorrelation(1.0)), utils::runtime_error);
  EXPECT_THROW(RVSet_Nataf(normals, PairCorrelation(std::nan(""))), utils::runtime_error);
  EXPECT_THROW(RVSet_Nataf(normals, (Matrix(2, 2) << 1.0, 0.1, 0.2, 1.0).finished()), utils::runtime_error);
  EXPECT_THROW(RVSet_Nataf(lognormals, PairCorrelation(-0.5)), utils::runtime_error);  // at the least -0.1
  EXPECT_THROW(RVSet_Nataf({normals[0], nullptr}, PairCorrelation(0.1)), utils::runtime_error);
  auto three = normals;
  three.push_back(normals[0]);
  const Matrix indefinite = (Matrix(3, 3) << 1.0, 0.9, -0.9, 0.9, 1.0, 0.9, -0.9, 0.9, 1.0).finished();
  EXPECT_THROW(RVSet_Nataf(three, indefinite), utils::runtime_error);
  EXPECT_THROW(RVSet_Independent(normals).ToStandardNormal(Vector::Zero(3)), utils::runtime_error);
}

TEST(RandomVariableSets, AreReadAsTheyWereStored) {
  const auto variables = Pair(eType::WEIBULL, {2.0, 1.0}, {3.0, 2.0});
  const std::shared_ptr<RVSet_Base> sets[] = {std::make_shared<RVSet_Independent>(variables),
                                              std::make_shared<RVSet_Nataf>(variables, PairCorrelation(0.4))};
  for (const std::shared_ptr<RVSet_Base>& set : sets) {
    std::stringstream stream;
    {
      portable_binary_oarchive archive(stream);
      archive << boost::serialization::make_nvp("set", set);
    }
    std::shared_ptr<RVSet_Base> read;
    portable_binary_iarchive archive(stream, 0x100000);
    archive >> boost::serialization::make_nvp("set", read);
    ASSERT_EQ(read->Size(), 2);
    EXPECT_EQ(read->Variable(1), *variables[1]);
    EXPECT_EQ(read->Correlation(), set->Correlation());
    const Vector u = Vector::Constant(2, 0.7);
    EXPECT_EQ(read->FromStandardNormal(u), set->FromStandardNormal(u));
  }
}

}  // namespace
}  // namespace kestrel::algorithm
