#include "datatypes/hierarchical_id.h"

#include <gtest/gtest.h>

#include <boost/functional/hash.hpp>
#include <sstream>
#include <vector>

#include "datatypes/test_archive.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

CHierachicalId MakeId(const std::vector<std::uint64_t>& levels) {
  CHierachicalId id(levels.front());
  for (std::size_t i = 1; i < levels.size(); ++i) id /= levels[i];
  return id;
}

std::wstring ToText(const CHierachicalId& id) {
  std::wostringstream text;
  text << id;
  return text.str();
}

TEST(CHierachicalId, OrdersChainsLexicographicallyFromTheRoot) {
  const std::vector<CHierachicalId> ascending = {MakeId({0}),       MakeId({1}),    MakeId({1, 0}), MakeId({1, 5}),
                                                 MakeId({1, 5, 0}), MakeId({1, 6}), MakeId({2}),    MakeId({10})};
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      EXPECT_EQ(ascending[i] < ascending[j], i < j) << i << " " << j;
      EXPECT_EQ(ascending[i] == ascending[j], i == j) << i << " " << j;
    }
  }
}

TEST(CHierachicalId, HashesAsTheStatedFormula) {
  const std::uint64_t m = 0xc6a4a7935bd1e995;
  const auto level = [m](std::uint64_t value) {
    const std::uint64_t k = value * m;
    return (k ^ (k >> 47)) * 0x35a98f4d286a90b9 + 0xe6546b64;
  };
  const auto with_child = [m, level](std::uint64_t value, std::uint64_t child) {
    const std::uint64_t k2 = child * m;
    return (level(value) ^ (k2 ^ (k2 >> 47)) * m) * m + 0xe6546b64;
  };
  EXPECT_EQ(hash_value(MakeId({0})), 0xe6546b64u);
  EXPECT_EQ(hash_value(MakeId({7})), level(7));
  EXPECT_EQ(hash_value(MakeId({1, 5})), with_child(1, level(5)));
  EXPECT_EQ(hash_value(MakeId({1, 5, 9})), with_child(1, with_child(5, level(9))));
  EXPECT_EQ(boost::hash<CHierachicalId>()(MakeId({1, 5})), with_child(1, level(5)));
}

TEST(CHierachicalId, GrowsAndShrinksAtItsEnds) {
  CHierachicalId id(1);
  const CHierachicalId longer = id / 5 / 7;
  EXPECT_EQ(ToText(id), L"1");
  EXPECT_EQ(ToText(longer), L"1.5.7");
  EXPECT_EQ(longer.GetLeaf()(), 7u);
  EXPECT_EQ(ToText(longer.GetChild()), L"5.7");

  id = longer;
  id = 3u;
  EXPECT_EQ(ToText(id), L"3.5.7");
  id = CHierachicalId(id.GetChild());
  id.GetLeaf() = 8u;
  EXPECT_EQ(ToText(id), L"5.8");
  id.RemoveChild();
  EXPECT_EQ(ToText(id), L"5");
}

TEST(CHierachicalId, RefusesAChildThatIsNotThere) {
  const auto text_of = [](auto& id) {
    try {
      id.GetChild();
    } catch (const utils::logic_error& error) {
      return error.What();
    }
    return std::wstring();
  };
  CHierachicalId id(1);
  EXPECT_EQ(text_of(id), L"CHierachicalId object has no valid child [01]");
  EXPECT_EQ(text_of(std::as_const(id)), L"CHierachicalId object has no valid child [02]");
}

TEST(CHierachicalId, SurvivesAMillionLevels) {
  std::string bytes;
  {
    CHierachicalId deep(1);
    for (CHierachicalId* leaf = &deep; (*leaf)() < 1000000; leaf = &leaf->GetChild()) *leaf /= (*leaf)() + 1;
    CHierachicalId copy(deep);
    EXPECT_EQ(copy, deep);
    EXPECT_EQ(copy.Hash(), deep.Hash());
    copy.GetLeaf() = 0u;
    EXPECT_LT(copy, deep);
    bytes = Write(deep);
  }
  EXPECT_EQ(Read<CHierachicalId>(bytes).GetLeaf()(), 1000000u);
}

TEST(CHierachicalId, IsStoredAsAListOfItsLevels) {
  std::ostringstream stream;
  {
    portable_binary_oarchive archive(stream, boost::archive::no_header);
    const CHierachicalId id = MakeId({1, 5});
    archive << id;
  }
  // Not tracked, version 0; two items of version 0; the levels.
  EXPECT_EQ(stream.str(), std::string("\0\0\0\0\2\0\0\0\1\0\5\0", 12));
}

TEST(CHierachicalId, RefusesAStoredIdWithoutLevels) {
  std::istringstream stream(std::string("\0\0\0\0\0\0\0\0", 8));
  portable_binary_iarchive archive(stream, boost::archive::no_header);
  CHierachicalId id;
  EXPECT_THROW(archive >> id, boost::archive::archive_exception);
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
