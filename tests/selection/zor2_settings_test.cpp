#include "selection/zor2_settings.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <utility>

#include "support/error_report.h"

namespace kestrel::math::metamodel {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Gives a field another value than the one it has.
void Change(bool& value) { value = !value; }
void Change(double& value) { value += 0.25; }
void Change(std::uint64_t& value) { ++value; }
void Change(TestingType::eTestingType& value) { value = TestingType::kLeaveOneOut; }
void Change(std::map<std::wstring, bool>& value) { value[L"own"] = true; }
void Change(std::pair<double, double>& value) { value.second = 7.0; }
void Change(std::vector<std::uint64_t>& value) { value.push_back(2); }

// Calls check(name, changed settings) once for each field of both classes.
template <class Check>
void ForEachChangedField(Check check) {
  const auto change_one = [&](const char* name, auto field, unsigned) {
    ZORSettings changed(3);
    Change(changed.*field);
    check(std::string(name), changed);
  };
  MetamodelSettings::ForEachField(change_one);
  ZORSettings::ForEachField(change_one);
}

// The names of the fields in which two settings differ.
std::string Differences(const ZORSettings& a, const ZORSettings& b) {
  std::string names;
  const auto compare = [&](const char* name, auto field, unsigned) {
    if (!(a.*field == b.*field)) names += name;
  };
  MetamodelSettings::ForEachField(compare);
  ZORSettings::ForEachField(compare);
  return names;
}

std::vector<std::wstring> Faults(const ZORSettings& settings) {
  utils::log::VectorLog log;
  std::vector<std::wstring> faults;
  const bool good = settings.CheckSettings(log);
  EXPECT_EQ(good, log.GetEntries().empty());
  for (const auto& [level, text] : log.GetEntries()) {
    EXPECT_EQ(level, utils::log::LogLevel::kError);
    faults.push_back(text);
  }
  return faults;
}

TEST(ZORSettings, ListsEveryFieldInStoredOrder) {
  std::ostringstream fields;
  const auto list = [&](const char* name, auto, unsigned since) { fields << name << since << ' '; };
  MetamodelSettings::ForEachField(list);
  fields << "| ";
  ZORSettings::ForEachField(list);
  EXPECT_EQ(fields.str(),
            "use_boxcox_0 use_interpolation_0 use_polynomials_0 max_order_polynomial_0 use_MLS_0 max_order_MLS_0 "
            "use_anisotropic_MLS_0 use_Kriging_0 use_anisotropic_Kriging_0 use_ASCMO_0 testing_type_0 "
            "coeff_factor_poly_1 coeff_factor_mls_1 coeff_factor_kriging_1 coeff_factor_ASCMO_1 custom_2 "
            "use_limits_3 limits_3 | "
            "info_important_0 use_significance_filter_0 min_significance_0 step_significance_0 use_spearman_0 "
            "use_coi_filter_0 max_CoI_0 step_CoI_0 use_adj_cod_0 use_cod_filter_0 max_CoD_0 step_CoD_0 "
            "use_corr_filter_0 num_corr_steps_0 toleranceCoP_model_0 toleranceCoP_variables_0 "
            "use_input_corr_filter_1 corr_input_check_1 min_input_corr_1 max_input_corr_1 use_adj_cop_1 "
            "use_uniform_resample_2 ");
}

TEST(ZORSettings, DefaultsAreTheDocumentedOnes) {
  const ZORSettings s(2);
  const bool on[] = {s.use_boxcox_,     s.use_polynomials_, s.use_MLS_,
                     s.use_Kriging_,    s.use_adj_cod_,     s.use_significance_filter_,
                     s.use_coi_filter_, s.use_cod_filter_,  s.use_corr_filter_};
  for (const bool flag : on) EXPECT_TRUE(flag);
  const bool off[] = {s.use_interpolation_, s.use_anisotropic_MLS_, s.use_anisotropic_Kriging_,
                      s.use_ASCMO_,         s.use_limits_,          s.use_input_corr_filter_,
                      s.use_spearman_,      s.use_adj_cop_,         s.use_uniform_resample_};
  for (const bool flag : off) EXPECT_FALSE(flag);
  const std::pair<double, double> numbers[] = {{s.coeff_factor_poly_, 2.0},
                                               {s.coeff_factor_mls_, 8.0},
                                               {s.coeff_factor_kriging_, 8.0},
                                               {s.coeff_factor_ASCMO_, 8.0},
                                               {s.min_significance_, 0.95},
                                               {s.step_significance_, 0.01},
                                               {s.max_CoI_, 0.05},
                                               {s.step_CoI_, 0.01},
                                               {s.max_CoD_, 0.05},
                                               {s.step_CoD_, 0.01},
                                               {s.toleranceCoP_model_, .01},
                                               {s.toleranceCoP_variables_, .01},
                                               {s.corr_input_check_, 0.5},
                                               {s.min_input_corr_, 0.3},
                                               {s.max_input_corr_, 0.7},
                                               {s.limits_.first, -kInfinity},
                                               {s.limits_.second, kInfinity}};
  for (const auto& [value, expected] : numbers) EXPECT_EQ(value, expected);
  EXPECT_EQ(s.max_order_polynomial_, 2U);
  EXPECT_EQ(s.max_order_MLS_, 2U);
  EXPECT_EQ(s.num_corr_steps_, 10U);
  EXPECT_EQ(s.testing_type_, TestingType::kCrossValidation);
  EXPECT_EQ(s.info_important_, std::vector<std::uint64_t>(2, 1));
  EXPECT_TRUE(ZORSettings().info_important_.empty());
}

TEST(ZORSettings, EveryFieldCountsInComparisonsAndIsCloned) {
  const ZORSettings original(3);
  EXPECT_TRUE(original == ZORSettings(3));
  EXPECT_TRUE(original.IsSimilar(ZORSettings(3)));
  ForEachChangedField([&](const std::string& name, const ZORSettings& changed) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(original == changed);
    EXPECT_FALSE(original.IsSimilar(changed));
    EXPECT_TRUE(*changed.Clone() == changed);
  });
}

