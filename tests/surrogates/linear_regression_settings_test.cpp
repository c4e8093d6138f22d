#include "surrogates/linear_regression_settings.h"

#include <gtest/gtest.h>

#include "support/log.h"
#include "support/raised_text.h"

namespace kestrel::math::metamodel {
namespace {

TEST(LinearRegressionSettings, RaisingTheOrderTurnsInteractionsOn) {
  LinearRegressionSettings settings(3);
  EXPECT_EQ(settings.GetNumberCoefficients(), 4U);
  settings.SetOrder(2);
  EXPECT_EQ(settings.GetNumberCoefficients(), 1U + 6U + 3U);
  settings.SetInteraction(false);
  EXPECT_EQ(settings.GetNumberCoefficients(), 7U);
  settings.SetOrder(1);
  EXPECT_TRUE(settings.GetInteractionSelection().empty());
}

TEST(LinearRegressionSettings, VariableSelectionClearsTermsAndSetsNone) {
  LinearRegressionSettings settings(3);
  settings.SetOrder(2);
  settings.DeselectInputMainTerms(2);
  settings.SetVariableSelection(Selection(std::string("101")));  // inputs 0 and 2
  EXPECT_EQ(settings.GetVariableMainTermSelection(), Selection(std::string("001")));
  EXPECT_EQ(settings.GetVariableInteractionSelection(), Selection(std::string("101")));
  EXPECT_EQ(settings.GetVariableSelection(), Selection(std::string("101")));
  EXPECT_EQ(settings.GetNumberCoefficients(), 1U + 2U + 1U);
}

TEST(LinearRegressionSettings, ComplexityAndParametersFollowTermsAndExponent) {
  struct Case {
    const char* name;
    std::uint64_t order;
    bool interaction;
    std::vector<double> boxcox;
    std::uint64_t complexity;
    std::uint64_t extra_parameters;
  };
  const Case cases[] = {
      {"constant", 0, false, {}, 0, 0},
      {"linear", 1, false, {}, 0, 0},
      {"exponent of 1 is no parameter", 1, false, {1.0, 0.1, 10.1}, 0, 0},
      {"linear with exponent", 1, false, {0.5, 0.1, 10.1}, 1, 1},
      {"linear with interactions", 1, true, {}, 1, 0},
      {"quadratic", 2, false, {0.5, 0.1, 10.1}, 2, 1},
      {"cubic", 3, true, {}, 3, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    LinearRegressionSettings settings(3);
    settings.SetOrder(c.order);
    settings.SetInteraction(c.interaction);
    settings.SetValueTransformationParameter(c.boxcox);
    EXPECT_EQ(settings.GetComplexity(), c.complexity);
    EXPECT_EQ(settings.GetNumberParameter() - settings.GetNumberCoefficients(), c.extra_parameters);
  }
}

TEST(LinearRegressionSettings, ReportsWhatDoesNotFit) {
  struct Case {
    const wchar_t* message;
    void (*spoil)(LinearRegressionSettings&);
  };
  const Case cases[] = {
      {L"Number of inputs can not be 0.", [](auto& s) { s.SetNumInputs(0); }},
      {L"size of main term selection vector is not consistent to regression order",
       [](auto& s) { s.SetMainTermSelection(Selection(2)); }},
      {L"size of interaction selection vector is not consistent to regression dimension",
       [](auto& s) { s.SetInteractionSelection(Selection(4)); }},
      {L"deselection input number can only between 0 and num_inputs - 1", [](auto& s) { s.DeselectInputMainTerms(3); }},
      {L"deselection input number can only between 0 and num_inputs - 1",
       [](auto& s) { s.DeselectInputInteractionTerms(3); }},
  };
  utils::log::LogDummy log;
  for (const Case& c : cases) {
    LinearRegressionSettings settings(3);
    const auto check = [&] {
      c.spoil(settings);
      settings.CheckSettings(log);
    };
    EXPECT_EQ(testing::RaisedText(check), c.message);
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
