#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "api/handle.h"

namespace zor_test {
namespace {

using ::testing::HasSubstr;

/// The value of an expression with objects x and y, or the last error.
std::string Evaluated(const char* expression, const char* x = "3", const char* y = "x+1") {
  const Handle handle = MakeHandle();
  const char* const names[] = {"x", "y"};
  const char* const expressions[] = {x, y};
  char* text = nullptr;
  std::size_t length = 0;
  if (zor_evaluate_expression(handle.get(), expression, names, expressions, 2, &text, &length) != zor_success) {
    return LastError(handle);
  }
  std::string value(text, length);
  zor_release_buf(text);
  return value;
}

TEST(Expressions, AreEvaluatedToATextThatGivesTheValueAgain) {
  const std::pair<const char*, const char*> cases[] = {
      {"2^3^2", "64"},
      {"-2^2", "-4"},
      {"0.1+0.2", "0.30000000000000004"},
      {"1/3 > 0.3", "@TRUE"},
      {"sqrt(-4)", "2*@I"},
      {"3-4*@I", "3-4*@I"},
      {"[x,y]*2", "[6,8]"},
      {"[[1,2],[3,4]]", "[[1,2],[3,4]]"},
      {"signal([0,1],[5,6])", "signal([0,1],[5,6])"},
      {"1/0", "inf"},
      {"$SIG_MAX_Y(signal([0,1,2],[5,7,6]))", "7"},
  };
  for (const auto& [expression, value] : cases) {
    EXPECT_EQ(Evaluated(expression), value) << expression;
    if (std::strcmp(value, "inf") != 0) {
      EXPECT_EQ(Evaluated(value), value);
    }
  }
  EXPECT_THAT(Evaluated("1 + * 2"), HasSubstr("Error while parsing"));
  EXPECT_THAT(Evaluated("z"), HasSubstr("Object \"z\" not known."));
  EXPECT_THAT(Evaluated("x", "y"), HasSubstr("object x depends on expression dependent on x"));
  EXPECT_THAT(Evaluated("read(\"/etc/hostname\")"), HasSubstr("file"));
}

TEST(Expressions, HaveFunctionsThatTellWhatTheyDo) {
  const Handle handle = MakeHandle();
  char* text = nullptr;
  std::size_t length = 0;
  ASSERT_EQ(zor_describe_functions(handle.get(), &text, &length), zor_success);
  const std::string all(text, length);
  zor_release_buf(text);
  for (const char* const name : {"atan2(", "butterworthFilter(", "interpolate(", "modepairs("}) {
    EXPECT_THAT(all, HasSubstr(name));
  }
}

class Criteria : public ::testing::Test {
 protected:
  uint32_t Add(const char* name, uint32_t type, const char* left, const char* right = nullptr) {
    return zor_add_criterion(handle_.get(), name, type, left, right);
  }

  const Table table_ = MakeTable(40, 2, 2);
  const Handle handle_ = MakeBuilt(table_);
  const std::vector<double> points_ = {0.5, 0.5, 0.25, 0.75};
};

TEST_F(Criteria, AreTheArithmeticOfThePredictions) {
  ASSERT_EQ(Add("cost", zor_objective_min, "2*y0 + x1^2"), zor_success) << LastError(handle_);
  ASSERT_EQ(Add("safe", zor_limit_state_less, "y1", "cost - x0"), zor_success) << LastError(handle_);
  ASSERT_EQ(Add("odd", zor_objective_max, "[y0, y1]"), zor_success);
  double outputs[4];
  double values[6];
  ASSERT_EQ(zor_solve(handle_.get(), points_.data(), outputs, 2), zor_success);
  ASSERT_EQ(zor_solve_criteria(handle_.get(), points_.data(), values, 2), zor_success) << LastError(handle_);
  for (std::size_t i = 0; i < 2; ++i) {
    const double cost = 2.0 * outputs[2 * i] + points_[2 * i + 1] * points_[2 * i + 1];
    EXPECT_NEAR(values[3 * i], cost, 1e-12);
    EXPECT_NEAR(values[3 * i + 1], cost - points_[2 * i] - outputs[2 * i + 1], 1e-12);
    EXPECT_TRUE(std::isnan(values[3 * i + 2]));
  }
  const double outside[] = {2.0, 0.5};
  EXPECT_EQ(zor_solve_criteria(handle_.get(), outside, values, 1), zor_calculation_error);
  EXPECT_EQ(zor_solve_criteria_extrapolate(handle_.get(), outside, values, 1), zor_success);
}

TEST_F(Criteria, AreStoredWithTheModel) {
  ASSERT_EQ(Add("cost", zor_objective_min, "2*y0"), zor_success);
  void* buffer = nullptr;
  std::size_t size = 0;
  ASSERT_EQ(zor_write_db_buf(handle_.get(), &buffer, &size), zor_success);
  zor_handle_t read = nullptr;
  ASSERT_EQ(zor_read_db_buf(&read, buffer, size), zor_success);
  zor_release_buf(buffer);
  const Handle owner(read);
  uint32_t count = 0;
  EXPECT_EQ(zor_get_criterion_count(read, &count), zor_success);
  EXPECT_EQ(count, 1U);
  char* name = nullptr;
  std::size_t length = 0;
  ASSERT_EQ(zor_get_criterion_name(read, 0, &name, &length), zor_success);
  EXPECT_EQ(std::string(name, length), "cost");
  zor_release_buf(name);
  EXPECT_EQ(zor_get_criterion_name(read, 1, &name, &length), zor_index_out_of_range);
  double expected[2];
  double values[2];
  EXPECT_EQ(zor_solve_criteria(handle_.get(), points_.data(), expected, 2), zor_success);
  EXPECT_EQ(zor_solve_criteria(read, points_.data(), values, 2), zor_success);
  EXPECT_EQ(values[1], expected[1]);
  EXPECT_EQ(zor_clear_criteria(read), zor_success);
  EXPECT_EQ(zor_get_criterion_count(read, &count), zor_success);
  EXPECT_EQ(count, 0U);
}

TEST_F(Criteria, AreRefusedWithAReason) {
  EXPECT_EQ(Add("c", zor_objective_min, "y0 +"), zor_calculation_error);
  EXPECT_THAT(LastError(handle_), HasSubstr("Error while parsing"));
  EXPECT_EQ(Add("c", zor_constraint_less, "y0"), zor_calculation_error);
  for (const char* const name : {"", "1c", "x0", "y1", "LINEAR"}) {
    EXPECT_EQ(Add(name, zor_objective_min, "1"), zor_invalid_name) << name;
  }
  EXPECT_EQ(Add("c", 8, "1"), zor_unknown_input_enum);
  EXPECT_EQ(Add("c", 0, "1"), zor_unknown_input_enum);
  EXPECT_EQ(Add("c", zor_objective_min, nullptr), zor_calculation_error);
  uint32_t count = 7;
  EXPECT_EQ(zor_get_criterion_count(handle_.get(), &count), zor_success);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(zor_add_criterion(MakeHandle().get(), "c", zor_objective_min, "1", nullptr), zor_not_built);
}

}  // namespace
}  // namespace zor_test
