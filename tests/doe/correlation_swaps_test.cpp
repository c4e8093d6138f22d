#include "doe/correlation_swaps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "doe/latin_hypercube.h"

namespace kestrel::math::doe {
namespace {

double CorrelationSum(const Matrix& points) {
  const Matrix products = points.transpose() * points / points.col(0).squaredNorm();
  return products.squaredNorm() - products.diagonal().squaredNorm();
}

TEST(SwapForCorrelations, GoesOnWhereRankingEnds) {
  struct Shape {
    Index samples, inputs;
    double factor;
  };
  for (const Shape& s : {Shape{30, 8, 0.1}, Shape{200, 5, 1e-3}, Shape{10, 15, 1.0}, Shape{1000, 20, 0.1}}) {
    SCOPED_TRACE(s.samples);
    random::Generator generator(4);
    const Matrix ranked = ReduceCorrelations(RandomLatinHypercube(s.samples, s.inputs, generator));
    EXPECT_LT(CorrelationSum(SwapForCorrelations(ranked, generator)), s.factor * CorrelationSum(ranked));
  }
}

TEST(SwapForCorrelations, FindsTheBestOrderOfTwoColumns) {
  const Index samples = 7;
  std::vector<Index> order = {0, 1, 2, 3, 4, 5, 6};
  random::Generator generator(4);
  Matrix points = RandomLatinHypercube(samples, 2, generator);
  const Matrix swapped = SwapForCorrelations(points, generator);
  const Vector second = points.col(1);
  double smallest = std::numeric_limits<double>::infinity();
  do {
    points.col(1) = second(order);
    smallest = std::min(smallest, CorrelationSum(points));
  } while (std::next_permutation(order.begin(), order.end()));
  EXPECT_NEAR(CorrelationSum(swapped), smallest, 1e-12);
}

}  // namespace
}  // namespace kestrel::math::doe
