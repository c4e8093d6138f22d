#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "datatypes/criterion.h"
#include "datatypes/nvp_sequence.h"
#include "support/plain_archive_reader.h"
#include "support/read_to_the_end.h"
#include "support/stored.h"
#include "values/variant_builders.h"

namespace kestrel {
namespace {

using boost::serialization::make_nvp;
using math::test::Scalar;
using math::test::Vector;
using testing::Load;
using testing::ReadToTheEnd;
using testing::Store;
using VariantType = CDesignEntry::VariantType;

// The layouts of old files. The name of a class stored by value is not in the file, so these give the same bytes.

template <unsigned version>
struct OldCell {
  using Data = std::conditional_t<version == 4, VariantType,
                                  boost::variant<UninitializedType, double, std::int64_t, std::wstring, bool>>;
  Data data;

  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& make_nvp("data_", data);
  }
};

template <unsigned version>
struct OldCriterion {
  std::int32_t type = enums::CriterionType::LIMIT_STATE_LESS;
  std::wstring lhs = L"x", rhs = L"3";
  CDesignEntry value = 1.0, lhs_value = 2.0, rhs_value = 3.0;
  bool needs_evaluation = false, converted = true;

  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& make_nvp("type_", type) & make_nvp("value_", value) & make_nvp("lhs_", lhs) & make_nvp("rhs_", rhs);
    archive& make_nvp("needeval_", needs_evaluation) & make_nvp("qmk3_converted_", converted);
    if (version == 2) archive& make_nvp("lhs_value_", lhs_value) & make_nvp("rhs_value_", rhs_value);
  }
};

}  // namespace
}  // namespace kestrel

BOOST_CLASS_VERSION(kestrel::OldCell<4>, 4)
BOOST_CLASS_VERSION(kestrel::OldCell<3>, 3)
BOOST_CLASS_TRACKING(kestrel::OldCell<4>, boost::serialization::track_always)
BOOST_CLASS_TRACKING(kestrel::OldCell<3>, boost::serialization::track_always)
BOOST_CLASS_VERSION(kestrel::OldCriterion<2>, 2)
BOOST_CLASS_VERSION(kestrel::OldCriterion<1>, 1)

namespace kestrel {
namespace {

TEST(CellsPersistence, KeepsEveryType) {
  const std::vector<CDesignEntry> cells = {
      {},           2.5, -7, std::numeric_limits<std::int64_t>::max(), L"\u00e4 text", true, false, Vector({1, 2}),
      VariantType()};
  std::vector<CDesignEntry> read;
  Load(Store(cells), read);
  ASSERT_EQ(read.size(), cells.size());
  for (std::size_t i = 0; i < cells.size(); ++i) {
    EXPECT_EQ(read[i].GetDomainType(), cells[i].GetDomainType());
    EXPECT_TRUE(read[i] == cells[i]);
  }
  EXPECT_EQ(Store(read), Store(cells));
}

TEST(CellsPersistence, ReadsCellsOfOldVersions) {
  CDesignEntry read = L"before";
  ReadToTheEnd(Store(OldCell<4>{Vector({1, 2})}), read);
  EXPECT_TRUE(read == CDesignEntry(Vector({1, 2})));
  const std::vector<std::pair<OldCell<3>, CDesignEntry>> cases = {{{UninitializedType()}, {}},
                                                                  {{2.5}, 2.5},
                                                                  {{std::int64_t{7}}, 7},
                                                                  {{std::wstring(L"text")}, L"text"},
                                                                  {{true}, true}};
  for (const auto& [old, expected] : cases) {
    ReadToTheEnd(Store(old), read);
    EXPECT_EQ(read.GetDomainType(), expected.GetDomainType());
    EXPECT_TRUE(read == expected);
  }
}

TEST(CellsPersistence, ReadsCriteriaOfOldVersions) {
  using namespace algorithm::datatypes;
  Criterion expected(enums::CriterionType::LIMIT_STATE_LESS, L"x", L"3");
  Criterion read;
  expected.SetValues(1.0, {}, {}, false);
  ReadToTheEnd(Store(OldCriterion<1>()), read);
  EXPECT_TRUE(read == expected);
  expected.SetValues(1.0, 2.0, 3.0, false);
  ReadToTheEnd(Store(OldCriterion<2>()), read);
  EXPECT_TRUE(read == expected);
}

TEST(CellsPersistence, KeepsCriteriaUnderTheirBases) {
  algorithm::datatypes::CriterionSequence criteria(3);
  criteria.Add(L"safe", {enums::CriterionType::LIMIT_STATE_GREATER, L"x", L"y"}).SetValues(1.0, 2, true, false);
  algorithm::datatypes::CriterionSequence read;
  Load(Store(criteria), read);
  EXPECT_TRUE(read == criteria);
  EXPECT_EQ(testing::FirstNameOutOfOrder(
                criteria, {"header_", "seq_", "first", "second", "CriterionDescription", "type_", "lhs_", "rhs_",
                           "CriterionValue", "value_", "lhs_value_", "rhs_value_", "needeval_"}),
            "");
}

// Walks the bytes with the plain reader: a list of pairs of text and cell, as a standard list gives it.
TEST(CellsPersistence, StoresASequenceAsAListOfPairs) {
  CDesignEntrySequence sequence(9);
  sequence.Add(L"a", 2.5);
  sequence.Add(L"b", L"text");
  testing::PlainArchiveReader reader(Store(sequence));
  reader.ReadHeader();
  EXPECT_FALSE(reader.BeginObject("sequence").tracked);
  EXPECT_EQ(reader.Expect("header_").ReadUnsigned(), 9u);
  reader.Expect("seq_").BeginObject("list");
  EXPECT_EQ(reader.ReadCount(), 2u);
  for (const std::string name : {"a", "b"}) {
    EXPECT_FALSE(reader.Expect("item").BeginObject("pair").tracked);
    EXPECT_EQ(reader.Expect("first").ReadString(), name);
    const auto cell = reader.Expect("second").BeginObject("cell");
    EXPECT_TRUE(cell.tracked && cell.version == 5);
    EXPECT_TRUE(reader.Expect("data_").BeginObject("variant").tracked);
    EXPECT_EQ(reader.Expect("which").ReadSigned(), name == "a" ? 1 : 3);
    reader.Expect("value");
    EXPECT_EQ(name == "a" ? std::to_string(reader.ReadDouble()) : reader.ReadString(),
              name == "a" ? "2.500000" : "text");
  }
  EXPECT_TRUE(reader.AtEnd());
}

TEST(CellsPersistence, KeepsSequencesAndRefusesRepeatedNames) {
  CVariantSequence values;
  values.Add(L"a", Scalar(1, 2));
  values.Add(L"b", Vector({1, 2}));
  CVariantSequence read;
  Load(Store(values), read);
  EXPECT_TRUE(read == values);

  std::string bytes = Store(values);
  const std::size_t name = bytes.rfind("b");
  ASSERT_NE(name, std::string::npos);
  bytes[name] = 'a';
  EXPECT_THROW(Load(bytes, read), boost::archive::archive_exception);
}

}  // namespace
}  // namespace kestrel
