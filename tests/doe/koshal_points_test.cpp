#include "doe/koshal_points.h"

#include <gtest/gtest.h>

#include "doe/factorial_points.h"
#include "doe/model_matrix.h"
#include "support/matrix_compare.h"

namespace kestrel::math::doe {
namespace {

using testing::MatrixNear;

// The exponents of all terms of n inputs up to an order: what is left of the full grid.
IndexMatrix AllTerms(std::uint64_t num_inputs, std::uint64_t order) {
  const auto last = static_cast<double>(order);
  const Matrix grid = (FullFactorial(num_inputs, order + 1).array() + 1.0) * 0.5 * last;
  IndexMatrix exponents(grid.rows(), grid.cols());
  Index count = 0;
  for (const auto& row : grid.rowwise()) {
    if (row.sum() < last + 0.5) exponents.row(count++) = row.array().round().cast<std::uint64_t>();
  }
  return exponents.topRows(count);
}

TEST(KoshalPoints, AreJustEnoughForTheirModel) {
  for (const std::uint64_t inputs : {1U, 2U, 4U}) {
    for (const std::uint64_t order : {1U, 2U, 3U, 4U}) {
      SCOPED_TRACE(std::to_string(inputs) + " inputs, order " + std::to_string(order));
      const Matrix points = KoshalPoints(inputs, order);
      const IndexMatrix terms = AllTerms(inputs, order);
      EXPECT_EQ(points.rows(), terms.rows());
      EXPECT_TRUE(CanEstimate(terms, points));
      EXPECT_LE(points.cwiseAbs().maxCoeff(), 1.0);
    }
  }
}

TEST(KoshalPoints, OfOrderTwoAreStarAndMixedTerms) {
  Matrix expected(6, 2);
  expected << 0, 0, 1, 0, 0, 1, -1, 0, 1, 1, 0, -1;
  EXPECT_TRUE(MatrixNear(KoshalPoints(2, 2), expected, 0.0));
}

}  // namespace
}  // namespace kestrel::math::doe
