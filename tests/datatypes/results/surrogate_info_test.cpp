#include "datatypes/results/surrogate_info.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/matrix_compare.h"
#include "surrogates/linear_regression.h"
#include "surrogates/sample_data.h"

namespace kestrel::algorithm::datatypes {
namespace {

using math::Matrix;
using math::metamodel::LinearRegression;
using math::metamodel::Subsets;
using math::metamodel::SubspaceResults;
using testing::MatrixNear;

constexpr math::Index kSamples = 12;
constexpr double kRounding = 1e-12;

std::shared_ptr<LinearRegression> MakeRegression() {
  const Matrix points = testing::RandomPoints(kSamples, 2, 7);
  return std::make_shared<LinearRegression>(points, points.rowwise().sum() + testing::Noise(kSamples, 0.3, 8));
}

SubspaceResults MakeResult(const Matrix& single_cops) {
  SubspaceResults result;
  result.measures.CoD = 0.9;
  result.measures.CoDadj = 0.8;
  result.measures.CoP = 0.7;
  result.singleCoPs = single_cops;
  return result;
}

Subsets AlternatingSubsets() {
  Subsets subsets;
  for (math::Index i = 0; i < kSamples; ++i) subsets.push_back(static_cast<std::uint64_t>(i % 3));
  return subsets;
}

TEST(SurrogateInfo, TakesTheMeasuresOfTheResult) {
  Matrix single_cops(2, 2);
  single_cops << 0.1, 0.2, 0.3, 0.4;
  const SurrogateInfo info(L"force", nullptr, MakeResult(single_cops));
  EXPECT_EQ(info.GetResponseComponentName(), L"force");
  EXPECT_EQ(info.GetAppraisalData().GetCoD(), 0.9);
  EXPECT_EQ(info.GetAppraisalData().GetCoDAdj(), 0.8);
  EXPECT_EQ(info.GetAppraisalData().GetCoP(), 0.7);
  EXPECT_TRUE(MatrixNear(info.GetAppraisalData().GetFirstOrderIndices(), Eigen::Vector2d(0.1, 0.3), 0.0));
  EXPECT_TRUE(MatrixNear(info.GetAppraisalData().GetSingleCoPs(), Eigen::Vector2d(0.2, 0.4), 0.0));
}

TEST(SurrogateInfo, TakesOnlyTheColumnsThatTheResultHas) {
  const SurrogateInfo first_order(L"force", nullptr, MakeResult(Matrix::Constant(2, 1, 0.5)));
  EXPECT_EQ(first_order.GetAppraisalData().GetFirstOrderIndices().size(), 2);
  EXPECT_EQ(first_order.GetAppraisalData().GetSingleCoPs().size(), 0);
  const SurrogateInfo none(L"force", nullptr, MakeResult(Matrix()));
  EXPECT_EQ(none.GetAppraisalData().GetFirstOrderIndices().size(), 0);
}

TEST(SurrogateInfoContainer, FindsAResponseByName) {
  SurrogateInfoContainer container;
  EXPECT_TRUE(container.empty());
  container.AddSurrogateInfo(SurrogateInfo(L"force", nullptr, MakeResult(Matrix())));
  container.AddSurrogateInfo(SurrogateInfo(L"mass", nullptr, MakeResult(Matrix())));
  ASSERT_NE(container.GetSurrogateInfoByComponentName(L"mass"), nullptr);
  EXPECT_EQ(container.GetSurrogateInfoByComponentName(L"mass")->GetResponseName(), L"mass");
  EXPECT_EQ(container.GetSurrogateInfoByComponentName(L"Mass"), nullptr);
}

TEST(SurrogateInfoContainer, BuildsWhatIsNotBuiltWithTheSubsetsOfTheResponse) {
  const auto fresh = MakeRegression();
  const auto built = MakeRegression();
  ASSERT_TRUE(built->Build());
  SurrogateInfoContainer container;
  container.AddSurrogateInfo(SurrogateInfo(L"fresh", fresh, MakeResult(Matrix())));
  container.AddSurrogateInfo(SurrogateInfo(L"built", built, MakeResult(Matrix())));
  const CVIndexes cv_indexes = {{L"fresh", AlternatingSubsets()}, {L"built", {}}};

  container.Build(cv_indexes);
  container.BuildErrors(cv_indexes);

  EXPECT_TRUE(fresh->CheckAfterBuild());
  EXPECT_EQ(fresh->GetSubsets(), AlternatingSubsets());
  EXPECT_TRUE(MatrixNear(fresh->ApproximateCrossValidation(), fresh->ApproximateCrossValidation(AlternatingSubsets()),
                         kRounding));
  EXPECT_TRUE(MatrixNear(built->ApproximateCrossValidation(), built->ApproximateLeaveOneOut(), kRounding));
}

TEST(SurrogateInfoContainer, MissesTheSubsetsOfAResponse) {
  SurrogateInfoContainer container;
  container.AddSurrogateInfo(SurrogateInfo(L"force", MakeRegression(), MakeResult(Matrix())));
  EXPECT_THROW(container.Build({}), std::out_of_range);
  EXPECT_THROW(container.BuildErrors({}), std::out_of_range);
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
