#include "datatypes/results/surrogate_info.h"

#include <gtest/gtest.h>

#include <boost/numeric/ublas/vector.hpp>
#include <limits>
#include <stdexcept>

#include "datatypes/design_matrices.h"
#include "datatypes/parameter_manager.h"
#include "support/log_lines.h"
#include "support/matrix_compare.h"
#include "support/stored.h"
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

/// Designs of two parameters, among them repeated ones and some without a value of the response, and the surrogate of
/// those that have one.
struct SampledDesigns {
  SampledDesigns() {
    Matrix points = testing::RandomPoints(kSamples, 2, 7);
    points.row(5) = points.row(2);
    math::Vector values = points.rowwise().sum() + testing::Noise(kSamples, 0.3, 8);
    values[5] = values[2];
    values[0] = values[6] = std::numeric_limits<double>::quiet_NaN();
    designs = CreateDesignsFromMatrices({L"b", L"a"}, points, {L"force"}, values, 100);
    for (const wchar_t* name : {L"b", L"fixed", L"a"}) parameters.AddParameter(Parameter(name));
    parameters.SetConst(L"fixed", true);

    Matrix used(kSamples - 2, 2);
    used << points.middleRows(1, 5), points.bottomRows(kSamples - 7);
    math::Vector used_values(kSamples - 2);
    used_values << values.segment(1, 5), values.tail(kSamples - 7);
    regression = std::make_shared<LinearRegression>(used, used_values);
    regression->Build();
  }

  DesignManager designs;
  ParameterManager parameters;
  std::shared_ptr<LinearRegression> regression;
};

TEST(SurrogateSupportData, GoesAndComesBackBitForBit) {
  for (const auto& names : std::vector<std::vector<std::wstring>>{{}, {L"b", L"a"}}) {
    const SampledDesigns sample;
    SurrogateInfoContainer container;
    container.AddSurrogateInfo(SurrogateInfo(L"force", sample.regression, MakeResult(Matrix()), names));
    container.UpdateUsedDesignHIds(sample.designs, sample.parameters);
    ASSERT_EQ(container.GetInfos()[0].GetUsedHIds().size(), static_cast<std::size_t>(kSamples - 2));
    EXPECT_EQ(container.GetInfos()[0].GetUsedHIds().front(), CHierachicalId(101));

    container.ResetSupportData();
    const SurrogateInfo& info = container.GetInfos()[0];
    EXPECT_EQ(info.GetSurrogate()->GetNumberPoints(), 0);
    EXPECT_EQ(sample.regression->GetNumberPoints(), kSamples - 2);  // others keep the surrogate whole

    SurrogateInfoContainer read;
    testing::Load(testing::Store(container), read);
    read.RestoreSupportData(sample.designs, sample.parameters);
    ASSERT_NE(read.GetSurrogateInfoByComponentName(L"force"), nullptr);
    EXPECT_TRUE(*read.GetInfos()[0].GetSurrogate() == *sample.regression);
  }
}

TEST(SurrogateSupportData, OfAVectorResponseIsTheComponent) {
  SampledDesigns sample;
  for (Design& design : sample.designs) {
    CDesignEntry::VariantType::VectorType pair(2);
    pair[0] = 0.0;
    pair[1] = design.GetResponses()[L"force"].GetScalar();
    design.OverrideResponse(L"force", CDesignEntry::VariantType(pair));
  }
  SurrogateInfo info(L"force", sample.regression, MakeResult(Matrix()));
  info.SetComponent(1);
  EXPECT_EQ(info.GetResponseComponentName(), L"force[1]");
  SurrogateInfoContainer container;
  container.AddSurrogateInfo(info);
  container.UpdateUsedDesignHIds(sample.designs, sample.parameters);
  container.ResetSupportData();
  container.RestoreSupportData(sample.designs, sample.parameters);
  EXPECT_TRUE(*container.GetInfos()[0].GetSurrogate() == *sample.regression);
}

TEST(SurrogateSupportData, StaysAwayWithoutIds) {
  SampledDesigns sample;
  sample.designs.RemoveDesign(CHierachicalId(104));  // one row of the sample has no design any more
  SurrogateInfoContainer container;
  container.AddSurrogateInfo(SurrogateInfo(L"force", sample.regression, MakeResult(Matrix())));
  container.UpdateUsedDesignHIds(sample.designs, sample.parameters);
  container.ResetSupportData();
  std::wostringstream lines;
  container.SetLog(std::make_shared<utils::log::BasicStreamLog>(lines));
  container.RestoreSupportData(sample.designs, sample.parameters);
  EXPECT_EQ(lines.str(), L"WARNING: empty id vector for response 'force' - not able to restore support data\n");
  EXPECT_EQ(container.GetInfos()[0].GetSurrogate()->GetNumberPoints(), 0);
}

TEST(SurrogateSupportData, NeedsTheDesignsAndParametersOfTheSurrogate) {
  SampledDesigns sample;
  SurrogateInfoContainer container;
  container.AddSurrogateInfo(SurrogateInfo(L"force", sample.regression, MakeResult(Matrix())));
  container.UpdateUsedDesignHIds(sample.designs, sample.parameters);
  container.ResetSupportData();
  sample.parameters.SetConst(L"a", true);
  EXPECT_THROW(container.RestoreSupportData(sample.designs, sample.parameters), std::runtime_error);
  sample.parameters.SetConst(L"a", false);
  sample.designs.RemoveDesign(CHierachicalId(104));
  EXPECT_THROW(container.RestoreSupportData(sample.designs, sample.parameters), std::logic_error);
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
