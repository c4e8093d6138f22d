#include "surrogates/moving_least_squares.h"

#include <gtest/gtest.h>

#include <array>

#include "statistics/basic_statistics.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "support/raised_text.h"
#include "surrogates/linear_regression.h"
#include "surrogates/sample_data.h"
#include "surrogates/solve_coefficients.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;
using testing::MatrixNearRelative;
using testing::Noise;
using testing::RaisedText;
using testing::RandomPoints;

struct KernelChoice {
  const char* name;
  Kernel::eType type;
  Vector parameter;
};

/// Kernels for three inputs scaled to [0, 1], wide enough for quadratics everywhere inside.
const KernelChoice kKernels[] = {
    {"anisotropic", Kernel::kConstInflExp, (Vector(3) << 0.9, 1.5, 3.0).finished()},
    {"isotropic", Kernel::kConstInflIsoExp, Vector::Constant(1, 0.8)},
    {"regularized", Kernel::kConstInflIsoReg, Vector::Constant(1, 1.1)},
    {"nodal", Kernel::kNodalInflExp, Vector::Constant(1, 20.0)},
};

MovingLeastSquaresSettings Settings(std::uint64_t inputs, std::uint64_t order,
                                    Kernel::eType type = Kernel::kConstInflIsoExp, const Vector& parameter = Vector()) {
  MovingLeastSquaresSettings settings(inputs);
  settings.SetOrder(order);
  settings.SetKernelType(type);
  settings.SetKernelParameter(parameter);
  return settings;
}

MovingLeastSquares Built(const Matrix& points, const Vector& values, const MovingLeastSquaresSettings& settings) {
  MovingLeastSquares surrogate(points, values);
  surrogate.Initialize(settings);
  EXPECT_TRUE(surrogate.Build());
  return surrogate;
}

Subsets Groups(Index count, std::uint64_t groups) {
  Subsets subsets;
  for (Index i = 0; i < count; ++i) subsets.push_back(static_cast<std::uint64_t>(i * i) % groups);
  return subsets;
}

Vector Bent(const Matrix& x) {
  return (2.0 * x.col(0)).array().sin() + x.col(1).array().exp() + 0.1 * x.col(2).array();
}

/// Every query on its own: weights of the kernel, then a weighted regression.
Vector PlainPredictions(const Matrix& query, const Matrix& points, const Vector& values, const KernelChoice& kernel,
                        std::uint64_t order) {
  const Selection terms = BuildMainTermSelection(3, order, true);
  const Matrix basis = BuildCoefficientMatrix(points, terms, {});
  const Matrix query_basis = BuildCoefficientMatrix(query, terms, {});
  Vector predictions(query.rows());
  for (Index q = 0; q < query.rows(); ++q) {
    const Vector weights = CreateKernel(kernel.type, kernel.parameter)->EvaluatePoint(query.row(q).transpose(), points);
    predictions[q] = query_basis.row(q).dot(SolveCoefficients(basis, values, weights));
  }
  return predictions;
}

TEST(MovingLeastSquares, AnswersBlocksAndSinglePointsAlike) {
  const Matrix points = RandomPoints(60, 3, 1, 0.0, 1.0);
  const Matrix query = RandomPoints(150, 3, 2, 0.0, 1.0);
  const Vector values = Bent(points);
  for (const KernelChoice& kernel : kKernels) {
    for (std::uint64_t order = 0; order <= 2; ++order) {
      SCOPED_TRACE(std::string(kernel.name) + ", order " + std::to_string(order));
      auto settings = Settings(3, order, kernel.type, kernel.parameter);
      settings.SetCoordTransformation(eTransformation::kNone);
      const MovingLeastSquares surrogate = Built(points, values, settings);
      const Vector expected = PlainPredictions(query, points, values, kernel, order);
      EXPECT_TRUE(MatrixNear(surrogate.Approximate(query), expected, 1e-8));
      EXPECT_TRUE(MatrixNear(surrogate.Approximate(query.topRows(2)), expected.head(2), 1e-8));
    }
  }
}

