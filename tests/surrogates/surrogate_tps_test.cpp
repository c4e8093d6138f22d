#include "surrogates/surrogate_tps.h"

#include <Eigen/LU>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "statistics/basic_statistics.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "support/raised_text.h"
#include "surrogates/linear_regression.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Vector Waves(const Matrix& points) {
  return (points.array().rowwise() * Eigen::RowVectorXd::LinSpaced(points.cols(), 1.0, 2.0).array())
             .sin()
             .rowwise()
             .sum()
             .matrix() +
         points.col(0);
}

SurrogateTPSSettings Settings(std::uint64_t inputs, double smoothing,
                              eTransformation coordinates = eTransformation::kMinMax) {
  SurrogateTPSSettings settings(inputs);
  settings.SetSmoothing(smoothing);
  settings.SetCoordTransformation(coordinates);
  return settings;
}

SurrogateTPS Built(const Matrix& points, const Vector& values, const SurrogateTPSSettings& settings) {
  SurrogateTPS spline(points, values);
  spline.Initialize(settings);
  EXPECT_TRUE(spline.Build());
  return spline;
}

double Radial(double r) { return r > 0.0 ? r * r * std::log(r) : 0.0; }

/// The spline by the bordered system as it is written down, on points as they are.
Vector PlainSpline(const Matrix& points, const Vector& values, double smoothing, const Matrix& query) {
  const Index count = points.rows();
  const Index terms = points.cols() + 1;
  const auto bordered = [&](const Matrix& rows) {
    Matrix matrix(rows.rows(), count + terms);
    for (Index a = 0; a < rows.rows(); ++a) {
      for (Index b = 0; b < count; ++b) matrix(a, b) = Radial((rows.row(a) - points.row(b)).norm());
    }
    matrix.col(count).setOnes();
    matrix.rightCols(points.cols()) = rows;
    return matrix;
  };
  Matrix system = Matrix::Zero(count + terms, count + terms);
  system.topRows(count) = bordered(points);
  system.bottomLeftCorner(terms, count) = system.topRightCorner(count, terms).transpose();
  system.diagonal().head(count).array() += smoothing;
  Vector right = Vector::Zero(count + terms);
  right.head(count) = values;
  return bordered(query) * system.fullPivLu().solve(right);
}

TEST(SurrogateTPS, SolvesTheBorderedSystem) {
  for (const Index inputs : {1, 2, 5, 10}) {
    const Matrix points = RandomPoints(60, inputs, 1, 0.0, 1.0);
    const Matrix query = RandomPoints(300, inputs, 2, -0.5, 1.5);
    const Vector values = Waves(points);
    for (const double smoothing : {0.0, 1e-4, 0.1}) {
      SCOPED_TRACE(std::to_string(inputs) + " inputs, smoothing " + std::to_string(smoothing));
      const SurrogateTPS spline =
          Built(points, values, Settings(static_cast<std::uint64_t>(inputs), smoothing, eTransformation::kNone));
      EXPECT_TRUE(MatrixNear(spline.Approximate(query), PlainSpline(points, values, smoothing, query), 1e-8));
    }
  }
}

TEST(SurrogateTPS, MeetsItsSamplesWithoutSmoothing) {
  for (const Index inputs : {1, 2, 4, 12}) {
    const Matrix points = RandomPoints(100, inputs, 1, -50.0, 1000.0);
    const Vector values = Waves(points);
    const SurrogateTPS spline = Built(points, values, Settings(static_cast<std::uint64_t>(inputs), 0.0));
    EXPECT_TRUE(MatrixNear(spline.Approximate(), values, 1e-8 * values.cwiseAbs().maxCoeff())) << inputs;
  }
}

/// Every sample by a spline that is built on the samples of the other subsets.
Vector RefitEachSubset(const Matrix& points, const Vector& values, const Subsets& subsets,
                       const SurrogateTPSSettings& settings) {
  Vector predicted(values.size());
  for (const std::uint64_t subset : subsets) {
    std::vector<Index> inside, outside;
    for (Index i = 0; i < values.size(); ++i) {
      (subsets[static_cast<std::size_t>(i)] == subset ? inside : outside).push_back(i);
    }
    predicted(inside) =
        Built(points(outside, Eigen::all), values(outside), settings).Approximate(points(inside, Eigen::all));
  }
  return predicted;
}

TEST(SurrogateTPS, CrossValidatesAsPlainRefitsDo) {
  const Matrix points = RandomPoints(50, 3, 1, 0.0, 1.0);
  const Vector values = Waves(points) + Noise(50, 0.1, 4);
  Subsets fifths, each, uneven;
  for (std::uint64_t i = 0; i < 50; ++i) {
    fifths.push_back(i % 5);
    each.push_back(i);
    uneven.push_back(i < 30 ? 7 : i / 2);
  }
  for (const double smoothing : {0.0, 1e-3, 1.0}) {
    const SurrogateTPSSettings settings = Settings(3, smoothing, eTransformation::kNone);
    const SurrogateTPS spline = Built(points, values, settings);
    for (const Subsets& subsets : {fifths, each, uneven}) {
      EXPECT_TRUE(MatrixNear(spline.ApproximateCrossValidation(subsets),
                             RefitEachSubset(points, values, subsets, settings), 1e-9));
    }
    EXPECT_TRUE(MatrixNear(spline.ApproximateLeaveOneOut(), spline.ApproximateCrossValidation(each), 0.0));
    EXPECT_TRUE(MatrixNear(spline.ApproximateCrossValidation(Subsets()), spline.ApproximateLeaveOneOut(), 0.0));
  }
  EXPECT_THROW(Built(points, values, Settings(3, 0.0)).ApproximateCrossValidation(Subsets(49)), utils::runtime_error);
}

