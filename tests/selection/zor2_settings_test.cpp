#include "selection/zor2_settings.h"

#include <gtest/gtest.h>

#include <utility>

#include "support/old_layout.h"
#include "support/stored.h"

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
void Change(NameValueMap& value) { value[L"own"] = 2.5; }
void Change(std::map<std::wstring, NameValueMap>& value) { value[L"own"][L"depth"] = 3; }
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

TEST(ZORSettings, EveryFieldIsStored) {
  ForEachChangedField([&](const std::string& name, const ZORSettings& changed) {
    ZORSettings read;
    testing::Load(testing::Store(changed), read);
    EXPECT_TRUE(read == changed) << name;
    EXPECT_EQ(testing::Store(read), testing::Store(changed)) << name;
  });
}

/// Settings none of whose fields is that of new ones.
ZORSettings ChangedSettings() {
  ZORSettings changed;
  const auto change = [&](const char*, auto field, unsigned) { Change(changed.*field); };
  MetamodelSettings::ForEachField(change);
  ZORSettings::ForEachField(change);
  return changed;
}

TEST(MetamodelSettings, OfEveryClassVersionAreRead) {
  using Self = MetamodelSettings;
  testing::Layout<Self, boost::serialization::track_selectively>(ChangedSettings())
      .Field("use_boxcox_", &Self::use_boxcox_)
      .Field("use_interpolation_", &Self::use_interpolation_)
      .Field("use_polynomials_", &Self::use_polynomials_)
      .Field("max_order_polynomial_", &Self::max_order_polynomial_)
      .Field("use_MLS_", &Self::use_MLS_)
      .Field("max_order_MLS_", &Self::max_order_MLS_)
      .Field("use_anisotropic_MLS_", &Self::use_anisotropic_MLS_)
      .Field("use_Kriging_", &Self::use_Kriging_)
      .Field("use_anisotropic_Kriging_", &Self::use_anisotropic_Kriging_)
      .Field("use_ASCMO_", &Self::use_ASCMO_)
      .Field("testing_type_", &Self::testing_type_)
      .Since(1, "coeff_factor_poly_", &Self::coeff_factor_poly_, 2.0)
      .Since(1, "coeff_factor_mls_", &Self::coeff_factor_mls_, 8.0)
      .Since(1, "coeff_factor_kriging_", &Self::coeff_factor_kriging_, 8.0)
      .Since(1, "coeff_factor_ASCMO_", &Self::coeff_factor_ASCMO_, 8.0)
      .Since(2, "custom_", &Self::custom_, decltype(Self::custom_)())
      .Since(3, "use_limits_", &Self::use_limits_, false)
      .Since(3, "limits_", &Self::limits_, std::make_pair(-kInfinity, kInfinity))
      .Since(4, "custom_settings_", &Self::custom_settings_, decltype(Self::custom_settings_)())
      .Since(4, "qmk_variables_", &Self::qmk_variables_, NameValueMap())
      .ExpectEveryVersionIsRead(ChangedSettings());
}

TEST(ZORSettings, OfEveryClassVersionAreRead) {
  using Self = ZORSettings;
  testing::Layout<Self, boost::serialization::track_selectively>(ChangedSettings())
      .BasePart<MetamodelSettings>("MetamodelSettings")
      .Field("info_important_", &Self::info_important_)
      .Field("use_significance_filter_", &Self::use_significance_filter_)
      .Field("min_significance_", &Self::min_significance_)
      .Field("step_significance_", &Self::step_significance_)
      .Field("use_spearman_", &Self::use_spearman_)
      .Field("use_coi_filter_", &Self::use_coi_filter_)
      .Field("max_CoI_", &Self::max_CoI_)
      .Field("step_CoI_", &Self::step_CoI_)
      .Field("use_adj_cod_", &Self::use_adj_cod_)
      .Field("use_cod_filter_", &Self::use_cod_filter_)
      .Field("max_CoD_", &Self::max_CoD_)
      .Field("step_CoD_", &Self::step_CoD_)
      .Field("use_corr_filter_", &Self::use_corr_filter_)
      .Field("num_corr_steps_", &Self::num_corr_steps_)
      .Field("toleranceCoP_model_", &Self::toleranceCoP_model_)
      .Field("toleranceCoP_variables_", &Self::toleranceCoP_variables_)
      .Since(1, "use_input_corr_filter_", &Self::use_input_corr_filter_, false)
      .Since(1, "corr_input_check_", &Self::corr_input_check_, 0.5)
      .Since(1, "min_input_corr_", &Self::min_input_corr_, 0.3)
      .Since(1, "max_input_corr_", &Self::max_input_corr_, 0.7)
      .Since(1, "use_adj_cop_", &Self::use_adj_cop_, false)
      .Since(2, "use_uniform_resample_", &Self::use_uniform_resample_, false)
      .ExpectEveryVersionIsRead(ChangedSettings());
}

TEST(ZORSettings, EveryFieldIsComparedClonedAndResetUnlessOfTheBase) {
  const ZORSettings original(3);
  EXPECT_TRUE(original == ZORSettings(3));
  EXPECT_TRUE(original.IsSimilar(ZORSettings(3)));
  ForEachChangedField([&](const std::string& name, const ZORSettings& changed) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(original == changed);
    EXPECT_FALSE(original.IsSimilar(changed));
    EXPECT_TRUE(*changed.Clone() == changed);
    const bool kept = !(MetamodelSettings(original) == changed) || name == "info_important_";
    ZORSettings reset = changed;
    reset.SetDefaults();
    EXPECT_TRUE(reset == (kept ? changed : original));
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
  settings.SetMaxCoI(2.0);  // all faults in one run
  EXPECT_EQ(Faults(settings),
            (std::vector<std::wstring>{L"No model selected.", L"Importance limit must be between 0 and 1."}));
  settings.SetMaxCoI(0.5);
  settings.custom_[L"another"] = true;
  EXPECT_TRUE(Faults(settings).empty());
  settings.custom_.clear();
  settings.use_ASCMO_ = true;
  EXPECT_TRUE(Faults(settings).empty());
}

}  // namespace
}  // namespace kestrel::math::metamodel
