#include "surrogates/ordinary_kriging.h"

#include <gtest/gtest.h>

#include <Eigen/LU>
#include <functional>
#include <limits>
#include <numeric>
#include <stdexcept>

#include "statistics/basic_statistics.h"
#include "statistics/transform/transform_minmax.h"
#include "support/matrix_compare.h"
#include "support/raised_text.h"
#include "surrogates/kriging_samples.h"
#include "surrogates/linear_regression.h"

namespace kestrel::math::metamodel {
namespace {

using testing::BuiltKriging;
using testing::KrigingSettings;
using testing::MatrixNear;
using testing::MatrixNearRelative;
using testing::RandomPoints;
using testing::SmoothResponse;
using testing::SubsetsInTurn;

const Vector kOneRadius = Vector::Constant(1, 0.8);
const Vector kThreeRadii = (Vector(3) << 0.5, 0.9, 4.0).finished();

/// What the model consists of, by its formulas written down with whole inverses.
struct Reference {
  Reference(const Matrix& points, const Vector& values, const KernelBase& kernel, double nugget)
      : R(points.rows(), points.rows()) {
    for (Index i = 0; i < points.rows(); ++i) {
      for (Index j = 0; j < points.rows(); ++j) {
        R(i, j) = i == j ? 1.0 + nugget : kernel.EvaluatePoint(points.row(j).transpose(), points.row(i))[0];
      }
    }
    const Eigen::FullPivLU<Matrix> lu(R);
    const Matrix inverse = lu.inverse();
    mean = inverse.colwise().sum().dot(values) / inverse.sum();
    weights = inverse * (values.array() - mean).matrix();
    sigma2 = values.dot(weights) / static_cast<double>(values.size());
    const double log_determinant = lu.matrixLU().diagonal().cwiseAbs().array().log().sum();
    likelihood = 0.5 * (static_cast<double>(values.size()) * std::log(sigma2) + log_determinant);
  }
  Matrix R;
  double mean;
  Vector weights;
  double sigma2;
  double likelihood;
};

TEST(OrdinaryKriging, AgreesWithItsFormulas) {
  const Matrix points = RandomPoints(70, 3, 1);
  const Vector values = SmoothResponse(points);
  const Matrix query = RandomPoints(300, 3, 2, -2.0, 3.0);  // more than one block, beyond the sample
  OrdinaryKrigingSettings nodal = KrigingSettings(3, Vector::Constant(1, 20.0), 1e-3);
  nodal.SetKernelType(Kernel::kNodalInflExp);
  for (const OrdinaryKrigingSettings& settings :
       {KrigingSettings(3, kOneRadius, 1e-3), KrigingSettings(3, kThreeRadii, 1e-3), nodal}) {
    SCOPED_TRACE(settings.GetKernelType());
    const OrdinaryKriging kriging = BuiltKriging(points, values, settings);
    transform::TransMinMax scaling;
    scaling.Build(points);
    const Matrix scaled = scaling.ScaleForward(points);
    const Matrix scaled_query = scaling.ScaleForward(query);
    const auto kernel = settings.MakeKernel();
    const Reference expected(scaled, values, *kernel, 1e-3);
    EXPECT_NEAR(kriging.GetMean(), expected.mean, 1e-9);
    EXPECT_NEAR(kriging.GetSigma2(), expected.sigma2, 1e-9 * expected.sigma2);
    EXPECT_NEAR(kriging.GetNegativeLogLikelihood(), expected.likelihood, 1e-8);
    EXPECT_TRUE(MatrixNearRelative(kriging.GetKernelWeights(), expected.weights, 1e-9));
    Vector predictions(query.rows());
    for (Index q = 0; q < query.rows(); ++q) {
      predictions[q] =
          expected.mean + kernel->EvaluatePoint(scaled_query.row(q).transpose(), scaled).dot(expected.weights);
    }
    EXPECT_TRUE(MatrixNearRelative(kriging.Approximate(query), predictions, 1e-9));
    EXPECT_TRUE(MatrixNearRelative(kriging.Approximate(), kriging.Approximate(points), 1e-9));
  }
}

TEST(OrdinaryKriging, InterpolatesWithoutANugget) {
  const Matrix points = RandomPoints(40, 3, 1);
  const Vector values = 1e4 + SmoothResponse(points).array();  // far from 0
  const OrdinaryKriging exact = BuiltKriging(points, values, KrigingSettings(3, kOneRadius, 0.0));
  EXPECT_TRUE(MatrixNear(exact.Approximate(points), values, 1e-8));
  const OrdinaryKriging smooth = BuiltKriging(points, values, KrigingSettings(3, kOneRadius, 0.1));
  EXPECT_GT((smooth.Approximate(points) - values).norm(), 0.1);
}

TEST(OrdinaryKriging, UsesTheSelectedInputsOnly) {
  const Matrix points = RandomPoints(50, 3, 1);
  const Vector values = SmoothResponse(points);
  OrdinaryKrigingSettings settings = KrigingSettings(3, Vector::Constant(2, 0.7), 1e-4);
  settings.SetVariableSelection(Selection(3, 0b011));
  const OrdinaryKriging selected = BuiltKriging(points, values, settings);
  const OrdinaryKriging alone =
      BuiltKriging(points.leftCols(2), values, KrigingSettings(2, Vector::Constant(2, 0.7), 1e-4));
  const Matrix query = RandomPoints(10, 3, 2);
  EXPECT_TRUE(MatrixNear(selected.Approximate(query), alone.Approximate(query.leftCols(2)), 0.0));
  EXPECT_TRUE(MatrixNear(selected.ApproximateGradients(query).col(2), Vector::Zero(10), 0.0));
}

/// Settings with a Box-Cox exponent and limits, whose cross validation must come back to units of the response.
OrdinaryKrigingSettings Transformed(OrdinaryKrigingSettings settings) {
  settings.SetValueTransformation(eTransformation::kBoxCox);
  settings.SetValueTransformationParameter({0.5, 0.1, 10.1});
  settings.SetLimitTransformation(eTransformation::kLimits);
  settings.SetLimitTransformationParameter({2.5, 4.5});
  return settings;
}

TEST(OrdinaryKriging, CrossValidatesAsRefitsDo) {
  const Index count = 150;
  const Matrix points = RandomPoints(count, 3, 1);
  const Vector values = SmoothResponse(points);
  Subsets uneven(count, 7);
  for (std::size_t i = 0; i < 10; ++i) uneven[5 * i] = std::numeric_limits<std::uint64_t>::max() - i % 3;
  const std::pair<const char*, Subsets> groupings[] = {{"leave one out", {}},
                                                       {"fifths", SubsetsInTurn(count, 5)},
                                                       {"halves", SubsetsInTurn(count, 2)},
                                                       {"uneven", uneven}};
  for (const OrdinaryKrigingSettings& settings :
       {KrigingSettings(3, kOneRadius, 1e-6), KrigingSettings(3, kThreeRadii, 1e-2),
        Transformed(KrigingSettings(3, kOneRadius, 1e-3))}) {
    OrdinaryKriging kriging = BuiltKriging(points, values, settings);
    for (const auto& [name, subsets] : groupings) {
      SCOPED_TRACE(name);
      const Vector expected = kriging.ApproximateCrossValidationCompare(subsets);
      EXPECT_TRUE(MatrixNearRelative(kriging.ApproximateCrossValidation(subsets), expected, 1e-8));
    }
    // Once more with singletons, through the blocks; and without the factor, which is then made again.
    const Vector left_out = kriging.ApproximateLeaveOneOut();
    EXPECT_TRUE(MatrixNearRelative(kriging.ApproximateCrossValidation(SubsetsInTurn(count, count)), left_out, 1e-9));
    kriging.Finalize();
    EXPECT_TRUE(MatrixNear(kriging.ApproximateLeaveOneOut(), left_out, 0.0));
  }
}

TEST(OrdinaryKriging, HasNoPredictionWhereNoSampleIsLeft) {
  const Matrix points = RandomPoints(6, 2, 1);
  const OrdinaryKriging kriging =
      BuiltKriging(points, points.col(0), KrigingSettings(2, Vector::Constant(1, 0.5), 1e-6));
  EXPECT_TRUE(kriging.ApproximateCrossValidation(Subsets(6, 3)).array().isNaN().all());
  OrdinaryKrigingSettings unscaled = KrigingSettings(2, Vector::Constant(1, 0.5), 1e-6);
  unscaled.SetCoordTransformation(eTransformation::kNone);
  const OrdinaryKriging single = BuiltKriging(points.topRows(1), Vector::Constant(1, 4.0), unscaled);
  EXPECT_TRUE(std::isnan(single.ApproximateLeaveOneOut()[0]));
  EXPECT_EQ(single.Approximate(points)[3], 4.0);
}

TEST(OrdinaryKriging, HasTheGradientOfItsLikelihood) {
  const Matrix points = RandomPoints(60, 3, 1);
  const Vector values = 100.0 + SmoothResponse(points).array();
  OrdinaryKrigingSettings nodal = KrigingSettings(3, Vector::Constant(1, 20.0), 1e-2);
  nodal.SetKernelType(Kernel::kNodalInflExp);
  for (const OrdinaryKrigingSettings& settings :
       {KrigingSettings(3, kOneRadius, 1e-3), KrigingSettings(3, kThreeRadii, 1e-2), nodal}) {
    SCOPED_TRACE(settings.GetKernelType());
    const auto likelihood_at = [&](Index variable, double step) {
      OrdinaryKrigingSettings moved = settings;
      Vector radii = settings.GetKernelParameter();
      if (variable == 0) moved.SetNugget(settings.GetNugget() * std::pow(10.0, step));
      if (variable > 0) radii[variable - 1] *= std::pow(10.0, step);
      moved.SetKernelParameter(radii);
      return BuiltKriging(points, values, moved).GetNegativeLogLikelihood();
    };
    Vector expected(1 + settings.GetKernelParameter().size());
    const double h = 1e-3;
    for (Index j = 0; j < expected.size(); ++j) {  // of fourth order: the error is far below the tolerance
      expected[j] =
          (8.0 * (likelihood_at(j, h) - likelihood_at(j, -h)) - likelihood_at(j, 2 * h) + likelihood_at(j, -2 * h)) /
          (12.0 * h);
    }
    OrdinaryKriging kriging = BuiltKriging(points, values, settings);
    EXPECT_TRUE(MatrixNearRelative(kriging.BuildGradient(), expected, 1e-6));
    kriging.Finalize();
    EXPECT_TRUE(MatrixNearRelative(kriging.BuildGradient(), expected, 1e-6));
  }
}

TEST(OrdinaryKriging, SaysWhatAnInputIsWorth) {
  const Matrix points = RandomPoints(80, 3, 1);
  const Vector values = SmoothResponse(points).array().exp();
  const Subsets subsets = SubsetsInTurn(80, 4);
  const auto error_of = [&](const OrdinaryKrigingSettings& settings) {
    return statistics::SSE(values, BuiltKriging(points, values, settings).ApproximateCrossValidation(subsets));
  };
  const double total = (values.array() - values.mean()).square().sum();
  OrdinaryKrigingSettings anisotropic = KrigingSettings(3, kThreeRadii, 1e-3);
  anisotropic.SetValueTransformation(eTransformation::kBoxCox);
  anisotropic.SetValueTransformationParameter({0.0, 0.1, 10.1});
  for (const OrdinaryKrigingSettings& settings : {anisotropic, KrigingSettings(3, kOneRadius, 1e-3)}) {
    const Vector importance = BuiltKriging(points, values, settings).ApproximateVariableImportanceCV(subsets);
    for (std::uint64_t input = 0; input < 3; ++input) {
      OrdinaryKrigingSettings without = settings;
      without.DeselectInput(input);
      EXPECT_NEAR(importance[static_cast<Index>(input)], (error_of(without) - error_of(settings)) / total, 1e-9);
    }
    EXPECT_GT(importance[0], importance[1]);
    EXPECT_GT(importance[1], importance[2]);
  }
  // A transformation that the settings do not ask for counts as well.
  OrdinaryKriging transformed(points, values);
  transformed.Initialize(KrigingSettings(3, kThreeRadii, 1e-3));
  transformed.InitializeValueTransformation(eTransformation::kBoxCox, {0.0, 0.1, 10.1});
  ASSERT_TRUE(transformed.Build());
  EXPECT_EQ(transformed.ApproximateVariableImportanceCV(subsets),
            BuiltKriging(points, values, anisotropic).ApproximateVariableImportanceCV(subsets));

  OrdinaryKrigingSettings some = KrigingSettings(3, kOneRadius, 1e-3);
  some.SetVariableSelection(Selection(3, 0b101));
  EXPECT_EQ(BuiltKriging(points, values, some).ApproximateVariableImportanceCV()[1], 0.0);
}

TEST(OrdinaryKriging, IsNotBuiltWhereTheCorrelationsAreNotPositiveDefinite) {
  Matrix points = RandomPoints(30, 2, 1);
  points.row(17) = points.row(4);
  const Vector values = SmoothResponse(points);
  const struct {
    const char* name;
    OrdinaryKrigingSettings settings;
    bool built;
  } cases[] = {
      {"two equal samples", KrigingSettings(2, kOneRadius, 0.0), false},
      {"two equal samples, a radius per input", KrigingSettings(2, Vector::Constant(2, 0.4), 0.0), false},
      {"two equal samples and a nugget", KrigingSettings(2, kOneRadius, 1e-6), true},
      {"negative nugget", KrigingSettings(2, kOneRadius, -0.5), false},
      {"radius unknown", KrigingSettings(2, Vector(), 1e-6), false},
  };
  for (const auto& c : cases) {
    OrdinaryKriging kriging(points, values);
    kriging.Initialize(c.settings);
    EXPECT_EQ(kriging.Build(), c.built) << c.name;
    EXPECT_EQ(kriging.CheckAfterBuild(), c.built) << c.name;
  }
}

TEST(OrdinaryKriging, HasAFiniteLikelihoodForConstantValues) {
  const Matrix points = RandomPoints(20, 2, 1);
  const OrdinaryKriging zero = BuiltKriging(points, Vector::Zero(20), KrigingSettings(2, kOneRadius, 1e-6));
  const OrdinaryKriging unit = BuiltKriging(points, points.col(0), KrigingSettings(2, kOneRadius, 1e-6));
  const double log_determinant = 2.0 * unit.GetNegativeLogLikelihood() - 20.0 * std::log(unit.GetSigma2());
  EXPECT_NEAR(zero.GetNegativeLogLikelihood(), 0.5 * (20.0 * -115.12925464970229 + log_determinant), 1e-9);
  EXPECT_TRUE(zero.BuildGradient().allFinite());
  EXPECT_TRUE(MatrixNear(zero.Approximate(points), Vector::Zero(20), 0.0));
}

TEST(OrdinaryKriging, KeepsTheFactorOnlyWhileItIsThatOfTheSettings) {
  const Matrix points = RandomPoints(40, 2, 1);
  const Vector values = SmoothResponse(points);
  const OrdinaryKrigingSettings first = KrigingSettings(2, kOneRadius, 1e-3);
  OrdinaryKrigingSettings selected = first;
  selected.SetVariableSelection(Selection(2, 0b01));
  OrdinaryKrigingSettings unscaled = first;
  unscaled.SetCoordTransformation(eTransformation::kNone);
  OrdinaryKrigingSettings boxcox = first;  // the same factor serves other values
  boxcox.SetValueTransformation(eTransformation::kBoxCox);
  boxcox.SetValueTransformationParameter({0.0, 0.1, 10.1});
  OrdinaryKriging one_for_all(points, values);
  for (const OrdinaryKrigingSettings& settings :
       {first, boxcox, selected, unscaled, first, KrigingSettings(2, kOneRadius, 1e-2)}) {
    one_for_all.Initialize(settings);
    ASSERT_TRUE(one_for_all.Build());
    const OrdinaryKriging fresh = BuiltKriging(points, values, settings);
    EXPECT_TRUE(one_for_all == fresh);
    EXPECT_TRUE(MatrixNear(one_for_all.ApproximateLeaveOneOut(), fresh.ApproximateLeaveOneOut(), 0.0));
  }
}

TEST(OrdinaryKriging, RefusesWhatComesTooEarlyOrDoesNotFit) {
  const Matrix points = RandomPoints(12, 2, 1);
  OrdinaryKriging built = BuiltKriging(points, points.col(0), KrigingSettings(2, kOneRadius, 1e-6));
  const OrdinaryKriging unbuilt(points, points.col(0));
  OrdinaryKriging singular = BuiltKriging(points, points.col(0), KrigingSettings(2, kOneRadius, 1e-6));
  OrdinaryKriging elsewhere(points, points.col(0));
  const struct {
    const char* name;
    std::function<void()> call;
    std::wstring text;
  } cases[] = {
      {"approximation", [&] { unbuilt.Approximate(points); }, L"can not approximate - build first"},
      {"approximation at the samples", [&] { unbuilt.Approximate(); }, L"can not approximate - build first"},
      {"leave one out", [&] { unbuilt.ApproximateLeaveOneOut(); }, L"can not approximate CV - build first"},
      {"cross validation", [&] { unbuilt.ApproximateCrossValidation(Subsets(12, 0)); },
       L"can not approximate CV - build first"},
      {"number of subsets", [&] { built.ApproximateCrossValidation(Subsets(11, 0)); },
       L"subset vector has wrong length"},
      {"number of subsets to compare", [&] { built.ApproximateCrossValidationCompare(Subsets(13, 0)); },
       L"subset vector has wrong length"},
      {"number of inputs", [&] { built.Approximate(points.leftCols(1)); },
       L"Surrogate approximate needs same number of input dimension (1) as support points (2)"},
      {"settings of another class", [&] { elsewhere.Initialize(LinearRegressionSettings(2)); },
       L"Initialize Kriging failed. Could not convert surrogate setting : std::bad_cast\nThe surrogate can not be "
       L"initialized. An error in the settings is very likely."},
      {"inputs of the settings", [&] { elsewhere.Initialize(OrdinaryKrigingSettings(3)); },
       L"Settings for 3 inputs do not fit support points of 2 inputs\nThe surrogate can not be initialized. An error "
       L"in the settings is very likely."},
  };
  for (const auto& c : cases) EXPECT_EQ(testing::RaisedText(c.call), c.text) << c.name;
  EXPECT_FALSE(OrdinaryKriging(Matrix(), Vector()).Build());
}

TEST(OrdinaryKriging, IsNamedByItsKernel) {
  OrdinaryKriging kriging(RandomPoints(5, 2, 1), Vector::Ones(5));
  EXPECT_EQ(kriging.Name(true), L"Isotropic Kriging");
  EXPECT_EQ(kriging.Name(), L"Isotropic Kriging | 0");
  EXPECT_EQ(kriging.Str().rfind(L"coordinate transformation : ", 0), 0u);
  kriging.Initialize(KrigingSettings(2, Vector::Ones(2), 0.0));
  EXPECT_EQ(kriging.Name(), L"Anisotropic Kriging | 0");
}

}  // namespace
}  // namespace kestrel::math::metamodel
