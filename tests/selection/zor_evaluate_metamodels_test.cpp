#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "selection/search_samples.h"
#include "selection/zor2.h"
#include "statistics/basic_statistics.h"
#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::Inputs;
using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;
using testing::WideLog;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::vector<std::wstring> Names(Index count) {
  std::vector<std::wstring> names;
  for (Index j = 0; j < count; ++j) names.push_back(L"x" + std::to_wstring(j));
  return names;
}

ZORSettings Settings(const Matrix& inputs) { return ZORSettings(static_cast<std::uint64_t>(inputs.cols())); }

Zor Evaluated(const Matrix& inputs, const Vector& response, const ZORSettings& settings,
              const WideLog& log = std::make_shared<utils::log::VectorLog>()) {
  Zor zor(inputs, response, Names(inputs.cols()), L"y");
  zor.Initialize(settings);
  zor.SetLog(log);
  zor.BuildSubspaces();
  zor.EvaluateMetamodels();
  return zor;
}

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
  Zor zor = Evaluated(inputs, Parabola(inputs), Settings(inputs), log);
  for (const wchar_t* line :
       {L"===================== Evaluate Metamodels =====================", L" Ranges Input 3 ",
        L"Supports per subset 12 12 12 12 12", L"number CV subsets 5 maximum point number 12",
        L"Maximum basis terms 59 59 59 59", L" ********** Testing polynomials *************** ",
        L" ********** Extract polynomials *************** ", L"Best subspaces ", L"Best reduced subspaces "}) {
    EXPECT_EQ(CountLines(log, line), 1) << line;
  }

  const std::ptrdiff_t results = CountLines(log, L" Complexity ");
  EXPECT_GT(results, 0);
  zor.EvaluateMetamodels();  // starts anew
  EXPECT_EQ(CountLines(log, L" Complexity "), 2 * results);
}

TEST(EvaluateMetamodels, ReportsTheCoPOfItsCrossValidationValues) {
  const Matrix inputs = RandomPoints(80, 3, 1);
  const Vector linear = 2.0 * inputs.col(0) + inputs.col(1) + Noise(80, 0.5, 2);
  for (const Vector& response : {linear, Vector(linear.array().exp())}) {
    const Zor zor = Evaluated(inputs, response, Settings(inputs));
    const Vector cv = zor.GetBestMetamodel()->ApproximateCrossValidation();
    const double sst = (response.array() - response.mean()).square().sum();
    EXPECT_NEAR(zor.GetBestCoP(), 1.0 - (response - cv).squaredNorm() / sst, 1e-12);
    EXPECT_GT(zor.GetBestCoP(), 0.5);
  }
}

TEST(EvaluateMetamodels, HandsTheWinnerItsSubsetsAndSingleCoPs) {
  const Matrix inputs = RandomPoints(40, 2, 1);
  const Zor zor = Evaluated(inputs, inputs.col(0) + Noise(40, 0.1, 2), Settings(inputs));
  const std::unique_ptr<SurrogateBase> surrogate = zor.GetBestMetamodel();
  EXPECT_EQ(zor.GetSubset().size(), 40u);
  EXPECT_EQ(surrogate->GetSubsets(), zor.GetSubset());
  EXPECT_TRUE(MatrixNear(surrogate->GetSingleCoPs(), zor.GetBestResult().singleCoPs, 0.0));
  EXPECT_DOUBLE_EQ(surrogate->GetSingleCoPs()(0, 0), zor.GetBestCoP());  // the only input
  EXPECT_TRUE(surrogate->ApproximateErrors(inputs).allFinite());
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

TEST(EvaluateMetamodels, RepeatsItselfFromTheSameGenerator) {
  const Matrix inputs = RandomPoints(230, 3, 1);  // enough for random subsets
  const Vector response = inputs.col(0) + inputs.col(1).cwiseProduct(inputs.col(2)) + Noise(230, 0.3, 2);
  const Zor first = Evaluated(inputs, response, Settings(inputs));
  Zor again = Evaluated(inputs, response, Settings(inputs));
  EXPECT_TRUE(first.GetBestResult() == again.GetBestResult());
  EXPECT_EQ(first.GetSubset(), again.GetSubset());

  again.SetGenerator(random::Generator(99));
  again.EvaluateMetamodels();
  EXPECT_NE(first.GetSubset(), again.GetSubset());
}

TEST(EvaluateMetamodels, CollectsResultsAndReportsItsEnd) {
  const Matrix inputs = RandomPoints(30, 2, 1);
  Zor zor(inputs, Vector(inputs.col(0)), Names(2), L"force");
  const auto container = std::make_shared<SubspaceResultContainer>();
  std::vector<float> progress;
  zor.Initialize(Settings(inputs));
  zor.SetSubspaceResultContainer(container);
  zor.SetProgressCallable([&progress](float fraction) { progress.push_back(fraction); });
  zor.BuildSubspaces();
  zor.EvaluateMetamodels();
  EXPECT_EQ(progress.back(), 1.0F);
  ASSERT_EQ(container->GetResults().count(L"force"), 1u);
  SubspaceResults best = zor.GetBestResult();
  best.singleCoPs.resize(0, 0);
  const std::vector<SubspaceResults>& collected = container->GetResults().at(L"force");
  EXPECT_NE(std::find(collected.begin(), collected.end(), best), collected.end());
}

TEST(EvaluateMetamodels, RefusesWhatHasNotBeenPrepared) {
  Zor zor(RandomPoints(10, 2, 1), Vector::Zero(10), Names(2), L"y");
  const auto text_of = [](const auto& call) {
    try {
      call();
    } catch (const std::logic_error& error) {
      return std::string(error.what());
    }
    return std::string("nothing raised");
  };
  EXPECT_EQ(text_of([&] { zor.EvaluateMetamodels(); }), "No subspace available, BuildSubspaces() first ");
  EXPECT_EQ(text_of([&] { zor.GetBestMetamodel(); }), " Type of best ZOR model not known");
}

}  // namespace
}  // namespace kestrel::math::metamodel
