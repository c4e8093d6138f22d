#include "selection/mls_search.h"

#include <gtest/gtest.h>

#include "selection/search_samples.h"
#include "statistics/basic_statistics.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::Evaluated;
using testing::Inputs;
using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;
using testing::WideLog;

using SearchOnSample = testing::SearchOnSample<MlsSearch>;

MovingLeastSquaresSettings FirstInputs(std::uint64_t inputs, std::uint64_t variables, std::uint64_t order) {
  MovingLeastSquaresSettings settings(inputs);
  settings.SetOrder(order);
  Selection selection(inputs);
  for (std::uint64_t j = 0; j < variables; ++j) selection.set(j);
  settings.SetVariableSelection(selection);
  return settings;
}

/// Bent in x0 and x1; further inputs are useless.
Vector BentResponse(const Matrix& x) {
  return (2.0 * x.col(0)).array().sin() + x.col(1).array() + Noise(x.rows(), 0.03, 9).array();
}

struct Candidate {
  std::uint64_t order;
  eTransformation transformation;
  bool operator==(const Candidate& other) const {
    return order == other.order && transformation == other.transformation;
  }
};

std::vector<Candidate> CandidatesOf(const MlsSearch& search) {
  std::vector<Candidate> candidates;
  for (const SubspaceResults& result : search.GetResults()) {
    candidates.push_back({result.settings->GetOrder(), result.settings->GetValueTransformation()});
  }
  return candidates;
}

TEST(MlsSearch, TriesOrderTwoOnWhatDidBetterAtOrderOne) {
  constexpr auto kPlain = eTransformation::kNone;
  constexpr auto kBoxCox = eTransformation::kBoxCox;
  const Matrix inputs = RandomPoints(60, 2, 1);
  const Vector linear = inputs.col(0) - 2.0 * inputs.col(1);
  const Vector growing = inputs.rowwise().sum().array().exp();
  const struct {
    const char* name;
    Vector response;
    bool boxcox;
    std::uint64_t max_order;
    std::vector<Candidate> candidates;
  } cases[] = {
      {"plain", growing, false, 2, {{1, kPlain}, {2, kPlain}}},
      {"order 1 alone", growing, false, 1, {{1, kPlain}}},
      {"Box-Cox is better", growing, true, 2, {{1, kBoxCox}, {1, kPlain}, {2, kBoxCox}}},
      {"Box-Cox at order 1", growing, true, 1, {{1, kBoxCox}, {1, kPlain}}},
      {"an exponent of 1 is the plain model", linear, true, 2, {{1, kBoxCox}, {2, kPlain}}},
  };
  const IndexMatrix subspaces = (IndexMatrix(2, 2) << 1, 0, 3, 0).finished();  // the second one is empty
  for (const auto& c : cases) {
    SearchOnSample sample(inputs, c.response);
    sample.context.settings.SetUseBoxCox(c.boxcox);
    sample.context.settings.SetMaxOrderMLS(c.max_order);
    sample.search.EvaluateSubspaces(subspaces);
    EXPECT_TRUE(CandidatesOf(sample.search) == c.candidates) << c.name;
    EXPECT_EQ(CountLines(sample.log, L"MLS: Order "), static_cast<std::ptrdiff_t>(c.candidates.size())) << c.name;
    EXPECT_EQ(CountLines(sample.log, L"curr_subspace "), 2) << c.name;
    sample.search.EvaluateSubspaces(subspaces);  // nothing is left to build
    EXPECT_EQ(sample.search.GetResults().size(), c.candidates.size()) << c.name;
    EXPECT_EQ(CountLines(sample.log, L"subspace exists: "), static_cast<std::ptrdiff_t>(c.candidates.size())) << c.name;
  }
}

