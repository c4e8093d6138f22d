#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "api/handle.h"

namespace zor_test {
namespace {

constexpr double kUntouched = -12345.0;

/// The getters per output in a common form.
struct Getter {
  const char* name;
  std::function<uint32_t(zor_handle_t, int32_t)> call;
};

TEST(Results, CountTheOutputsByPosition) {
  std::vector<double> reals(30, kUntouched);
  std::vector<uint32_t> numbers(30, 99);
  char* text = nullptr;
  size_t length = 99;
  const Getter getters[] = {
      {"cop", [&](auto h, int32_t i) { return zor_get_cop_per_output(h, i, reals.data()); }},
      {"single_cop", [&](auto h, int32_t i) { return zor_get_single_cop_per_output(h, i, reals.data()); }},
      {"model", [&](auto h, int32_t i) { return zor_get_model_per_output(h, i, numbers.data()); }},
      {"cv_indexes", [&](auto h, int32_t i) { return zor_get_cv_indexes_per_output(h, i, numbers.data()); }},
      {"cv_values", [&](auto h, int32_t i) { return zor_calculate_cv_values_per_output(h, i, reals.data()); }},
      {"model_str", [&](auto h, int32_t i) { return zor_get_model_str_per_output(h, i, &text, &length); }},
  };
  const Table table = MakeTable(20, 2, 2);
  const Handle handle = MakeHandle();  // without names
  SetCounts(handle, table);
  ASSERT_EQ(Build(handle, table), zor_success);
  for (const Getter& getter : getters) {
    EXPECT_EQ(getter.call(handle.get(), 2), zor_result_index_out_of_range) << getter.name;
    EXPECT_EQ(LastError(handle), "");
    EXPECT_EQ(getter.call(handle.get(), -2), zor_calculation_error) << getter.name;
    EXPECT_EQ(LastError(handle),
              "vector::_M_range_check: __n (which is 18446744073709551614) >= this->size() (which is 2)");
  }
  EXPECT_EQ(std::count(reals.begin(), reals.end(), kUntouched), 30);
  EXPECT_EQ(text, nullptr);
  for (const Getter& getter : getters) EXPECT_EQ(getter.call(handle.get(), 1), zor_success) << getter.name;
  zor_release_buf(text);
}

TEST(Results, RefuseNullPointers) {
  const Handle handle = MakeBuilt(MakeTable(20, 2, 1));
  char* text = nullptr;
  size_t length = 99;
  EXPECT_EQ(zor_get_cop_per_output(handle.get(), 0, nullptr), zor_calculation_error);
  EXPECT_EQ(zor_get_single_cop_per_output(handle.get(), 0, nullptr), zor_calculation_error);
  EXPECT_EQ(zor_get_model_per_output(handle.get(), 0, nullptr), zor_calculation_error);
  EXPECT_EQ(zor_get_cv_indexes_per_output(handle.get(), 0, nullptr), zor_calculation_error);
  EXPECT_EQ(zor_calculate_cv_values_per_output(handle.get(), 0, nullptr), zor_calculation_error);
  EXPECT_EQ(zor_get_input_bounds(handle.get(), nullptr), zor_calculation_error);
  EXPECT_EQ(zor_get_model_str_per_output(handle.get(), 0, nullptr, &length), zor_calculation_error);
  EXPECT_EQ(zor_get_model_str_per_output(handle.get(), 0, &text, nullptr), zor_calculation_error);
  EXPECT_EQ(text, nullptr);
}

TEST(Results, TheCoPIsThatOfTheCrossValidationValues) {
  const Table table = MakeTable(40, 3, 4);
  for (const uint32_t testing : {zor_cross_validation, zor_leave_one_out}) {
    const Handle handle = MakeHandle();
    SetCounts(handle, table);
    ASSERT_EQ(zor_set_testing_type(handle.get(), testing), zor_success);
    ASSERT_EQ(Build(handle, table), zor_success);
    for (int32_t k = 0; k < 4; ++k) {
      double cop = kUntouched;
      std::vector<double> values(41, kUntouched);
      ASSERT_EQ(zor_get_cop_per_output(handle.get(), k, &cop), zor_success);
      ASSERT_EQ(zor_calculate_cv_values_per_output(handle.get(), k, values.data()), zor_success);
      EXPECT_EQ(values[40], kUntouched);
      double mean = 0.0;
      double sse = 0.0;
      double sst = 0.0;
      const auto output = static_cast<std::size_t>(k);
      for (std::size_t i = 0; i < 40; ++i) mean += table.Output(i, output) / 40.0;
      for (std::size_t i = 0; i < 40; ++i) {
        sse += std::pow(table.Output(i, output) - values[i], 2);
        sst += std::pow(table.Output(i, output) - mean, 2);
      }
      EXPECT_NEAR(cop, 1.0 - sse / sst, 1e-12);
      EXPECT_GT(cop, 0.9);
    }
  }
}

TEST(Results, ASingleCoPIsAShareOfTheCoP) {
  const Table table = MakeTable(40, 3, 1);  // the third input has no effect
  const Handle handle = MakeBuilt(table);
  double cops[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
  EXPECT_EQ(zor_get_single_cop_per_output(handle.get(), 0, cops), zor_success);
  EXPECT_GT(cops[0], 0.1);
  EXPECT_GT(cops[1], 0.4);
  EXPECT_LE(std::max(cops[0], cops[1]), 1.0);
  EXPECT_TRUE(std::isnan(cops[2]));
  EXPECT_EQ(cops[3], kUntouched);
}

TEST(Results, DescribeTheModel) {
  const Handle handle = MakeBuilt(MakeTable(40, 2, 1));
  uint32_t type = 99;
  EXPECT_EQ(zor_get_model_per_output(handle.get(), 0, &type), zor_success);
  EXPECT_EQ(type, static_cast<uint32_t>(zor_model_polynomial));
  char* text = nullptr;
  size_t length = 0;
  EXPECT_EQ(zor_get_model_str_per_output(handle.get(), 0, &text, &length), zor_success);
  EXPECT_EQ(std::string(text, length), "Linear Regression | 2");
  zor_release_buf(text);
}

TEST(Results, TheCrossValidationGroupsCoverAllDesigns) {
  const Table table = MakeTable(40, 2, 1);
  const Handle handle = MakeBuilt(table);
  std::vector<uint32_t> groups(41, 99);
  EXPECT_EQ(zor_get_cv_indexes_per_output(handle.get(), 0, groups.data()), zor_success);
  EXPECT_EQ(groups[40], 99u);
  const std::set<uint32_t> distinct(groups.begin(), groups.begin() + 40);
  EXPECT_GT(distinct.size(), 1u);
  EXPECT_EQ(*distinct.rbegin(), distinct.size() - 1) << "they are counted from 0";

  EXPECT_EQ(zor_set_testing_type(handle.get(), zor_leave_one_out), zor_success);
  EXPECT_EQ(Build(handle, table), zor_success);
  groups.assign(41, 99);
  EXPECT_EQ(zor_get_cv_indexes_per_output(handle.get(), 0, groups.data()), zor_success);
  EXPECT_EQ(std::count(groups.begin(), groups.end(), 99u), 41);
}

TEST(Results, KnowTheBoundsOfNamedInputs) {
  Table table = MakeTable(20, 2, 1);
  table.Input(3, 0) = -2.5;
  table.Input(4, 1) = 7.25;
  double lowest = 1.0;
  for (std::size_t i = 0; i < 20; ++i) lowest = std::min(lowest, table.Input(i, 1));
  Handle handle = MakeBuilt(table);
  double bounds[5] = {0, 0, 0, 0, kUntouched};
  EXPECT_EQ(zor_get_input_bounds(handle.get(), bounds), zor_success);
  EXPECT_EQ(bounds[0], -2.5);
  EXPECT_EQ(bounds[2], lowest);
  EXPECT_EQ(bounds[3], 7.25);
  EXPECT_EQ(bounds[4], kUntouched);

  handle = MakeHandle();
  SetCounts(handle, table);
  EXPECT_EQ(Build(handle, table), zor_success);
  EXPECT_EQ(zor_get_input_bounds(handle.get(), bounds), zor_success);
  for (int i = 0; i < 4; ++i) EXPECT_TRUE(std::isnan(bounds[i]));
}

}  // namespace
}  // namespace zor_test
