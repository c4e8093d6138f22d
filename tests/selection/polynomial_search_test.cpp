#include "selection/polynomial_search.h"

#include <gtest/gtest.h>

#include "selection/search_samples.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::FirstInputs;
using testing::Inputs;
using testing::Noise;
using testing::RandomPoints;

using SearchOnSample = testing::SearchOnSample<PolynomialSearch>;

/// 2 x0 + x1 with a little noise; further inputs are useless.
Vector LinearResponse(const Matrix& x) { return 2.0 * x.col(0) + x.col(1) + Noise(x.rows(), 0.05, 9); }

TEST(PolynomialSearch, LogsWhatItCannotBuild) {
  const struct {
    const char* name;
    double factor;
    std::uint64_t largest_subset;
    bool repeated_column;
    std::uint64_t variables;
    std::wstring line;
  } cases[] = {
      {"as many samples as demanded", 2.0, 0, false, 4, L"Polynomial: Order 1 Complexity 0 R2adj "},
      {"too few samples", 2.0, 0, false, 5, L"Not enough supports 10 for coefficients 6"},
      {"just enough in cross validation", 1.0, 5, false, 4, L"Polynomial: Order 1 Complexity 0 R2adj "},
      {"too few in cross validation", 1.0, 6, false, 4,
       L"Not enough supports 4 for coefficients 5 in cross validation"},
      {"two equal inputs", 2.0, 0, true, 2, L"rank of supports not sufficient for polynomial"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Matrix inputs = RandomPoints(10, 6, 1);
    if (c.repeated_column) inputs.col(1) = inputs.col(0);
    SearchOnSample sample(inputs, LinearResponse(inputs));
    sample.context.settings.SetCoeffFactorPolynomial(c.factor);
    sample.context.largest_subset = c.largest_subset;
    const bool built = sample.search.EvaluateModel(FirstInputs(6, c.variables, 1)).has_value();
    EXPECT_EQ(built, c.line[0] == L'P');
    EXPECT_EQ(sample.search.GetResults().size(), built ? 1u : 0u);
    ASSERT_EQ(sample.log->GetEntries().size(), 1u);
    EXPECT_EQ(sample.log->GetEntries()[0].first, utils::log::LogLevel::kDebug);
    const std::wstring line = sample.log->GetEntries()[0].second;
    EXPECT_EQ(built ? line.substr(0, c.line.size()) : line, c.line);
  }
}

TEST(PolynomialSearch, TriesEachTermSetOnce) {
  const struct {
    const char* name;
    std::uint64_t max_order;
    bool boxcox;
    std::initializer_list<std::uint64_t> subspace;
    std::size_t results;
    std::ptrdiff_t repeated;
  } cases[] = {
      {"two linear inputs", 2, false, {1, 1, 0}, 4, 1},
      {"a mixed subspace has terms of its own", 2, false, {3, 3, 1}, 5, 0},
      {"one input has no interactions", 2, false, {3, 0, 0}, 2, 3},
      {"order 1 and Box-Cox", 1, true, {1, 1, 1}, 3, 1},
      {"no input", 2, true, {0, 0, 0}, 4, 2},
  };
  const Matrix inputs = RandomPoints(40, 3, 1);
  for (const auto& c : cases) {
    SearchOnSample sample(inputs, LinearResponse(inputs));
    sample.context.settings.SetMaxOrderPolynomial(c.max_order);
    sample.context.settings.SetUseBoxCox(c.boxcox);
    const IndexMatrix column = testing::Subspaces(3, c.subspace);
    sample.search.EvaluateSubspaces(column);
    EXPECT_EQ(sample.search.GetResults().size(), c.results) << c.name;
    EXPECT_EQ(CountLines(sample.log, L"subspace exists: "), c.repeated) << c.name;

    sample.search.EvaluateSubspaces(column);  // nothing is left to build
    EXPECT_EQ(sample.search.GetResults().size(), c.results) << c.name;
  }
}

TEST(PolynomialSearch, FindsTheTransformationOfTheValues) {
  const Matrix inputs = RandomPoints(40, 2, 1);
  SearchOnSample sample(inputs, inputs.rowwise().sum().array().exp());
  sample.context.settings.SetUseBoxCox(true);
  sample.context.settings.SetMaxOrderPolynomial(1);
  sample.search.EvaluateSubspaces(testing::Subspaces(2, {1, 1}));
  const std::vector<SubspaceResults>& results = sample.search.GetResults();
  ASSERT_EQ(results.size(), 3u);
  EXPECT_EQ(results[1].settings->GetValueTransformation(), eTransformation::kBoxCox);
  EXPECT_TRUE(results[1].settings->HasBoxCoxExponent());
  EXPECT_LT(results[1].measures.predError, 0.2 * results[0].measures.predError);
  EXPECT_EQ(results[1].settings->GetComplexity(), 1u);
}

TEST(RemoveSingularBasisTerms, RespectsTheLevelsOfTheInputs) {
  const IndexVector levels = (IndexVector(4) << 0, 1, 2, 9).finished();
  LinearRegressionSettings settings(4);
  settings.SetOrder(3);
  const LinearRegressionSettings regular = RemoveSingularBasisTerms(settings, levels);
  EXPECT_EQ(regular.GetOrder(), 3u);
  EXPECT_EQ(regular.GetMainTermSelection(), Inputs(12, {1, 2, 3, 6, 7, 11}));
  EXPECT_EQ(regular.GetInteractionSelection(), Inputs(6, {3, 4, 5}));  // pairs (1, 2), (1, 3), (2, 3)

  settings.SetOrder(1);
  EXPECT_TRUE(RemoveSingularBasisTerms(settings, levels) == settings);
}

TEST(PolynomialReduction, DropsAUselessInput) {
  const Matrix inputs = RandomPoints(40, 3, 1);
  SearchOnSample sample(inputs, LinearResponse(inputs));
  testing::ExpectUselessInputDropped(sample, FirstInputs(3, 3, 1), FirstInputs(3, 1, 1));
}

TEST(PolynomialReduction, ComparesEachStepWithTheStepBefore) {
  // Inputs 1 to 3 explain about 0.006 of the variance each: together more than the tolerance, each by itself less.
  const Matrix inputs = RandomPoints(60, 4, 1);
  const Vector response = 2.0 * inputs.col(0) + 0.16 * inputs.rightCols(3).rowwise().sum();
  for (const double tolerance : {0.01, 5.0}) {
    SearchOnSample sample(inputs, response);
    sample.context.settings.SetToleranceCOPVariables(tolerance);
    const SubspaceResults reduced = testing::Reduced(sample, FirstInputs(4, 4, 1));
    EXPECT_EQ(reduced.settings->GetVariableSelection(), Inputs(4, {0})) << tolerance;  // the last input stays
    EXPECT_GT(reduced.measures.predError, 0.012);
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
