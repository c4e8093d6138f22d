#include "selection/filter_grid.h"

#include <gtest/gtest.h>

#include <cmath>

#include "selection/search_samples.h"
#include "selection/subspace_filters.h"
#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::MakeContext;
using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Effects of every size: linear, quadratic, of two levels, hidden in noise, none, and two inputs that say the same.
SearchContext GradedEffects(unsigned seed, Index count = 60) {
  Matrix x = RandomPoints(count, 8, seed, -1.0, 1.0);
  x.col(6) = (x.col(6).array() > 0.0).cast<double>();
  x.col(7) = x.col(0) + Noise(count, 0.1, seed + 1);
  const Vector y = 2.0 * x.col(0).array() + x.col(1).array() + 1.2 * x.col(2).array().square() +
                   0.4 * x.col(3).array() + 0.5 * x.col(6).array() + Noise(count, 0.3, seed + 2).array();
  return MakeContext(x, y, std::make_shared<utils::log::VectorLog>());
}

// All 81 points of three levels in four inputs: the inputs do not correlate, and the correlations of the response with
// them are as 4 : 2 : 1.2 : 0. The squares for the CoD are 16, 4 and 1.44 of 21.44.
TEST(FilterGrid, KeepsTheFirstLimitsOfEachSubspace) {
  Matrix x(81, 4);
  for (int i = 0; i < 81; ++i) x.row(i) << i / 27 - 1.0, i / 9 % 3 - 1.0, i / 3 % 3 - 1.0, i % 3 - 1.0;
  SearchContext context =
      MakeContext(x, x * Eigen::Vector4d(4.0, 2.0, 1.2, 0.0), std::make_shared<utils::log::VectorLog>());
  context.settings.SetUseSignificanceFilter(false);
  context.settings.SetUseCoIFilter(false);
  context.settings.SetNumCorrSteps(3);  // levels 0.25, 0.75 and 1.25, which nothing reaches, then 0.999
  context.settings.SetStepCoD(0.1);
  context.settings.SetMaxCoD(0.25);
  const SubspaceCollector found = WalkFilterGrid(context);
  const IndexMatrix expected = (IndexMatrix(4, 4) << 3, 3, 3, 3, 3, 3, 0, 3, 3, 3, 0, 0, 3, 0, 0, 0).finished();
  EXPECT_EQ(found.SubspaceMatrix(), expected);
  Matrix limits = Matrix::Zero(7, 4);
  limits.row(0).setOnes();
  limits.row(6) << 0.0, 0.25, 0.75, 0.1;
  EXPECT_TRUE(MatrixNear(found.LimitMatrix(), limits, 0.0));
}

TEST(FilterGrid, WithoutFiltersTheOnlyCandidateIsAllInputs) {
  SearchContext context = GradedEffects(1);
  context.importance(1) = 0;
  context.settings.SetUseSignificanceFilter(false);
  context.settings.SetUseCoIFilter(false);
  context.settings.SetUseCoDFilter(false);
  context.settings.SetUseCorrelationFilter(false);
  const SubspaceCollector found = WalkFilterGrid(context);
  EXPECT_EQ(found.SubspaceMatrix(), (IndexVector(8) << 3, 0, 3, 3, 3, 3, 1, 3).finished());
  EXPECT_TRUE(MatrixNear(found.LimitMatrix(), Vector::Unit(7, 0), 0.0));
}

TEST(FilterGrid, RanksAddSubspacesForAMonotoneRelation) {
  const Matrix x = RandomPoints(80, 4, 3, 0.0, 1.0);
  const Vector y = (12.0 * x.col(0).array()).exp() * (1.0 + x.col(1).array());
  SearchContext context = MakeContext(x, y, std::make_shared<utils::log::VectorLog>());
  const SubspaceCollector raw = WalkFilterGrid(context);
  context.settings.SetUseSpearman(true);
  const SubspaceCollector both = WalkFilterGrid(context);
  ASSERT_GT(both.Size(), raw.Size());
  for (Index k = 0; k < raw.Size(); ++k) EXPECT_FALSE(both.CheckFilterSubspace(raw.Subspace(k)));
}

TEST(FilterGrid, LogsSizesQuantilesAndLimits) {
  SearchContext context = GradedEffects(1);
  const auto log = std::make_shared<utils::log::VectorLog>();
  context.log = log;
  WalkFilterGrid(context);
  EXPECT_EQ(CountLines(log, L"num_sig_steps 5 num_coi_steps 5 num_corr_steps 11 max_num_subspaces 197"), 1);
  EXPECT_EQ(CountLines(log, L"sigmaLin 0."), 1);
  EXPECT_EQ(CountLines(log, L"significance_quantiles \n0.99 0.98 0.97 0.96 0.95 1\n"), 1);
  EXPECT_GT(CountLines(log, L" R2adj 0."), 1);
  EXPECT_EQ(log->GetEntries().back().second.rfind(L"subspace_filter_settings \n", 0), 0U);
}

TEST(FilterGridSizes, RoundTheQuotientOfLimitAndStep) {
  ZORSettings settings;
  settings.SetMaxCoI(0.3);
  settings.SetStepCoI(0.1);  // the quotient is rounded to less than 3
  EXPECT_EQ(FilterGridSizes(settings).coi, 3U);
}

// Settings that would walk for ever, divide by zero or leave the range of a quantile.
TEST(FilterGrid, EndsWithSoundSubspacesWhateverTheSettings) {
  const std::pair<const char*, void (*)(ZORSettings&)> cases[] = {
      {"steps of zero", [](ZORSettings& s) { s.step_significance_ = s.step_CoI_ = s.step_CoD_ = 0.0; }},
      {"steps of NaN", [](ZORSettings& s) { s.step_significance_ = s.step_CoI_ = s.step_CoD_ = kNan; }},
      {"vanishing steps", [](ZORSettings& s) { s.step_significance_ = s.step_CoI_ = s.step_CoD_ = 1e-300; }},
      {"limits of NaN", [](ZORSettings& s) { s.min_significance_ = s.max_CoI_ = s.max_CoD_ = kNan; }},
      {"infinite limits",
       [](ZORSettings& s) {
         s.max_CoI_ = s.max_CoD_ = HUGE_VAL;
         s.min_significance_ = -HUGE_VAL;
       }},
      {"all quantiles", [](ZORSettings& s) { s.min_significance_ = 0.0; }},
      {"no level", [](ZORSettings& s) { s.num_corr_steps_ = 0; }},
      {"one level", [](ZORSettings& s) { s.num_corr_steps_ = 1; }},
      {"levels without end", [](ZORSettings& s) { s.num_corr_steps_ = std::numeric_limits<std::uint64_t>::max(); }},
  };
  for (const auto& [name, set] : cases) {
    SCOPED_TRACE(name);
    SearchContext context = GradedEffects(1, 30);
    set(context.settings);
    const IndexMatrix found = WalkFilterGrid(context).SubspaceMatrix();
    const IndexVector full = FullSubspace(context.importance, context.level_counts);
    bool has_full = false;
    for (Index k = 0; k < found.cols(); ++k) {
      has_full = has_full || found.col(k) == full;
      EXPECT_TRUE((found.col(k).array() <= full.array()).all());
    }
    EXPECT_TRUE(has_full);
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
