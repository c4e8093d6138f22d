#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>

#include "api/handle.h"

namespace zor_test {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

double CoP(const Handle& handle, int32_t output) {
  double cop = kNan;
  EXPECT_EQ(zor_get_cop_per_output(handle.get(), output, &cop), zor_success);
  return cop;
}

std::vector<double> Solve(const Handle& handle, const Table& table) {
  std::vector<double> values(table.outputs.size(), kNan);
  EXPECT_EQ(zor_solve(handle.get(), table.inputs.data(), values.data(), table.designs), zor_success)
      << LastError(handle);
  return values;
}

TEST(Build, FindsAPolynomialFromBothForms) {
  const Table table = MakeTable(30, 3, 2);
  const Handle split = MakeHandle();
  SetCounts(split, table);
  EXPECT_EQ(Build(split, table), zor_success);
  const Handle combined = MakeHandle();
  SetCounts(combined, table);
  EXPECT_EQ(zor_build(combined.get(), table.Combined().data(), table.designs), zor_success);
  for (const Handle* const handle : {&split, &combined}) {
    EXPECT_EQ(LastError(*handle), "");
    EXPECT_NEAR(CoP(*handle, 0), 1.0, 1e-12);
    EXPECT_LT(CoP(*handle, 1), 1.0);
    const std::vector<double> values = Solve(*handle, table);
    for (std::size_t i = 0; i < table.designs; ++i) {
      EXPECT_NEAR(values[2 * i], table.Output(i, 0), 1e-9);
      EXPECT_NEAR(values[2 * i + 1], table.Output(i, 1), 0.2);
    }
  }
}

TEST(Build, LeavesTheNamesAsTheyWere) {
  const Table table = MakeTable(10, 2, 1);
  const Handle handle = MakeHandle();
  SetCounts(handle, table);
  EXPECT_EQ(Build(handle, table), zor_success);
  uint32_t count = 9;
  EXPECT_EQ(zor_get_input_name_count(handle.get(), &count), zor_success);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(zor_get_output_name_count(handle.get(), &count), zor_success);
  EXPECT_EQ(count, 0u);
}

struct RefusalCase {
  const char* name;
  uint32_t code;
  const char* text;
  void (*change)(const Handle&, Table&);

