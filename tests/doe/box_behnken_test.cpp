#include "doe/box_behnken.h"

#include <gtest/gtest.h>

#include "doe/model_matrix.h"
#include "support/matrix_compare.h"

namespace kestrel::math::doe {
namespace {

using testing::MatrixNear;

TEST(BoxBehnken, HasTheSizesOfThePaper) {
  struct Case {
    std::uint64_t inputs;
    Index points;  // with one centre point
  };
  for (const Case& c : {Case{3, 13}, Case{4, 25}, Case{5, 41}, Case{6, 49}, Case{7, 57}}) {
    EXPECT_EQ(BoxBehnken(c.inputs).rows(), c.points);
  }
}

TEST(BoxBehnken, EstimatesAQuadraticModelWithoutCorners) {
  for (const std::uint64_t inputs : {3U, 4U, 5U, 6U, 7U, 8U}) {
    SCOPED_TRACE(inputs);
    const Matrix points = BoxBehnken(inputs);
    EXPECT_TRUE(CanEstimate(QuadraticTerms(inputs, true), points));
    EXPECT_TRUE((points.array() == 0.0 || points.array().abs() == 1.0).all());
    EXPECT_LT(points.rowwise().squaredNorm().maxCoeff(), static_cast<double>(inputs));  // not a corner
    // Each input equally often at its limits, and main terms uncorrelated.
    const Matrix products = points.transpose() * points;
    const Matrix expected = products(0, 0) * Matrix::Identity(products.rows(), products.cols());
    EXPECT_TRUE(MatrixNear(products, expected, 0.0));
  }
}

}  // namespace
}  // namespace kestrel::math::doe
