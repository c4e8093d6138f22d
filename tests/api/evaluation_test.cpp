#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "api/handle.h"

namespace zor_test {
namespace {

constexpr double kUntouched = -12345.0;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

/// A model of two outputs of two inputs: the first is the polynomial.
class Evaluation : public ::testing::Test {
 protected:
  const Table table_ = MakeTable(40, 2, 2);
  const Handle handle_ = MakeBuilt(table_);
  const std::vector<double> inside_ = {0.5, 0.5, 0.25, 0.75};  // two points
  const std::vector<double> outside_ = {0.5, 0.5, -1.0, 1.5};  // the second lies beyond both bounds
  std::vector<double> buffer_ = std::vector<double>(9, kUntouched);

  bool Untouched(std::size_t from = 0) const {
    return std::all_of(buffer_.begin() + static_cast<std::ptrdiff_t>(from), buffer_.end(),
                       [](double value) { return value == kUntouched; });
  }
};

/// The evaluations of one output in a common form, with the values they write per design.
struct PerOutput {
  const char* name;
  std::size_t values;
  bool extrapolates;
  uint32_t (*call)(zor_handle_t, int32_t, const double*, uint32_t, double*);
};

const PerOutput kPerOutput[] = {
    {"gradients", 2, false, zor_calculate_gradients_per_output},
    {"gradients_extrapolate", 2, true, zor_calculate_gradients_per_output_extrapolate},
    {"errors", 4, false, zor_calculate_errors_per_output},
    {"errors_extrapolate", 4, true, zor_calculate_errors_per_output_extrapolate},
    {"density", 1, false,
     [](zor_handle_t handle, int32_t output, const double* inputs, uint32_t designs, double* density) {
       return zor_calculate_density_per_output(handle, output, inputs, designs, density, 2);
     }},
    {"density_extrapolate", 1, true,
     [](zor_handle_t handle, int32_t output, const double* inputs, uint32_t designs, double* density) {
       return zor_calculate_density_per_output_extrapolate(handle, output, inputs, designs, density, 2);
     }},
};

TEST_F(Evaluation, WritesOneRowPerDesign) {
  EXPECT_EQ(zor_solve(handle_.get(), inside_.data(), buffer_.data(), 2), zor_success);
  EXPECT_NEAR(buffer_[0], Polynomial(&inside_[0]), 1e-9);
  EXPECT_NEAR(buffer_[2], Polynomial(&inside_[2]), 1e-9);
  EXPECT_NEAR(buffer_[3], Polynomial(&inside_[2]), 0.1);
  EXPECT_TRUE(Untouched(4));
  for (const PerOutput& c : kPerOutput) {
    buffer_.assign(9, kUntouched);
    EXPECT_EQ(c.call(handle_.get(), 1, inside_.data(), 2, buffer_.data()), zor_success) << c.name;
    for (std::size_t i = 0; i < 2 * c.values; ++i) EXPECT_TRUE(std::isfinite(buffer_[i])) << c.name;
    EXPECT_NE(buffer_[2 * c.values - 1], kUntouched) << c.name;
    EXPECT_TRUE(Untouched(2 * c.values)) << c.name;
  }
}

TEST_F(Evaluation, OfNoDesignsWritesNothing) {
  EXPECT_EQ(zor_solve(handle_.get(), nullptr, nullptr, 0), zor_success);
  EXPECT_EQ(zor_solve_extrapolate(handle_.get(), nullptr, nullptr, 0), zor_success);
  for (const PerOutput& c : kPerOutput) {
    EXPECT_EQ(c.call(handle_.get(), 0, nullptr, 0, nullptr), zor_success) << c.name;
  }
}

TEST_F(Evaluation, RefusesNullPointers) {
  EXPECT_EQ(zor_solve(handle_.get(), nullptr, buffer_.data(), 2), zor_calculation_error);
  EXPECT_EQ(zor_solve(handle_.get(), inside_.data(), nullptr, 2), zor_calculation_error);
  for (const PerOutput& c : kPerOutput) {
    EXPECT_EQ(c.call(handle_.get(), 0, nullptr, 2, buffer_.data()), zor_calculation_error) << c.name;
    EXPECT_EQ(c.call(handle_.get(), 0, inside_.data(), 2, nullptr), zor_calculation_error) << c.name;
  }
  EXPECT_EQ(LastError(handle_), "A null pointer was given for a buffer.");
}

TEST_F(Evaluation, CountsTheOutputsByTheirNames) {
  for (const PerOutput& c : kPerOutput) {
    for (const int32_t output : {2, 3, std::numeric_limits<int32_t>::max()}) {
      EXPECT_EQ(c.call(handle_.get(), output, inside_.data(), 2, buffer_.data()), zor_result_index_out_of_range);
      EXPECT_EQ(LastError(handle_), "");
    }
    EXPECT_EQ(c.call(handle_.get(), -1, inside_.data(), 2, buffer_.data()), zor_calculation_error);
    EXPECT_EQ(LastError(handle_),
              "vector::_M_range_check: __n (which is 18446744073709551615) >= this->size() (which is 2)");
  }
  EXPECT_TRUE(Untouched());

  const Handle unnamed = MakeHandle();
  SetCounts(unnamed, table_);
  ASSERT_EQ(Build(unnamed, table_), zor_success);
  for (const PerOutput& c : kPerOutput) {
    EXPECT_EQ(c.call(unnamed.get(), 0, inside_.data(), 2, buffer_.data()), zor_result_index_out_of_range) << c.name;
  }
}

TEST_F(Evaluation, TestsTheBoundsUnlessItExtrapolates) {
  EXPECT_EQ(zor_solve_extrapolate(handle_.get(), outside_.data(), buffer_.data(), 2), zor_success);
  EXPECT_NEAR(buffer_[2], Polynomial(&outside_[2]), 1e-8);
  buffer_.assign(9, kUntouched);
  EXPECT_EQ(zor_solve(handle_.get(), outside_.data(), buffer_.data(), 2), zor_calculation_error);
  EXPECT_EQ(LastError(handle_).rfind("Value -1 of Parameter x0 violates bounds: [", 0), 0u) << LastError(handle_);
  for (const PerOutput& c : kPerOutput) {
    const uint32_t code = c.call(handle_.get(), 0, outside_.data(), 2, buffer_.data());
    EXPECT_EQ(code, c.extrapolates ? zor_success : zor_calculation_error) << c.name;
    EXPECT_EQ(Untouched(), !c.extrapolates) << c.name;
    buffer_.assign(9, kUntouched);
  }
}

TEST_F(Evaluation, TakesThePointsOnTheBounds) {
  double bounds[4] = {};
  ASSERT_EQ(zor_get_input_bounds(handle_.get(), bounds), zor_success);
  const double corners[] = {bounds[0], bounds[2], bounds[1], bounds[3]};
  EXPECT_EQ(zor_solve(handle_.get(), corners, buffer_.data(), 2), zor_success);
  const double beyond[] = {std::nextafter(bounds[0], -1.0), bounds[2]};
  EXPECT_EQ(zor_solve(handle_.get(), beyond, buffer_.data(), 1), zor_calculation_error);
  const double nowhere[] = {kNan, bounds[2]};
  EXPECT_EQ(zor_solve(handle_.get(), nowhere, buffer_.data(), 1), zor_calculation_error);
}

TEST_F(Evaluation, NamesAnInputThatHasNoNameByItsPosition) {
  const Handle unnamed = MakeHandle();
  SetCounts(unnamed, table_);
  ASSERT_EQ(Build(unnamed, table_), zor_success);
  const double beyond[] = {0.5, 2.5};
  EXPECT_EQ(zor_solve(unnamed.get(), beyond, buffer_.data(), 1), zor_calculation_error);
  EXPECT_EQ(LastError(unnamed).rfind("Value 2.5 of Parameter p1 violates bounds: [", 0), 0u) << LastError(unnamed);
}

TEST_F(Evaluation, GivesTheGradientOfTheModel) {
  EXPECT_EQ(zor_calculate_gradients_per_output_extrapolate(handle_.get(), 0, outside_.data(), 2, buffer_.data()),
            zor_success);
  for (std::size_t i = 0; i < 2; ++i) {  // of 1 + 2 a - 3 b^2 + a b
    const double a = outside_[2 * i];
    const double b = outside_[2 * i + 1];
    EXPECT_NEAR(buffer_[2 * i], 2.0 + b, 1e-6);
    EXPECT_NEAR(buffer_[2 * i + 1], a - 6.0 * b, 1e-6);
  }
}

TEST_F(Evaluation, TestsTheCapacityOfTheDensity) {
  const auto density = [&](uint32_t designs, uint32_t capacity) {
    return zor_calculate_density_per_output(handle_.get(), 0, inside_.data(), designs, buffer_.data(), capacity);
  };
  EXPECT_EQ(density(2, 1), zor_size_mismatch);
  EXPECT_EQ(density(1, 0), zor_size_mismatch);
  EXPECT_EQ(density(0, 0), zor_size_mismatch);
  EXPECT_EQ(LastError(handle_), "");
  EXPECT_EQ(density(0, 1), zor_success);
  EXPECT_TRUE(Untouched());
  EXPECT_EQ(density(1, 8), zor_success);
  EXPECT_GT(buffer_[0], 0.0);
  EXPECT_TRUE(Untouched(1));
  EXPECT_EQ(zor_calculate_density_per_output(handle_.get(), 2, inside_.data(), 2, buffer_.data(), 0),
            zor_result_index_out_of_range);
}

TEST_F(Evaluation, KnowsNoErrorsOfAnExactModel) {
  EXPECT_EQ(zor_calculate_errors_per_output(handle_.get(), 0, inside_.data(), 1, buffer_.data()), zor_success);
  EXPECT_EQ(std::vector<double>(buffer_.begin(), buffer_.begin() + 4), (std::vector<double>{1.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(zor_calculate_errors_per_output(handle_.get(), 1, inside_.data(), 1, buffer_.data()), zor_success);
  EXPECT_LT(buffer_[0], 1.0);
  EXPECT_GT(buffer_[1], 0.0);
  EXPECT_LE(std::abs(buffer_[2]), buffer_[3]);
  EXPECT_LE(buffer_[3], buffer_[1]);
}

TEST(EvaluationOfAMean, HasDensityOneEverywhere) {
  Table table = MakeTable(20, 2, 1);
  table.outputs.assign(20, 4.5);
  const Handle handle = MakeBuilt(table);
  const double point[] = {50.0, -50.0};
  double value = 0.0;
  EXPECT_EQ(zor_solve_extrapolate(handle.get(), point, &value, 1), zor_success);
  EXPECT_EQ(value, 4.5);
  EXPECT_EQ(zor_calculate_density_per_output_extrapolate(handle.get(), 0, point, 1, &value, 1), zor_success);
  EXPECT_EQ(value, 1.0);
  double gradient[2] = {9.0, 9.0};
  EXPECT_EQ(zor_calculate_gradients_per_output_extrapolate(handle.get(), 0, point, 1, gradient), zor_success);
  EXPECT_EQ(gradient[0], 0.0);
  EXPECT_EQ(gradient[1], 0.0);
}

}  // namespace
}  // namespace zor_test
