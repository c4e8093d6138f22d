#include "selection/subspace_results.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <limits>
#include <thread>

#include "selection/print_results.h"
#include "selection/search_samples.h"
#include "support/stored.h"

namespace kestrel::math::metamodel {

/// The stored layout of a result and of a container, open to any content.
struct StoredResult {
  std::int32_t model_type = 1;
  const SurrogateSettingsBase* settings = nullptr;
  double measure = 0.5;
  Matrix singleCoPs;
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& BOOST_SERIALIZATION_NVP(model_type) & BOOST_SERIALIZATION_NVP(settings);
    for (const char* name : {"CoD", "CoDadj", "CoP", "CoPadj", "CoDtest", "predError"}) {
      archive& boost::serialization::make_nvp(name, measure);
    }
    archive& BOOST_SERIALIZATION_NVP(singleCoPs);
  }
};

struct StoredContainer {
  std::map<std::wstring, std::vector<StoredResult>> results_;
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& BOOST_SERIALIZATION_NVP(results_);
  }
};

namespace {

using testing::FirstInputs;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

SubspaceResults Polynomial(const LinearRegressionSettings& settings) {
  return {ModelType::kPolynomial, settings, {0.9, 0.8, 0.7, 0.6, 0.0, 0.3}};
}

TEST(SubspaceResults, EqualsWithNaNAndUnequalSizes) {
  SubspaceResults a = Polynomial(FirstInputs(2, 2, 1));
  a.singleCoPs = Matrix::Constant(2, 2, kNaN);
  SubspaceResults b = a;
  EXPECT_TRUE(a == b);
  b.singleCoPs.resize(0, 0);
  EXPECT_FALSE(a == b);
  b = a;
  b.measures.predError = kNaN;
  EXPECT_FALSE(a == b);
  EXPECT_FALSE(a == SubspaceResults());
}

TEST(SubspaceResults, CompareSettingsKnowsWhatTellsCandidatesApart) {
  using Change = std::function<void(LinearRegressionSettings&)>;
  const struct {
    const char* name;
    Change change;
    bool same;
  } cases[] = {
      {"fitted parameters",
       [](auto& s) {
         s.SetValueTransformationParameter({0.5, 0.1, 10.1});
       },
       true},
      {"state", [](auto& s) { s.SetState(eState::kOptimal); }, true},
      {"main terms", [](auto& s) { s.DeselectInputMainTerms(1); }, false},
      {"value transformation", [](auto& s) { s.SetValueTransformation(eTransformation::kNone); }, false},
  };
  LinearRegressionSettings settings(3);
  settings.SetOrder(2);
  settings.SetValueTransformation(eTransformation::kBoxCox);
  for (const auto& c : cases) {
    LinearRegressionSettings changed = settings;
    c.change(changed);
    EXPECT_EQ(Polynomial(settings).CompareSettings(Polynomial(changed)), c.same) << c.name;
  }
  EXPECT_FALSE(Polynomial(settings).CompareSettings(ModelType::kMLS, settings));
  EXPECT_FALSE(Polynomial(settings).CompareSettings(SubspaceResults()));
  EXPECT_FALSE(SubspaceResults().CompareSettings(SubspaceResults()));
}

TEST(SubspaceResults, NamesItsModel) {
  LinearRegressionSettings settings = FirstInputs(2, 2, 2);
  EXPECT_EQ(Polynomial(settings).GetModelString(), L"Linear Regression of order 2 (no mixed terms)");
  settings.SetValueTransformation(eTransformation::kBoxCox);
  settings.SetInteraction(true);
  EXPECT_EQ(Polynomial(settings).GetModelString(), L"Linear Regression of order 2 (with mixed terms, BoxCox)");
  EXPECT_EQ(SubspaceResults().GetModelString(), L"undefined");
}

TEST(PrintResults, FillsItsColumns) {
  utils::log::VectorLog log;
  SubspaceResults result = Polynomial(FirstInputs(3, 2, 1));
  result.measures.CoP = 1.0 / 3.0;
  PrintResults(result, L"mass", log, utils::log::LogLevel::kDebug);
  PrintResults(SubspaceResults(), L"a name of more than 20 letters ", log, utils::log::LogLevel::kWarning);
  PrintNoModelFound(L"mass", log);
  const std::wstring model = L"Linear Regression of order 1 (no mixed terms)";
  const utils::log::VectorLog::Entry expected[] = {
      {utils::log::LogLevel::kDebug,
       L"mass" + std::wstring(16, L' ') + model + std::wstring(61 - model.size(), L' ') + L" 2 3 0.8 0.3333333333333"},
      {utils::log::LogLevel::kWarning, L"a name of more than 20 letters Unknown metamodel type."},
      {utils::log::LogLevel::kInformation, L"mass" + std::wstring(16, L' ') + L"no model found"}};
  ASSERT_EQ(log.GetEntries().size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(log.GetEntries()[i], expected[i]);
}

TEST(SubspaceResultContainer, IsStoredWithTheSettingsOfItsResults) {
  SubspaceResultContainer container;
  SubspaceResults result = Polynomial(FirstInputs(3, 2, 2));
  result.singleCoPs = Matrix::Constant(3, 2, kNaN);
  for (int i = 0; i < 5; ++i) container.AddSubspaceResult(L"mass", result);
  container.AddSubspaceResult(L"stress", SubspaceResults());
  const auto read = testing::RoundTrip(container);
  EXPECT_TRUE(*read == container);
  EXPECT_EQ(
      testing::FirstNameOutOfOrder(
          container, "results_ first second model_type settings CoD CoDadj CoP CoPadj CoDtest predError singleCoPs"),
      "");
}

TEST(SubspaceResultContainer, RefusesKindsAndOwnersThatCannotBe) {
  const LinearRegressionSettings settings = FirstInputs(3, 2, 1);
  StoredResult good;
  good.settings = &settings;
  StoredResult unknown = good;
  unknown.model_type = 6;
  const auto stored = [](const std::vector<StoredResult>& results) {
    return testing::Store(StoredContainer{{{L"mass", results}}});
  };
  SubspaceResultContainer read;
  testing::Load(stored({good}), read);
  EXPECT_TRUE(*read.GetResults().at(L"mass").at(0).settings == settings);
  EXPECT_THROW(testing::Load(stored({unknown}), read), utils::runtime_error);
  EXPECT_THROW(testing::Load(stored({good, good}), read), boost::archive::archive_exception);
}

TEST(SubspaceResultContainer, TakesResultsOfSeveralThreads) {
  constexpr int kResults = 500;
  SubspaceResultContainer container;
  std::atomic<int> ready{0};
  const auto add = [&](const std::wstring& own_name) {
    ++ready;
    while (ready < 2) std::this_thread::yield();
    for (int i = 0; i < kResults; ++i) {
      container.AddSubspaceResult(L"common", Polynomial(FirstInputs(3, 2, 1)));
      container.AddSubspaceResult(own_name, Polynomial(FirstInputs(3, 1, 1)));
    }
  };
  std::thread first(add, L"a");
  std::thread second(add, L"b");
  first.join();
  second.join();
  ASSERT_EQ(container.GetResults().size(), 3u);
  EXPECT_EQ(container.GetResults().at(L"common").size(), 2u * kResults);
  EXPECT_EQ(container.GetResults().at(L"b").back().GetNumberVariables(), 1u);
}

}  // namespace
}  // namespace kestrel::math::metamodel
