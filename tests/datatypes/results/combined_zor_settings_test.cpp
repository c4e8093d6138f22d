#include "datatypes/results/combined_zor_settings.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "support/log_lines.h"
#include "support/stored.h"
#include "surrogates/linear_regression_settings.h"

namespace kestrel::zor {
namespace {

using testing::LogOf;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

ZORData MakeData() {
  ZORData data;
  data.SetParameters(std::vector<std::wstring>{L"a", L"b"});
  data.SetResponses(std::vector<std::wstring>{L"r", L"s"});
  data.responses_usage_ = {{L"r", true}, {L"s", false}};
  return data;
}

ZORCombinedSettings Automatic(ZORAutomaticSettings automatic) {
  return {eSettingsType::kAutomatic, MakeData(), false, std::move(automatic), ZORAdvancedSettings()};
}

ZORCombinedSettings Advanced(ZORAdvancedSettings advanced) {
  return {eSettingsType::kAdvanced, MakeData(), false, ZORAutomaticSettings(), std::move(advanced)};
}

TEST(CombinedSettings, PassTheCheckByDefault) {
  for (const eSettingsType type : {eSettingsType::kAutomatic, eSettingsType::kAdvanced}) {
    ZORCombinedSettings settings(type);
    settings.SetZORData(MakeData());
    EXPECT_EQ(LogOf([&](auto& log) { EXPECT_TRUE(settings.Check(log, true)); }), L"");
  }
}

TEST(CombinedSettings, RefuseTheClassicAndEveryUnknownType) {
  for (const int type : {-1, 1, 3}) {
    const ZORCombinedSettings settings(static_cast<eSettingsType>(type));
    EXPECT_EQ(LogOf([&](auto& log) { EXPECT_FALSE(settings.Check(log, true)); }), L"ERROR: Unknown settings type.\n");
  }
}

struct AutomaticCase {
  std::int32_t complexity;
  std::int32_t reduction;
  std::uint64_t parallel;
  const wchar_t* lines;
};

TEST(CombinedSettings, CheckTheAutomaticLevel) {
  const AutomaticCase cases[] = {
      {4, 3, 1, L""},
      {5, 0, 1, L"ERROR: Unknown model selection.\n"},
      {-1, 0, 1, L"ERROR: Unknown model selection.\n"},
      {0, 4, 1, L"ERROR: Unknown variables reduction.\n"},
      {0, -1, 1, L"ERROR: Unknown variables reduction.\n"},
      {0, 0, 0, L"ERROR: Number of parallelism must be positive.\n"},
      {5, 4, 0,
       L"ERROR: Unknown model selection.\nERROR: Unknown variables reduction.\n"
       L"ERROR: Number of parallelism must be positive.\n"},
  };
  for (const AutomaticCase& c : cases) {
    ZORAutomaticSettings automatic;
    automatic.model_complexity_ = c.complexity;
    automatic.variables_reduction_ = c.reduction;
    automatic.num_parallel_ = c.parallel;
    const std::wstring expected = c.lines;
    EXPECT_EQ(LogOf([&](auto& log) { EXPECT_EQ(Automatic(automatic).Check(log, true), expected.empty()); }), expected);
  }
}

struct AdvancedCase {
  const wchar_t* lines;
  std::function<void(ZORAdvancedSettings&)> change;
};

TEST(CombinedSettings, CheckTheAdvancedLevel) {
  const AdvancedCase cases[] = {
      {L"", [](auto& s) { s.adapt_bounds_safety_factor_ = 1.0; }},
      {L"", [](auto& s) { s.cv_values_suffix_.clear(); }},
      {L"ERROR: Number of parallelism must be positive.\n", [](auto& s) { s.num_parallel_ = 0; }},
      {L"ERROR: Safety factor to adapt bounds needs to be between 0 and 1.\n",
       [](auto& s) { s.adapt_bounds_safety_factor_ = 1.01; }},
      {L"ERROR: Safety factor to adapt bounds needs to be between 0 and 1.\n",
       [](auto& s) { s.adapt_bounds_safety_factor_ = kNan; }},
      {L"ERROR: Suffix for crossvalidation values must not be empty.\n",
       [](auto& s) {
         s.write_cv_values_ = true;
         s.cv_values_suffix_.clear();
       }},
      {L"ERROR: ASCMO is supported with testing type leave one out only.\nERROR: ASCMO is available on Windows only.\n",
       [](auto& s) { s.pzor_settings_.use_ASCMO_ = true; }},
      {L"ERROR: ASCMO is available on Windows only.\n",
       [](auto& s) {
         s.pzor_settings_.use_ASCMO_ = true;
         s.pzor_settings_.SetTestingType(math::metamodel::TestingType::kLeaveOneOut);
       }},
      {L"ERROR: Number of parallelism must be positive.\nERROR: No model selected.\n"
       L"ERROR: Significance quantile must be between 0 and 1.\n",
       [](auto& s) {
         s.num_parallel_ = 0;
         s.pzor_settings_.SetUsePolynomials(false);
         s.pzor_settings_.SetUseMLS(false);
         s.pzor_settings_.SetUseKriging(false);
         s.pzor_settings_.SetMinSignificance(2.0);
       }},
  };
  for (const AdvancedCase& c : cases) {
    ZORAdvancedSettings advanced;
    c.change(advanced);
    const std::wstring expected = c.lines;
    EXPECT_EQ(LogOf([&](auto& log) { EXPECT_EQ(Advanced(advanced).Check(log, true), expected.empty()); }), expected);
  }
}

struct DataCase {
  bool good;
  const wchar_t* lines;
  std::function<void(ZORData&)> change;
};

TEST(CombinedSettings, CheckTheData) {
  const DataCase cases[] = {
      {true, L"", [](auto& d) { d.parameter_importance_[L"a"] = 2; }},
      {true, L"WARNING: Parameter in importancy list does not exist in manager.\n",
       [](auto& d) { d.parameter_importance_[L"c"] = 0; }},
      {false, L"ERROR: Parameter importancy must be mandatory, selectable or important.\n",
       [](auto& d) { d.parameter_importance_[L"a"] = 3; }},
      {true, L"WARNING: Response in usage list does not exist in responses.\n",
       [](auto& d) { d.responses_usage_[L"t"] = false; }},
      {false, L"ERROR: No response is chosen.\n", [](auto& d) { d.responses_usage_[L"r"] = false; }},
      {false, L"ERROR: No response is chosen.\n", [](auto& d) { d.responses_usage_.clear(); }},
  };
  for (const DataCase& c : cases) {
    ZORData data = MakeData();
    c.change(data);
    ZORCombinedSettings settings(eSettingsType::kAdvanced);
    settings.SetZORData(data);
    EXPECT_EQ(LogOf([&](auto& log) { EXPECT_EQ(settings.Check(log, true), c.good); }), c.lines);
    EXPECT_EQ(LogOf([&](auto& log) { EXPECT_TRUE(settings.Check(log, false)); }), L"");
  }
}

struct DerivedCase {
  std::int32_t complexity;
  bool local_models;
  bool anisotropic;
};

TEST(CombinedSettings, DeriveTheModelsFromTheComplexity) {
  const DerivedCase cases[] = {
      {0, false, false}, {1, true, false}, {2, true, true}, {3, true, true}, {4, false, false}};
  for (const DerivedCase& c : cases) {
    ZORAutomaticSettings automatic;
    automatic.model_complexity_ = c.complexity;
    automatic.num_parallel_ = 7;
    const ZORAdvancedSettings derived = Automatic(automatic).ExtractAdvancedSettingsByType();
    EXPECT_TRUE(derived.pzor_settings_.use_polynomials_) << c.complexity;
    EXPECT_EQ(derived.pzor_settings_.use_MLS_, c.local_models) << c.complexity;
    EXPECT_EQ(derived.pzor_settings_.use_Kriging_, c.local_models) << c.complexity;
    EXPECT_EQ(derived.pzor_settings_.use_anisotropic_Kriging_, c.anisotropic) << c.complexity;
    EXPECT_EQ(derived.num_parallel_, 7u);
  }
}

TEST(CombinedSettings, DeriveTheTolerancesFromTheReduction) {
  for (const std::int32_t reduction : {0, 1, 2, 3}) {
    ZORAutomaticSettings automatic;
    automatic.variables_reduction_ = reduction;
    const auto derived = Automatic(automatic).ExtractAdvancedSettingsByType().pzor_settings_;
    EXPECT_EQ(derived.toleranceCoP_model_, reduction == 1 ? 0.001 : 0.01) << reduction;
    EXPECT_EQ(derived.toleranceCoP_variables_, reduction == 1 ? 0.001 : 0.01) << reduction;
  }
}

TEST(CombinedSettings, KnowWhichLevelIsInForce) {
  ZORAutomaticSettings automatic;
  automatic.num_parallel_ = 3;
  automatic.write_cv_values_ = true;
  ZORAdvancedSettings advanced;
  advanced.num_parallel_ = 5;
  advanced.write_cv_values_ = true;
  const auto of_type = [&](eSettingsType type) {
    return ZORCombinedSettings(type, MakeData(), false, automatic, advanced);
  };
  EXPECT_EQ(of_type(eSettingsType::kAutomatic).NumResponsesParallel(), 3u);
  EXPECT_EQ(of_type(eSettingsType::kClassic).NumResponsesParallel(), 0u);
  EXPECT_EQ(of_type(eSettingsType::kAdvanced).NumResponsesParallel(), 5u);
  EXPECT_FALSE(of_type(eSettingsType::kAutomatic).WriteCVValues());
  EXPECT_EQ(of_type(eSettingsType::kAutomatic).CVValuesSuffix(), L"");
  EXPECT_TRUE(of_type(eSettingsType::kAdvanced).WriteCVValues());
  EXPECT_EQ(of_type(eSettingsType::kAdvanced).CVValuesSuffix(), L"_cv");
}

TEST(CombinedSettings, ComeBackFromAnArchive) {
  ZORAdvancedSettings advanced;
  advanced.log_file_path_ = std::filesystem::u8path("log/\xC3\xBC.txt");
  advanced.custom_surrogates_ = {std::make_shared<math::metamodel::LinearRegressionSettings>(3)};
  advanced.zor_custom_id_usage_container_[L"id"] = true;
  ZORData data = MakeData();
  data.parameter_importance_[L"b"] = 2;
  data.SetResponsesBoundaries({{L"r", {-1.0, 1.0}}});
  ZORAutomaticSettings automatic;
  automatic.model_complexity_ = 4;
  ZORCombinedSettings settings(eSettingsType::kAdvanced, data, true, automatic, advanced);
  settings.SetLimits({0.0, 5.0});

  ZORCombinedSettings read;
  testing::Load(testing::Store(settings), read);
  EXPECT_EQ(testing::Store(read), testing::Store(settings));
  EXPECT_EQ(read.GetAdvancedSettings().log_file_path_, advanced.log_file_path_);
  EXPECT_EQ(read.GetZORData().parameters_, data.parameters_);
  EXPECT_EQ(read.GetLimits(), settings.GetLimits());
  EXPECT_TRUE(read.AnySurrogateZORModelUsed());
  EXPECT_EQ(testing::FirstNameOutOfOrder(
                settings, {"settings_type_", "data_", "show_pp_", "automatic_settings_", "advanced_settings_",
                           "num_parallel_", "pzor_settings_", "custom_surrogates_", "zor_custom_id_usage_container_",
                           "export_fmu_", "default_parameter_bounds_adjustment_min_",
                           "default_parameter_bounds_adjustment_max_", "limits_", "classic_settings_", "delta_cop_"}),
            "");
}

TEST(ZorData, ForgetsWhatItKnewOfNamesThatAreGone) {
  ZORData data = MakeData();
  data.UpdateParameterImportance({{L"a", 2}, {L"b", 0}});
  data.UpdateResponsesUsage({{L"s", true}});
  ZORData other;
  other.SetParameters(std::vector<std::wstring>{L"b", L"c"});
  other.SetResponses(std::vector<std::wstring>{L"s"});
  data.Adapt(other.parameters_, other.responses_);
  EXPECT_EQ(data.parameter_importance_, (std::map<std::wstring, std::uint64_t>{{L"b", 0}}));
  EXPECT_EQ(data.responses_usage_, (std::map<std::wstring, bool>{{L"s", true}}));
}

}  // namespace
}  // namespace kestrel::zor