  friend void PrintTo(const RefusalCase& of, std::ostream* stream) { *stream << of.name; }
};

class BuildRefusal : public ::testing::TestWithParam<RefusalCase> {};

TEST_P(BuildRefusal, HasItsTextAndLeavesNoModel) {
  Table table = MakeTable(10, 2, 1);
  const Handle handle = MakeBuilt(table);
  GetParam().change(handle, table);
  EXPECT_EQ(Build(handle, table), GetParam().code);
  EXPECT_EQ(LastError(handle), GetParam().text);
  EXPECT_FALSE(IsBuilt(handle));
}

constexpr const char* kTooFew =
    "There are not enough designs for ZOR. Need at least 2 designs.\nGiven data is invalid.";

void NameInputs(const Handle& handle, const std::vector<const char*>& names) {
  EXPECT_EQ(zor_set_input_names(handle.get(), names.data(), static_cast<uint32_t>(names.size())), zor_success);
}

void NameOutputs(const Handle& handle, const std::vector<const char*>& names) {
  EXPECT_EQ(zor_set_output_names(handle.get(), names.data(), static_cast<uint32_t>(names.size())), zor_success);
}

INSTANTIATE_TEST_SUITE_P(
    Description, BuildRefusal,
    ::testing::Values(
        RefusalCase{"NoInputs", zor_calculation_error, "At least one input and one output needed.",
                    [](const Handle& h, Table&) { zor_set_input_count(h.get(), 0); }},
        RefusalCase{"NoOutputs", zor_calculation_error, "At least one input and one output needed.",
                    [](const Handle& h, Table&) { zor_set_output_count(h.get(), 0); }},
        RefusalCase{"InputNames", zor_calculation_error, "Number of input names does not fit given input count.",
                    [](const Handle& h, Table&) { NameInputs(h, {"a"}); }},
        RefusalCase{"OutputNames", zor_calculation_error, "Number of output names does not fit given output count.",
                    [](const Handle& h, Table&) {
                      NameOutputs(h, {"a", "b"});
                    }},
        RefusalCase{"EqualInputNames", zor_calculation_error, "Value ( a, 0.5 ) already exists in this sequence",
                    [](const Handle& h, Table& rows) {
                      NameInputs(h, {"a", "a"});
                      rows.Input(0, 1) = 0.5;
                    }},
        RefusalCase{"EqualOutputNames", zor_calculation_error, "Response \"r\" already exists.",
                    [](const Handle& h, Table& rows) {
                      rows = MakeTable(10, 2, 2);
                      zor_set_output_count(h.get(), 2);
                      NameOutputs(h, {"r", "r"});
                    }}),
    [](const auto& named) { return std::string(named.param.name); });

INSTANTIATE_TEST_SUITE_P(
    Data, BuildRefusal,
    ::testing::Values(
        RefusalCase{"NoDesign", zor_calculation_error, kTooFew, [](const Handle&, Table& rows) { rows.designs = 0; }},
        RefusalCase{"OneDesign", zor_calculation_error, kTooFew, [](const Handle&, Table& rows) { rows.designs = 1; }},
        RefusalCase{"NanInput", zor_calculation_error, "Input 1 of design 9 is not a finite number.",
                    [](const Handle&, Table& rows) { rows.Input(9, 1) = kNan; }},
        RefusalCase{"InfiniteInput", zor_calculation_error, "Input 0 of design 2 is not a finite number.",
                    [](const Handle&, Table& rows) { rows.Input(2, 0) = rows.Input(2, 1) = -kInf; }},
        RefusalCase{"NoValidOutput", zor_calculation_error, "Unable to calculate ZOR without valid design values.",
                    [](const Handle&, Table& rows) { rows.outputs.assign(10, kNan); }}),
    [](const auto& named) { return std::string(named.param.name); });

void SelectNoModel(const Handle& handle) {
  zor_set_use_polynomials(handle.get(), zor_false);
  zor_set_use_mls(handle.get(), zor_false);
  zor_set_use_kriging(handle.get(), zor_false);
}

INSTANTIATE_TEST_SUITE_P(
    Settings, BuildRefusal,
    ::testing::Values(RefusalCase{"NoModel", zor_settings_check_failed, "ERROR: No model selected.\n",
                                  [](const Handle& h, Table&) { SelectNoModel(h); }},
                      RefusalCase{"Significance", zor_settings_check_failed,
                                  "ERROR: Significance quantile must be between 0 and 1.\n",
                                  [](const Handle& h, Table&) { zor_set_min_significance(h.get(), 1.01); }},
                      RefusalCase{"Importance", zor_settings_check_failed,
                                  "ERROR: Importance limit must be between 0 and 1.\n",
                                  [](const Handle& h, Table&) { zor_set_max_coi(h.get(), kNan); }},
                      RefusalCase{"ModelTolerance", zor_settings_check_failed,
                                  "ERROR: CoP tolerance of model must be between 0 and 1.\n",
                                  [](const Handle& h, Table&) { zor_set_tolerance_cop_model(h.get(), -0.1); }},
                      RefusalCase{"VariablesTolerance", zor_settings_check_failed,
                                  "ERROR: CoP tolerance of variables must be between 0 and 1.\n",
                                  [](const Handle& h, Table&) { zor_set_tolerance_cop_variables(h.get(), kInf); }},
                      RefusalCase{"CorrelationSteps", zor_settings_check_failed,
                                  "ERROR: Number of correlation steps must not exceed 10000.\n",
                                  [](const Handle& h, Table&) { zor_set_corr_steps_count(h.get(), 10001); }},
                      RefusalCase{"AllAtOnce", zor_settings_check_failed,
                                  "ERROR: No model selected.\nERROR: Significance quantile must be between 0 and 1.\n"
                                  "ERROR: Importance limit must be between 0 and 1.\n",
                                  [](const Handle& h, Table&) {
                                    SelectNoModel(h);
                                    zor_set_min_significance(h.get(), -1.0);
                                    zor_set_max_coi(h.get(), 2.0);
                                  }},
                      RefusalCase{"BeforeTheDataAreLookedAt", zor_settings_check_failed, "ERROR: No model selected.\n",
                                  [](const Handle& h, Table& rows) {
                                    SelectNoModel(h);
                                    rows.Input(0, 0) = kNan;
                                  }}),
    [](const auto& named) { return std::string(named.param.name); });

TEST(Build, KeepsTheModelWhereTheTableCannotBeTakenIn) {
  const Table table = MakeTable(10, 2, 1);
  const Handle handle = MakeBuilt(table);
  EXPECT_EQ(zor_build(handle.get(), nullptr, 10), zor_calculation_error);
  EXPECT_EQ(zor_build_split(handle.get(), nullptr, table.outputs.data(), 10), zor_calculation_error);
  EXPECT_EQ(zor_build_split(handle.get(), table.inputs.data(), nullptr, 10), zor_calculation_error);
  EXPECT_EQ(LastError(handle), "A null pointer was given for a buffer.");
  EXPECT_TRUE(IsBuilt(handle));
  EXPECT_EQ(zor_build(handle.get(), nullptr, 0), zor_calculation_error);  // nothing to take in, and too few designs
  EXPECT_EQ(LastError(handle), kTooFew);
  EXPECT_FALSE(IsBuilt(handle));
}

TEST(Build, HasNoMemoryForTheLargestCounts) {
  const Handle handle = MakeHandle();
  EXPECT_EQ(zor_set_input_count(handle.get(), UINT32_MAX), zor_success);
  EXPECT_EQ(zor_set_output_count(handle.get(), UINT32_MAX), zor_success);
  const double value = 0.0;
  EXPECT_EQ(zor_build(handle.get(), &value, UINT32_MAX), zor_calculation_error);
  EXPECT_EQ(LastError(handle), "std::bad_alloc");
  EXPECT_EQ(zor_build_split(handle.get(), &value, &value, UINT32_MAX), zor_calculation_error);
  EXPECT_EQ(LastError(handle), "std::bad_alloc");
}

/// Data that are hard to model but allowed: the build comes to an end, with finite predictions at the designs.
struct HardCase {
  const char* name;
  Table (*make)();

