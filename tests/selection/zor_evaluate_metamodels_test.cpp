#include <gtest/gtest.h>

#include <limits>

#include "selection/search_samples.h"
#include "statistics/basic_statistics.h"
#include "support/matrix_compare.h"
#include "support/raised_text.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::Evaluated;
using testing::Inputs;
using testing::MatrixNear;
using testing::Names;
using testing::Noise;
using testing::RaisedText;
using testing::RandomPoints;
using testing::WideLog;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

ZORSettings Settings(const Matrix& inputs) { return ZORSettings(static_cast<std::uint64_t>(inputs.cols())); }

/// 1 + 2 x0 - x2^2.
Vector Parabola(const Matrix& x) { return 1.0 + 2.0 * x.col(0).array() - x.col(2).array().square(); }

TEST(EvaluateMetamodels, FindsAPerfectPolynomial) {
  const Matrix inputs = RandomPoints(60, 4, 1, -2.0, 2.0);
  const Zor zor = Evaluated(inputs, Parabola(inputs), Settings(inputs));
  const SubspaceResults& best = zor.GetBestResult();
  EXPECT_EQ(best.model_type, ModelType::kPolynomial);
  EXPECT_EQ(best.settings->GetVariableSelection(), Inputs(4, {0, 2}));
  EXPECT_EQ(best.settings->GetInputNames(), Names(4));
  EXPECT_NEAR(zor.GetBestCoP(), 1.0, 1e-12);

  const Matrix query = RandomPoints(50, 4, 2, -2.0, 2.0);
  EXPECT_TRUE(MatrixNear(zor.GetBestMetamodel()->Approximate(query), Parabola(query), 1e-10));
  // The function is additive: both indices of an input are its share of the variance.
  const auto variance = [](const Vector& x) { return (x.array() - x.mean()).square().sum(); };
  const double linear = variance(2.0 * inputs.col(0));
  const double share = linear / (linear + variance(inputs.col(2).array().square()));
  const Matrix expected = (Matrix(4, 2) << share, share, kNaN, kNaN, 1.0 - share, 1.0 - share, kNaN, kNaN).finished();
  EXPECT_TRUE(MatrixNear(best.singleCoPs, expected, 0.1));
}

TEST(EvaluateMetamodels, LogsItsStages) {
  const Matrix inputs = RandomPoints(60, 4, 1);
  const WideLog log = std::make_shared<utils::log::VectorLog>();
  Evaluated(inputs, Parabola(inputs), Settings(inputs), log);
  for (const wchar_t* line :
       {L"===================== Evaluate Metamodels =====================", L" Ranges Input 3 ",
        L"Supports per subset 12 12 12 12 12", L"number CV subsets 5 maximum point number 12",
        L"Maximum basis terms 59 59 59 59", L" ********** Testing polynomials *************** ",
        L" ********** Extract polynomials *************** ", L"Best subspaces ", L"Best reduced subspaces "}) {
    EXPECT_EQ(CountLines(log, line), 1) << line;
  }
}

TEST(EvaluateMetamodels, GivesAConstantResponseTheConstant) {
  const Matrix inputs = RandomPoints(12, 3, 1);
  ZORSettings settings = Settings(inputs);
  settings.SetUsePolynomials(false);
  const Zor zor = Evaluated(inputs, Vector::Constant(12, 7.5), settings);
  EXPECT_EQ(zor.GetBestResult().GetModelString(), L"Linear Regression of order 1 (no mixed terms)");  // the first
  EXPECT_EQ(zor.GetBestResult().GetNumberVariables(), 0u);
  EXPECT_EQ(zor.GetBestCoP(), 1.0);
  EXPECT_TRUE(zor.GetBestResult().singleCoPs.array().isNaN().all());
  EXPECT_TRUE(MatrixNear(zor.GetBestMetamodel()->Approximate(RandomPoints(5, 3, 2)), Vector::Constant(5, 7.5), 1e-12));
}

TEST(EvaluateMetamodels, FallsBackToADefaultRegression) {
  const struct {
    const char* name;
    Index samples;
    std::uint64_t variables;  ///< of the regression: none where all inputs would need more samples
  } cases[] = {{"enough samples for all inputs", 12, 4}, {"too few samples", 4, 0}};
  for (const auto& c : cases) {
    const Matrix inputs = RandomPoints(c.samples, 4, 1);
    ZORSettings settings = Settings(inputs);
    settings.SetCoeffFactorPolynomial(100.0);  // no polynomial has samples enough
    settings.SetUseMLS(false);
    settings.SetUseKriging(false);
    const WideLog log = std::make_shared<utils::log::VectorLog>();
    const Zor zor = Evaluated(inputs, inputs.col(0), settings, log);
    EXPECT_EQ(CountLines(log, L"y" + std::wstring(19, L' ') + L"no model found"), 2) << c.name;
    EXPECT_EQ(zor.GetBestResult().model_type, ModelType::kPolynomial) << c.name;
    EXPECT_EQ(zor.GetBestResult().GetNumberVariables(), c.variables) << c.name;
    EXPECT_EQ(zor.GetBestCoP(), 0.0) << c.name;
    EXPECT_TRUE(MatrixNear(zor.GetBestResult().singleCoPs, Matrix::Constant(4, 2, kNaN), 0.0)) << c.name;
    const Vector expected = c.variables > 0 ? Vector(inputs.col(0)) : Vector::Constant(c.samples, inputs.col(0).mean());
    EXPECT_TRUE(MatrixNear(zor.GetBestMetamodel()->Approximate(inputs), expected, 1e-9)) << c.name;
  }
}

TEST(EvaluateMetamodels, LeavesOneOutWhereAskedOrWhereSubsetsAreSingleSamples) {
  const struct {
    const char* name;
    Index samples;
    TestingType::eTestingType testing;
    std::size_t subsets;
  } cases[] = {{"cross validation", 6, TestingType::kCrossValidation, 6},
               {"single samples", 5, TestingType::kCrossValidation, 0},
               {"leave one out", 30, TestingType::kLeaveOneOut, 0}};
  for (const auto& c : cases) {
    const Matrix inputs = RandomPoints(c.samples, 1, 1);
    const Vector response = inputs.col(0) + Noise(c.samples, 0.1, 2);
    ZORSettings settings = Settings(inputs);
    settings.SetTestingType(c.testing);
    const Zor zor = Evaluated(inputs, response, settings);
    EXPECT_EQ(zor.GetSubset().size(), c.subsets) << c.name;
    const Vector cv = zor.GetBestMetamodel()->ApproximateCrossValidation();
    EXPECT_NEAR(zor.GetBestCoP(), statistics::R2(response, cv), 1e-12) << c.name;
  }
}

TEST(EvaluateMetamodels, RefusesWhatHasNotBeenPrepared) {
  Zor zor(RandomPoints(10, 2, 1), Vector::Zero(10), Names(2), L"y");
  EXPECT_EQ(RaisedText([&] { zor.EvaluateMetamodels(); }), L"No subspace available, BuildSubspaces() first ");
  EXPECT_EQ(RaisedText([&] { zor.GetBestMetamodel(); }), L" Type of best ZOR model not known");
}

}  // namespace
}  // namespace kestrel::math::metamodel
