#include "doe/space_filling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "doe/latin_hypercube.h"
#include "doe/smallest_distance.h"

namespace kestrel::math::doe {
namespace {

TEST(SpaceFillingLatinHypercube, KeepsItsPointsFurtherApartThanTheBestOfManyRandomOnes) {
  struct Shape {
    Index samples, inputs;
  };
  for (const Shape& s : {Shape{20, 2}, Shape{50, 5}, Shape{100, 3}}) {
    SCOPED_TRACE(s.samples);
    random::Generator generator(2);
    double best = 0.0;
    for (int i = 0; i < 500; ++i) {
      best = std::max(best, SmallestDistance(RandomLatinHypercube(s.samples, s.inputs, generator)));
    }
    const auto samples = static_cast<std::uint64_t>(s.samples);
    const Matrix points = SpaceFillingLatinHypercube(samples, static_cast<std::uint64_t>(s.inputs), generator);
    EXPECT_GT(SmallestDistance(points), 1.2 * best);
  }
}

TEST(SpaceFillingLatinHypercube, FindsTheLargestSmallestDistance) {
  // All Latin hypercubes of 7 points: the first column in order, the second in any.
  Matrix points(7, 2);
  points.col(0) = Vector::LinSpaced(7, -6.0 / 7.0, 6.0 / 7.0);
  const Vector levels = points.col(0);
  std::vector<Index> order = {0, 1, 2, 3, 4, 5, 6};
  double largest = 0.0;
  do {
    points.col(1) = levels(order);
    largest = std::max(largest, SmallestDistance(points));
  } while (std::next_permutation(order.begin(), order.end()));
  random::Generator generator(2);
  EXPECT_NEAR(SmallestDistance(SpaceFillingLatinHypercube(7, 2, generator)), largest, 1e-12);
}

}  // namespace
}  // namespace kestrel::math::doe
