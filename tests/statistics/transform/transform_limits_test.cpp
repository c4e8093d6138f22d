#include "statistics/transform/transform_limits.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "statistics/sample_data.h"
#include "support/matrix_compare.h"

namespace kestrel::math::transform {
namespace {

using testing::kInf;
using testing::kNaN;
using testing::MatrixNear;
using testing::Numbers;

TEST(Limits, ClampOnTheWayBackOnly) {
  TransLimits limits(-1.0, 2.0);
  const Matrix data = Numbers({-3, -1, 0.5, 2, 7, kNaN, kInf, -kInf});
  EXPECT_TRUE(MatrixNear(limits.ScaleForward(data), data, 0.0));
  EXPECT_THROW(limits.ScaleBackward(data), std::logic_error);
  EXPECT_TRUE(limits.Build(Matrix()));
  EXPECT_TRUE(MatrixNear(limits.ScaleForward(data), data, 0.0));
  EXPECT_TRUE(MatrixNear(limits.ScaleBackward(data), Numbers({-1, -1, 0.5, 2, 2, kNaN, 2, -1}), 0.0));
  EXPECT_EQ(limits.ScaleBackward(Matrix(0, 3)).cols(), 3);
}

TEST(Limits, BuildRefusesAnEmptyRange) {
  EXPECT_THROW(TransLimits(1.0, 1.0).Build(Matrix()), std::runtime_error);
  EXPECT_THROW(TransLimits(2.0, 1.0).Build(Matrix()), std::runtime_error);
  TransLimits half(kNaN, 1.0);  // a NaN limits nothing
  EXPECT_TRUE(half.Build(Matrix()));
  EXPECT_TRUE(MatrixNear(half.ScaleBackward(Numbers({-9, 3})), Numbers({-9, 1}), 0.0));
}

}  // namespace
}  // namespace kestrel::math::transform