TEST(ZORSettings, SimilarMeansWithinRounding) {
  ZORSettings original(1);
  original.SetLimits({0.25, kInfinity});
  ZORSettings close = original;
  close.SetMaxCoI(original.max_CoI_ + 1.5e-16);
  close.SetLimits({0.25 + 1.5e-16, kInfinity});
  EXPECT_FALSE(original == close);
  EXPECT_TRUE(original.IsSimilar(close));
  close.SetMaxCoI(original.max_CoI_ + 3e-16);
  EXPECT_FALSE(original.IsSimilar(close));

  EXPECT_TRUE(nearTo(kInfinity, kInfinity, 0.0));
  EXPECT_FALSE(nearTo(kInfinity, -kInfinity, 1.0));
  EXPECT_FALSE(nearTo(kNan, kNan, 1.0));
}

TEST(ZORSettings, AreNeverEqualToSettingsOfTheBaseClass) {
  const ZORSettings settings;
  const MetamodelSettings base = settings;
  EXPECT_FALSE(settings == base);
  EXPECT_FALSE(settings.IsSimilar(base));
  EXPECT_TRUE(base == settings);  // the base looks at its own fields
}

TEST(ZORSettings, SetDefaultsLeavesTheBaseAndTheImportance) {
  ZORSettings changed(4);
  ForEachChangedField([&](const std::string&, const ZORSettings& source) {
    const auto take = [&](const char*, auto field, unsigned) {
      if (!(source.*field == ZORSettings(3).*field)) changed.*field = source.*field;
    };
    MetamodelSettings::ForEachField(take);
    ZORSettings::ForEachField(take);
  });
  ZORSettings expected(3);
  static_cast<MetamodelSettings&>(expected) = changed;
  expected.info_important_ = changed.info_important_;
  changed.SetDefaults();
  EXPECT_EQ(Differences(changed, expected), "");
  EXPECT_NE(Differences(changed, ZORSettings(3)), "");
}

