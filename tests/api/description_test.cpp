#include <gtest/gtest.h>

#include <ostream>

#include "api/handle.h"

namespace zor_test {
namespace {

using SetCount = uint32_t (*)(zor_handle_t, uint32_t);
using GetCount = uint32_t (*)(zor_handle_t, uint32_t*);

TEST(Counts, GiveBackWhatWasSet) {
  struct {
    SetCount set;
    GetCount get;
    bool drops_model;
  } const cases[] = {{zor_set_input_count, zor_get_input_count, true},
                     {zor_set_output_count, zor_get_output_count, true},
                     {zor_set_outputs_in_parallel_count, zor_get_outputs_in_parallel_count, false}};
  for (const auto& c : cases) {
    Handle handle = MakeHandle();
    uint32_t count = 9;
    EXPECT_EQ(c.get(handle.get(), &count), zor_success);
    EXPECT_EQ(count, 0u);
    for (const uint32_t value : {3u, UINT32_MAX, 0u}) {
      EXPECT_EQ(c.set(handle.get(), value), zor_success);
      EXPECT_EQ(c.get(handle.get(), &count), zor_success);
      EXPECT_EQ(count, value);
    }
    EXPECT_EQ(c.get(handle.get(), nullptr), zor_calculation_error);

    handle = MakeBuilt(MakeTable(8, 2, 1));
    EXPECT_EQ(c.get(handle.get(), &count), zor_success);
    EXPECT_EQ(c.set(handle.get(), count), zor_success);
    EXPECT_EQ(IsBuilt(handle), !c.drops_model);
  }
}

struct NameFunctions {
  const char* name;
  uint32_t (*set)(zor_handle_t, const char* const*, uint32_t);
  uint32_t (*get_count)(zor_handle_t, uint32_t*);
  uint32_t (*get)(zor_handle_t, uint32_t, const char**);

  friend void PrintTo(const NameFunctions& of, std::ostream* stream) { *stream << of.name; }
};

class Names : public ::testing::TestWithParam<NameFunctions> {
 protected:
  uint32_t Set(const std::vector<const char*>& names) {
    return GetParam().set(handle_.get(), names.data(), static_cast<uint32_t>(names.size()));
  }
  std::vector<std::string> Get() {
    uint32_t count = 0;
    EXPECT_EQ(GetParam().get_count(handle_.get(), &count), zor_success);
    std::vector<std::string> names;
    for (uint32_t i = 0; i < count; ++i) {
      const char* name = nullptr;
      EXPECT_EQ(GetParam().get(handle_.get(), i, &name), zor_success);
      names.emplace_back(name);
    }
    return names;
  }

