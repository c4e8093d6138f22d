#include "surrogates/ordinary_kriging_search.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <ctime>
#include <stdexcept>
#include <thread>

#include "statistics/basic_statistics.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "surrogates/kriging_samples.h"
#include "surrogates/linear_regression.h"

namespace kestrel::math::metamodel {
namespace {

using testing::BuiltKriging;
using testing::KrigingSettings;
using testing::MatrixNear;
using testing::MatrixNearRelative;
using testing::Noise;
using testing::RandomPoints;
using testing::SmoothResponse;
using testing::SubsetsInTurn;

OrdinaryKrigingSettings ToBeSearched(std::uint64_t inputs, Kernel::eType kernel) {
  OrdinaryKrigingSettings settings(inputs);
  settings.SetKernelType(kernel);
  return settings;
}

OrdinaryKriging Searched(const Matrix& points, const Vector& values, const OrdinaryKrigingSettings& settings,
                         const Subsets& subsets = {}) {
  OrdinaryKriging kriging(points, values);
  kriging.Initialize(settings);
  EXPECT_TRUE(kriging.BuildOptimal(subsets));
  EXPECT_TRUE(kriging.CheckAfterBuild());
  EXPECT_EQ(kriging.GetSettingsBase().GetState(), eState::kOptimal);
  return kriging;
}

/// The objective on a fine grid of radius and nugget.
template <class Objective>
double LowestOnGrid(const Matrix& points, const Vector& values, Objective objective) {
  double lowest = std::numeric_limits<double>::infinity();
  for (double radius = 0.1; radius < 14.0; radius *= 1.25) {
    for (double exponent = -6.0; exponent <= 0.0; exponent += 0.5) {
      OrdinaryKriging kriging(points, values);
      kriging.Initialize(KrigingSettings(static_cast<std::uint64_t>(points.cols()), Vector::Constant(1, radius),
                                         std::pow(10.0, exponent)));
      if (kriging.Build()) lowest = std::min(lowest, objective(kriging));
    }
  }
  return lowest;
}

TEST(KrigingSearch, FindsTheLikeliestRadiusAndNugget) {
  const struct {
    const char* name;
    double noise;
    unsigned seed;
  } cases[] = {{"smooth", 0.0, 1}, {"some noise", 0.1, 2}, {"mostly noise", 2.0, 3}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const Matrix points = RandomPoints(50, 2, c.seed);
    const Vector values = SmoothResponse(points) + Noise(50, c.noise, 4);
    const OrdinaryKriging found = Searched(points, values, ToBeSearched(2, Kernel::kConstInflIsoExp));
    const double lowest =
        LowestOnGrid(points, values, [](const auto& kriging) { return kriging.GetNegativeLogLikelihood(); });
    EXPECT_LE(found.GetNegativeLogLikelihood(), lowest + 1e-2);
    EXPECT_GE(found.GetSettingsBase().GetNugget(), 0.999e-6);
    EXPECT_LE(found.GetSettingsBase().GetNugget(), 1.0001);
    EXPECT_TRUE(found == Searched(points, values, ToBeSearched(2, Kernel::kConstInflIsoExp)));
    EXPECT_TRUE(MatrixNear(found.Approximate(points),  // the settings suffice to build it again
                           BuiltKriging(points, values, found.GetSettingsBase()).Approximate(points), 0.0));
  }
}

TEST(KrigingSearch, MinimisesTheErrorOfTheCrossValidation) {
  const Matrix points = RandomPoints(40, 2, 1);
  const Vector values = SmoothResponse(points) + Noise(40, 0.2, 4);
  const Subsets subsets = SubsetsInTurn(40, 4);
  const auto error_of = [&](const OrdinaryKriging& kriging) {
    return statistics::SSE(values, kriging.ApproximateCrossValidation(subsets));
  };
  OrdinaryKrigingSettings settings = ToBeSearched(2, Kernel::kConstInflIsoExp);
  const double by_likelihood = error_of(Searched(points, values, settings, subsets));
  settings.SetUseLikelihood(false);
  const double by_error = error_of(Searched(points, values, settings, subsets));
  EXPECT_LE(by_error, by_likelihood);
  EXPECT_LE(by_error, 1.02 * LowestOnGrid(points, values, error_of));
  settings.SetKernelType(Kernel::kConstInflExp);
  EXPECT_LE(error_of(Searched(points, values, settings, subsets)), by_error);
}

TEST(KrigingSearch, FindsARadiusForEachInput) {
  const Matrix points = RandomPoints(60, 3, 1);
  const Vector values = SmoothResponse(points);
  const OrdinaryKriging found = Searched(points, values, ToBeSearched(3, Kernel::kConstInflExp));
  const Vector& radii = found.GetSettingsBase().GetKernelParameter();
  ASSERT_EQ(radii.size(), 3);
  EXPECT_LT(radii[0], radii[1]);
  EXPECT_LT(radii[1], 0.3 * radii[2]);  // the third input does not matter
  const OrdinaryKriging isotropic = Searched(points, values, ToBeSearched(3, Kernel::kConstInflIsoExp));
  EXPECT_LT(found.GetNegativeLogLikelihood(), isotropic.GetNegativeLogLikelihood() - 10.0);

  // At the best point the gradient vanishes, but for what a bound holds back.
  const Vector gradient = found.BuildGradient();
  for (Index j = 0; j < 3; ++j) {
    if (std::log10(radii[j]) > 1.91) continue;
    EXPECT_NEAR(gradient[1 + j], 0.0, 0.5) << j;
  }
}

TEST(KrigingSearch, ServesANodalKernel) {
  const Matrix points = RandomPoints(30, 2, 1);
  const OrdinaryKriging found = Searched(points, SmoothResponse(points), ToBeSearched(2, Kernel::kNodalInflExp));
  EXPECT_GE(found.GetSettingsBase().GetKernelParameter()[0], 1.0);
}

TEST(KrigingSearch, HasTheGradientOfEitherObjective) {
  const Matrix points = RandomPoints(40, 2, 1);
  OrdinaryKriging kriging(points, SmoothResponse(points));
  const Subsets subsets = SubsetsInTurn(40, 4);
  for (const bool use_likelihood : {true, false}) {
    OrdinaryKrigingSettings settings = KrigingSettings(2, Vector::Constant(2, 0.7), 1e-3);
    settings.SetUseLikelihood(use_likelihood);
    kriging.Initialize(settings);
    ASSERT_TRUE(kriging.Build());
    OrdinaryKriging::HyperparameterSearch search(kriging, subsets, nullptr);
    const Vector point = (Vector(3) << -2.5, -0.2, 0.3).finished();
    Vector expected(3);
    for (Index j = 0; j < 3; ++j) {
      const Vector step = 1e-4 * Vector::Unit(3, j);
      expected[j] = (*search.Evaluate(point + step) - *search.Evaluate(point - step)) / 2e-4;
    }
    const double tolerance = use_likelihood ? 1e-6 : 1e-2;  // a central against a one-sided difference
    EXPECT_TRUE(MatrixNearRelative(search.Gradient(point), expected, tolerance)) << use_likelihood;
  }
}

TEST(KrigingSearch, TakesTheExponentOfAQuadraticRegression) {
  const Matrix points = RandomPoints(60, 2, 1);
  const Vector values = (points.rowwise().sum().array() + Noise(60, 0.01, 2).array()).exp();
  OrdinaryKrigingSettings settings = ToBeSearched(2, Kernel::kConstInflIsoExp);
  settings.SetValueTransformation(eTransformation::kBoxCox);
  const OrdinaryKriging found = Searched(points, values, settings);

  LinearRegression regression(points, values);
  LinearRegressionSettings quadratic(2);
  quadratic.SetOrder(2);
  regression.Initialize(quadratic);
  ASSERT_TRUE(regression.BuildOptimalBoxCox());
  EXPECT_TRUE(found.GetSettingsBase().HasBoxCoxExponent());
  EXPECT_EQ(found.GetSettingsBase().GetValueTransformation(), eTransformation::kBoxCox);
  EXPECT_EQ(found.GetSettingsBase().GetValueTransformationParameter(),
            regression.GetSettingsBase().GetValueTransformationParameter());

  // As many coefficients as samples: nothing can be searched, and the exponent is 1.
  const OrdinaryKriging few = Searched(points.topRows(6), values.head(6), settings);
  EXPECT_EQ(few.GetSettingsBase().GetValueTransformationParameter(), (std::vector<double>{1.0, 0.1, 10.1}));
}

TEST(KrigingSearch, EndsWithoutAModelWhereThereIsNone) {
  const Matrix points = RandomPoints(12, 2, 1);
  OrdinaryKrigingSettings none = ToBeSearched(2, Kernel::kConstInflIsoExp);
  none.SetVariableSelection(Selection(2));
  const struct {
    const char* name;
    Matrix points;
    OrdinaryKrigingSettings settings;
  } cases[] = {
      {"all samples at one point", Matrix::Constant(12, 2, 0.25), ToBeSearched(2, Kernel::kConstInflIsoExp)},
      {"no input", points, none},
      {"no sample", Matrix(0, 2), ToBeSearched(2, Kernel::kConstInflIsoExp)},
  };
  for (const auto& c : cases) {
    OrdinaryKriging kriging(c.points, Vector::LinSpaced(c.points.rows(), 0.0, 1.0));
    kriging.Initialize(c.settings);
    EXPECT_FALSE(kriging.BuildOptimal({})) << c.name;
    EXPECT_FALSE(kriging.CheckAfterBuild()) << c.name;
  }
  Matrix constant_input = points;
  constant_input.col(1).setConstant(7.0);  // it has no gaps, and so no say in the range of the radius
  Searched(constant_input, points.col(0), ToBeSearched(2, Kernel::kConstInflIsoExp));
}

/// Seconds that the thread whose clock it is has worked.
double WorkedSeconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// It takes a few milliseconds, and several times as long under the sanitizers.
TEST(KrigingSearch, EndsSoonAfterAStopRequest) {
  clockid_t searching{};
  ASSERT_EQ(pthread_getcpuclockid(pthread_self(), &searching), 0);
  const Matrix points = RandomPoints(400, 6, 1);
  const Vector values = SmoothResponse(points);
  for (const Kernel::eType kernel : {Kernel::kConstInflIsoExp, Kernel::kConstInflExp}) {
    OrdinaryKriging kriging(points, values);
    kriging.Initialize(ToBeSearched(6, kernel));
    const auto helper = std::make_shared<utils::StopHelper>();
    kriging.SetStopHelper(helper);
    double requested = 0.0;
    std::thread stopper([&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      requested = WorkedSeconds(searching);
      helper->RequestStop();
    });
    EXPECT_THROW(kriging.BuildOptimal(SubsetsInTurn(400, 5)), utils::runtime_error);
    const double ended = WorkedSeconds(searching);
    stopper.join();
    EXPECT_LT(ended - requested, 0.2);
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
