#include "build/zor_handler.h"

#include <gtest/gtest.h>

#include <boost/numeric/ublas/vector.hpp>

#include <limits>
#include <ostream>
#include <sstream>

#include "build/samples.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "support/strings.h"
#include "support/temporary_folder.h"

namespace kestrel::zor {
namespace {

using algorithm::datatypes::ZORInformation;
using math::Matrix;
using math::Vector;
using testing::InformationOf;
using testing::MakeHandler;
using testing::MakeSamples;
using testing::MakeSettings;
using testing::MatrixNear;
using testing::SampleTable;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr const char* kStopped = "Stop requested. Unable to continue.";

std::shared_ptr<utils::log::LogBase> NoLog() { return std::make_shared<utils::log::LogDummy>(); }

/// The text of the failure of a handler that is made and, if it could be, built; empty if all went well.
std::string FailureOf(const SampleTable& samples, const ZORCombinedSettings& settings) {
  try {
    MakeHandler(NoLog(), samples, settings)->Build();
    return "";
  } catch (const std::exception& error) {
    return error.what();
  }
}

ZORInformation BuildWith(const SampleTable& samples, const ZORCombinedSettings& settings) {
  const auto handler = MakeHandler(NoLog(), samples, settings);
  handler->Build();
  return InformationOf(handler->GetLYRA());
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
  const auto& infos = information.GetSurrogateInfos().GetInfos();
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
  ZORAdvancedSettings advanced;
  advanced.adapt_bounds_ = false;
  const auto handler = MakeHandler(NoLog(), samples, MakeSettings(samples, advanced));
  handler->Build();
  const ZORInformation& information = InformationOf(handler->GetLYRA());
  EXPECT_EQ(information.sampling_limits_[0], std::make_pair(-1.0, 2.0));
  EXPECT_EQ(information.sampling_limits_[1].second, samples.parameters.col(1).maxCoeff());
  EXPECT_NEAR(information.defined_limits_[0].first, -1.3, 1e-12);
  EXPECT_NEAR(information.defined_limits_[0].second, 2.3, 1e-12);
  const auto range = handler->GetSettings().GetZORData().responses_boundaries_.at(L"r0");
  EXPECT_TRUE(std::isfinite(range.first) && range.first < range.second);

  advanced.adapt_bounds_ = true;
  advanced.adapt_bounds_safety_factor_ = 0.5;
  const auto bounds = BuildWith(samples, MakeSettings(samples, advanced)).defined_limits_[0];
  EXPECT_NEAR(bounds.first, -2.5, 1e-12);
  EXPECT_NEAR(bounds.second, 3.5, 1e-12);
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
    return information.GetSurrogateInfos().GetInfos()[0].GetSurrogate()->Approximate(samples.parameters).maxCoeff();
  };
  EXPECT_GT(largest(), 1.5);
  settings.SetLimits({-kInf, 1.5});
  EXPECT_EQ(largest(), 1.5);
}

TEST(Handler, ReportsTheFractionFinished) {
  std::vector<double> fractions;
  const SampleTable samples = MakeSamples(20, 2, 4);
  const auto handler = MakeHandler(NoLog(), samples, MakeSettings(samples));
  handler->SetProgressCallable([&](double fraction) { fractions.push_back(fraction); });
  handler->Build();
  EXPECT_EQ(fractions, (std::vector<double>{0.0, 0.0, 0.25, 0.5, 0.75, 1.0}));
}

TEST(Handler, TellsTheLogWhatItRefuses) {
  std::wostringstream text;
  SampleTable samples = MakeSamples(10, 2, 1);
  KeepRows(samples, 1);
  EXPECT_THROW(MakeHandler(std::make_shared<utils::log::BasicStreamLog>(text), samples, MakeSettings(samples)),
               utils::runtime_error);
  EXPECT_EQ(text.str(), L"ERROR: There are not enough designs for ZOR. Need at least 2 designs.\n");
}

/// A designer's table: a constant and a dependent parameter, a vector response, a text, designs that do not count.
struct MixedDesigns {
  MixedDesigns() : samples(MakeSamples(20, 2, 2)), designs(samples.Designs()) {
    for (std::size_t i = 0; i < designs.size(); ++i) {
      auto values = designs[i].GetParameters();
      values.Add(L"fixed", 3.0);
      designs[i].SetParametersUnsafe(values);
      designs[i].AddResponse(L"note", L"text");
      const auto value = designs[i].GetResponses()[L"r0"];
      math::Variant<double>::VectorType vector(2);
      vector[0] = value.GetScalar();
      vector[1] = -value.GetScalar();
      designs[i].AddResponse(L"pair", math::Variant<double>(vector));
    }
    designs[4].SetRunStatus(algorithm::datatypes::eRunState::kRunning);
    designs[5].SetActivationState(algorithm::datatypes::eActivationStatus::kInactive);
    parameters = testing::ParametersOf(designs);
    parameters.SetConst(L"fixed", true);
  }