  friend void PrintTo(const HardCase& of, std::ostream* stream) { *stream << of.name; }
};

class HardData : public ::testing::TestWithParam<HardCase> {};

TEST_P(HardData, GivesAModelWithFinitePredictions) {
  const Table table = GetParam().make();
  const Handle handle = MakeBuilt(table);
  for (int32_t k = 0; k < static_cast<int32_t>(table.num_outputs); ++k) {
    EXPECT_GE(CoP(handle, k), 0.0);
    EXPECT_LE(CoP(handle, k), 1.0);
  }
  for (const double value : Solve(handle, table)) EXPECT_TRUE(std::isfinite(value)) << value;
}

Table Scaled(double inputs, double outputs) {
  Table table = MakeTable(30, 3, 1);
  for (double& value : table.inputs) value *= inputs;
  for (double& value : table.outputs) value *= outputs;
  return table;
}

/// Output k is the polynomial with its own NaN pattern.
Table WithGaps() {
  Table table = MakeTable(30, 3, 3);
  table.Output(2, 0) = kNan;
  table.Output(5, 0) = kInf;
  for (std::size_t i = 0; i < 28; ++i) table.Output(i, 2) = -kInf;  // two are left
  return table;
}

Table WithColumn(double (*value)(const Table&, std::size_t)) {
  Table table = MakeTable(30, 3, 1);
  for (std::size_t i = 0; i < table.designs; ++i) table.Input(i, 2) = value(table, i);
  return table;
}

Table WithEqualRows(std::size_t distinct) {
  Table table = MakeTable(30, 3, 1);
  for (std::size_t i = distinct; i < table.designs; ++i) {
    for (std::size_t j = 0; j < 3; ++j) table.Input(i, j) = table.Input(i % distinct, j);
    table.Output(i, 0) = table.Output(i % distinct, 0);
  }
  return table;
}

Table WithOutput(double value) {
  Table table = MakeTable(30, 3, 1);
  table.outputs.assign(30, value);
  return table;
}

INSTANTIATE_TEST_SUITE_P(
    Of, HardData,
    ::testing::Values(
        HardCase{"TwoDesigns", [] { return MakeTable(2, 2, 1); }},
        HardCase{"ThreeDesigns", [] { return MakeTable(3, 2, 1); }},
        HardCase{"MoreInputsThanDesigns", [] { return MakeTable(6, 25, 1); }},
        HardCase{"ConstantInput", [] { return WithColumn([](const Table&, std::size_t) { return 5.0; }); }},
        HardCase{"EqualInputs",
                 [] { return WithColumn([](const Table& rows, std::size_t i) { return rows.Point(i)[0]; }); }},
        HardCase{"OppositeInputs",
                 [] { return WithColumn([](const Table& rows, std::size_t i) { return -rows.Point(i)[1]; }); }},
        HardCase{"EqualDesigns", [] { return WithEqualRows(10); }},
        HardCase{"OneDesignOnly", [] { return WithEqualRows(1); }},
        HardCase{"ConstantOutput", [] { return WithOutput(7.0); }},
        HardCase{"ConstantHugeOutput", [] { return WithOutput(1e300); }}, HardCase{"OutputsWithGaps", WithGaps},
        HardCase{"TinyOutputs", [] { return Scaled(1.0, 1e-300); }},
        HardCase{"HugeOutputs", [] { return Scaled(1.0, 1e300); }},
        HardCase{"TinyInputs", [] { return Scaled(1e-300, 1.0); }},
        HardCase{"HugeInputs", [] { return Scaled(1e300, 1.0); }},
        HardCase{"ManyOutputs", [] { return MakeTable(12, 2, 500); }}),
    [](const auto& named) { return std::string(named.param.name); });

TEST(Build, KeepsAConstantInputOutOfTheModel) {
  Table table = MakeTable(30, 3, 1);
  for (std::size_t i = 0; i < 30; ++i) table.Input(i, 2) = 5.0;
  const Handle handle = MakeBuilt(table);
  EXPECT_NEAR(CoP(handle, 0), 1.0, 1e-12);
  double cops[3] = {};
  EXPECT_EQ(zor_get_single_cop_per_output(handle.get(), 0, cops), zor_success);
  EXPECT_TRUE(std::isnan(cops[2]));
}

TEST(Build, DropsTheDesignsWithoutAnOutputForThatOutputAlone) {
  const Handle handle = MakeBuilt(WithGaps());
  EXPECT_NEAR(CoP(handle, 0), 1.0, 1e-12);
  const auto count_groups = [&](int32_t output) {
    std::vector<uint32_t> groups(31, UINT32_MAX);
    EXPECT_EQ(zor_get_cv_indexes_per_output(handle.get(), output, groups.data()), zor_success);
    return std::count_if(groups.begin(), groups.end(), [](uint32_t group) { return group != UINT32_MAX; });
  };
  EXPECT_EQ(count_groups(0), 28);
  EXPECT_EQ(count_groups(1), 30);
}

TEST(Build, EndsWhateverTheOptions) {
  const Table table = MakeTable(20, 2, 1);
  for (const double step : {0.0, -1.0, kNan, 1e-300, kInf}) {
    const Handle handle = MakeHandle();
    SetCounts(handle, table);
    zor_set_step_coi(handle.get(), step);
    zor_set_step_cod(handle.get(), step);
    zor_set_use_input_corr_filter(handle.get(), zor_true);
    zor_set_min_input_corr(handle.get(), step);
    zor_set_max_input_corr(handle.get(), step);
    zor_set_corr_input_check(handle.get(), 0.0);
    zor_set_coeff_factor_poly(handle.get(), step);
    zor_set_max_cod(handle.get(), step);
    zor_set_corr_steps_count(handle.get(), 10000);
    zor_set_max_order_polynomial(handle.get(), UINT32_MAX);
    EXPECT_EQ(Build(handle, table), zor_success) << step << ": " << LastError(handle);
    EXPECT_GE(CoP(handle, 0), 0.0);
  }
}

}  // namespace
}  // namespace zor_test
