#include "build/zor_handler.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <sstream>

#include "build/samples.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"

namespace kestrel::zor {
namespace {

using algorithm::datatypes::ZORInformation;
using math::Matrix;
using math::Vector;
using testing::MakeSamples;
using testing::MakeSettings;
using testing::MatrixNear;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr const char* kStopped = "Stop requested. Unable to continue.";

std::shared_ptr<utils::log::LogBase> NoLog() { return std::make_shared<utils::log::LogDummy>(); }

/// The text of the failure of a handler that is made and, if it could be, built; empty if all went well.
std::string FailureOf(const SampleTable& samples, const ZORCombinedSettings& settings) {
  try {
    CZORHandler handler(NoLog(), samples, settings);
    handler.Build();
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }
}

ZORInformation BuildWith(const SampleTable& samples, const ZORCombinedSettings& settings) {
  CZORHandler handler(NoLog(), samples, settings);
  handler.Build();
  return handler.GetZORInformation();
}

struct RefusalCase {
  const char* name;
  const char* text;
  void (*change)(SampleTable&, ZORAdvancedSettings&);

  friend void PrintTo(const RefusalCase& of, std::ostream* stream) { *stream << of.name; }
};

class HandlerRefusal : public ::testing::TestWithParam<RefusalCase> {};

TEST_P(HandlerRefusal, HasItsText) {
  SampleTable samples = MakeSamples(10, 2, 2);
  ZORAdvancedSettings advanced;
  GetParam().change(samples, advanced);
  EXPECT_EQ(FailureOf(samples, MakeSettings(samples, advanced)), GetParam().text);
}

constexpr const char* kTooFew =
    "There are not enough designs for ZOR. Need at least 2 designs.\nGiven data is invalid.";

void KeepRows(SampleTable& samples, math::Index rows) {
  samples.parameters.conservativeResize(rows, Eigen::NoChange);
  samples.responses.conservativeResize(rows, Eigen::NoChange);
}

INSTANTIATE_TEST_SUITE_P(
    Data, HandlerRefusal,
    ::testing::Values(
        RefusalCase{"NoDesign", kTooFew, [](SampleTable& s, ZORAdvancedSettings&) { KeepRows(s, 0); }},
        RefusalCase{"OneDesign", kTooFew, [](SampleTable& s, ZORAdvancedSettings&) { KeepRows(s, 1); }},
        RefusalCase{"NoParameter", "There are no parameters a ZOR can be found for.\nGiven data is invalid.",
                    [](SampleTable& s, ZORAdvancedSettings&) {
                      s.parameter_names.clear();
                      s.parameters.resize(10, 0);
                    }},
        RefusalCase{"NoResponse", "There are no responses a ZOR can be found for.\nGiven data is invalid.",
                    [](SampleTable& s, ZORAdvancedSettings&) {
                      s.response_names.clear();
                      s.responses.resize(10, 0);
                    }},
        RefusalCase{"NanInput", "Input 1 of design 7 is not a finite number.",
                    [](SampleTable& s, ZORAdvancedSettings&) { s.parameters(7, 1) = s.parameters(8, 0) = kNan; }},
        RefusalCase{"InfiniteInput", "Input 0 of design 0 is not a finite number.",
                    [](SampleTable& s, ZORAdvancedSettings&) { s.parameters(0, 0) = -kInf; }},
        RefusalCase{"NoValidOutput", "Unable to calculate ZOR without valid design values.",
                    [](SampleTable& s, ZORAdvancedSettings&) { s.responses.col(1).setConstant(kNan); }},
        RefusalCase{"Settings",
                    "No model selected.\nImportance limit must be between 0 and 1.\nIncorrect settings given.\n"
                    "Given data is invalid.",
                    [](SampleTable&, ZORAdvancedSettings& a) {
                      a.pzor_settings_.SetUsePolynomials(false);
                      a.pzor_settings_.SetUseMLS(false);
                      a.pzor_settings_.SetUseKriging(false);
                      a.pzor_settings_.SetMaxCoI(kNan);
                    }},
        RefusalCase{"SuffixTaken",
                    "Response r0_cv does already exist but would be the name of a cross valdiation value. Please "
                    "change the cross validation suffix.",
                    [](SampleTable& s, ZORAdvancedSettings& a) {
                      s.response_names[1] = L"r0_cv";
                      a.write_cv_values_ = true;
                    }},
        RefusalCase{"SuffixTakenButUnused", "",
                    [](SampleTable& s, ZORAdvancedSettings&) { s.response_names[1] = L"r0_cv"; }}),
    [](const auto& named) { return named.param.name; });

TEST(Handler, RefusesDataWithoutAChosenResponse) {
  const SampleTable samples = MakeSamples(10, 2, 1);
  ZORCombinedSettings settings = MakeSettings(samples);
  ZORData data = settings.GetZORData();
  data.responses_usage_[L"r0"] = false;
  settings.SetZORData(data);
  EXPECT_EQ(FailureOf(samples, settings), "There are no responses a ZOR can be found for.\nGiven data is invalid.");
}

TEST(Handler, RefusesToBuildWithAnUnknownImportance) {
  const SampleTable samples = MakeSamples(10, 2, 1);
  ZORCombinedSettings settings = MakeSettings(samples);
  ZORData data = settings.GetZORData();
  data.parameter_importance_[L"a"] = 3;
  settings.SetZORData(data);
  EXPECT_EQ(FailureOf(samples, settings),
            "Parameter importancy must be mandatory, selectable or important.\nInvalid settings.");
}

TEST(Handler, GathersTheModelsInTheOrderOfTheUsedResponses) {
  const SampleTable samples = MakeSamples(30, 3, 3);
  ZORCombinedSettings settings = MakeSettings(samples);
  ZORData data = settings.GetZORData();
  data.responses_usage_[L"r1"] = false;
  settings.SetZORData(data);

  const ZORInformation information = BuildWith(samples, settings);

  EXPECT_EQ(information.parameter_names_, samples.parameter_names);
  EXPECT_EQ(information.GetResponseNames(), (std::vector<std::wstring>{L"r0", L"r2"}));
  const auto& infos = information.surrogate_infos_.GetInfos();
  ASSERT_EQ(infos.size(), 2u);
  EXPECT_EQ(infos[0].GetResponseName(), L"r0");
  EXPECT_EQ(infos[1].GetResponseName(), L"r2");
  EXPECT_TRUE(MatrixNear(infos[1].GetSurrogate()->GetResponseValues(), samples.responses.col(2), 0.0));
  EXPECT_EQ(information.cv_indexes_.at(L"r2").size(), 30u);
}

TEST(Handler, TakesTheBoundsFromAllDesigns) {
  SampleTable samples = MakeSamples(10, 2, 1);
  samples.parameters.col(1) *= 10.0;
  samples.parameters(3, 0) = -1.0;
  samples.parameters(4, 0) = 2.0;
  samples.responses(3, 0) = kNan;  // bounds are those of the table, not of one response
  CZORHandler handler(NoLog(), samples, MakeSettings(samples));
  const ZORInformation& information = handler.GetZORInformation();
  EXPECT_EQ(information.sampling_limits_[0], std::make_pair(-1.0, 2.0));
  EXPECT_EQ(information.sampling_limits_[1].second, samples.parameters.col(1).maxCoeff());
  EXPECT_NEAR(information.defined_limits_[0].first, -1.3, 1e-12);
  EXPECT_NEAR(information.defined_limits_[0].second, 2.3, 1e-12);
  const auto range = handler.GetSettings().GetZORData().responses_boundaries_.at(L"r0");
  EXPECT_TRUE(std::isfinite(range.first) && range.first < range.second);
}

TEST(Handler, PassesTheImportanceOfEachParameter) {
  const SampleTable samples = MakeSamples(30, 3, 1);
  ZORCombinedSettings settings = MakeSettings(samples);
  ZORData data = settings.GetZORData();
  data.parameter_importance_ = {{L"a", 0}, {L"c", 2}};
  settings.SetZORData(data);
  const auto selection =
      BuildWith(samples, settings).surrogate_infos_.GetInfos()[0].GetSurrogate()->GetVariableSelection();
  EXPECT_FALSE(selection[0]);
  EXPECT_TRUE(selection[1]);
  EXPECT_TRUE(selection[2]);
}

TEST(Handler, LimitsThePredictionsIfTheSettingsHoldLimits) {
  const SampleTable samples = MakeSamples(30, 2, 1);
  ZORCombinedSettings settings = MakeSettings(samples);
  const auto largest = [&] {
    const ZORInformation information = BuildWith(samples, settings);
    return information.surrogate_infos_.GetInfos()[0].GetSurrogate()->Approximate(samples.parameters).maxCoeff();
  };
  EXPECT_GT(largest(), 1.5);
  settings.SetLimits({-kInf, 1.5});
  EXPECT_EQ(largest(), 1.5);
}

TEST(Handler, ReportsTheFractionFinished) {
  std::vector<double> fractions;
  const SampleTable samples = MakeSamples(20, 2, 4);
  CZORHandler handler(NoLog(), samples, MakeSettings(samples));
  handler.SetProgressCallable([&](double fraction) { fractions.push_back(fraction); });
  handler.Build();
  EXPECT_EQ(fractions, (std::vector<double>{0.0, 0.25, 0.5, 0.75, 1.0}));
}

TEST(Handler, TellsTheLogWhatItRefuses) {
  std::wostringstream text;
  SampleTable samples = MakeSamples(10, 2, 1);
  KeepRows(samples, 1);
  EXPECT_THROW(CZORHandler(std::make_shared<utils::log::BasicStreamLog>(text), samples, MakeSettings(samples)),
               utils::runtime_error);
  EXPECT_EQ(text.str(), L"ERROR: There are not enough designs for ZOR. Need at least 2 designs.\n");
}

TEST(HandlerThreads, EndWithTheBuildThatATaskFailed) {
  SampleTable samples = MakeSamples(400, 12, 6);
  samples.responses.col(0).setConstant(kNan);  // fails at once, while the others search
  ZORAdvancedSettings advanced;
  advanced.num_parallel_ = 3;
  const std::shared_ptr<utils::log::LogBase> log = NoLog();
  CZORHandler handler(log, samples, MakeSettings(samples, advanced));
  EXPECT_THROW(handler.Build(), utils::runtime_error);
  EXPECT_EQ(log.use_count(), 2) << "a task that runs or waits holds the log, too";
}

TEST(HandlerThreads, StopOnRequestInTheMiddleOfABuild) {
  const SampleTable samples = MakeSamples(60, 4, 40);
  ZORAdvancedSettings advanced;
  advanced.num_parallel_ = 2;
  CZORHandler handler(NoLog(), samples, MakeSettings(samples, advanced));
  int calls = 0;
  handler.SetProgressCallable([&](double) {
    if (++calls == 2) handler.RequestStop();
  });
  try {
    handler.Build();
    FAIL() << "the build came to its end";
  } catch (const utils::runtime_error& error) {
    EXPECT_STREQ(error.what(), kStopped);
  }
  EXPECT_LT(calls, 41);
}

TEST(HandlerThreads, StopBeforeTheBuild) {
  const SampleTable samples = MakeSamples(20, 2, 2);
  CZORHandler handler(NoLog(), samples, MakeSettings(samples));
  handler.RequestStop();
  EXPECT_THROW(handler.Build(), utils::runtime_error);
}

TEST(HandlerThreads, SearchManyResponsesOnSeveralWorkers) {
  const SampleTable samples = MakeSamples(30, 3, 12);
  ZORAdvancedSettings advanced;
  advanced.num_parallel_ = 64;  // more than there are responses
  const ZORInformation information = BuildWith(samples, MakeSettings(samples, advanced));
  const auto& infos = information.surrogate_infos_.GetInfos();
  ASSERT_EQ(infos.size(), 12u);
  EXPECT_TRUE(MatrixNear(infos[0].GetSurrogate()->Approximate(samples.parameters), samples.responses.col(0), 1e-9));
  for (std::size_t k = 0; k < infos.size(); ++k) {
    EXPECT_GT(infos[k].GetAppraisalData().GetCoP(), 0.9) << k;
    EXPECT_TRUE(MatrixNear(infos[k].GetSurrogate()->GetResponseValues(),
                           samples.responses.col(static_cast<math::Index>(k)), 0.0))
        << k;
  }
}

}  // namespace
}  // namespace kestrel::zor
