#include "selection/kriging_search.h"

#include <gtest/gtest.h>

#include "selection/search_samples.h"
#include "statistics/basic_statistics.h"
#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::Evaluated;
using testing::Inputs;
using testing::MatrixNear;
using testing::RandomPoints;
using testing::Subspaces;
using testing::WideLog;

using SearchOnSample = testing::SearchOnSample<KrigingSearch>;

/// A wave along the first input, steeper than along the second; further inputs are useless.
Vector Wave(const Matrix& x) { return (3.0 * x.col(0) + x.col(1)).array().sin(); }

TEST(KrigingSearchOfSubspaces, TriesBoxCoxFirstAndThePlainValuesOnlyBehindIt) {
  const Matrix inputs = RandomPoints(30, 3, 1);
  const Vector line = inputs.col(0) + 2.0 * inputs.col(1);
  const struct {
    const char* name;
    Vector response;
    bool boxcox;
    IndexMatrix subspaces;
    std::vector<eTransformation> results;
    std::ptrdiff_t refused;
  } cases[] = {
      {"plain", Wave(inputs), false, Subspaces(3, {1, 3, 0}), {eTransformation::kNone}, 0},
      {"no input", Wave(inputs), true, Subspaces(3, {0, 0, 0}), {}, 0},
      {"an exponent",
       line.array().exp(),
       true,
       Subspaces(3, {1, 1, 0}),
       {eTransformation::kBoxCox, eTransformation::kNone},
       0},
      {"the exponent 1", line, true, Subspaces(3, {1, 1, 0}), {eTransformation::kBoxCox}, 0},
      {"too few samples for three inputs", line, true, Subspaces(3, {1, 1, 1}), {}, 1},
      {"the same inputs again", Wave(inputs), false, Subspaces(3, {1, 1, 0, 3, 3, 0}), {eTransformation::kNone}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    SearchOnSample sample(inputs, c.response);
    sample.context.settings.SetUseBoxCox(c.boxcox);
    sample.context.settings.SetCoeffFactorKriging(12.0);
    sample.search.EvaluateSubspaces(c.subspaces);
    const std::vector<SubspaceResults>& results = sample.search.GetResults();
    ASSERT_EQ(results.size(), c.results.size());
    for (std::size_t i = 0; i < results.size(); ++i) {
      EXPECT_EQ(results[i].model_type, ModelType::kKriging);
      EXPECT_EQ(results[i].settings->GetValueTransformation(), c.results[i]);
      EXPECT_EQ(results[i].settings->GetKernelType(), Kernel::kConstInflIsoExp);
    }
    EXPECT_EQ(CountLines(sample.log, L"Not enough supports 30 for inputs 3"), c.refused);
    EXPECT_EQ(CountLines(sample.log, L" ********** Isotropic Kriging *************** "), 1);
    EXPECT_EQ(CountLines(sample.log, L"Kriging: Complexity 10 R2adj "), static_cast<std::ptrdiff_t>(results.size()));
    EXPECT_EQ(CountLines(sample.log, L"subspace exists: 0"), c.subspaces.cols() - 1);
  }
}

TEST(KrigingSearchOfSubspaces, MeasuresWhatItsSettingsBuildAgain) {
  const Matrix inputs = RandomPoints(40, 2, 1);
  SearchOnSample sample(inputs, inputs.rowwise().sum().array().exp());
  sample.context.settings.SetUseBoxCox(true);
  sample.context.settings.SetUseLimits(true);
  sample.context.settings.SetLimits({0.5, 2.0});
  sample.search.EvaluateSubspaces(Subspaces(2, {1, 1}));
  ASSERT_EQ(sample.search.GetResults().size(), 2u);
  for (const SubspaceResults& result : sample.search.GetResults()) {
    OrdinaryKriging kriging(inputs, sample.context.response);
    kriging.Initialize(*result.settings);
    ASSERT_TRUE(kriging.Build());
    const Vector cv = kriging.ApproximateCrossValidationCompare({});
    EXPECT_LE(cv.maxCoeff(), 2.0);
    EXPECT_NEAR(result.measures.CoP, statistics::R2(sample.context.response, cv), 1e-8);
    EXPECT_NEAR(result.measures.CoD, statistics::R2(sample.context.response, kriging.Approximate()), 1e-12);
  }
}

TEST(KrigingSearchOfSubspaces, FitsARadiusPerInputWhereItMayPay) {
  const Matrix inputs = RandomPoints(50, 3, 1);
  const struct {
    const char* name;
    bool anisotropic;
    std::vector<std::uint64_t> importance;
    std::vector<Selection> selections;  ///< of anisotropic results
    std::ptrdiff_t near_the_best;       ///< selections that are tried
  } cases[] = {
      {"not asked for", false, {1, 1, 1}, {}, 0},
      {"all inputs, and those of the best", true, {1, 1, 1}, {Inputs(3, {0, 1, 2}), Inputs(3, {0, 1})}, 3},
      {"two active inputs", true, {1, 1, 0}, {Inputs(3, {0, 1})}, 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    SearchOnSample sample(inputs, Wave(inputs));
    sample.context.settings.SetUseKrigingAnisotropicKernel(c.anisotropic);
    sample.context.importance = Eigen::Map<const IndexVector>(c.importance.data(), 3);
    sample.search.EvaluateSubspaces(Subspaces(3, {1, 1, 0, 1, 0, 0}));
    std::vector<Selection> selections;
    for (const SubspaceResults& result : sample.search.GetResults()) {
      if (result.settings->GetKernelType() != Kernel::kConstInflExp) continue;
      selections.push_back(result.settings->GetVariableSelection());
      EXPECT_EQ(result.settings->GetComplexity(), 11u);
      EXPECT_EQ(result.settings->GetNumberParameter(), 1 + selections.back().count());
    }
    EXPECT_EQ(selections, c.selections);
    const std::wstring count = L"Number of subspaces to test " + std::to_wstring(c.near_the_best);
    EXPECT_EQ(CountLines(sample.log, count), c.anisotropic ? 1 : 0);
    EXPECT_EQ(CountLines(sample.log, L" ********** Extract Isotropic Kriging ********* "), c.anisotropic ? 1 : 0);
    EXPECT_EQ(CountLines(sample.log, L" ********** Anisotropic Kriging *************** "), c.anisotropic ? 1 : 0);
  }
  SearchOnSample single(inputs, Wave(inputs));
  single.context.settings.SetUseKrigingAnisotropicKernel(true);
  single.context.importance = (IndexVector(3) << 1, 0, 0).finished();
  single.search.EvaluateSubspaces(Subspaces(3, {1, 0, 0}));
  EXPECT_EQ(single.search.GetResults().size(), 1u);  // one input has one radius anyway
}

TEST(KrigingReduction, DropsAUselessInput) {
  const Matrix inputs = RandomPoints(50, 3, 1);
  for (const Kernel::eType kernel : {Kernel::kConstInflIsoExp, Kernel::kConstInflExp}) {
    SearchOnSample sample(inputs, Wave(inputs));
    OrdinaryKrigingSettings all(3);
    all.SetKernelType(kernel);
    OrdinaryKrigingSettings first = all;
    first.SetVariableSelection(Inputs(3, {0}));
    testing::ExpectUselessInputDropped(sample, all, first);
    EXPECT_EQ(CountLines(sample.log, L"110"), 1);

    // The radii are those of the smaller selection.
    SearchOnSample again(inputs, Wave(inputs));
    const SubspaceResults reduced = testing::Reduced(again, all);
    auto settings = dynamic_cast<const OrdinaryKrigingSettings&>(*reduced.settings);
    const Vector radii = settings.GetKernelParameter();
    settings.SetKernelParameter(Vector());
    OrdinaryKriging searched(inputs, Wave(inputs));
    searched.Initialize(settings);
    ASSERT_TRUE(searched.BuildOptimal({}));
    EXPECT_TRUE(MatrixNear(searched.GetSettingsBase().GetKernelParameter(), radii, 0.0));
  }
}

TEST(EvaluateMetamodels, FindsAKrigingModelOfAWave) {
  const Matrix inputs = RandomPoints(60, 3, 1);
  const Vector response = Wave(inputs);
  for (const bool anisotropic : {false, true}) {
    ZORSettings settings(3);
    settings.SetUseMLS(false);
    settings.SetUseKrigingAnisotropicKernel(anisotropic);
    const WideLog log = std::make_shared<utils::log::VectorLog>();
    const Zor zor = Evaluated(inputs, response, settings, log);
    EXPECT_EQ(zor.GetBestResult().model_type, ModelType::kKriging);
    EXPECT_EQ(zor.GetBestResult().GetModelString().rfind(L"Kriging (", 0), 0u);
    EXPECT_EQ(zor.GetBestResult().settings->GetVariableSelection(), Inputs(3, {0, 1}));
    EXPECT_GT(zor.GetBestCoP(), 0.97);
    EXPECT_EQ(CountLines(log, L" ********** Testing Kriging *************** "), 1);
    EXPECT_EQ(CountLines(log, L" ********** Extract Kriging *************** "), 1);

    const auto model = zor.GetBestMetamodel();
    EXPECT_NEAR(zor.GetBestCoP(), statistics::R2(response, model->ApproximateCrossValidation()), 1e-12);
    const Matrix query = RandomPoints(200, 3, 2, -0.9, 1.9);
    EXPECT_GT(statistics::R2(Wave(query), model->Approximate(query)), 0.97);
    EXPECT_GT(zor.GetBestResult().singleCoPs(0, 1), zor.GetBestResult().singleCoPs(1, 1));
  }
}

TEST(EvaluateMetamodels, LeavesKrigingOutWhereNothingIsLeftToGain) {
  const Matrix inputs = RandomPoints(40, 2, 1);
  const struct {
    const char* name;
    Vector response;
    void (*change)(ZORSettings&);
    std::ptrdiff_t runs;
  } cases[] = {
      {"a wave", Wave(inputs), [](ZORSettings&) {}, 1},
      {"a line", inputs.col(0), [](ZORSettings&) {}, 0},
      {"a constant", Vector::Ones(40), [](ZORSettings&) {}, 0},
      {"not wanted", Wave(inputs), [](ZORSettings& settings) { settings.SetUseKriging(false); }, 0},
      {"interpolation", Wave(inputs), [](ZORSettings& settings) { settings.SetUseInterpolation(true); }, 0},
  };
  for (const auto& c : cases) {
    ZORSettings settings(2);
    settings.SetUseMLS(false);
    c.change(settings);
    const WideLog log = std::make_shared<utils::log::VectorLog>();
    Evaluated(inputs, c.response, settings, log);
    EXPECT_EQ(CountLines(log, L" ********** Testing Kriging *************** "), c.runs) << c.name;
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
