#include "support/matrix_compare.h"

#include <gmock/gmock.h>

#include <limits>

namespace kestrel::testing {
namespace {

using math::Matrix;
using ::testing::HasSubstr;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Matrix Row(double a, double b) { return (Matrix(1, 2) << a, b).finished(); }

TEST(MatrixNear, NamesTheFirstEntryThatDiffers) {
  const auto result = MatrixNear(Row(1.0, 2.5), Row(1.0, 2.0), 0.25);
  EXPECT_FALSE(result);
  EXPECT_THAT(result.message(), HasSubstr("entry (0, 1) is 2.5, expected 2 within 0.25; 1 of 2 entries differ"));
  EXPECT_FALSE(MatrixNear(Row(1.0, 2.0), Row(1.0, 2.0).transpose(), 1.0));
}

TEST(MatrixNear, TreatsWhatIsNotFinite) {
  EXPECT_TRUE(MatrixNear(Row(kNaN, kInfinity), Row(kNaN, kInfinity), 0.0));
  EXPECT_FALSE(MatrixNear(Row(kNaN, 0.0), Row(0.0, 0.0), 1.0));
  EXPECT_FALSE(MatrixNear(Row(0.0, 0.0), Row(kNaN, 0.0), 1.0));
  EXPECT_FALSE(MatrixNear(Row(kInfinity, 0.0), Row(-kInfinity, 0.0), 1.0));
}

}  // namespace
}  // namespace kestrel::testing
