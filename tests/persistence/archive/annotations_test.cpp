#include "persistence/archive/round_trip.h"
#include "support/plain_archive_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iostream>

namespace kestrel::testing {
namespace {

using boost::serialization::make_nvp;
using ::testing::HasSubstr;

/// What `act` prints on std::cerr.
template <class Act>
std::string Printed(Act act) {
  std::ostringstream text;
  std::streambuf* const before = std::cerr.rdbuf(text.rdbuf());
  act();
  std::cerr.rdbuf(before);
  return text.str();
}

std::string WriteFields(std::initializer_list<const char*> names, unsigned flags) {
  std::ostringstream stream;
  portable_binary_oarchive archive(stream, flags);
  int value = 0;
  for (const char* name : names) archive << make_nvp(name, ++value);
  return stream.str();
}

/// Reads fields under these names and returns the sum of their values.
int ReadFields(const std::string& bytes, std::initializer_list<const char*> names, unsigned flags = 0) {
  std::istringstream stream(bytes);
  portable_binary_iarchive archive(stream, flags);
  int sum = 0;
  for (const char* name : names) {
    int value = 0;
    archive >> make_nvp(name, value);
    sum += value;
  }
  return sum;
}

TEST(ArchiveChecksum, IsCrc16Kermit) {
  EXPECT_EQ(portable_binary_archive_impl::Crc16("123456789", 9, 0), 0x2189);
  EXPECT_EQ(portable_binary_archive_impl::Crc16("6789", 4, portable_binary_archive_impl::Crc16("12345", 5, 0)), 0x2189);
  EXPECT_EQ(PlainChecksum("123456789"), 0x2189);
}

TEST(ArchiveAnnotations, StandBeforeNamedItems) {
  EXPECT_EQ(WriteFields({"123456789"}, 0x1000).substr(8), Bytes("8921 0100"));
  EXPECT_EQ(WriteFields({"a"}, 0x2000).substr(8), Bytes("0100 61 0100"));
  EXPECT_EQ(WriteFields({"a"}, 0x3000).substr(8), Bytes("0100"));
  EXPECT_EQ(WriteFields({"a"}, kNoHeader), Bytes("0100"));
  EXPECT_EQ(WriteFields({nullptr}, 0x1000).substr(8), Bytes("0100"));
  for (const unsigned mode : {0x1000U, 0x2000U, 0x3000U}) {
    EXPECT_EQ(ReadFields(WriteFields({"a", "b"}, mode), {"a", "b"}, 0x100000), 3) << mode;
  }
}

TEST(ArchiveAnnotations, MismatchIsToldThrownOrPassedOver) {
  const std::string names = WriteFields({"first", "second"}, 0x2000);
  const std::string sums = WriteFields({"first", "second"}, 0x1000);
  for (const std::string& bytes : {names, sums}) {
    EXPECT_EQ(Printed([&] { EXPECT_EQ(ReadFields(bytes, {"first", "other"}, 0x200000), 3); }), "");
    try {
      ReadFields(bytes, {"other"}, 0x100000);
      FAIL() << "a wrong name was read";
    } catch (const portable_binary_iarchive_exception& error) {
      EXPECT_STREQ(error.what(), "annotation mismatch");
    }
  }
  EXPECT_EQ(Printed([&] {
              EXPECT_EQ(ReadFields(names, {"other", "second"}), 3);
            }),
            "portable_binary_iarchive: annotations differ, expected \"other\", got \"first\"\n");
}

TEST(ArchiveAnnotations, ChecksumMismatchNamesTheFieldsItKnows) {
  const std::string bytes = WriteFields({"first", "second", "second", "first"}, 0x1000);
  const std::string first = std::to_string(PlainChecksum("first"));
  const std::string second = std::to_string(PlainChecksum("second"));
  EXPECT_EQ(Printed([&] {
              ReadFields(bytes, {"first", "other"});
            }),
            "portable_binary_iarchive: annotations differ, expected " + std::to_string(PlainChecksum("other")) +
                "(\"other\"), got " + second + "\n");
  EXPECT_EQ(Printed([&] {
              ReadFields(bytes, {"first", "second", "first", "second"});
            }),
            "portable_binary_iarchive: annotations differ, expected " + first + "(\"first\"), got " + second +
                " (could be: second)\n" + "portable_binary_iarchive: annotations differ, expected " + second +
                "(\"second\"), got " + first + " (could be: first)\n");
}

TEST(ArchiveAnnotations, FollowTheTextBehindAnAddress) {
  char name[] = "first";
  std::ostringstream stream;
  portable_binary_oarchive archive(stream, 0x1000);
  archive.write_annotation(name);
  name[0] = 'l';
  archive.write_annotation(name);
  PlainArchiveReader reader(stream.str());
  reader.ReadHeader();
  EXPECT_NO_THROW(reader.Expect("first").Expect("lirst"));
}

TEST(ArchiveAnnotations, GuardsSwitchThemOffAndNest) {
  std::ostringstream stream;
  portable_binary_oarchive annotated(stream);
  const int one = 1;
  {
    const portable_binary_archive_noannotate outer(annotated);
    { const portable_binary_archive_noannotate inner(annotated); }
    annotated << make_nvp("a", one);
  }
  annotated << make_nvp("123456789", one);
  EXPECT_EQ(stream.str().substr(8), Bytes("0100 8921 0100"));
  int other_kind_of_archive = 0;
  const portable_binary_archive_noannotate nothing(other_kind_of_archive);
}

struct Nested {
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& make_nvp("text_", text) & make_nvp("number_", number);
  }
  std::string text = "a\nb";
  int number = 5;
};

TEST(ArchiveSizeReport, ShowsTheBytesOfEveryItem) {
  std::ostringstream stream;
  const Nested written;
  { portable_binary_oarchive(stream, 0x3000) << make_nvp("nested", written); }
  portable_binary_iarchive::size_reporting_ = true;
  const std::string report = Printed([&] {
    std::istringstream input(stream.str());
    Nested nested;
    portable_binary_iarchive(input) >> make_nvp("nested", nested);
    EXPECT_EQ(nested.number, 5);
  });
  portable_binary_iarchive::size_reporting_ = false;
  EXPECT_THAT(report, HasSubstr("\n text_"));
  EXPECT_THAT(report, HasSubstr(" -> 5 \"a\\x0ab\"\n"));
  EXPECT_THAT(report, HasSubstr("\n number_"));
  EXPECT_THAT(report, HasSubstr(" -> 2\n"));
  EXPECT_THAT(report, HasSubstr("\n... nested -> 11\n"));
}

}  // namespace
}  // namespace kestrel::testing
