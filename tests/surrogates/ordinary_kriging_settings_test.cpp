#include "surrogates/ordinary_kriging_settings.h"

#include <gtest/gtest.h>

#include "support/log.h"
#include "support/raised_text.h"

namespace kestrel::math::metamodel {
namespace {

Vector Radii(std::initializer_list<double> radii) {
  Vector parameter(static_cast<Index>(radii.size()));
  std::copy(radii.begin(), radii.end(), parameter.begin());
  return parameter;
}

OrdinaryKrigingSettings WithKernel(Kernel::eType type, const Vector& parameter) {
  OrdinaryKrigingSettings settings(3);
  settings.SetVariableSelection(Selection(3, 0b101));
  settings.SetKernelType(type);
  settings.SetKernelParameter(parameter);
  return settings;
}

TEST(OrdinaryKrigingSettings, CountsParametersAndComplexity) {
  const struct {
    const char* name;
    Kernel::eType kernel;
    Vector radii;
    std::vector<double> boxcox;
    std::uint64_t parameters;
    std::uint64_t complexity;
  } cases[] = {
      {"isotropic, radius unknown", Kernel::kConstInflIsoExp, Vector(), {}, 2, 10},
      {"isotropic, exponent 1", Kernel::kConstInflIsoExp, Radii({0.5}), {1.0, 0.1, 10.1}, 2, 10},
      {"isotropic, logarithm", Kernel::kConstInflIsoExp, Radii({0.5}), {0.0, 0.1, 10.1}, 3, 10},
      {"anisotropic, radii unknown", Kernel::kConstInflExp, Vector(), {}, 3, 11},
      {"anisotropic, logarithm", Kernel::kConstInflExp, Radii({0.5, 2.0}), {0.0, 0.1, 10.1}, 4, 11},
      {"nodal", Kernel::kNodalInflExp, Vector(), {}, 2, 10},
  };
  for (const auto& c : cases) {
    OrdinaryKrigingSettings settings = WithKernel(c.kernel, c.radii);
    settings.SetValueTransformationParameter(c.boxcox);
    EXPECT_EQ(settings.GetNumberParameter(), c.parameters) << c.name;
    EXPECT_EQ(settings.GetComplexity(), c.complexity) << c.name;
    EXPECT_EQ(settings.GetNumberCoefficients(), 1u) << c.name;
  }
}

TEST(OrdinaryKrigingSettings, AreRefusedWithAKernelThatDoesNotFit) {
  OrdinaryKrigingSettings selecting_others(3);
  selecting_others.SetVariableSelection(Selection(4, 0b1111));
  const struct {
    const char* name;
    OrdinaryKrigingSettings settings;
    const wchar_t* text;
  } cases[] = {
      {"isotropic", WithKernel(Kernel::kConstInflIsoExp, Radii({0.5})), L""},
      {"one radius per selected input", WithKernel(Kernel::kConstInflExp, Radii({0.5, 0.5})), L""},
      {"radii unknown", WithKernel(Kernel::kConstInflExp, Vector()), L""},
      {"one radius per input", WithKernel(Kernel::kConstInflExp, Radii({0.5, 0.5, 0.5})),
       L"Wrong number of dimensions in anisotropic kernel"},
      {"neighbour count", WithKernel(Kernel::kNodalInflExp, Radii({7.0})), L""},
      {"weight", WithKernel(Kernel::kConstInflIsoReg, Radii({0.5})), L"Kernel is not of type correlation"},
      {"no inputs", OrdinaryKrigingSettings(), L"Number of inputs can not be 0."},
      {"radius of 0", WithKernel(Kernel::kConstInflIsoExp, Radii({0.0})),
       L"KernelConstInflIsoExp: parameter must be greater zero"},
      {"selection of other inputs", selecting_others,
       L"size of variable selection vector is not consistent to number of inputs"},
      {"unknown kernel", WithKernel(static_cast<Kernel::eType>(2), Vector()), L"Unknown kernel type."},
  };
  utils::log::LogDummy log;
  for (const auto& c : cases) {
    EXPECT_EQ(testing::RaisedText([&] { c.settings.CheckSettings(log); }), c.text) << c.name;
  }
}

TEST(OrdinaryKrigingSettings, TakeOutAnInputWithItsRadius) {
  OrdinaryKrigingSettings anisotropic = WithKernel(Kernel::kConstInflExp, Radii({0.25, 4.0}));
  anisotropic.DeselectInput(0);
  EXPECT_EQ(anisotropic.GetVariableSelection(), Selection(3, 0b100));
  EXPECT_EQ(anisotropic.GetKernelParameter(), Radii({4.0}));

  OrdinaryKrigingSettings isotropic = WithKernel(Kernel::kConstInflIsoExp, Radii({0.25}));
  isotropic.DeselectInput(2);
  EXPECT_EQ(isotropic.GetVariableSelection(), Selection(3, 0b001));
  EXPECT_EQ(isotropic.GetKernelParameter(), Radii({0.25}));
  EXPECT_FALSE(isotropic == anisotropic);

  isotropic.SetNumInputs(2);
  EXPECT_TRUE(isotropic == OrdinaryKrigingSettings(2));
}

}  // namespace
}  // namespace kestrel::math::metamodel
