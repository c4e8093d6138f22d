#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <ostream>

#include "api/handle.h"

namespace zor_test {
namespace {

/// One option with its values as real numbers, whatever the type at the interface.
struct Option {
  std::string name;
  std::string kind;
  std::function<uint32_t(const Handle&, double)> set;
  std::function<uint32_t(const Handle&, double*)> get;

  double Get(const Handle& handle) const {
    double value = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(get(handle, &value), zor_success) << name;
    return value;
  }

  friend void PrintTo(const Option& of, std::ostream* stream) { *stream << of.name; }
};

template <class Wire>
Option MakeOption(const char* name, const char* kind, uint32_t (*set)(zor_handle_t, Wire),
                  uint32_t (*get)(zor_handle_t, Wire*)) {
  return {name, kind, [set](const Handle& handle, double value) { return set(handle.get(), static_cast<Wire>(value)); },
          [get](const Handle& handle, double* value) {
            Wire stored{};
            const uint32_t code = get(handle.get(), &stored);
            *value = static_cast<double>(stored);
            return code;
          }};
}

const std::vector<Option>& AllOptions() {
  static const std::vector<Option> options = {
#define ZOR_OPTION(name, Kind, Setter, member) MakeOption(#name, #Kind, zor_set_##name, zor_get_##name),
#include "api/option_list.inc"
#undef ZOR_OPTION
  };
  return options;
}

const std::map<std::string, double> kDefaults = {
    {"testing_type", 0},
    {"use_boxcox", 1},
    {"use_interpolation", 0},
    {"use_polynomials", 1},
    {"max_order_polynomial", 2},
    {"coeff_factor_poly", 2.0},
    {"use_mls", 1},
    {"max_order_mls", 2},
    {"coeff_factor_mls", 8.0},
    {"use_kriging", 1},
    {"use_anisotropic_kriging", 0},
    {"coeff_factor_kriging", 8.0},
    {"use_significance_filter", 1},
    {"min_significance", 0.95},
    {"use_spearman", 0},
    {"use_coi_filter", 1},
    {"max_coi", 0.05},
    {"step_coi", 0.01},
    {"use_adj_cod", 1},
    {"use_cod_filter", 1},
    {"max_cod", 0.05},
    {"step_cod", 0.01},
    {"use_corr_filter", 1},
    {"corr_steps_count", 10},
    {"tolerance_cop_model", 0.01},
    {"tolerance_cop_variables", 0.01},
    {"use_input_corr_filter", 0},
    {"corr_input_check", 0.5},
    {"min_input_corr", 0.3},
    {"max_input_corr", 0.7},
    {"use_adj_cop", 0},
};

std::map<std::string, double> AllValues(const Handle& handle) {
  std::map<std::string, double> values;
  for (const Option& option : AllOptions()) values[option.name] = option.Get(handle);
  return values;
}

TEST(Options, HaveTheirDefaults) { EXPECT_EQ(AllValues(MakeHandle()), kDefaults); }

class OptionPair : public ::testing::TestWithParam<Option> {};

TEST_P(OptionPair, GivesBackWhatWasSetAndTouchesNoOther) {
  const Option& option = GetParam();
  std::vector<double> values = {0.0, 1.0};
  if (option.kind == "Count") values = {0.0, 7.0, 4294967295.0};
  if (option.kind == "Real") values = {-1.5, 1e300, std::numeric_limits<double>::infinity()};
  const Handle handle = MakeHandle();
  std::map<std::string, double> expected = kDefaults;
  for (const double value : values) {
    EXPECT_EQ(option.set(handle, value), zor_success);
    expected[option.name] = value;
    EXPECT_EQ(AllValues(handle), expected);
  }
}

TEST_P(OptionPair, DropsTheModelThoughTheValueStays) {
  const Handle handle = MakeBuilt(MakeTable(8, 2, 1));
  EXPECT_EQ(GetParam().Get(handle), kDefaults.at(GetParam().name));
  EXPECT_TRUE(IsBuilt(handle)) << "reading drops it";
  EXPECT_EQ(GetParam().set(handle, kDefaults.at(GetParam().name)), zor_success);
  EXPECT_FALSE(IsBuilt(handle));
}

INSTANTIATE_TEST_SUITE_P(All, OptionPair, ::testing::ValuesIn(AllOptions()),
                         [](const auto& named) { return named.param.name; });

/// The options that take listed values only.
class OptionSwitch : public ::testing::TestWithParam<Option> {};

std::vector<Option> AllSwitches() {
  std::vector<Option> switches;
  for (const Option& option : AllOptions()) {
    if (option.kind == "Flag" || option.kind == "Testing") switches.push_back(option);
  }
  return switches;
}

TEST_P(OptionSwitch, KeepsTheModelWhereItRefuses) {
  const Handle handle = MakeBuilt(MakeTable(8, 2, 1));
  for (const double value : {2.0, 4294967295.0}) {
    EXPECT_EQ(GetParam().set(handle, value), zor_unknown_input_enum);
    EXPECT_EQ(LastError(handle), GetParam().kind == "Flag"
                                     ? "Input must be zor_true or zor_false."
                                     : "Input must be zor_cross_validation or zor_leave_one_out.");
    EXPECT_EQ(GetParam().Get(handle), kDefaults.at(GetParam().name));
    EXPECT_TRUE(IsBuilt(handle));
  }
}

INSTANTIATE_TEST_SUITE_P(All, OptionSwitch, ::testing::ValuesIn(AllSwitches()),
                         [](const auto& named) { return named.param.name; });

TEST(Options, TakeANotANumberAndRefuseANullPointer) {
  const Handle handle = MakeHandle();
  EXPECT_EQ(zor_set_max_coi(handle.get(), std::numeric_limits<double>::quiet_NaN()), zor_success);
  EXPECT_EQ(zor_get_max_coi(handle.get(), nullptr), zor_calculation_error);
  EXPECT_EQ(LastError(handle), "A null pointer was given for a buffer.");
}

TEST(ModelSwitch, IsTheOptionOfItsName) {
  struct {
    const char* name;
    uint32_t (*get)(zor_handle_t, uint32_t*);
  } const cases[] = {{"polynomials", zor_get_use_polynomials},
                     {"mls", zor_get_use_mls},
                     {"kriging", zor_get_use_kriging},
                     {"anisotropic_kriging", zor_get_use_anisotropic_kriging}};
  for (const auto& c : cases) {
    const Handle handle = MakeBuilt(MakeTable(8, 2, 1));
    uint32_t before = 0;
    uint32_t named = 9;
    EXPECT_EQ(c.get(handle.get(), &before), zor_success);
    EXPECT_EQ(zor_get_use_model_type(handle.get(), c.name, &named), zor_success);
    EXPECT_EQ(named, before) << c.name;
    EXPECT_TRUE(IsBuilt(handle));
    EXPECT_EQ(zor_set_use_model_type(handle.get(), c.name, 1 - before), zor_success);
    EXPECT_EQ(c.get(handle.get(), &named), zor_success);
    EXPECT_EQ(named, 1 - before) << c.name;
    EXPECT_FALSE(IsBuilt(handle));
  }
}

TEST(ModelSwitch, RefusesOtherNamesAndValuesAfterItDroppedTheModel) {
  constexpr const char* kUnknown = "Model type unknown. - Custum interface not enabled.";
  uint32_t use = 9;
  for (const char* const name : {"ascmo", "MLS", "mls ", "", static_cast<const char*>(nullptr)}) {
    const Handle handle = MakeBuilt(MakeTable(8, 2, 1));
    EXPECT_EQ(zor_get_use_model_type(handle.get(), name, &use), zor_custom_not_enabled);
    EXPECT_EQ(LastError(handle), kUnknown);
    EXPECT_TRUE(IsBuilt(handle));
    EXPECT_EQ(zor_set_use_model_type(handle.get(), name, 1), zor_custom_not_enabled);
    EXPECT_EQ(LastError(handle), kUnknown);
    EXPECT_FALSE(IsBuilt(handle));
  }
  EXPECT_EQ(use, 9u);
  const Handle handle = MakeBuilt(MakeTable(8, 2, 1));
  EXPECT_EQ(zor_set_use_model_type(handle.get(), "mls", 2), zor_unknown_input_enum);
  EXPECT_EQ(LastError(handle), "Input must be zor_true or zor_false.");
  EXPECT_FALSE(IsBuilt(handle));
}

}  // namespace
}  // namespace zor_test
