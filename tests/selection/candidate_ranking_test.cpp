#include "selection/candidate_ranking.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "selection/candidate_measures.h"
#include "selection/search_samples.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::FirstInputs;
using testing::MakeContext;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Entry {
  double error;
  std::uint64_t variables;
  std::uint64_t order;  // from 2 on the complexity; 1 has complexity 0
};

struct RankingCase {
  const char* name;
  double tolerance;
  std::vector<Entry> entries;
  std::optional<std::size_t> chosen;
};

TEST(CandidateRanking, ChoosesTheSimplestOfTheBest) {
  const RankingCase cases[] = {
      {"nothing entered", 0.01, {}, std::nullopt},
      {"errors without a number or too large", 0.01, {{kNaN, 2, 1}, {1000.0, 2, 1}}, std::nullopt},
      {"NaN before the best", 0.01, {{kNaN, 1, 1}, {0.2, 2, 1}}, 1},
      {"least error beyond the tolerance", 0.01, {{0.20, 1, 1}, {0.10, 3, 1}}, 1},
      {"fewer variables within the tolerance", 0.25, {{0.30, 1, 1}, {0.10, 3, 1}}, 0},
      {"least complexity of as many variables", 0.25, {{0.10, 2, 3}, {0.20, 2, 1}, {0.15, 2, 2}}, 1},
      {"variables count before complexity", 0.25, {{0.10, 2, 1}, {0.20, 1, 3}}, 1},
      {"the later one, though worse", 0.25, {{0.10, 2, 2}, {0.30, 2, 2}}, 1},
      {"exactly the best error without tolerance", 0.0, {{0.10, 3, 1}, {0.10, 2, 1}, {0.11, 1, 1}}, 1},
      {"complexity above all classes", 0.01, {{0.10, 2, 101}}, std::nullopt},
  };
  for (const RankingCase& c : cases) {
    SCOPED_TRACE(c.name);
    SearchContext context = MakeContext(Matrix::Zero(5, 4), Vector::Zero(5), std::make_shared<utils::log::VectorLog>());
    context.settings.SetToleranceCOPModel(c.tolerance);
    CandidateRanking ranking;
    for (const Entry& entry : c.entries) {
      SubspaceResults::Measures measures;
      measures.predError = entry.error;
      measures.CoP = 1.0 - entry.error;
      ranking.AppendResults(context, {ModelType::kPolynomial, FirstInputs(4, entry.variables, entry.order), measures});
    }
    const SubspaceResults* chosen = ranking.FindBest(context);
    ASSERT_EQ(chosen != nullptr, c.chosen.has_value());
    if (chosen) {
      EXPECT_EQ(chosen - ranking.GetBestReduced().data(), static_cast<std::ptrdiff_t>(*c.chosen));
    }
  }
}

TEST(CandidateRanking, TellsTheContainerAndTheLog) {
  const auto log = std::make_shared<utils::log::VectorLog>();
  SearchContext context = MakeContext(Matrix::Zero(5, 4), Vector::Zero(5), log);
  context.container = std::make_shared<SubspaceResultContainer>();
  CandidateRanking ranking;
  ranking.FindBest(context);
  EXPECT_EQ(CountLines(log, L"Best CoP 0 best error 1000 complexity -1 position -1"), 1);

  const SubspaceResults result(ModelType::kPolynomial, FirstInputs(4, 2, 1), {0.75, 0.5, 0.25, 0.125, 0.0, 0.875});
  ranking.AddBest(result);
  ranking.AppendResults(context, result);
  EXPECT_EQ(context.container->GetResults().at(L"y").size(), 1u);
  ranking.FindBest(context);
  EXPECT_EQ(CountLines(log, L"Best CoP 0.25 best error 0.875 complexity 0 position 0"), 1);
  EXPECT_EQ(CountLines(log, L"Best reduced CoP 0.25 complexity 0"), 1);

  ranking.Log(*log);
  EXPECT_EQ(CountLines(log, L"Best subspaces "), 1);
  EXPECT_EQ(CountLines(log, L"Best reduced subspaces "), 1);
  EXPECT_EQ(CountLines(log, L" Complexity 0 R2 0.75 R2adj 0.5 R2CV 0.25 predError 0.875 NumVariables 2 numCoeff 3"), 2);
}

TEST(CandidateMeasures, PredictionError) {
  const Vector y = (Vector(5) << 1, 2, 3, 4, 5).finished();  // SST 10
  const Vector y_cv = (Vector(5) << 2, 2, 3, 4, 5).finished();
  const struct {
    const char* name;
    Vector y;
    Vector y_cv;
    std::uint64_t parameters;
    bool adjusted;
    double expected;
  } cases[] = {
      {"plain", y, y_cv, 3, false, 0.1},
      {"adjusted", y, y_cv, 3, true, 0.1 * 4.0 / 2.0},
      {"no parameters count as one", y, y_cv, 0, true, 0.1},
      {"no degree of freedom", y, y_cv, 5, true, kInfinity},
      {"worse than the mean", y, 10.0 * y, 1, false, 81.0 * 55.0 / 10.0},
      {"constant response", Vector::Ones(5), y, 1, false, 0.0},
      {"a missing prediction", y, Vector::Constant(5, kNaN), 1, false, kNaN},
  };
  for (const auto& c : cases) {
    const double error = PredictionError(c.y, c.y_cv, TotalSumOfSquares(c.y), c.parameters, c.adjusted);
    if (std::isfinite(c.expected)) {
      EXPECT_NEAR(error, c.expected, 1e-12) << c.name;
    } else {
      EXPECT_EQ(std::isnan(error), std::isnan(c.expected)) << c.name << ": " << error;
      EXPECT_EQ(std::isinf(error), std::isinf(c.expected)) << c.name << ": " << error;
    }
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
