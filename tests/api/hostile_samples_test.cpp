#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "handle.h"

namespace zor_test {
namespace {

/// Samples on which a fit easily divides by zero, overflows or has nothing left to fit. The response is no polynomial,
/// so that every model class gets its turn.
struct HostileSample {
  const char* name;
  Table (*make)();
};

struct ModelClasses {
  const char* name;
  void (*choose)(zor_handle_t handle);
};

Table Wave(uint32_t designs, uint32_t inputs) {
  Table table = MakeTable(designs, inputs, 1);
  for (std::size_t i = 0; i < designs; ++i) {
    const double* x = table.Point(i);
    table.Output(i, 0) = std::sin(7.0 * x[0]) + std::exp(2.0 * x[inputs - 1]);
  }
  return table;
}

/// Designs 20 to 39 repeat 0 to 19, up to `distance` in each input, with outputs that differ.
Table TwinsThatDisagree(double distance) {
  Table table = Wave(40, 2);
  for (std::size_t i = 20; i < 40; ++i) {
    for (std::size_t j = 0; j < 2; ++j) table.Input(i, j) = table.Input(i - 20, j) + distance;
  }
  return table;
}

Table TwoLevels(std::size_t first_input) {
  Table table = Wave(40, 3);
  for (std::size_t i = 0; i < 40; ++i) {
    for (std::size_t j = first_input; j < 3; ++j) table.Input(i, j) = table.Input(i, j) < 0.5 ? -1.0 : 1.0;
  }
  return table;
}

Table OneInputMoves() {
  Table table = Wave(30, 4);
  for (std::size_t i = 0; i < 30; ++i) {
    for (std::size_t j = 1; j < 4; ++j) table.Input(i, j) = 1e6 * static_cast<double>(j);
  }
  return table;
}

Table Outputs(double scale, double shift) {
  Table table = Wave(40, 2);
  for (double& value : table.outputs) value = shift + scale * value;
  return table;
}

Table OneOutlier() {
  Table table = Wave(40, 2);
  table.Output(7, 0) = 1e150;
  return table;
}

const HostileSample kSamples[] = {
    {"TwinsThatDisagree", [] { return TwinsThatDisagree(0.0); }},
    {"TwinsThatAllButCoincide", [] { return TwinsThatDisagree(1e-15); }},
    {"ThreeDesigns", [] { return Wave(3, 2); }},
    {"FiveDesigns", [] { return Wave(5, 3); }},
    {"OneGroupOfDesignsLess", [] { return Wave(11, 3); }},
    {"MoreInputsThanDesigns", [] { return Wave(12, 15); }},
    {"TwoLevelsOnly", [] { return TwoLevels(0); }},
    {"TwoLevelsBesideAnInput", [] { return TwoLevels(1); }},
    {"OneInputMoves", OneInputMoves},
    {"OutputConstantButForRounding", [] { return Outputs(1e-16, 1.0); }},
    {"OutputConstantButForAFewBits", [] { return Outputs(1e-14, 1e2); }},
    {"OutputsOf1e-200", [] { return Outputs(1e-200, 0.0); }},
    {"OutputsOf1e200", [] { return Outputs(1e200, 0.0); }},
    {"OneOutlier", OneOutlier},
};

const ModelClasses kClasses[] = {
    {"all", [](zor_handle_t handle) { zor_set_use_anisotropic_kriging(handle, zor_true); }},
    {"leave one out",
     [](zor_handle_t handle) {
       zor_set_use_anisotropic_kriging(handle, zor_true);
       zor_set_testing_type(handle, 1);
     }},
    {"moving least squares, however few designs",
     [](zor_handle_t handle) {
       zor_set_use_polynomials(handle, zor_false);
       zor_set_use_kriging(handle, zor_false);
       zor_set_coeff_factor_mls(handle, 0.0);
     }},
    {"interpolation",
     [](zor_handle_t handle) {
       zor_set_use_interpolation(handle, zor_true);
       zor_set_coeff_factor_mls(handle, 0.0);
     }},
    {"Kriging, however few designs",
     [](zor_handle_t handle) {
       zor_set_use_polynomials(handle, zor_false);
       zor_set_use_mls(handle, zor_false);
       zor_set_use_anisotropic_kriging(handle, zor_true);
       zor_set_coeff_factor_kriging(handle, 0.0);
     }},
};

void PrintTo(const HostileSample& sample, std::ostream* stream) { *stream << sample.name; }

class HostileSamples : public ::testing::TestWithParam<HostileSample> {};

/// A number for each value, or a text that says why there is none.
void ExpectFinite(const Handle& handle, uint32_t code, const std::vector<double>& values, const char* what) {
  if (code != zor_success) {
    EXPECT_FALSE(LastError(handle).empty()) << what;
    return;
  }
  for (const double value : values) EXPECT_TRUE(std::isfinite(value)) << what << " " << value;
}

TEST_P(HostileSamples, GiveAModelOfNumbersOrAText) {
  const Table table = GetParam().make();
  for (const ModelClasses& classes : kClasses) {
    SCOPED_TRACE(classes.name);
    const Handle handle = MakeHandle();
    SetCounts(handle, table);
    classes.choose(handle.get());
    const uint32_t code = Build(handle, table);
    if (code != zor_success) {
      EXPECT_FALSE(LastError(handle).empty());
      continue;
    }
    double cop = -1.0;
    EXPECT_EQ(zor_get_cop_per_output(handle.get(), 0, &cop), zor_success);
    EXPECT_TRUE(cop >= 0.0 && cop <= 1.0) << cop;

    std::vector<double> predictions(table.designs);
    ExpectFinite(handle, zor_solve(handle.get(), table.inputs.data(), predictions.data(), table.designs), predictions,
                 "at the designs");
    const Table between = Wave(table.designs + 1, table.num_inputs);
    predictions.resize(between.designs);
    ExpectFinite(handle,
                 zor_solve_extrapolate(handle.get(), between.inputs.data(), predictions.data(), between.designs),
                 predictions, "elsewhere");
    if (cop == 0.0) continue;  // what stands in where no model was found may leave no error to a sample left out
    std::vector<double> cross_validation(table.designs);
    ExpectFinite(handle, zor_calculate_cv_values_per_output(handle.get(), 0, cross_validation.data()), cross_validation,
                 "in cross validation");
  }
}

INSTANTIATE_TEST_SUITE_P(Of, HostileSamples, ::testing::ValuesIn(kSamples), [](const auto& named) {
  std::string name = named.param.name;
  for (char& letter : name) {
    if (letter == '-') letter = '_';
  }
  return name;
});

}  // namespace
}  // namespace zor_test
