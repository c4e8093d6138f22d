#include "selection/subspace_results.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <limits>
#include <thread>

#include "selection/print_results.h"
#include "selection/search_samples.h"

namespace kestrel::math::metamodel {
namespace {

using testing::FirstInputs;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Settings that only have an order and a kernel.
class KernelSettings final : public SurrogateSettingsBase {
 public:
  KernelSettings(std::uint64_t order, std::int32_t kernel) : SurrogateSettingsBase(1), order_(order), kernel_(kernel) {}

  Selection GetVariableSelection() const override { return Selection(1, 1); }
  const Selection& GetMainTermSelection() const override { return none_; }
  const Selection& GetInteractionSelection() const override { return none_; }
  std::uint64_t GetOrder() const override { return order_; }
  std::uint64_t GetNumberCoefficients() const override { return 1; }
  std::uint64_t GetNumberParameter() const override { return 1; }
  std::uint64_t GetComplexity() const override { return 10; }
  std::int32_t GetKernelType() const override { return kernel_; }
  std::unique_ptr<SurrogateSettingsBase> Clone() const override { return std::make_unique<KernelSettings>(*this); }

 private:
  std::uint64_t order_;
  std::int32_t kernel_;
  Selection none_;
};

SubspaceResults Polynomial(const LinearRegressionSettings& settings) {
  return {ModelType::kPolynomial, settings, {0.9, 0.8, 0.7, 0.6, 0.0, 0.3}};
}

TEST(SubspaceResults, CopiesOwnTheirSettings) {
  const SubspaceResults original = Polynomial(FirstInputs(3, 2, 1));
  SubspaceResults copy;
  copy = original;
  EXPECT_TRUE(copy == original);
  copy.settings->SetValueTransformation(eTransformation::kBoxCox);
  EXPECT_EQ(original.settings->GetValueTransformation(), eTransformation::kNone);
  EXPECT_FALSE(copy == original);
  EXPECT_EQ(SubspaceResults(SubspaceResults()).GetNumberVariables(), 0u);
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
      {"nothing", [](auto&) {}, true},
      {"fitted parameters",
       [](auto& s) {
         s.SetValueTransformationParameter({0.5, 0.1, 10.1});
       },
       true},
      {"state", [](auto& s) { s.SetState(eState::kOptimal); }, true},
      {"main terms", [](auto& s) { s.DeselectInputMainTerms(1); }, false},
      {"interactions", [](auto& s) { s.DeselectInputInteractionTerms(1); }, false},
      {"order", [](auto& s) { s.SetOrder(3); }, false},
      {"value transformation", [](auto& s) { s.SetValueTransformation(eTransformation::kNone); }, false},
      {"limits", [](auto& s) { s.SetLimitTransformation(eTransformation::kLimits); }, false},
      {"coordinates", [](auto& s) { s.SetCoordTransformation(eTransformation::kNone); }, false},
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
  const struct {
    ModelType::eModelType type;
    std::uint64_t order;
    std::int32_t kernel;
    const wchar_t* plain;
  } cases[] = {
      {ModelType::kMLS, 2, 101, L"Moving Least Squares of order 2 (exponential weight"},
      {ModelType::kMLS, 1, 102, L"Moving Least Squares of order 1 (regularized weight"},
      {ModelType::kMLS, 1, 7, L"Moving Least Squares of order 1 (undefined weight"},
      {ModelType::kKriging, 0, 101, L"Kriging (isotropic kernel"},
      {ModelType::kKriging, 0, 1, L"Kriging (anisotropic kernel"},
      {ModelType::kKriging, 0, 102, L"Kriging (undefined kernel"},
  };
  for (const auto& c : cases) {
    KernelSettings settings(c.order, c.kernel);
    EXPECT_EQ(SubspaceResults(c.type, settings, {}).GetModelString(), std::wstring(c.plain) + L")");
    settings.SetValueTransformation(eTransformation::kBoxCox);
    EXPECT_EQ(SubspaceResults(c.type, settings, {}).GetModelString(), std::wstring(c.plain) + L", BoxCox)");
  }
  EXPECT_EQ(Polynomial(FirstInputs(2, 2, 2)).GetModelString(), L"Linear Regression of order 2 (no mixed terms)");
  EXPECT_EQ(Polynomial(FirstInputs(2, 1, 1, true)).GetModelString(), L"Linear Regression of order 1 (no mixed terms)");
  EXPECT_EQ(Polynomial(FirstInputs(2, 2, 1, true)).GetModelString(),
            L"Linear Regression of order 1 (with mixed terms)");
  EXPECT_EQ(SubspaceResults(ModelType::kCustom, KernelSettings(1, 1), {}).GetModelString(), L"undefined");
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

  const std::shared_ptr<SubspaceResultContainer> copy = container.Clone();
  EXPECT_TRUE(*copy == container);
  copy->AddSubspaceResult(L"a", SubspaceResults());
  EXPECT_FALSE(*copy == container);
}

}  // namespace
}  // namespace kestrel::math::metamodel