TEST(SurrogateTPS, HasNoCrossValidationWhereTheOthersDetermineNothing) {
  Matrix points = RandomPoints(12, 2, 1);
  points.col(1).head(11).setConstant(1.0);  // without the last sample the rest lies on a line
  for (const double smoothing : {0.0, 0.1}) {
    const SurrogateTPS spline = Built(points, Waves(points), Settings(2, smoothing));
    const Vector predicted = spline.ApproximateLeaveOneOut();
    EXPECT_TRUE(predicted.head(11).allFinite());
    EXPECT_TRUE(std::isnan(predicted(11)));
    EXPECT_TRUE(spline.ApproximateCrossValidation(Subsets(12, 3)).array().isNaN().all());
  }
  const SurrogateTPS plane = Built(points.bottomRows(3), Vector{{1.0, 2.0, 4.0}}, Settings(2, 0.0));
  EXPECT_TRUE(MatrixNear(plane.Approximate(), Vector{{1.0, 2.0, 4.0}}, 1e-12));
  EXPECT_TRUE(plane.ApproximateLeaveOneOut().array().isNaN().all());
}

TEST(SurrogateTPS, IsNotBuiltOnSamplesThatDoNotDetermineIt) {
  const Matrix points = RandomPoints(20, 2, 1);
  Matrix twice = points;
  twice.row(7) = twice.row(3);
  Matrix line = points;
  line.col(1) = 2.0 * line.col(0);
  Matrix constant = points;
  constant.col(1).setConstant(4.0);
  Matrix nan = points;
  nan(4, 1) = kNaN;
  Vector values = Waves(points);
  Vector nan_values = values;
  nan_values(4) = kNaN;
  struct Case {
    const char* name;
    Matrix points;
    Vector values;
    double smoothing;
    bool built, linear;
  };
  for (const Case& c :
       {Case{"enough", points, values, 0.0, true, true},
        Case{"too few", points.topRows(2), values.head(2), 0.1, false, false},
        Case{"none", points.topRows(0), values.head(0), 0.1, false, false},
        Case{"two at one place", twice, values, 0.0, false, true},
        Case{"two at one place, smoothed", twice, values, 0.1, true, true},
        Case{"on a line", line, values, 0.1, false, false}, Case{"constant input", constant, values, 0.1, false, false},
        Case{"NaN input", nan, values, 0.1, false, false}, Case{"NaN value", points, nan_values, 0.1, false, true}}) {
    SCOPED_TRACE(c.name);
    SurrogateTPS spline(c.points, c.values);
    spline.Initialize(Settings(2, c.smoothing));
    EXPECT_EQ(spline.CheckBeforeBuild(), c.linear);
    EXPECT_EQ(spline.Build(), c.built);
    EXPECT_EQ(spline.CheckAfterBuild(), c.built);
    if (c.built) {
      EXPECT_TRUE(spline.Approximate().allFinite());
    } else {
      EXPECT_THROW(spline.Approximate(points), utils::runtime_error);
      EXPECT_THROW(spline.ApproximateLeaveOneOut(), std::exception);
    }
  }
}

TEST(SurrogateTPS, OfNoInputsIsTheMean) {
  const Matrix points = RandomPoints(20, 2, 1);
  SurrogateTPSSettings settings = Settings(2, 0.5);
  settings.SetVariableSelection(Selection(2));
  const Vector values = Waves(points);
  const SurrogateTPS spline = Built(points, values, settings);
  EXPECT_TRUE(MatrixNear(spline.Approximate(points), Vector::Constant(20, values.mean()), 1e-12));
  const Vector others = (values.sum() - values.array()) / 19.0;
  EXPECT_TRUE(MatrixNear(spline.ApproximateLeaveOneOut(), others, 1e-12));
}

double LeaveOneOutError(const SurrogateTPS& spline) {
  return statistics::SSE(spline.GetResponseValues(), spline.ApproximateLeaveOneOut());
}