TEST(MovingLeastSquares, CrossValidatesLikeModelsWithoutTheSubset) {
  const Matrix points = RandomPoints(70, 3, 1, 0.0, 1.0);
  const Vector values = Bent(points) + Noise(70, 0.05, 3);
  const Subsets subsets = Groups(70, 6);
  for (const KernelChoice& kernel : kKernels) {
    if (kernel.type == Kernel::kNodalInflExp) continue;  // its radius knows the samples that are left out
    for (std::uint64_t order = 0; order <= 2; ++order) {
      SCOPED_TRACE(std::string(kernel.name) + ", order " + std::to_string(order));
      auto settings = Settings(3, order, kernel.type, kernel.parameter);
      settings.SetCoordTransformation(eTransformation::kNone);
      Vector expected(70);
      for (std::uint64_t subset = 0; subset < 6; ++subset) {
        std::vector<Index> kept, left_out;
        for (std::size_t i = 0; i < 70; ++i) {
          (subsets[i] == subset ? left_out : kept).push_back(static_cast<Index>(i));
        }
        const MovingLeastSquares refit = Built(points(kept, Eigen::all), values(kept), settings);
        if (!left_out.empty()) expected(left_out) = refit.Approximate(points(left_out, Eigen::all));
      }
      const MovingLeastSquares surrogate = Built(points, values, settings);
      EXPECT_TRUE(MatrixNear(surrogate.ApproximateCrossValidation(subsets), expected, 1e-8));
    }
  }
}

TEST(MovingLeastSquares, HasNoValueWithoutNeighbours) {
  const Matrix points = (Matrix(5, 1) << 0.0, 1.0, 2.0, 3.0, 4.0).finished();  // 0.25 apart in the model
  const Vector values = (Vector(5) << 1.0, 2.0, 0.0, 1.0, 5.0).finished();
  const Matrix query = (Matrix(3, 1) << 0.5, 4.5, 1e4).finished();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* name;
    std::uint64_t order;
    Kernel::eType type;
    double radius;
    std::array<bool, 3> valid;
  } cases[] = {
      {"two neighbours make a line", 1, Kernel::kConstInflIsoReg, 0.26, {true, false, false}},
      {"not a parabola", 2, Kernel::kConstInflIsoReg, 0.26, {false, false, false}},
      {"one makes a mean", 0, Kernel::kConstInflIsoReg, 0.26, {true, true, false}},
      {"far enough even the exponential is 0", 0, Kernel::kConstInflIsoExp, 0.26, {true, true, false}},
      {"exponential weights are counted, too", 1, Kernel::kConstInflIsoExp, 0.1, {true, false, false}},
  };
  for (const auto& c : cases) {
    const auto settings = Settings(1, c.order, c.type, Vector::Constant(1, c.radius));
    const Vector predictions = Built(points, values, settings).Approximate(query);
    for (Index q = 0; q < 3; ++q) {
      EXPECT_EQ(!std::isnan(predictions[q]), c.valid[static_cast<std::size_t>(q)]) << c.name << ", point " << q;
    }
  }
  const auto settings = Settings(1, 1, Kernel::kConstInflIsoReg, Vector::Constant(1, 0.26));
  EXPECT_TRUE(MatrixNear(Built(points, Vector::Constant(5, 3.0), settings).Approximate(query),
                         (Vector(3) << 3.0, nan, nan).finished(), 0.0));  // the mean of a constant, where there is any
}

/// All radii one after the other, by two passes over the samples.
double BestRadiusByTrial(MovingLeastSquares surrogate, double lowest, double highest, const Subsets& subsets) {
  MovingLeastSquaresSettings settings = surrogate.GetSettingsBase();
  double best_radius = 0.0;
  double best = std::numeric_limits<double>::max();
  for (int i = 0; i <= 20; ++i) {
    const double radius = std::exp(std::log(lowest) + i * (std::log(highest) - std::log(lowest)) / 20.0);
    settings.SetKernelParameter(Vector::Constant(1, radius));
    surrogate.Initialize(settings);
    surrogate.Build();
    const Vector& y = surrogate.GetResponseValues();
    const double objective = 2.0 * statistics::SSE(y, surrogate.ApproximateCrossValidation(subsets)) -
                             statistics::SSE(y, surrogate.Approximate());
    if (!(objective < best)) continue;
    best = objective;
    best_radius = radius;
  }
  return best_radius;
}

