#include "selection/zor2_settings.h"

#include <gtest/gtest.h>

#include <utility>

#include "support/stored.h"

namespace kestrel::math::metamodel {

/// The fields of class version 0.
struct OldMetamodelSettings {
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    MetamodelSettings settings;
    settings.max_order_polynomial_ = 3;
    MetamodelSettings::ForEachField([&](const char* name, auto field, unsigned since) {
      if (since == 0) archive& boost::serialization::make_nvp(name, settings.*field);
    });
  }
};

struct OldZORSettings {
  OldMetamodelSettings base;
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    ZORSettings settings(2);
    archive& boost::serialization::make_nvp("MetamodelSettings", base);
    ZORSettings::ForEachField([&](const char* name, auto field, unsigned since) {
      if (since == 0) archive& boost::serialization::make_nvp(name, settings.*field);
    });
  }
};

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

TEST(ZORSettings, OfClassVersionZeroGetTheDefaultsOfWhatTheyLack) {
  ZORSettings expected(2);
  expected.max_order_polynomial_ = 3;
  ForEachChangedField([&](const std::string& name, const ZORSettings& changed) {
    ZORSettings read = changed;
    testing::Load(testing::Store(OldZORSettings()), read);
    EXPECT_TRUE(read == expected) << name;
  });
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