TEST(SurrogateTPS, FindsTheSmoothingOfLeastCrossValidationError) {
  const Matrix points = RandomPoints(80, 2, 1);
  for (const double noise : {0.0, 0.3}) {
    const Vector values = Waves(points) + Noise(80, noise, 4);
    SurrogateTPS spline(points, values);
    spline.Initialize(Settings(2, 5.0));
    ASSERT_TRUE(spline.BuildOptimal());
    EXPECT_EQ(spline.GetSettingsBase().GetSmoothing() > 1e-4, noise > 0.0);
    EXPECT_EQ(spline.GetSettingsBase().GetState(), eState::kOptimal);
    EXPECT_TRUE(MatrixNear(Built(points, values, spline.GetSettingsBase()).Approximate(), spline.Approximate(), 0.0));
    for (const double other : {0.0, 1e-8, 1e-5, 1e-3, 1e-2, 0.1, 1.0, 100.0}) {
      EXPECT_LE(LeaveOneOutError(spline), LeaveOneOutError(Built(points, values, Settings(2, other))) * (1 + 1e-9));
    }
  }
}

TEST(SurrogateTPS, FindsSmoothingAndExponentWhereInterpolationFails) {
  Matrix points = RandomPoints(60, 2, 1);
  points.row(1) = points.row(0);
  const Vector values = (2.0 * points.col(0) + points.col(1)).array().exp().matrix();
  SurrogateTPS plain(points, values);
  ASSERT_TRUE(plain.BuildOptimal({}));
  EXPECT_GT(plain.GetSettingsBase().GetSmoothing(), 0.0);

  SurrogateTPSSettings settings = Settings(2, 0.0);
  settings.SetValueTransformation(eTransformation::kBoxCox);
  SurrogateTPS transformed(points, values);
  transformed.Initialize(settings);
  ASSERT_TRUE(transformed.BuildOptimal({}));
  EXPECT_TRUE(transformed.GetSettingsBase().HasBoxCoxExponent());
  EXPECT_LT(LeaveOneOutError(transformed), 0.5 * LeaveOneOutError(plain));
  EXPECT_THROW(transformed.BuildOptimal(Subsets(3)), std::logic_error);

  SurrogateTPS few(points.bottomRows(4), values.tail(4));  // not enough for a quadratic regression
  few.Initialize(settings);
  EXPECT_TRUE(few.BuildOptimal({}));
  EXPECT_TRUE(few.Approximate().allFinite());
}

TEST(SurrogateTPS, SaysWhatItIs) {
  SurrogateTPS spline(RandomPoints(9, 2, 1), Noise(9, 1.0, 2));
  spline.Initialize(Settings(2, 0.25));
  EXPECT_EQ(spline.Name(false), L"Thin Plate Spline | 1");
  EXPECT_EQ(spline.Name(true), L"Thin Plate Spline");
  EXPECT_EQ(spline.Str().rfind(L"Thin Plate Spline | 1 | smoothing 0.25 | coordinate transformation : ", 0), 0U);
  EXPECT_EQ(spline.GetNumberCoefficients(), 3U);
  const std::wstring refusal = testing::RaisedText([&] { spline.Initialize(LinearRegressionSettings(2)); });
  EXPECT_EQ(refusal.rfind(L"Initialize Thin Plate Spline failed. Could not convert surrogate setting : ", 0), 0U);
  EXPECT_THROW(spline.Initialize(SurrogateTPSSettings(3)), utils::runtime_error);
  SurrogateTPSSettings unchecked;  // of no number of inputs
  unchecked.SetVariableSelection(Selection(5).set());
  EXPECT_THROW(spline.Initialize(unchecked), utils::runtime_error);
}

TEST(SurrogateTPSSettings, CountAndCompareWhatTheyHold) {
  SurrogateTPSSettings settings(3);
  EXPECT_EQ(settings.GetNumberParameter(), 4U);
  settings.SetSmoothing(0.5);
  EXPECT_FALSE(settings == SurrogateTPSSettings(3));
  settings.SetVariableSelection(Selection(3, 5));
  settings.SetValueTransformationParameter({0.5, 0.1, 10.1});
  EXPECT_EQ(settings.GetNumberCoefficients(), 3U);
  EXPECT_EQ(settings.GetNumberParameter(), 5U);
  EXPECT_TRUE(*settings.Clone() == settings);
  settings.SetDefaults();
  EXPECT_TRUE(settings == SurrogateTPSSettings(3));
  settings.SetNumInputs(2);
  EXPECT_TRUE(settings == SurrogateTPSSettings(2));
}

TEST(SurrogateTPSSettings, ReportWhatCannotBe) {
  using Spoil = std::function<void(SurrogateTPSSettings&)>;
  const struct {
    const char* name;
    Spoil spoil;
  } cases[] = {{"no inputs", [](auto& s) { s.SetNumInputs(0); }},
               {"selection", [](auto& s) { s.SetVariableSelection(Selection(3)); }},
               {"negative", [](auto& s) { s.SetSmoothing(-1e-9); }},
               {"NaN", [](auto& s) { s.SetSmoothing(kNaN); }},
               {"infinite", [](auto& s) { s.SetSmoothing(std::numeric_limits<double>::infinity()); }}};
  utils::log::LogDummy log;
  for (const auto& c : cases) {
    SurrogateTPSSettings settings(2);
    EXPECT_NO_THROW(settings.CheckSettings(log));
    c.spoil(settings);
    EXPECT_THROW(settings.CheckSettings(log), utils::runtime_error) << c.name;
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