TEST(RadiusSearch, FindsTheBestOfTheRadii) {
  // A grid of 7 x 7 in [0, 1]: neighbours 1/6 apart, corners sqrt(2).
  Matrix points(49, 2);
  for (Index i = 0; i < 49; ++i) points.row(i) << static_cast<double>(i % 7), static_cast<double>(i / 7);
  const Vector values = (0.9 * points.col(0)).array().sin() + 0.3 * points.col(1).array() + Noise(49, 0.1, 5).array();
  for (const auto type : {Kernel::kConstInflIsoExp, Kernel::kConstInflIsoReg}) {
    for (std::uint64_t order = 0; order <= 2; ++order) {
      for (const Subsets& subsets : {Groups(49, 5), Subsets()}) {
        SCOPED_TRACE(std::to_string(type) + ", order " + std::to_string(order) + (subsets.empty() ? ", loo" : ""));
        MovingLeastSquares surrogate(points, values);
        surrogate.Initialize(Settings(2, order, type));
        ASSERT_TRUE(surrogate.BuildOptimal(subsets));
        const double expected = BestRadiusByTrial(surrogate, 2.0 / 6.0, 5.0 * std::sqrt(2.0), subsets);
        EXPECT_NEAR(surrogate.GetSettingsBase().GetKernelParameter()[0], expected, 1e-12);
        EXPECT_EQ(surrogate.GetSettingsBase().GetState(), eState::kOptimal);
        const SamplePredictions* const found = surrogate.GetSearchPredictions();
        ASSERT_NE(found, nullptr);
        EXPECT_TRUE(MatrixNear(found->fit, surrogate.Approximate(), 1e-9));
        EXPECT_TRUE(MatrixNear(found->cross_validation, surrogate.ApproximateCrossValidation(subsets), 1e-9));
        surrogate.Initialize(surrogate.GetSettingsBase());
        EXPECT_EQ(surrogate.GetSearchPredictions(), nullptr);
      }
    }
  }
}

TEST(RadiusSearch, EndsWhereThereIsNothingToCompare) {
  const Matrix points = RandomPoints(12, 2, 1);
  const Vector values = Bent(RandomPoints(12, 3, 1));
  MovingLeastSquares constant(points, Vector::Constant(12, 2.0));
  ASSERT_TRUE(constant.BuildOptimal({}));
  double largest = 0.0;
  MovingLeastSquares regular(points, values);
  ASSERT_TRUE(regular.BuildOptimal({}));
  const Matrix unit = (points.rowwise() - points.colwise().minCoeff()) *
                      (points.colwise().maxCoeff() - points.colwise().minCoeff()).cwiseInverse().asDiagonal();
  for (Index i = 0; i < 12; ++i) {
    largest = std::max(largest, (unit.rowwise() - unit.row(i)).rowwise().norm().maxCoeff());
  }
  EXPECT_NEAR(constant.GetSettingsBase().GetKernelParameter()[0], 5.0 * largest, 1e-12);
  EXPECT_EQ(constant.GetSearchPredictions(), nullptr);

  MovingLeastSquares coincident(Matrix::Constant(12, 2, 3.0), values);
  EXPECT_FALSE(coincident.BuildOptimal({}));
  for (const auto type : {Kernel::kConstInflExp, Kernel::kNodalInflExp}) {
    regular.Initialize(Settings(2, 1, type));
    EXPECT_FALSE(regular.BuildOptimal({}));
    EXPECT_TRUE(regular.CheckAfterBuild());
  }
  MovingLeastSquares few(points.topRows(4), values.head(4));
  few.Initialize(Settings(2, 2));
  EXPECT_FALSE(few.BuildOptimal({}));  // 5 coefficients
  MovingLeastSquares too_few_in_cross_validation(points.topRows(5), values.head(5));
  too_few_in_cross_validation.Initialize(Settings(2, 2));
  EXPECT_THROW(too_few_in_cross_validation.BuildOptimal({}), std::domain_error);

  Matrix with_constant(12, 3);
  with_constant << points, Vector::Ones(12);
  MovingLeastSquares third_input(with_constant, values);
  third_input.Initialize(Settings(3, 0));
  ASSERT_TRUE(third_input.BuildOptimal({}));  // an input with one value alone has no smallest gap
  EXPECT_LE(third_input.GetSettingsBase().GetKernelParameter()[0], 5.0 * largest + 1e-9);
}

