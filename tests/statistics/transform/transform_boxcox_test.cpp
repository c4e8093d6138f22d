#include "statistics/transform/transform_boxcox.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

#include "statistics/sample_data.h"
#include "support/matrix_compare.h"

namespace kestrel::math::transform {
namespace {

using testing::kInf;
using testing::kNaN;
using testing::MatrixNear;
using testing::NumberNear;
using testing::Numbers;

// On this column the scaling to [0.1, 10.1] is the identity.
TransBoxCox BuiltOnScaledData(std::int64_t lambda_inv) {
  TransBoxCox transform(lambda_inv, 0.1, 10.1);
  transform.Build(Numbers({0.1, 10.1}));
  return transform;
}

TEST(BoxCox, FollowsTheFormulaOfItsExponent) {
  const Vector y = Numbers({0.1, 0.7, 4.0, 10.1});
  for (const std::int64_t n : {1, 2, 3, 20, -1, -2, -3, -20}) {
    SCOPED_TRACE(n);
    const double lambda = 1.0 / static_cast<double>(n);
    const Vector expected = (y.array().pow(lambda) - 1.0) / lambda;
    EXPECT_TRUE(MatrixNear(BuiltOnScaledData(n).ScaleForward(y), expected, 1e-13));
  }
  EXPECT_TRUE(MatrixNear(BuiltOnScaledData(0).ScaleForward(y), Vector(y.array().log()), 1e-15));
  EXPECT_TRUE(MatrixNear(BuiltOnScaledData(1).ScaleForward(y), Numbers({-0.9, -0.3, 3.0, 9.1}), 1e-15));
}

TEST(BoxCox, BackwardAgreesWithTheStandardPower) {
  constexpr double kAgreement = 1e-14;
  const Vector z = Numbers({0.0,   -0.5, 3.7,    9.0,  -1.0, 1.0,   -2.0,  2.0,    -3.0,  3.0,  20.0,  -20.0,
                            -30.0, 30.0, 1e-300, 3e16, 1e20, -1e20, 1e200, -1e200, 1e308, kInf, -kInf, kNaN});
  for (const std::int64_t n : {2, 3, 4, 5, 6, 8, 10, 13, 20, 32, 33, 100, -1, -2, -3, -4, -5, -13, -20, -32, -33}) {
    const Matrix backward = BuiltOnScaledData(n).ScaleBackward(z);
    const double lambda = 1.0 / static_cast<double>(n);
    for (Index i = 0; i < z.size(); ++i) {
      const double expected = std::pow(z(i) * lambda + 1.0, static_cast<double>(n));
      const double tolerance = kAgreement * std::abs(expected) + std::numeric_limits<double>::denorm_min();
      EXPECT_TRUE(NumberNear(backward(i), expected, tolerance))
          << "n = " << n << ", z = " << z(i) << ": " << backward(i) << ", expected " << expected;
    }
  }
}

TEST(BoxCox, RoundsTheExponentToAReciprocal) {
  struct Case {
    double p;
    std::int64_t lambda_inv;
  };
  const Case cases[] = {{0.34, 3},    {1.0, 1},   {0.0, 0},    {-0.0, 0}, {0.05, 20},
                        {-0.05, -20}, {-1.0, -1}, {-0.34, -3}, {1.11, 1}, {1.12, 0},
                        {5.0, 0},     {kInf, 0},  {1e-300, 0}, {kNaN, 0}, {1.0 / 13, 13}};
  for (const Case& c : cases) EXPECT_EQ(TransBoxCox::InverseExponent(c.p), c.lambda_inv) << c.p;
  EXPECT_EQ(TransBoxCox(3, 0.1, 10.1).GetParameters(), (std::vector<double>{1.0 / 3.0, 0.1, 10.1}));
  EXPECT_EQ(TransBoxCox(0, 0.5, 2.0).GetParameters(), (std::vector<double>{0.0, 0.5, 2.0}));
}

TEST(BoxCox, RefusesToBuild) {
  struct Case {
    double low, high;
    Matrix data;
    const char* text;
  };
  const Case cases[] = {
      {0.0, 1.0, Matrix::Ones(1, 2), "Minimum and maximum for scaling should be larger than zero."},
      {0.1, 1.0, Matrix::Ones(1, 2), "At least two values are required."},
      {0.1, 1.0, Matrix::Ones(2, 2), "Transformation works only for response vector."},
  };
  for (const Case& c : cases) {
    TransBoxCox transform(2, c.low, c.high);
    try {
      transform.Build(c.data);
      ADD_FAILURE() << "built";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), c.text);
    }
    EXPECT_TRUE(transform.GetNeedBuild());
  }
}

TEST(BoxCox, ScalesBuiltColumnsOnly) {
  const auto text_of = [](const TransBoxCox& transform, const Matrix& data) -> std::string {
    try {
      transform.ScaleForward(data);
    } catch (const std::logic_error& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_EQ(text_of(TransBoxCox(), Matrix::Ones(2, 2)), "can not transform - build first");
  EXPECT_EQ(text_of(BuiltOnScaledData(2), Matrix::Ones(2, 2)), "TransBoxCox works only for scalar data");
  EXPECT_THROW(TransBoxCox().ScaleBackward(Matrix::Ones(2, 1)), std::logic_error);
  EXPECT_THROW(BuiltOnScaledData(2).ScaleBackward(Matrix::Ones(2, 2)), std::logic_error);
}

}  // namespace
}  // namespace kestrel::math::transform
