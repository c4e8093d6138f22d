#include "selection/filter_grid.h"

#include <gtest/gtest.h>

#include "selection/plain_filter_grid.h"
#include "selection/search_samples.h"
#include "support/exceptions.h"
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

TEST(FilterGrid, EqualsThePlainWalk) {
  Index stored = 0;
  for (const unsigned seed : {1U, 2U, 3U, 4U}) {
    for (const int variant : {0, 1, 2, 3}) {
      SCOPED_TRACE(::testing::Message() << "seed " << seed << " variant " << variant);
      SearchContext context = GradedEffects(seed);
      context.settings.SetUseSpearman(variant % 2 == 1);
      context.settings.SetUseAdjustedCoD(variant != 2);
      if (variant == 1) context.settings.SetMinSignificance(0.5);
      if (variant >= 2) context.importance(4) = 2;
      if (variant == 3) context.settings.SetMaxCoI(0.3);
      const SubspaceCollector found = WalkFilterGrid(context);
      const testing::PlainFilterGrid expected(context);
      ASSERT_EQ(found.Size(), static_cast<Index>(expected.subspaces.size()));
      const Matrix limits = found.LimitMatrix();
      for (Index k = 0; k < found.Size(); ++k) {
        const auto position = static_cast<std::size_t>(k);
        EXPECT_EQ(found.Subspace(k), expected.subspaces[position]) << "subspace " << k;
        const Eigen::Map<const Vector> expected_limits(expected.limits[position].data(), 7);
        EXPECT_TRUE(MatrixNear(limits.col(k), expected_limits, 0.0)) << "subspace " << k;
      }
      stored += found.Size();
    }
  }
  EXPECT_GT(stored, 16 * 8);  // the comparison had something to compare
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

TEST(FilterGrid, MandatoryInputsSurviveAndExcludedOnesNeverEnter) {
  SearchContext context = GradedEffects(2);
  context.importance(5) = 2;  // says nothing
  context.importance(0) = 0;  // says most
  context.settings.SetUseSpearman(true);
  const IndexMatrix found = WalkFilterGrid(context).SubspaceMatrix();
  EXPECT_GT(found.cols(), 3);
  EXPECT_TRUE((found.row(5).array() == 3).all());
  EXPECT_TRUE((found.row(0).array() == 0).all());
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

TEST(FilterGrid, CanBeStopped) {
  SearchContext context = GradedEffects(1);
  context.stop_helper = std::make_shared<utils::StopHelper>();
  context.stop_helper->RequestStop();
  EXPECT_THROW(WalkFilterGrid(context), utils::runtime_error);
}

TEST(FilterGridSizes, CountTheLimitsOfEachFilter) {
  ZORSettings settings;
  const FilterGridSizes defaults(settings);
  EXPECT_EQ(defaults.significance, 5U);
  EXPECT_EQ(defaults.coi, 5U);
  EXPECT_EQ(defaults.cod, 5U);
  EXPECT_EQ(defaults.correlation, 11U);
  EXPECT_EQ(defaults.MaxSubspaces(), 5U + 2U * 6U * 16U);
  settings.SetMaxCoI(0.3);
  settings.SetStepCoI(0.1);  // the quotient is rounded to less than 3
  EXPECT_EQ(FilterGridSizes(settings).coi, 3U);
  settings.SetUseSignificanceFilter(false);
  settings.SetUseCoIFilter(false);
  settings.SetUseCoDFilter(false);
  EXPECT_EQ(FilterGridSizes(settings).MaxSubspaces(), 22U);
}

struct EndlessCase {
  const char* name;
  void (*set)(ZORSettings&);
};

// Settings that would walk for ever, divide by zero or leave the range of a quantile.
class EndlessSettings : public ::testing::TestWithParam<EndlessCase> {};

TEST_P(EndlessSettings, EndWithSoundSubspaces) {
  SearchContext context = GradedEffects(1, 30);
  GetParam().set(context.settings);
  const FilterGridSizes sizes(context.settings);
  EXPECT_LE(sizes.significance, kMaxFilterSteps);
  EXPECT_LE(sizes.coi, kMaxFilterSteps);
  EXPECT_LE(sizes.cod, kMaxFilterSteps);
  EXPECT_LE(sizes.correlation, kMaxFilterSteps + 1);

  const IndexMatrix found = WalkFilterGrid(context).SubspaceMatrix();
  const IndexVector full = FullSubspace(context.importance, context.level_counts);
  bool has_full = false;
  for (Index k = 0; k < found.cols(); ++k) {
    has_full = has_full || found.col(k) == full;
    EXPECT_TRUE((found.col(k).array() <= full.array()).all());
  }
  EXPECT_TRUE(has_full);
}

INSTANTIATE_TEST_SUITE_P(
    FilterGrid, EndlessSettings,
    ::testing::Values(
        EndlessCase{"StepsOfZero", [](ZORSettings& s) { s.step_significance_ = s.step_CoI_ = s.step_CoD_ = 0.0; }},
        EndlessCase{"NegativeSteps", [](ZORSettings& s) { s.step_significance_ = s.step_CoI_ = s.step_CoD_ = -0.01; }},
        EndlessCase{"StepsOfNaN", [](ZORSettings& s) { s.step_significance_ = s.step_CoI_ = s.step_CoD_ = kNan; }},
        EndlessCase{"TinySteps", [](ZORSettings& s) { s.step_significance_ = s.step_CoI_ = s.step_CoD_ = 1e-12; }},
        EndlessCase{"VanishingSteps",
                    [](ZORSettings& s) { s.step_significance_ = s.step_CoI_ = s.step_CoD_ = 1e-300; }},
        EndlessCase{"LimitsOfNaN", [](ZORSettings& s) { s.min_significance_ = s.max_CoI_ = s.max_CoD_ = kNan; }},
        EndlessCase{"InfiniteLimits",
                    [](ZORSettings& s) {
                      s.max_CoI_ = s.max_CoD_ = std::numeric_limits<double>::infinity();
                      s.min_significance_ = -s.max_CoI_;
                    }},
        EndlessCase{"AllQuantiles", [](ZORSettings& s) { s.min_significance_ = 0.0; }},
        EndlessCase{"NoQuantile", [](ZORSettings& s) { s.min_significance_ = 1.0; }},
        EndlessCase{"NoLevel", [](ZORSettings& s) { s.num_corr_steps_ = 0; }},
        EndlessCase{"OneLevel", [](ZORSettings& s) { s.num_corr_steps_ = 1; }},
        EndlessCase{"LevelsWithoutEnd",
                    [](ZORSettings& s) { s.num_corr_steps_ = std::numeric_limits<std::uint64_t>::max(); }}),
    [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace kestrel::math::metamodel
