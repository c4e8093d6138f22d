#include "datatypes/nvp_sequence.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "datatypes/criterion.h"
#include "datatypes/type_names.h"

namespace kestrel {
namespace {

CDesignEntrySequence ABC() {
  CDesignEntrySequence sequence(5);
  sequence.Add(L"a", 1.0);
  sequence.Add(L"b", 2);
  sequence.push_back({L"c", CDesignEntry(L"three")});
  return sequence;
}

template <class Act>
std::wstring RefusalOf(Act act) {
  try {
    act();
  } catch (const utils::invalid_argument& error) {
    return error.What();
  }
  return L"not refused";
}

std::wstring Names(const CDesignEntrySequence& sequence) {
  std::wstring names;
  for (const auto& [name, value] : sequence) names += name.str();
  return names;
}

TEST(NVPSequence, KeepsTheOrderOfInsertion) {
  CDesignEntrySequence sequence = ABC();
  EXPECT_EQ(Names(sequence), L"abc");
  EXPECT_TRUE(sequence.Remove(L"b"));
  EXPECT_FALSE(sequence.Remove(L"b"));
  sequence.Add(L"b", 4) = 5;
  EXPECT_EQ(Names(sequence), L"acb");
  EXPECT_TRUE(sequence[L"b"] == CDesignEntry(5));
  sequence.ClearAll();
  EXPECT_TRUE(sequence.empty());
  EXPECT_EQ(sequence.GetHeader(), 5u);
}

TEST(NVPSequence, FindsByName) {
  CDesignEntrySequence sequence = ABC();
  sequence[L"a"] = 7.0;
  EXPECT_TRUE(sequence.GetDataConst(L"a") == CDesignEntry(7.0));
  EXPECT_EQ(sequence.GetByKey(L"c").first, L"c");
  EXPECT_EQ(sequence.GetData(L"d", std::nothrow), nullptr);
  EXPECT_EQ(sequence.GetByKey(L"d", std::nothrow), nullptr);
}

TEST(NVPSequence, RefusesDuplicateAndMissingNames) {
  CDesignEntrySequence sequence = ABC();
  const CDesignEntrySequence before = sequence;
  EXPECT_EQ(RefusalOf([&] { sequence.Add(L"b", 2.5); }), L"Value ( b, 2.5 ) already exists in this sequence");
  EXPECT_EQ(RefusalOf([&] { sequence[L"d"] = 1; }), L"Key \"d\" does not exist in this sequence");
  EXPECT_EQ(RefusalOf([&] {
              before.ExtractInOrder({L"c", L"d"}, false);
            }),
            L"NVPSequence: Found only 1 key(s) but 2 key(s) have been expected");
  EXPECT_TRUE(sequence == before);
}

TEST(NVPSequence, ExtractsInTheOrderOfTheKeys) {
  EXPECT_EQ(Names(ABC().ExtractInOrder({L"c", L"x", L"a"}, true)), L"ca");
  EXPECT_EQ(Names(ABC().ExtractInOrder({L"b", L"a"}, false)), L"ba");
}

TEST(NVPSequence, ComparesHeaderOrderAndValues) {
  CDesignEntrySequence other = ABC();
  EXPECT_TRUE(other == ABC());
  EXPECT_FALSE(other == ABC().ExtractInOrder({L"b", L"a", L"c"}, false));
  other[L"a"] = 2.0;
  EXPECT_FALSE(other == ABC());
  EXPECT_FALSE(CDesignEntrySequence(1) == CDesignEntrySequence(2));
}

// A cell costs two links, a shared name and its value.
TEST(NVPSequence, SharesEqualNamesAmongThreads) {
  EXPECT_EQ(sizeof(CDesignEntrySequence::value_type), sizeof(void*) + sizeof(CDesignEntry));
  std::vector<CDesignEntrySequence> sequences(4);
  std::vector<std::thread> threads;
  for (auto& sequence : sequences) {
    threads.emplace_back([&sequence] {
      for (int i = 0; i < 200; ++i) sequence.Add(L"name " + std::to_wstring(i), i);
    });
  }
  for (auto& thread : threads) thread.join();
  for (const auto& sequence : sequences) {
    EXPECT_TRUE(sequence == sequences.front());
    EXPECT_EQ(&sequence.GetByKey(L"name 7").first.str(), &sequences.front().GetByKey(L"name 7").first.str());
  }
}

TEST(TypeNames, GoBothWays) {
  EXPECT_EQ(EDesignEntry::TypeMap(enums::DesignEntry::INTEGER), L"INTEGER");
  EXPECT_EQ(ETypeInfo::TypeMap().left.at(L"Runinfo"), 21);
  EXPECT_EQ(ETypeInfo::TypeMap().left.at(L"Runinfo"), EType::RUNINFO);
  EXPECT_EQ(EDOE::TypeMap().right.at(enums::DOE::ADVANCED_LATIN_HYPERCUBE), L"Advanced Latin Hypercube Sampling");
  EXPECT_EQ(ERandomVariable::TypeMap().left.at(L"LAMBDA"), enums::RandomVariable::LAMBDA);
  EXPECT_THROW(EDesignEntry::TypeMap(static_cast<enums::DesignEntry::eType>(6)), std::out_of_range);
}

}  // namespace
}  // namespace kestrel