TEST(RadiusSearch, GivesThePlainModelThatFollowsBoxCox) {
  const Matrix points = RandomPoints(60, 2, 1);
  const Vector values = (1.5 * points.rowwise().sum()).array().exp() + Noise(60, 0.01, 2).array();
  const Subsets subsets = Groups(60, 5);
  auto boxcox = Settings(2, 1);
  boxcox.SetValueTransformation(eTransformation::kBoxCox);
  boxcox.SetLimitTransformation(eTransformation::kLimits);
  boxcox.SetLimitTransformationParameter({0.0, 1e3});
  auto plain = boxcox;
  plain.SetValueTransformation(eTransformation::kNone);

  MovingLeastSquares alone(points, values);
  alone.Initialize(plain);
  ASSERT_TRUE(alone.BuildOptimal(subsets));

  MovingLeastSquares both(points, values);
  both.KeepDistances(true);
  both.ExpectPlainModelNext(true);
  both.Initialize(boxcox);
  ASSERT_TRUE(both.BuildOptimal(subsets));
  const double cv_error = statistics::SSE(values, both.GetSearchPredictions()->cross_validation);
  EXPECT_TRUE(MatrixNear(both.GetSearchPredictions()->fit, both.Approximate(), 1e-9));
  both.Initialize(plain);
  ASSERT_TRUE(both.BuildOptimal(subsets));
  EXPECT_TRUE(both.GetSettingsBase() == alone.GetSettingsBase());
  EXPECT_TRUE(MatrixNear(both.GetSearchPredictions()->fit, alone.Approximate(), 1e-9));
  EXPECT_TRUE(
      MatrixNear(both.GetSearchPredictions()->cross_validation, alone.ApproximateCrossValidation(subsets), 1e-9));
  EXPECT_LT(cv_error, 0.5 * statistics::SSE(values, alone.ApproximateCrossValidation(subsets)));

  // Other subsets or another order are other models.
  for (const auto& [order, groups] :
       {std::pair{std::uint64_t{1}, std::uint64_t{3}}, {std::uint64_t{2}, std::uint64_t{5}}}) {
    both.Initialize(boxcox);
    ASSERT_TRUE(both.BuildOptimal(subsets));
    plain.SetOrder(order);
    both.Initialize(plain);
    ASSERT_TRUE(both.BuildOptimal(Groups(60, groups)));
    EXPECT_TRUE(MatrixNear(both.GetSearchPredictions()->fit, both.Approximate(), 1e-9));
  }
}

TEST(MovingLeastSquares, TakesTheExponentOfAQuadraticRegression) {
  const Matrix points = RandomPoints(60, 3, 1);
  const Vector values = points.leftCols(2).rowwise().sum().array().exp();
  auto settings = Settings(3, 1);
  settings.SetValueTransformation(eTransformation::kBoxCox);
  settings.SetVariableSelection(Selection(std::string("011")));
  MovingLeastSquares surrogate(points, values);
  surrogate.Initialize(settings);
  ASSERT_TRUE(surrogate.BuildOptimal({}));

  LinearRegression regression(points, values);
  LinearRegressionSettings quadratic(3);
  quadratic.SetOrder(2);
  quadratic.SetVariableSelection(Selection(std::string("011")));
  regression.Initialize(quadratic);
  ASSERT_TRUE(regression.BuildOptimalBoxCox());
  EXPECT_EQ(surrogate.GetSettingsBase().GetValueTransformationParameter(),
            regression.GetSettingsBase().GetValueTransformationParameter());
  EXPECT_EQ(surrogate.GetSettingsBase().GetNumberParameter(), 3U + 1U + 1U);

  // A sample too small for the quadratic: no exponent is sought.
  MovingLeastSquares small(points.topRows(6), values.head(6));
  small.Initialize(settings);
  ASSERT_TRUE(small.BuildOptimal({}));
  EXPECT_EQ(small.GetSettingsBase().GetValueTransformationParameter(), (std::vector<double>{1.0, 0.1, 10.1}));
}

