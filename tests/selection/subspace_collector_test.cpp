#include "selection/subspace_collector.h"

#include <gtest/gtest.h>

#include "support/matrix_compare.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;

IndexVector Pair(std::uint64_t first, std::uint64_t second) { return (IndexVector(2) << first, second).finished(); }

FilterLimits AtCoI(double limit) {
  FilterLimits limits;
  limits.coi = limit;
  return limits;
}

TEST(SubspaceCollector, KeepsTheFirstOfEqualSubspacesInTheOrderFound) {
  SubspaceCollector collector(2);
  collector.StoreIfNew(Pair(3, 0), AtCoI(0.1));
  collector.StoreIfNew(Pair(0, 3), AtCoI(0.2));
  collector.StoreIfNew(Pair(3, 0), AtCoI(0.3));
  collector.StoreIfNew(Pair(1, 0), AtCoI(0.4));
  ASSERT_EQ(collector.Size(), 3);
  const IndexMatrix expected = (IndexMatrix(2, 3) << 3, 0, 1, 0, 3, 0).finished();
  EXPECT_EQ(collector.SubspaceMatrix(), expected);
  EXPECT_TRUE(MatrixNear(collector.LimitMatrix().row(5), (Matrix(1, 3) << 0.1, 0.2, 0.4).finished(), 0.0));
}

TEST(SubspaceCollector, OnlyOneFormOfTheRuleRefusesTheEmptySubspace) {
  SubspaceCollector collector(2);
  EXPECT_TRUE(collector.CheckFilterSubspace(Pair(0, 0)));
  EXPECT_FALSE(collector.CheckFilterSubspaceNotEmpty(Pair(0, 0)));
  collector.StoreIfNewNotEmpty(Pair(0, 0), {});
  EXPECT_EQ(collector.Size(), 0);
  collector.StoreIfNew(Pair(0, 0), {});
  collector.StoreIfNew(Pair(0, 0), {});
  EXPECT_EQ(collector.Size(), 1);
  EXPECT_TRUE(collector.CheckFilterSubspaceNotEmpty(Pair(0, 1)));
  collector.StoreIfNewNotEmpty(Pair(0, 1), {});
  collector.StoreIfNewNotEmpty(Pair(0, 1), {});
  EXPECT_EQ(collector.Size(), 2);
  EXPECT_FALSE(collector.CheckFilterSubspaceNotEmpty(Pair(0, 1)));
}

TEST(SubspaceCollector, ListsTheLimitsInTheirOrder) {
  SubspaceCollector collector(2);
  EXPECT_EQ(collector.LimitMatrix().rows(), 7);
  EXPECT_EQ(collector.SubspaceMatrix().cols(), 0);
  collector.Store(Pair(1, 1), {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0});
  EXPECT_TRUE(MatrixNear(collector.LimitMatrix(), (Vector(7) << 1, 2, 3, 4, 5, 6, 7).finished(), 0.0));
}

}  // namespace
}  // namespace kestrel::math::metamodel
