#include "api/handle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace zor_test {
namespace {

TEST(Handle, ComesAndGoes) {
  EXPECT_EQ(zor_create(nullptr), zor_invalid_handle);
  const Handle first = MakeHandle();
  const Handle second = MakeHandle();
  EXPECT_NE(first.get(), nullptr);
  EXPECT_NE(first.get(), second.get());
  EXPECT_EQ(LastError(first), "");
  zor_release(nullptr);
  zor_release_buf(nullptr);
}

TEST(Handle, MayBeReleasedWhileBuilt) { MakeBuilt(MakeTable(10, 2, 2)).reset(); }

TEST(Version, IsOneText) { EXPECT_STREQ(zor_get_version_str(), "21.2.0dev (1791)"); }

TEST(Version, ComesWithWhatTheLibraryWasCompiledFor) {
  EXPECT_THAT(zor_get_build_str(), testing::MatchesRegex("x86-64(-v3)?, (GCC|Clang) [0-9.]+.*, Eigen 3.*, Boost 1.*"));
}

TEST(ErrorDescription, HasATextForEachCodeOnly) {
  struct {
    uint32_t code;
    const char* text;
  } const cases[] = {
      {0, "Exexcution successful."},
      {1, "ZOR handle is invalid."},
      {2, "Error occured during calculation. Check zor_get_last_error( zor_handle_t ) for further details."},
      {3, "Settings check failed. Check zor_get_last_error( zor_handle_t ) for further details."},
      {4, "Custom interface is not enabled."},
      {5, nullptr},
      {40, nullptr},
      {41, "Unknown enum given as input. Check zor_get_last_error( zor_handle_t ) for further details."},
      {42, "Unknown enum given as return value. Check zor_get_last_error( zor_handle_t ) for further details."},
      {43, "Sizes of function inputs do not match."},
      {44, "Index for results out of range."},
      {45, "Index out of range."},
      {46, "Found invalid characters in given names."},
      {47, nullptr},
      {999, nullptr},
      {1000, "Feature is not yet implemented."},
      {1001, "API internal error."},
      {1002, "Unable to initialize ZOR handle."},
      {1003, "ZOR needs to be built before calling for results."},
      {1004, nullptr},
      {16382, nullptr},
      {16383, "Maximum error code to ensure systems compatibility."},
      {16384, nullptr},
      {UINT32_MAX, nullptr},
  };
  for (const auto& c : cases) EXPECT_STREQ(zor_get_error_description(c.code), c.text) << c.code;
}

/// One call of each function that takes a handle, with buffers that would do for two inputs and two outputs.
struct Call {
  const char* name;
  bool needs_model;
  std::function<uint32_t(zor_handle_t)> call;
};

std::vector<Call> AllCalls() {
  static double reals[64];
  static uint32_t numbers[64];
  static const char* name;
  static const char* const names[] = {"a", "b"};
  static char* text;
  static size_t length;
  std::vector<Call> calls = {
      {"set_input_count", false, [](auto h) { return zor_set_input_count(h, 2); }},
      {"get_input_count", false, [](auto h) { return zor_get_input_count(h, numbers); }},
      {"set_output_count", false, [](auto h) { return zor_set_output_count(h, 2); }},
      {"get_output_count", false, [](auto h) { return zor_get_output_count(h, numbers); }},
      {"set_input_names", false, [](auto h) { return zor_set_input_names(h, names, 2); }},
      {"get_input_name_count", false, [](auto h) { return zor_get_input_name_count(h, numbers); }},
      {"get_input_name", false, [](auto h) { return zor_get_input_name(h, 0, &name); }},
      {"set_output_names", false, [](auto h) { return zor_set_output_names(h, names, 2); }},
      {"get_output_name_count", false, [](auto h) { return zor_get_output_name_count(h, numbers); }},
      {"get_output_name", false, [](auto h) { return zor_get_output_name(h, 0, &name); }},
      {"set_info_important", false, [](auto h) { return zor_set_info_important(h, numbers); }},
      {"get_info_important", false, [](auto h) { return zor_get_info_important(h, numbers); }},
      {"set_parallel", false, [](auto h) { return zor_set_outputs_in_parallel_count(h, 0); }},
      {"get_parallel", false, [](auto h) { return zor_get_outputs_in_parallel_count(h, numbers); }},
      {"set_use_model_type", false, [](auto h) { return zor_set_use_model_type(h, "mls", 2); }},
      {"get_use_model_type", false, [](auto h) { return zor_get_use_model_type(h, "?", numbers); }},
      {"build", false, [](auto h) { return zor_build(h, reals, 2); }},
      {"build_split", false, [](auto h) { return zor_build_split(h, reals, reals, 2); }},
      {"set_paths", false, [](auto h) { return zor_set_paths_for_custom_interface(h, names, 2, "log"); }},
      {"solve", true, [](auto h) { return zor_solve(h, reals, reals, 2); }},
      {"solve_extrapolate", true, [](auto h) { return zor_solve_extrapolate(h, reals, reals, 2); }},
      {"gradients", true, [](auto h) { return zor_calculate_gradients_per_output(h, 0, reals, 2, reals); }},
      {"gradients_extrapolate", true,
       [](auto h) { return zor_calculate_gradients_per_output_extrapolate(h, 0, reals, 2, reals); }},
      {"errors", true, [](auto h) { return zor_calculate_errors_per_output(h, 0, reals, 2, reals); }},
      {"errors_extrapolate", true,
       [](auto h) { return zor_calculate_errors_per_output_extrapolate(h, 0, reals, 2, reals); }},
      {"density", true, [](auto h) { return zor_calculate_density_per_output(h, 0, reals, 2, reals, 2); }},
      {"density_extrapolate", true,
       [](auto h) { return zor_calculate_density_per_output_extrapolate(h, 0, reals, 2, reals, 2); }},
      {"cv_values", true, [](auto h) { return zor_calculate_cv_values_per_output(h, 0, reals); }},
      {"cop", true, [](auto h) { return zor_get_cop_per_output(h, 99, reals); }},
      {"single_cop", true, [](auto h) { return zor_get_single_cop_per_output(h, -1, reals); }},
      {"model", true, [](auto h) { return zor_get_model_per_output(h, 0, numbers); }},
      {"model_str", true, [](auto h) { return zor_get_model_str_per_output(h, 0, &text, &length); }},
      {"cv_indexes", true, [](auto h) { return zor_get_cv_indexes_per_output(h, 0, numbers); }},
      {"input_bounds", true, [](auto h) { return zor_get_input_bounds(h, reals); }},
  };
#define ZOR_OPTION(name, Kind, Setter, member)                                         \
  calls.push_back({"set_" #name, false, [](auto h) { return zor_set_##name(h, 2); }}); \
  calls.push_back({"get_" #name, false, [](auto h) { return zor_get_##name(h, nullptr); }});
#include "api/option_list.inc"
#undef ZOR_OPTION
  return calls;
}

TEST(EveryCall, AnswersANullHandleAtOnce) {
  EXPECT_EQ(AllCalls().size(), 34u + 62u);
  for (const Call& c : AllCalls()) EXPECT_EQ(c.call(nullptr), zor_invalid_handle) << c.name;
  EXPECT_STREQ(zor_get_last_error(nullptr), "");
}

TEST(EveryCall, NeedsAModelOrNot) {
  for (const Call& c : AllCalls()) {
    const Handle handle = MakeHandle();
    SetCounts(handle, MakeTable(2, 2, 2));
    EXPECT_EQ(c.call(handle.get()) == zor_not_built, c.needs_model) << c.name;
    EXPECT_EQ(LastError(handle) == "ZOR needs to be built first.", c.needs_model) << c.name;
  }
}

TEST(LastError, IsEmptyAfterASuccessAndAfterCodesWithoutText) {
  const Handle handle = MakeBuilt(MakeTable(10, 2, 1));
  const auto fail = [&] {
    EXPECT_EQ(zor_set_use_mls(handle.get(), 2), zor_unknown_input_enum);
    EXPECT_EQ(LastError(handle), "Input must be zor_true or zor_false.");
    EXPECT_EQ(LastError(handle), "Input must be zor_true or zor_false.") << "reading resets it";
  };
  uint32_t count = 0;
  double value = 0.0;
  const char* name = nullptr;
  fail();
  EXPECT_EQ(zor_get_input_count(handle.get(), &count), zor_success);
  EXPECT_EQ(LastError(handle), "");
  fail();
  EXPECT_EQ(zor_calculate_density_per_output(handle.get(), 0, &value, 1, &value, 0), zor_size_mismatch);
  EXPECT_EQ(LastError(handle), "");
  fail();
  EXPECT_EQ(zor_get_cop_per_output(handle.get(), 1, &value), zor_result_index_out_of_range);
  EXPECT_EQ(LastError(handle), "");
  fail();
  EXPECT_EQ(zor_get_input_name(handle.get(), 2, &name), zor_index_out_of_range);
  EXPECT_EQ(LastError(handle), "");
}

TEST(LastError, BelongsToOneHandle) {
  const Handle first = MakeHandle();
  const Handle second = MakeHandle();
  EXPECT_EQ(zor_set_use_mls(first.get(), 2), zor_unknown_input_enum);
  EXPECT_EQ(LastError(second), "");
  EXPECT_NE(LastError(first), "");
}

TEST(ErrorCallback, IsNotThere) {
  EXPECT_EQ(zor_set_error_callback(nullptr), zor_not_implemented);
  const Handle handle = MakeHandle();
  EXPECT_EQ(zor_set_error_callback(handle.get(), 1, "two", 3.0), zor_not_implemented);
}

TEST(CustomInterface, IsNotEnabled) {
  char* names = nullptr;
  size_t length = 77;
  EXPECT_EQ(zor_available_custom_names(&names, &length), zor_custom_not_enabled);
  EXPECT_EQ(names, nullptr);
  EXPECT_EQ(length, 77u);

  const Handle handle = MakeBuilt(MakeTable(10, 2, 1));
  const char* const paths[] = {"/somewhere", nullptr};
  EXPECT_EQ(zor_set_paths_for_custom_interface(handle.get(), paths, 2, nullptr), zor_custom_not_enabled);
  EXPECT_EQ(LastError(handle), "Unable to initialize custom interface. - Custom interface was not enabled.");
  EXPECT_EQ(zor_set_paths_for_custom_interface(handle.get(), nullptr, 2, "log"), zor_custom_not_enabled);
  EXPECT_TRUE(IsBuilt(handle));
}

}  // namespace
}  // namespace zor_test