  Handle handle_ = MakeHandle();
};

INSTANTIATE_TEST_SUITE_P(
    Of, Names,
    ::testing::Values(NameFunctions{"Inputs", zor_set_input_names, zor_get_input_name_count, zor_get_input_name},
                      NameFunctions{"Outputs", zor_set_output_names, zor_get_output_name_count, zor_get_output_name}),
    [](const auto& named) { return std::string(named.param.name); });

TEST_P(Names, GiveBackWhatWasSet) {
  EXPECT_TRUE(Get().empty());
  EXPECT_EQ(Set({"a.b'c_1", "_", "Pi", "E"}), zor_success);  // whatever the counts
  EXPECT_EQ(Get(), (std::vector<std::string>{"a.b'c_1", "_", "Pi", "E"}));
  EXPECT_EQ(Set({"other"}), zor_success);
  EXPECT_EQ(Get(), std::vector<std::string>{"other"});
  EXPECT_EQ(GetParam().set(handle_.get(), nullptr, 0), zor_success);
  EXPECT_TRUE(Get().empty());
}

TEST_P(Names, StopAtTheFirstThatIsNotValid) {
  EXPECT_EQ(Set({"old", "names"}), zor_success);
  EXPECT_EQ(Set({"one", "two", "3", "four"}), zor_invalid_name);
  EXPECT_EQ(LastError(handle_), "'3' is not a valid name.");
  EXPECT_EQ(Get(), (std::vector<std::string>{"one", "two"}));
}

TEST_P(Names, RefuseWhatAnExpressionCouldNotRead) {
  for (const char* const name :
       {"1a",         "a b",         "",         "a-b",      "'a",       ".a",        "if",
        "IF",         "If",          "SPLINE",   "LINEAR",   "CONSTANT", "MIRROR",    "REVERSE_MIRROR",
        "TANGENTIAL", "FORWARD",     "BACKWARD", "UNIFORM",  "NORMAL",   "LOGNORMAL", "TRIANGLE",
        "CAUCHY",     "EXPONENTIAL", "LOWPASS",  "HIGHPASS", "BANDPASS", "BANDSTOP",  "PI",
        "TRUE",       "FALSE",       "QUAD",     "ZERO"}) {
    EXPECT_EQ(Set({name}), zor_invalid_name) << name;
    EXPECT_EQ(LastError(handle_), "'" + std::string(name) + "' is not a valid name.");
  }
  for (const char* const name : {"I", "sin", "spline", "True", "PI_", "ifs", "x1"}) {
    EXPECT_EQ(Set({name}), zor_success) << name;
  }
}

TEST_P(Names, AreReadAsUtf8) {
  EXPECT_EQ(Set({"a\xFF\xFE"}), zor_invalid_name);
  EXPECT_EQ(LastError(handle_), "'a\xEF\xBF\xBD' is not a valid name.");
  EXPECT_EQ(Set({nullptr}), zor_invalid_name);
  EXPECT_EQ(GetParam().set(handle_.get(), nullptr, 1), zor_calculation_error);
}

TEST_P(Names, HaveNoneBeyondTheLast) {
  const char* name = nullptr;
  EXPECT_EQ(GetParam().get(handle_.get(), 0, &name), zor_index_out_of_range);
  EXPECT_EQ(LastError(handle_), "");
  EXPECT_EQ(Set({"a"}), zor_success);
  EXPECT_EQ(GetParam().get(handle_.get(), 1, &name), zor_index_out_of_range);
  EXPECT_EQ(GetParam().get(handle_.get(), UINT32_MAX, &name), zor_index_out_of_range);
  EXPECT_EQ(name, nullptr);
  EXPECT_EQ(GetParam().get(handle_.get(), 0, nullptr), zor_calculation_error);
}

TEST_P(Names, DropTheModel) {
  handle_ = MakeBuilt(MakeTable(8, 2, 1));
  EXPECT_EQ(Set({"3"}), zor_invalid_name);
  EXPECT_FALSE(IsBuilt(handle_));
}

TEST(Importance, GivesBackWhatWasSet) {
  const Handle handle = MakeHandle();
  EXPECT_EQ(zor_get_info_important(handle.get(), nullptr), zor_success);  // there is nothing to write
  EXPECT_EQ(zor_set_input_count(handle.get(), 3), zor_success);
  const uint32_t given[] = {0, 1, 2};
  EXPECT_EQ(zor_set_info_important(handle.get(), given), zor_success);
  uint32_t stored[] = {9, 9, 9, 9};
  EXPECT_EQ(zor_get_info_important(handle.get(), stored), zor_success);
  EXPECT_EQ(std::vector<uint32_t>(stored, stored + 4), (std::vector<uint32_t>{0, 1, 2, 9}));
}

TEST(Importance, RefusesOtherValuesAndKeepsTheStoredOnes) {
  const Table table = MakeTable(20, 3, 1);
  const Handle handle = MakeHandle();
  SetCounts(handle, table);
  const uint32_t given[] = {0, 1, 2};
  EXPECT_EQ(zor_set_info_important(handle.get(), given), zor_success);
  EXPECT_EQ(Build(handle, table), zor_success);
  const uint32_t wrong[] = {0, 1, 3};
  EXPECT_EQ(zor_set_info_important(handle.get(), wrong), zor_unknown_input_enum);
  EXPECT_EQ(LastError(handle),
            "Information of input importancy must be 0 for unimportant input, 1 for selectable input or 2 for "
            "mandatory input.");
  EXPECT_FALSE(IsBuilt(handle));
  uint32_t stored[] = {9, 9, 9};
  EXPECT_EQ(zor_get_info_important(handle.get(), stored), zor_success);
  EXPECT_EQ(std::vector<uint32_t>(stored, stored + 3), std::vector<uint32_t>(given, given + 3));
  EXPECT_EQ(zor_set_info_important(handle.get(), nullptr), zor_calculation_error);
}

TEST(Importance, DecidesWhichInputsAModelUses) {
  const Table table = MakeTable(30, 3, 1);
  const uint32_t given[] = {0, 1, 2};
  for (const bool with_names : {true, false}) {
    const Handle handle = MakeHandle();
    SetCounts(handle, table);
    if (with_names) SetNames(handle, table);
    EXPECT_EQ(zor_set_info_important(handle.get(), given), zor_success);
    EXPECT_EQ(Build(handle, table), zor_success);
    double cops[3] = {9, 9, 9};
    EXPECT_EQ(zor_get_single_cop_per_output(handle.get(), 0, cops), zor_success);
    EXPECT_TRUE(cops[0] != cops[0]) << "a NaN for what was left out";
    EXPECT_GT(cops[1], 0.5);
    EXPECT_GE(cops[2], 0.0);
  }
}

TEST(Importance, OfAnotherNumberOfInputsHasNoEffect) {
  const Handle handle = MakeHandle();
  EXPECT_EQ(zor_set_input_count(handle.get(), 2), zor_success);
  const uint32_t given[] = {0, 0};
  EXPECT_EQ(zor_set_info_important(handle.get(), given), zor_success);
  const Table table = MakeTable(30, 3, 1);
  SetCounts(handle, table);
  EXPECT_EQ(Build(handle, table), zor_success);
  double cop = 0.0;
  EXPECT_EQ(zor_get_cop_per_output(handle.get(), 0, &cop), zor_success);
  EXPECT_GT(cop, 0.99);
}

}  // namespace
}  // namespace zor_test
