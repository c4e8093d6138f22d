#include "surrogates/moving_least_squares_settings.h"

#include <gtest/gtest.h>

#include <functional>

#include "support/log.h"
#include "support/raised_text.h"

namespace kestrel::math::metamodel {
namespace {

Selection Bits(const std::string& text) { return Selection(text); }  // the first bit last

TEST(MovingLeastSquaresSettings, SelectInputsInEveryOrder) {
  struct Case {
    std::uint64_t order;
    std::uint64_t coefficients;
    std::uint64_t parameters;  ///< one for the radius, for order 0 one per input
    std::uint64_t complexity;
    std::size_t bits;
  };
  for (const Case& c : {Case{0, 1, 4, 10, 3}, Case{1, 3, 4, 11, 3}, Case{2, 5, 6, 12, 6}}) {
    MovingLeastSquaresSettings settings(3);
    settings.SetOrder(c.order);
    settings.SetVariableSelection(Bits("101"));
    EXPECT_EQ(settings.GetVariableSelection(), Bits("101")) << c.order;
    EXPECT_EQ(settings.GetMainTermSelection().size(), c.bits) << c.order;
    EXPECT_TRUE(settings.GetInteractionSelection().empty()) << c.order;
    EXPECT_EQ(settings.GetNumberCoefficients(), c.coefficients) << c.order;
    EXPECT_EQ(settings.GetNumberParameter(), c.parameters) << c.order;
    EXPECT_EQ(settings.GetComplexity(), c.complexity) << c.order;
  }
}

TEST(MovingLeastSquaresSettings, CountWhatIsFitted) {
  MovingLeastSquaresSettings settings(3);
  EXPECT_EQ(settings.GetNumberParameter(), 4U + 1U);
  settings.SetKernelType(Kernel::kConstInflExp);  // it will have a radius per input
  EXPECT_EQ(settings.GetNumberParameter(), 4U + 3U);
  settings.SetKernelType(Kernel::kNodalInflExp);
  settings.SetKernelParameter(Vector::Ones(1));
  settings.SetValueTransformationParameter({1.0, 0.1, 10.1});
  EXPECT_EQ(settings.GetNumberParameter(), 4U + 1U);
  settings.SetValueTransformationParameter({0.5, 0.1, 10.1});
  EXPECT_EQ(settings.GetNumberParameter(), 4U + 1U + 1U);
}

TEST(MovingLeastSquaresSettings, ReportSizesThatDoNotFit) {
  using Change = void (*)(MovingLeastSquaresSettings&);
  struct Case {
    Change change;
    const wchar_t* text;
  };
  const Case cases[] = {
      {[](auto& s) { s.SetOrder(3); }, L"can not set mls order >2"},
      {[](auto& s) { s.SurrogateSettingsBase::SetNumInputs(0); }, L"Number of inputs can not be 0."},
      {[](auto& s) { s.SurrogateSettingsBase::SetNumInputs(2); },
       L"size of selection vector is not consistent to order"},
      {[](auto& s) { s.SetKernelParameter(Vector::Ones(2)); },
       L"size of kernel parameter vector is not consistent to selected inputs"},
      {[](auto& s) {
         s.SetKernelType(Kernel::kConstInflExp);
         s.SetKernelParameter(Vector::Ones(3));
         s.SetVariableSelection(Bits("011"));
       },
       L"size of kernel parameter vector is not consistent to selected inputs"},
  };
  utils::log::LogDummy log;
  for (const Case& c : cases) {
    MovingLeastSquaresSettings settings(3);
    EXPECT_NO_THROW(settings.CheckSettings(log));
    c.change(settings);
    EXPECT_EQ(testing::RaisedText([&] { settings.CheckSettings(log); }), c.text);
  }
}

TEST(MovingLeastSquaresSettings, AreEqualInAllFields) {
  const MovingLeastSquaresSettings settings(2);
  EXPECT_TRUE(*settings.Clone() == settings);
  const std::function<void(MovingLeastSquaresSettings&)> changes[] = {
      [](auto& s) { s.SetOrder(0); },  // as many bits
      [](auto& s) { s.SetVariableSelection(Bits("01")); },
      [](auto& s) { s.SetKernelType(Kernel::kConstInflIsoReg); },
      [](auto& s) { s.SetKernelParameter(Vector::Ones(1)); },
      [](auto& s) {
        s.SetInputNames({L"a", L"b"});
      },
  };
  for (const auto& change : changes) {
    MovingLeastSquaresSettings other = settings;
    change(other);
    EXPECT_FALSE(other == settings);
    EXPECT_TRUE(*other.Clone() == other);
    other.SetInputNames({});
    other.SetDefaults();
    EXPECT_TRUE(other == settings);
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