TEST(VariableImportance, IsTheRiseOfTheCrossValidationError) {
  const Matrix points = RandomPoints(60, 4, 1, 0.0, 1.0);
  const Vector values = Bent(points);  // not of input 3
  const Subsets subsets = Groups(60, 6);
  const Vector radii = (Vector(3) << 0.8, 1.2, 2.0).finished();
  for (const auto type : {Kernel::kConstInflIsoExp, Kernel::kConstInflExp}) {
    auto settings = Settings(4, 1, type, type == Kernel::kConstInflExp ? radii : Vector(radii.head(1)));
    settings.SetVariableSelection(Selection(std::string("1011")));  // without input 2
    settings.SetValueTransformation(eTransformation::kBoxCox);
    settings.SetValueTransformationParameter({0.5, 0.1, 10.1});
    const MovingLeastSquares surrogate = Built(points, values, settings);
    const Vector importance = surrogate.ApproximateVariableImportanceCV(subsets);

    // A transformation that the settings do not ask for counts as well.
    auto plain = settings;
    plain.SetValueTransformation(eTransformation::kNone);
    MovingLeastSquares transformed(points, values);
    transformed.Initialize(plain);
    transformed.InitializeValueTransformation(eTransformation::kBoxCox, {0.5, 0.1, 10.1});
    ASSERT_TRUE(transformed.Build());
    EXPECT_EQ(transformed.ApproximateVariableImportanceCV(subsets), importance) << type;

    settings.SetVariableSelection(Selection(std::string("1001")));  // nor input 1
    if (type == Kernel::kConstInflExp) settings.SetKernelParameter((Vector(2) << 0.8, 2.0).finished());
    const double without = statistics::SSE(values, Built(points, values, settings).ApproximateCrossValidation(subsets));
    const double with = statistics::SSE(values, surrogate.ApproximateCrossValidation(subsets));
    const double total = (values.array() - values.mean()).square().sum();
    EXPECT_NEAR(importance[1], (without - with) / total, 1e-9) << type;
    EXPECT_EQ(importance[2], 0.0) << type;
    EXPECT_GT(importance[0], 0.1) << type;
    EXPECT_LT(importance[3], 0.02) << type;
  }
}

TEST(MovingLeastSquares, ChecksTheRankOfItsBasis) {
  Matrix points = RandomPoints(12, 2, 1);
  const Vector values = Vector::LinSpaced(12, 0.0, 1.0);
  points.col(1) = (points.col(1).array() > 0.5).cast<double>();  // two levels have no square of their own
  for (const auto& [order, full] :
       {std::pair{std::uint64_t{0}, true}, {std::uint64_t{1}, true}, {std::uint64_t{2}, false}}) {
    MovingLeastSquares surrogate(points, values);
    surrogate.Initialize(Settings(2, order));
    EXPECT_EQ(surrogate.CheckBeforeBuild(), full) << order;
  }
  MovingLeastSquares few(points.topRows(2), values.head(2));
  EXPECT_FALSE(few.CheckBeforeBuild());
  EXPECT_FALSE(few.Build());
}

TEST(MovingLeastSquares, SaysWhatIsWrong) {
  const Matrix points = RandomPoints(10, 2, 1);
  const Vector values = points.col(0);
  MovingLeastSquares surrogate(points, values);
  EXPECT_EQ(RaisedText([&] { surrogate.Approximate(points); }), L"can not approximate - build first");
  EXPECT_EQ(RaisedText([&] { surrogate.Approximate(); }), L"can not approximate - build first");
  EXPECT_EQ(RaisedText([&] { surrogate.ApproximateCrossValidation(Groups(10, 2)); }),
            L"MLS::ApproximateCrossValidation - need build first");
  EXPECT_EQ(RaisedText([&] { surrogate.Initialize(LinearRegressionSettings(2)); }).substr(0, 83),
            L"Initialize Moving Least Squares failed. Could not convert surrogate setting : std::");
  surrogate.Build();
  EXPECT_EQ(RaisedText([&] { surrogate.Approximate(points); }), L"KernelConstInflExp: undefined parameter");
  EXPECT_EQ(RaisedText([&] { surrogate.Approximate(points.leftCols(1)); }),
            L"Surrogate approximate needs same number of input dimension (1) as support points (2)");
  EXPECT_EQ(RaisedText([&] { surrogate.ApproximateCrossValidation(Groups(9, 2)); }), L"subset vector has wrong length");
  EXPECT_EQ(RaisedText([&] { surrogate.BuildOptimal(Groups(9, 2)); }), L"subset vector has wrong length");
  EXPECT_EQ(surrogate.Name(), L"Moving Least Squares | 1");
  EXPECT_EQ(surrogate.Str().substr(0, 65), L"Moving Least Squares | 1| Constant influence, isotropic, exponent");
}

TEST(MovingLeastSquares, StopsWhereAskedTo) {
  const Matrix points = RandomPoints(30, 2, 1);
  MovingLeastSquares surrogate(points, points.col(0));
  ASSERT_TRUE(surrogate.BuildOptimal({}));
  const auto helper = std::make_shared<utils::StopHelper>();
  helper->RequestStop();
  surrogate.SetStopHelper(helper);
  EXPECT_THROW(surrogate.Approximate(points), utils::runtime_error);
  EXPECT_THROW(surrogate.ApproximateVariableImportanceCV(), utils::runtime_error);
  EXPECT_THROW(surrogate.BuildOptimal({}), utils::runtime_error);
}

}  // namespace
}  // namespace kestrel::math::metamodel
