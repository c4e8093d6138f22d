#include <gtest/gtest.h>

#include <vector>

#include "selection/search_samples.h"
#include "selection/zor2.h"
#include "support/raised_text.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::Noise;
using testing::RandomPoints;

constexpr Index kSamples = 40;

// Five inputs: the response needs the first and the square of the second; the third repeats the first, the fourth has
// two levels, the fifth is constant.
Matrix Inputs() {
  Matrix x = RandomPoints(kSamples, 5, 1, -1.0, 1.0);
  x.col(2) = x.col(0);
  x.col(3) = (x.col(3).array() > 0.0).cast<double>();
  x.col(4).setConstant(2.0);
  return x;
}

Vector Response() {
  const Matrix x = Inputs();
  return x.col(0).array() + x.col(1).array().square() + Noise(kSamples, 0.05, 2).array();
}

// A response of the five inputs with a log and a record of its progress.
struct Subject {
  explicit Subject(const Vector& response = Response())
      : zor(Inputs(), response, {L"a", L"b", L"c", L"d", L"e"}, L"y") {
    zor.SetLog(log);
    zor.SetProgressCallable([this](float fraction) { progress.push_back(fraction); });
  }

  testing::WideLog log = std::make_shared<utils::log::VectorLog>();
  std::vector<float> progress;
  Zor zor;
};

const std::vector<float> kReturnsAtOnce{0.0F};
const std::vector<float> kRunsThrough{0.0F, 0.5F};

TEST(BuildSubspaces, LeavesOneEmptySubspaceWhereNothingCanBeSelected) {
  struct Case {
    const char* name;
    Vector response;
    std::vector<std::uint64_t> importance;
  };
  const Case cases[] = {{"constant response", Vector::Constant(kSamples, 3.0), {1, 1, 1, 1, 1}},
                        {"constant response, forced inputs", Vector::Constant(kSamples, 3.0), {2, 2, 2, 2, 2}},
                        {"no importance given", Response(), {}},
                        {"all inputs excluded", Response(), {0, 0, 0, 0, 0}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Subject subject(c.response);
    ZORSettings settings;
    settings.SetImportantInfo(c.importance);
    subject.zor.Initialize(settings);
    subject.zor.BuildSubspaces();
    EXPECT_EQ(subject.zor.GetSubspaces(), IndexMatrix::Zero(5, 1));
    EXPECT_EQ(subject.progress, kReturnsAtOnce);
    ASSERT_EQ(subject.log->GetEntries().size(), 1U);
    EXPECT_EQ(subject.log->GetEntries()[0].second, L"===================== Build Subspaces =====================");
  }
}

TEST(BuildSubspaces, LeavesOneEmptySubspaceWhereAllInputsAreConstant) {
  Zor zor(Matrix::Constant(kSamples, 2, 1.0), Response(), {}, L"y");
  zor.Initialize(ZORSettings(2));
  zor.BuildSubspaces();
  EXPECT_EQ(zor.GetSubspaces(), IndexMatrix::Zero(2, 1));
}

TEST(BuildSubspaces, ForcedInputsNeedNoFilter) {
  Subject subject;
  subject.zor.SetInfoImportant({2, 2, 2, 2, 2});
  subject.zor.BuildSubspaces();
  EXPECT_EQ(subject.zor.GetSubspaces(), (IndexVector(5) << 3, 3, 3, 1, 0).finished());
  EXPECT_EQ(CountLines(subject.log, L"num_sig_steps "), 0);
}

TEST(BuildSubspaces, FindsDistinctSubspacesAndDiscardsThoseOfAnEarlierRun) {
  Subject subject;
  subject.zor.BuildSubspaces();
  const IndexMatrix found = subject.zor.GetSubspaces();
  EXPECT_GT(found.cols(), 2);
  for (Index a = 0; a < found.cols(); ++a) {
    EXPECT_EQ(found(4, a), 0U);
    EXPECT_LE(found(3, a), 1U);
    for (Index b = 0; b < a; ++b) EXPECT_NE(found.col(a), found.col(b));
  }
  EXPECT_EQ(subject.progress, kRunsThrough);
  subject.zor.BuildSubspaces();
  EXPECT_EQ(subject.zor.GetSubspaces(), found);
}

TEST(BuildSubspaces, SearchesCorrelatedInputsFromALevelOn) {
  Subject subject;
  ZORSettings settings(5);
  settings.SetUseInputCorrelationFilter(true);
  settings.SetCorrInputCheck(1.1);
  subject.zor.Initialize(settings);
  subject.zor.BuildSubspaces();
  EXPECT_EQ(CountLines(subject.log, L"Maximum input correlation 1"), 1);
  EXPECT_EQ(CountLines(subject.log, L" ********** CheckCorrelatedInputs *************** "), 0);
  EXPECT_EQ(subject.zor.GetActiveInputs(), std::vector<bool>(5, true));

  settings.SetCorrInputCheck(0.9);
  subject.zor.Initialize(settings);
  subject.zor.BuildSubspaces();
  EXPECT_EQ(CountLines(subject.log, L" ********** CheckCorrelatedInputs *************** "), 1);
  EXPECT_EQ(subject.zor.GetActiveInputs(), (std::vector<bool>{true, true, false, true, false}));
  EXPECT_TRUE((subject.zor.GetSubspaces().row(2).array() == 0).all());

  settings.SetImportantInfo({1, 1, 0, 1, 1});  // the repeated input does not count then
  subject.zor.Initialize(settings);
  subject.zor.BuildSubspaces();
  EXPECT_EQ(CountLines(subject.log, L"Maximum input correlation 0."), 1);
  EXPECT_EQ(CountLines(subject.log, L" ********** CheckCorrelatedInputs *************** "), 1);
}

TEST(BuildSubspaces, ReportsAnImportanceOfAnotherLength) {
  Subject subject;
  EXPECT_THROW(subject.zor.SetInfoImportant({1, 1}), utils::runtime_error);
  subject.zor.Initialize(ZORSettings(7));
  EXPECT_EQ(testing::RaisedText([&] { subject.zor.BuildSubspaces(); }),
            L"size of importance vector not consistent to number of variables");
}

TEST(BuildSubspaces, CanBeStopped) {
  Subject subject;
  const auto helper = std::make_shared<utils::StopHelper>();
  helper->RequestStop();
  subject.zor.SetStopHelper(helper);
  EXPECT_THROW(subject.zor.BuildSubspaces(), utils::runtime_error);
}

TEST(Zor, TellsItsLogWhereInputsAndResponseDoNotFit) {
  Zor zor(Inputs(), Vector::Zero(7), {}, L"y");
  const auto log = std::make_shared<utils::log::VectorLog>();
  zor.SetLog(log);
  ASSERT_EQ(log->GetEntries().size(), 1U);
  EXPECT_EQ(log->GetEntries()[0].second, L"ZOR needs same number of support points (40) and values (7)");
  zor.SetLog(nullptr);
  zor.Log().Error() << L"dropped";
}

}  // namespace
}  // namespace kestrel::math::metamodel
