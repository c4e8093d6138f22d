#include "options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "errors.h"

namespace kestrel::cli {
namespace {

using testing::ContainsRegex;

std::string Refusal(const std::string& assignment) {
  try {
    SetOption(Handle(), assignment);
  } catch (const InputError& error) {
    return error.what();
  }
  return "";
}

TEST(Options, RefuseWhatTheyDoNotTake) {
  const struct {
    const char* assignment;
    const char* refusal;
  } cases[] = {
      {"max_coi", "--set 'max_coi': expected option=value."},
      {"max_cio=0.1", "--set: there is no option 'max_cio'; 'zor fit --help' lists the options."},
      {"max_coi=nan", "--set max_coi: 'nan' is not accepted, expected is a number."},
      {"max_coi=0,1", "--set max_coi: '0,1' is not accepted, expected is a number."},
      {"max_coi=1=2", "--set max_coi: '1=2' is not accepted, expected is a number."},
      {"corr_steps_count=-1", "--set corr_steps_count: '-1' is not accepted, expected is a whole number from 0."},
      {"corr_steps_count=4294967296",
       "--set corr_steps_count: '4294967296' is not accepted, expected is a whole number from 0."},
      {"use_mls=2", "--set use_mls: '2' is not accepted, expected is true or false."},
      {"testing_type=1", "--set testing_type: '1' is not accepted, expected is cross_validation or leave_one_out."},
  };
  for (const auto& each : cases) EXPECT_EQ(Refusal(each.assignment), each.refusal);
}

TEST(Options, ReachTheHandle) {
  const Handle handle;
  SetOption(handle, "max_order_polynomial=3");
  SetOption(handle, " coeff_factor_poly = +1.5e0 ");
  SetOption(handle, "testing_type=leave_one_out");
  SetOption(handle, "use_boxcox=off");
  std::uint32_t order = 0;
  std::uint32_t use_boxcox = 9;
  std::uint32_t testing_type = 9;
  double factor = 0.0;
  handle.Check(zor_get_max_order_polynomial(handle.get(), &order));
  handle.Check(zor_get_coeff_factor_poly(handle.get(), &factor));
  handle.Check(zor_get_testing_type(handle.get(), &testing_type));
  handle.Check(zor_get_use_boxcox(handle.get(), &use_boxcox));
  EXPECT_EQ(use_boxcox, std::uint32_t{zor_false});
  EXPECT_EQ(order, 3U);
  EXPECT_EQ(factor, 1.5);
  EXPECT_EQ(testing_type, std::uint32_t{zor_leave_one_out});
}

TEST(Options, AreListedWithTheirDefaults) {
  const std::string list = OptionList();
  EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 31);
  EXPECT_THAT(list, ContainsRegex("testing_type +cross_validation or leave_one_out +\\[cross_validation\\]\n"));
  EXPECT_THAT(list, ContainsRegex("use_boxcox +true or false +\\[true\\]\n"));
  EXPECT_THAT(list, ContainsRegex("max_coi +a number +\\[0.05\\]\n"));
}

}  // namespace
}  // namespace kestrel::cli