TEST(MlsSearch, LogsWhatItCannotBuild) {
  const struct {
    const char* name;
    Index samples;
    std::uint64_t variables;
    double factor;
    std::uint64_t largest_subset;
    bool repeated_column;
    std::wstring line;
  } cases[] = {
      {"as many samples as demanded", 24, 3, 8.0, 0, false, L"MLS: Order 1 Complexity 11 R2adj "},
      {"too few samples", 16, 3, 8.0, 0, false, L"Not enough supports 16 for inputs 3"},
      {"just enough in cross validation", 16, 3, 1.0, 12, false, L"MLS: Order 1 Complexity 11 R2adj "},
      {"too few in cross validation", 16, 3, 1.0, 13, false,
       L"Not enough supports 3 for coefficients 4 in cross validation"},
      {"two equal inputs", 16, 2, 1.0, 0, true, L"rank of supports not sufficient for MLS"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Matrix inputs = RandomPoints(c.samples, 4, 1);
    if (c.repeated_column) inputs.col(1) = inputs.col(0);
    SearchOnSample sample(inputs, BentResponse(inputs));
    sample.context.settings.SetCoeffFactorMLS(c.factor);
    sample.context.largest_subset = c.largest_subset;
    const bool built = sample.search.EvaluateModel(FirstInputs(4, c.variables, 1)).has_value();
    EXPECT_EQ(built, c.line[0] == L'M');
    ASSERT_EQ(sample.log->GetEntries().size(), 1u);
    EXPECT_EQ(sample.log->GetEntries()[0].second.substr(0, built ? c.line.size() : std::wstring::npos), c.line);
  }
}

TEST(MlsSearch, MeasuresWhatItsModelPredicts) {
  const Matrix inputs = RandomPoints(60, 3, 1);
  const Vector response = BentResponse(inputs).array().exp();
  SearchOnSample sample(inputs, response);
  sample.context.settings.SetUseBoxCox(true);
  for (Index i = 0; i < 60; ++i) sample.context.subsets.push_back(static_cast<std::uint64_t>(i) % 5);
  sample.context.largest_subset = 12;
  sample.search.EvaluateSubspaces(IndexMatrix::Ones(3, 1));
  ASSERT_EQ(sample.search.GetResults().size(), 3u);
  for (const SubspaceResults& result : sample.search.GetResults()) {
    MovingLeastSquares surrogate(inputs, response);
    surrogate.Initialize(*result.settings);
    ASSERT_TRUE(surrogate.Build());
    const Vector cv = surrogate.ApproximateCrossValidation(sample.context.subsets);
    EXPECT_EQ(result.model_type, ModelType::kMLS);
    EXPECT_NEAR(result.measures.CoD, statistics::R2(response, surrogate.Approximate()), 1e-10);
    EXPECT_NEAR(result.measures.CoP, statistics::R2(response, cv), 1e-10);
    EXPECT_NEAR(result.measures.CoPadj,
                statistics::R2adj(response, cv, surrogate.GetSettingsBase().GetNumberParameter()), 1e-10);
    EXPECT_NEAR(result.measures.predError, 1.0 - result.measures.CoP, 1e-10);
  }
}

TEST(MlsReduction, DropsAUselessInput) {
  const Matrix inputs = RandomPoints(60, 3, 1);
  SearchOnSample sample(inputs, BentResponse(inputs));
  testing::ExpectUselessInputDropped(sample, FirstInputs(3, 3, 2), FirstInputs(3, 1, 2));
}

TEST(MlsReduction, KeepsTheTransformationThatWasFitted) {
  const Matrix inputs = RandomPoints(60, 3, 1);
  const Vector exponent = inputs.col(0) + inputs.col(1) + Noise(60, 0.05, 4);
  SearchOnSample sample(inputs, exponent.array().exp());
  MovingLeastSquaresSettings settings = FirstInputs(3, 3, 1);
  settings.SetValueTransformation(eTransformation::kBoxCox);
  const SubspaceResults reduced = testing::Reduced(sample, settings);
  EXPECT_EQ(reduced.settings->GetVariableSelection(), Inputs(3, {0, 1}));
  EXPECT_EQ(reduced.settings->GetValueTransformation(), eTransformation::kBoxCox);
}

TEST(MlsInCompetition, RunsWhereNoPolynomialIsGoodEnough) {
  const Matrix inputs = RandomPoints(100, 2, 1);
  const Vector bent = (3.0 * inputs.col(0)).array().sin() + 0.5 * inputs.col(1).array();
  const struct {
    const char* name;
    Vector response;
    bool interpolation;
    std::ptrdiff_t runs;
    std::wstring model;
  } cases[] = {
      {"a bent response", bent, false, 1, L"Moving Least Squares of order 2 (exponential weight)"},
      {"interpolation", bent, true, 1, L"Moving Least Squares of order 2 (regularized weight)"},
      {"a straight line", inputs.col(0), false, 0, L"Linear Regression of order 1 (no mixed terms)"},
      {"a straight line by interpolation", inputs.col(0), true, 1,
       L"Moving Least Squares of order 1 (regularized weight)"},
      {"a constant by interpolation", Vector::Ones(100), true, 0, L"Linear Regression of order 1 (no mixed terms)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ZORSettings settings(2);
    settings.SetUseBoxCox(false);
    settings.SetUseKriging(false);
    settings.SetUseInterpolation(c.interpolation);
    const WideLog log = std::make_shared<utils::log::VectorLog>();
    const Zor zor = Evaluated(inputs, c.response, settings, log);
    EXPECT_EQ(CountLines(log, L" ********** Testing MLS *************** "), c.runs);
    EXPECT_EQ(CountLines(log, L" ********** Extract MLS *************** "), c.runs);
    EXPECT_EQ(zor.GetBestResult().GetModelString(), c.model);
    EXPECT_GT(zor.GetBestCoP(), 0.95);
    const auto surrogate = zor.GetBestMetamodel();
    const Vector cv = surrogate->ApproximateCrossValidation();
    EXPECT_NEAR(zor.GetBestCoP(), statistics::R2(c.response, cv), 1e-10);
    if (c.interpolation) {
      EXPECT_TRUE(MatrixNear(surrogate->Approximate(inputs), c.response, 1e-4));
    }
  }
}

TEST(MlsInCompetition, EndsWhereAskedToStop) {
  const Matrix inputs = RandomPoints(60, 3, 1);
  SearchOnSample sample(inputs, BentResponse(inputs));
  sample.context.stop_helper = std::make_shared<utils::StopHelper>();
  MlsSearch search(sample.context, sample.ranking);
  sample.context.stop_helper->RequestStop();
  EXPECT_THROW(search.EvaluateSubspaces(IndexMatrix::Ones(3, 1)), utils::runtime_error);
  EXPECT_TRUE(search.GetResults().empty());
}

}  // namespace
}  // namespace kestrel::math::metamodel
