#include "statistics/random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "support/exceptions.h"

namespace kestrel::math::random {
namespace {

TEST(Streams, DependOnBothNumbersOnly) {
  constexpr std::uint64_t kHigh = std::uint64_t{1} << 32;
  std::set<std::uint64_t> first_draws;
  for (const auto& [root, stream] : {std::pair{1U, 2U}, {2U, 1U}, {1U, 3U}, {0U, 0U}}) {
    for (const std::uint64_t offset : {std::uint64_t{0}, kHigh}) {
      first_draws.insert(MakeStream(root + offset, stream)());
      first_draws.insert(MakeStream(root, stream + offset)());
    }
  }
  EXPECT_EQ(first_draws.size(), 12U);  // four pairs, plain and with either number raised
}

TEST(SharedGenerator, StartsFromItsFixedSeed) {
  // The first draw of this process: nothing else in this program names the shared generator before.
  Generator& shared = GeneratorSingleton::Instance().Get();
  EXPECT_EQ(shared, Generator(20210917));
  Generator copy = shared;
  EXPECT_EQ(DrawSharedSeed(), copy());
  EXPECT_EQ(DrawSharedSeed(), copy());
}

TEST(RandomPermutation, MakesAllOrdersEquallyOften) {
  Generator generator(3);
  std::map<std::vector<std::uint64_t>, int> counts;
  constexpr int kDraws = 6000;
  for (int draw = 0; draw < kDraws; ++draw) {
    const IndexVector order = RandomPermutation(3, generator);
    ASSERT_TRUE(std::is_permutation(order.begin(), order.end(), std::begin({0U, 1U, 2U})));
    ++counts[{order.begin(), order.end()}];
  }
  EXPECT_EQ(counts.size(), 6U);
  for (const auto& [order, count] : counts) EXPECT_NEAR(count, kDraws / 6, 150);  // five standard deviations
  EXPECT_THROW(Select_with_Replacement(0, 1, generator), utils::logic_error);
}

}  // namespace
}  // namespace kestrel::math::random