  CZORHandler MakeHandlerOf(ZORAdvancedSettings advanced, std::shared_ptr<utils::log::LogBase> log = NoLog()) const {
    ZORCombinedSettings settings = MakeSettings(samples, std::move(advanced));
    ZORData data = settings.GetZORData();
    data.responses_usage_[L"pair"] = true;
    settings.SetZORData(data);
    return CZORHandler(std::move(log), parameters, designs, algorithm::datatypes::Design(), settings);
  }

  SampleTable samples;
  algorithm::datatypes::DesignManager designs;
  algorithm::datatypes::ParameterManager parameters;
};

TEST(Handler, ModelsWhatCanBeModelledOfMixedDesigns) {
  MixedDesigns mixed;
  auto outlier = mixed.designs[5].GetParameters();  // of a design that does not count
  outlier[L"a"] = 50.0;
  mixed.designs[5].SetParametersUnsafe(outlier);
  const auto log = std::make_shared<utils::log::VectorLog>();
  CZORHandler handler = mixed.MakeHandlerOf({}, log);
  handler.Build();
  const ZORInformation& information = InformationOf(handler.GetLYRA());
  EXPECT_EQ(information.defined_limits_, information.sampling_limits_);
  const bool tells_constant = std::any_of(log->GetEntries().begin(), log->GetEntries().end(), [](const auto& entry) {
    return entry.second.find(L"fixed") == 0 && entry.second.find(L"[3 / 3]") != std::wstring::npos;
  });
  EXPECT_TRUE(tells_constant);
  EXPECT_EQ(information.parameter_names_, (std::vector<std::wstring>{L"a", L"b"}));
  EXPECT_EQ(information.GetResponseNames(), (std::vector<std::wstring>{L"r0", L"r1", L"pair[0]", L"pair[1]"}));
  EXPECT_EQ(handler.GetLYRA().GetDesignContainer().size(), 18u);
  EXPECT_EQ(information.GetSurrogateInfos().GetInfos()[3].GetResponseIndex(), 1u);
  EXPECT_EQ(information.GetSurrogateInfos().GetInfos()[0].GetUsedHIds().size(), 18u);
  EXPECT_TRUE(MatrixNear(handler.GetZorValues(true).col(2), -handler.GetZorValues(true).col(3), 0.0));
  EXPECT_FALSE(handler.GetSettings().GetZORData().responses_zorability_.at(L"note"));
}

TEST(Handler, RefusesAConstantParameterThatVaries) {
  MixedDesigns mixed;
  mixed.parameters.SetConst(L"a", true);
  try {
    mixed.MakeHandlerOf({});
    FAIL();
  } catch (const utils::runtime_error& error) {
    EXPECT_STREQ(error.what(),
                 "Inconsistent data. At least one constant parameter varied in designs.\n"
                 "Given data is invalid.");
  }
}

TEST(Handler, AddsCrossValidationValuesAndDropsThemInTheNextRun) {
  SampleTable samples = MakeSamples(20, 2, 1);
  samples.responses(6, 0) = kNan;
  ZORAdvancedSettings advanced;
  advanced.write_cv_values_ = true;
  const auto handler = MakeHandler(NoLog(), samples, MakeSettings(samples, advanced));
  handler->Build();
  const auto& lyra = handler->GetLYRA();
  const auto& info = InformationOf(lyra).GetSurrogateInfos().GetInfos()[0];
  const Vector values = info.GetSurrogate()->ApproximateCrossValidation(InformationOf(lyra).cv_indexes_.at(L"r0"));
  const auto& designs = lyra.GetDesignContainer();
  EXPECT_TRUE(designs[6].GetResponses()[L"r0_cv"].IsUninitialized());
  EXPECT_EQ(designs[7].GetResponses()[L"r0_cv"].GetScalar().real(), values[6]);
  EXPECT_EQ(InformationOf(lyra).response_to_cv_mapping_.at(L"r0"), L"r0_cv");

  std::wostringstream text;
  utils::log::BasicStreamLog log(text);
  const auto next = MakeHandler(NoLog(), samples, MakeSettings(samples));
  next->FillLYRA(log, lyra, MakeSettings(samples, advanced));
  EXPECT_EQ(text.str(), L"INFO: Removing cross validation values from file designs.\n");
  next->Build();
  EXPECT_EQ(next->GetLYRA().GetResponseNames(), (std::vector<std::wstring>{L"r0", L"r0_cv"}));
  EXPECT_EQ(InformationOf(next->GetLYRA()).GetResponseNames(), (std::vector<std::wstring>{L"r0"}));
  EXPECT_NE(next->GetLYRA().GetAlgorithmInfo(), lyra.GetAlgorithmInfo()) << "the earlier record is left alone";
}

TEST(Handler, TakesColumnsAsDesigns) {
  const SampleTable samples = MakeSamples(20, 2, 1);
  const auto column = [](const math::VectorIn& values) {
    math::Variant<double>::VectorType vector(static_cast<std::size_t>(values.size()));
    for (math::Index i = 0; i < values.size(); ++i) vector[static_cast<std::size_t>(i)] = values[i];
    return math::Variant<double>(vector);
  };
  CZORHandler::Columns parameters;
  parameters.Add(L"a", column(samples.parameters.col(0)));
  parameters.Add(L"b", column(samples.parameters.col(1)));
  CZORHandler::Columns responses;
  responses.Add(L"r0", column(samples.responses.col(0)));
  CZORHandler handler(NoLog(), parameters, responses, MakeSettings(samples));
  EXPECT_TRUE(MatrixNear(handler.GetZorValues(false), samples.parameters, 0.0));
  parameters.Add(L"c", column(samples.parameters.col(1).head(7)));
  EXPECT_THROW(CZORHandler(NoLog(), parameters, responses, MakeSettings(samples)), utils::runtime_error);
}

TEST(Handler, ReportsSamplingModelsAndFrequencies) {
  const SampleTable samples = MakeSamples(40, 3, 2);
  ZORAdvancedSettings advanced;
  advanced.write_function_string_ = true;
  const TemporaryFolder folder;
  advanced.log_in_file_ = true;
  advanced.log_file_path_ = folder.Path("message_log.txt");
  const auto log = std::make_shared<utils::log::VectorLog>();
  MakeHandler(log, samples, MakeSettings(samples, advanced))->Build();
  std::wstring report;
  for (const auto& [level, line] : log->GetEntries()) {
    if (level == utils::log::LogLevel::kInformation) report += line + L"\n";
  }
  for (const wchar_t* const piece :
       {L"Number of samples:   40\n", L"Parameter name      Parameter range                 Sampling bounds\na  ",
        L"Finished evaluation of response r0\nr1 ", L" Best Metamodels ",
        L"| Mainterm selection | Interaction selection | CoP| pred. CoD\n", L"a: 100 %\n", L"\nr0 = "}) {
    EXPECT_NE(report.find(piece), std::wstring::npos) << string::narrow(piece) << "\n" << string::narrow(report);
  }
  EXPECT_GT(std::filesystem::file_size(advanced.log_file_path_), report.size());
}

TEST(HandlerThreads, EndWithTheBuildThatATaskFailed) {
  SampleTable samples = MakeSamples(400, 12, 6);
  samples.responses.col(0).setConstant(kNan);  // fails at once, while the others search
  ZORAdvancedSettings advanced;
  advanced.num_parallel_ = 3;
  const std::shared_ptr<utils::log::LogBase> log = NoLog();
  const auto handler = MakeHandler(log, samples, MakeSettings(samples, advanced));
  EXPECT_THROW(handler->Build(), utils::runtime_error);
  EXPECT_EQ(log.use_count(), 2) << "a task that runs or waits holds the log, too";
}

TEST(HandlerThreads, StopOnRequestInTheMiddleOfABuild) {
  const SampleTable samples = MakeSamples(60, 4, 40);
  ZORAdvancedSettings advanced;
  advanced.num_parallel_ = 2;
  const auto handler = MakeHandler(NoLog(), samples, MakeSettings(samples, advanced));
  int calls = 0;
  handler->SetProgressCallable([&](double) {
    if (++calls == 2) handler->RequestStop();
  });
  try {
    handler->Build();
    FAIL() << "the build came to its end";
  } catch (const utils::runtime_error& error) {
    EXPECT_STREQ(error.what(), kStopped);
  }
  EXPECT_LT(calls, 41);
}

TEST(HandlerThreads, StopBeforeTheBuild) {
  const SampleTable samples = MakeSamples(20, 2, 2);
  const auto handler = MakeHandler(NoLog(), samples, MakeSettings(samples));
  handler->RequestStop();
  EXPECT_THROW(handler->Build(), utils::runtime_error);
}

TEST(HandlerThreads, SearchManyResponsesOnSeveralWorkers) {
  const SampleTable samples = MakeSamples(30, 3, 12);
  ZORAdvancedSettings advanced;
  advanced.num_parallel_ = 64;  // more than there are responses
  const ZORInformation information = BuildWith(samples, MakeSettings(samples, advanced));
  const auto& infos = information.GetSurrogateInfos().GetInfos();
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
