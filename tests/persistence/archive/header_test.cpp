#include "persistence/archive/round_trip.h"

#include <gtest/gtest.h>

namespace kestrel::testing {
namespace {

using boost::archive::archive_exception;

TEST(ArchiveHeader, TellsVersionsAndAnnotations) {
  const struct {
    unsigned flags;
    const char* header;
  } cases[] = {
      {0, "4b4241 04 1100 0300"},
      {0x1000, "4b4241 04 1100 0300"},
      {0x2000, "4b4241 04 1100 0100"},
      {0x3000, "4b4241 04 1100 0000"},
      {kNoHeader, ""},
  };
  for (const auto& c : cases) EXPECT_EQ(Write(7, c.flags), Bytes(c.header) + Bytes("0700")) << c.flags;
}

/// The code of the exception that making a reader on these bytes raises.
archive_exception::exception_code Refusal(const char* hex) {
  std::istringstream stream(Bytes(hex));
  try {
    const portable_binary_iarchive archive(stream);
  } catch (const archive_exception& error) {
    return error.code;
  }
  return archive_exception::no_exception;
}

TEST(ArchiveHeader, IsCheckedWhenTheReaderIsMade) {
  EXPECT_EQ(Refusal("4b4242 04 1100 0300"), archive_exception::invalid_signature);
  EXPECT_EQ(Refusal("4b4241 05 1100 0300"), archive_exception::invalid_signature);
  EXPECT_EQ(Refusal("4b4241 04 1200 0300"), archive_exception::unsupported_version);
  EXPECT_EQ(Refusal("4b4241 04 1000 0300"), archive_exception::no_exception);
  EXPECT_EQ(Refusal("4b4241 02 1100"), archive_exception::input_stream_error);
  EXPECT_EQ(Refusal("4b4241 01 1100"), archive_exception::no_exception);
  EXPECT_EQ(Refusal("4b42"), archive_exception::input_stream_error);
}

TEST(ArchiveHeader, OldFormatsReadWithoutAnnotations) {
  const auto read = [](const std::string& bytes) {
    std::istringstream stream(bytes);
    portable_binary_iarchive archive(stream, 0x100000);
    int value = 0;
    archive >> boost::serialization::make_nvp("value", value);
    return value;
  };
  EXPECT_EQ(read(Bytes("4b4241 00 0a00 0700")), 7);
  EXPECT_EQ(read(Bytes("4b4241 01 1100 0700")), 7);
  EXPECT_EQ(read(Bytes("4b4241 03 1100 0000 0700")), 7);
  EXPECT_EQ(read(Bytes("4b4241 03 1100 0200 0700")), 7) << "bit 1 says nothing without bit 0";
  EXPECT_EQ(read(Bytes("4b4241 02 1100 0100 0500") + "value" + Bytes("0700")), 7);
}

TEST(ArchiveHeader, LibraryVersionIsThatOfTheFormat) {
  std::stringstream stream;
  portable_binary_oarchive writer(stream);
  portable_binary_iarchive reader(stream);
  EXPECT_EQ(writer.get_library_version(), boost::archive::library_version_type(17));
  EXPECT_EQ(reader.get_library_version(), boost::archive::library_version_type(17));
}

TEST(PortableBinaryArchiveCheck, LooksAtTheHeaderOnly) {
  const struct {
    const char* bytes;
    bool answer;
  } cases[] = {
      {"", false},
      {"4b4241 0411", false},
      {"4b4241 04 1100", false},
      {"4b4241 04 1100 03", false},
      {"4b4241 04 1100 0300", true},
      {"4b4241 02 1100", false},
      {"4b4241 00 1100", true},
      {"4b4241 01 1100", true},
      {"4b4241 05 1100 0300", false},
      {"4b4241 ff 1100 0300", false},
      {"4b4242 04 1100 0300", false},
  };
  for (const auto& c : cases) {
    const std::string bytes = Bytes(c.bytes);
    EXPECT_EQ(PortableBinaryArchiveCheck(bytes.data(), bytes.size()), c.answer) << c.bytes;
  }
}

TEST(Archive, LeavesTheStreamBehindItsLastItem) {
  std::stringstream stream("before", std::ios::in | std::ios::out | std::ios::ate);
  { portable_binary_oarchive(stream) << std::string("text"); }
  stream << "after";
  stream.ignore(6);
  std::string text;
  { portable_binary_iarchive(stream) >> text; }
  EXPECT_EQ(text, "text");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "after");
}

}  // namespace
}  // namespace kestrel::testing
