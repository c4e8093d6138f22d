#include "selection/subspace_filters.h"

#include <gtest/gtest.h>

#include <string>

namespace kestrel::math::metamodel {
namespace {

IndexVector Codes(std::initializer_list<std::uint64_t> codes) {
  return Eigen::Map<const IndexVector>(codes.begin(), static_cast<Index>(codes.size()));
}

// The first character belongs to the first input.
boost::dynamic_bitset<> Bits(const std::string& bits) {
  return boost::dynamic_bitset<>(std::string(bits.rbegin(), bits.rend()));
}

TEST(FullSubspace, LimitsTheTermsByTheLevelCount) {
  EXPECT_EQ(FullSubspace(Codes({1, 2, 1, 2, 1, 0}), Codes({0, 0, 1, 1, 2, 9})), Codes({0, 0, 1, 1, 3, 0}));
}

TEST(MapImportance2Subspace, CombinesImportanceBitsAndLevels) {
  struct Case {
    std::uint64_t importance;
    bool linear, quadratic;
    std::uint64_t codes[3];  // for a constant, a two-level and a continuous input
  };
  const Case cases[] = {
      {0, true, true, {0, 0, 0}},  {1, false, false, {0, 0, 0}}, {1, true, false, {0, 1, 1}},
      {1, false, true, {0, 1, 3}}, {1, true, true, {0, 1, 3}},   {2, false, false, {0, 1, 3}},
  };
  for (const Case& c : cases) {
    const boost::dynamic_bitset<> linear(3, c.linear ? 7 : 0);
    const boost::dynamic_bitset<> quadratic(3, c.quadratic ? 7 : 0);
    EXPECT_EQ(MapImportance2Subspace(linear, quadratic, IndexVector::Constant(3, c.importance), Codes({0, 1, 5})),
              Codes({c.codes[0], c.codes[1], c.codes[2]}))
        << "importance " << c.importance << " linear " << c.linear << " quadratic " << c.quadratic;
  }
  EXPECT_EQ(MapImportance2Subspace(Bits("100"), Bits("001"), Codes({1, 1, 1}), Codes({4, 4, 4})), Codes({1, 0, 3}));
}

TEST(CoIFilterSubspace, KeepsWhatReachesTheLimit) {
  const IndexVector subspace = Codes({3, 1, 3, 3, 0});
  const IndexVector importance = Codes({1, 1, 2, 0, 1});
  const Vector values = (Vector(5) << 0.2, 0.19, 0.0, 0.9, 0.9).finished();
  EXPECT_EQ(CoIFilterSubspace(subspace, values, 0.2, importance), Codes({3, 0, 3, 0, 0}));
  EXPECT_EQ(CoIFilterSubspace(subspace, values, 0.19, importance), Codes({3, 1, 3, 0, 0}));
}

}  // namespace
}  // namespace kestrel::math::metamodel