TEST(ZORSettings, EachSetterSetsItsField) {
  const std::pair<const char*, void (*)(ZORSettings&)> setters[] = {
      {"use_polynomials_", [](ZORSettings& s) { s.SetUsePolynomials(false); }},
      {"max_order_polynomial_", [](ZORSettings& s) { s.SetMaxOrderPolynomial(7); }},
      {"coeff_factor_poly_", [](ZORSettings& s) { s.SetCoeffFactorPolynomial(7.0); }},
      {"use_MLS_", [](ZORSettings& s) { s.SetUseMLS(false); }},
      {"max_order_MLS_", [](ZORSettings& s) { s.SetMaxOrderMLS(7); }},
      {"coeff_factor_mls_", [](ZORSettings& s) { s.SetCoeffFactorMLS(7.0); }},
      {"use_Kriging_", [](ZORSettings& s) { s.SetUseKriging(false); }},
      {"use_anisotropic_Kriging_", [](ZORSettings& s) { s.SetUseKrigingAnisotropicKernel(true); }},
      {"coeff_factor_kriging_", [](ZORSettings& s) { s.SetCoeffFactorKriging(7.0); }},
      {"use_boxcox_", [](ZORSettings& s) { s.SetUseBoxCox(false); }},
      {"use_interpolation_", [](ZORSettings& s) { s.SetUseInterpolation(true); }},
      {"testing_type_", [](ZORSettings& s) { s.SetTestingType(TestingType::kLeaveOneOut); }},
      {"use_limits_", [](ZORSettings& s) { s.SetUseLimits(true); }},
      {"limits_",
       [](ZORSettings& s) {
         s.SetLimits({0.0, 1.0});
       }},
      {"info_important_", [](ZORSettings& s) { s.SetImportantInfo({2}); }},
      {"min_significance_", [](ZORSettings& s) { s.SetMinSignificance(0.5); }},
      {"max_CoI_", [](ZORSettings& s) { s.SetMaxCoI(0.5); }},
      {"step_CoI_", [](ZORSettings& s) { s.SetStepCoI(0.5); }},
      {"max_CoD_", [](ZORSettings& s) { s.SetMaxCoD(0.5); }},
      {"step_CoD_", [](ZORSettings& s) { s.SetStepCoD(0.5); }},
      {"num_corr_steps_", [](ZORSettings& s) { s.SetNumCorrSteps(7); }},
      {"corr_input_check_", [](ZORSettings& s) { s.SetCorrInputCheck(0.25); }},
      {"min_input_corr_", [](ZORSettings& s) { s.SetMinInputCorr(0.5); }},
      {"max_input_corr_", [](ZORSettings& s) { s.SetMaxInputCorr(0.5); }},
      {"toleranceCoP_model_", [](ZORSettings& s) { s.SetToleranceCOPModel(0.5); }},
      {"toleranceCoP_variables_", [](ZORSettings& s) { s.SetToleranceCOPVariables(0.5); }},
      {"use_spearman_", [](ZORSettings& s) { s.SetUseSpearman(true); }},
      {"use_significance_filter_", [](ZORSettings& s) { s.SetUseSignificanceFilter(false); }},
      {"use_coi_filter_", [](ZORSettings& s) { s.SetUseCoIFilter(false); }},
      {"use_cod_filter_", [](ZORSettings& s) { s.SetUseCoDFilter(false); }},
      {"use_corr_filter_", [](ZORSettings& s) { s.SetUseCorrelationFilter(false); }},
      {"use_adj_cod_", [](ZORSettings& s) { s.SetUseAdjustedCoD(false); }},
      {"use_input_corr_filter_", [](ZORSettings& s) { s.SetUseInputCorrelationFilter(true); }},
      {"use_adj_cop_", [](ZORSettings& s) { s.SetUseAdjustedCoP(true); }}};
  for (const auto& [field, set] : setters) {
    ZORSettings settings;
    set(settings);
    EXPECT_EQ(Differences(settings, ZORSettings()), field);
  }
}

TEST(ZORSettings, CheckReportsValuesOutsideTheirRange) {
  const std::pair<double ZORSettings::*, const wchar_t*> fractions[] = {
      {&ZORSettings::min_significance_, L"Significance quantile must be between 0 and 1."},
      {&ZORSettings::max_CoI_, L"Importance limit must be between 0 and 1."},
      {&ZORSettings::toleranceCoP_model_, L"CoP tolerance of model must be between 0 and 1."},
      {&ZORSettings::toleranceCoP_variables_, L"CoP tolerance of variables must be between 0 and 1."}};
  EXPECT_TRUE(Faults(ZORSettings()).empty());
  for (const auto& [field, message] : fractions) {
    ZORSettings settings;
    for (const double good : {0.0, 0.5, 1.0}) {
      settings.*field = good;
      EXPECT_TRUE(Faults(settings).empty()) << good;
    }
    for (const double bad : {-1e-9, 1.0 + 1e-9, kInfinity, kNan}) {
      settings.*field = bad;
      EXPECT_EQ(Faults(settings), std::vector<std::wstring>{message}) << bad;
    }
  }
  ZORSettings settings;
  settings.SetNumCorrSteps(10000);
  EXPECT_TRUE(Faults(settings).empty());
  settings.SetNumCorrSteps(10001);
  EXPECT_EQ(Faults(settings), std::vector<std::wstring>{L"Number of correlation steps must not exceed 10000."});
}

TEST(ZORSettings, CheckDemandsAModelClass) {
  ZORSettings settings;
  settings.SetUsePolynomials(false);
  settings.SetUseMLS(false);
  settings.SetUseKriging(false);
  settings.custom_[L"own"] = false;
  EXPECT_EQ(Faults(settings), std::vector<std::wstring>{L"No model selected."});
  settings.custom_[L"another"] = true;
  EXPECT_TRUE(Faults(settings).empty());
  settings.custom_.clear();
  settings.use_ASCMO_ = true;
  EXPECT_TRUE(Faults(settings).empty());
}

TEST(ZORSettings, CheckReportsAllFaultsInOneRunAndInOrder) {
  ZORSettings settings;
  settings.SetUsePolynomials(false);
  settings.SetUseMLS(false);
  settings.SetUseKriging(false);
  settings.SetMinSignificance(2.0);
  settings.SetMaxCoI(2.0);
  settings.SetToleranceCOPVariables(2.0);
  const std::vector<std::wstring> expected = {L"No model selected.", L"Significance quantile must be between 0 and 1.",
                                              L"Importance limit must be between 0 and 1.",
                                              L"CoP tolerance of variables must be between 0 and 1."};
  EXPECT_EQ(Faults(settings), expected);
}

TEST(ZORSettings, CheckWritesToTheErrorStreamWhereReportsDo) {
  ZORSettings settings;
  settings.SetMaxCoI(2.0);
  utils::log::VectorLog log;
  std::wostringstream captured;
  std::wstreambuf* const original = std::wcerr.rdbuf(captured.rdbuf());
  error::replace_exception_by_assert = true;
  const bool good = settings.CheckSettings(log);
  error::replace_exception_by_assert = false;
  std::wcerr.rdbuf(original);
  EXPECT_FALSE(good);
  EXPECT_TRUE(log.GetEntries().empty());
  EXPECT_EQ(captured.str(), L"Importance limit must be between 0 and 1.\n");
}

}  // namespace
}  // namespace kestrel::math::metamodel
