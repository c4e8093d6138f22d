#include "persistence/archive/round_trip.h"
#include "support/plain_archive_reader.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace kestrel::testing {
namespace {

constexpr std::int64_t kLowest = std::numeric_limits<std::int64_t>::min();

TEST(ArchiveWords, SignedIntegersHaveTheseBytes) {
  const struct {
    std::int64_t value;
    const char* bytes;
    std::int64_t read_back;
  } cases[] = {
      {0, "0000", 0},
      {1, "0100", 1},
      {16383, "ff3f", 16383},
      {16384, "00c0 0000", 16384},
      {32767, "ffff 0000", 32767},
      {std::int64_t{1} << 32, "0080 0080 0400", std::int64_t{1} << 32},
      {-1, "ff7f", -1},
      {-16384, "0040", -16384},
      {-16385, "ff3f", 16383},  // the sign bit of a single word is lost from here on
      {-32767, "0100", 1},
      {-32768, "0080 ff7f", -32768},
      {kLowest, "0080 0080 0080 0080 f87f", kLowest},
      {std::numeric_limits<std::int64_t>::max(), "ffff ffff ffff ffff 0700", std::numeric_limits<std::int64_t>::max()},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Write(c.value, kNoHeader), Bytes(c.bytes)) << c.value;
    EXPECT_EQ(Read<std::int64_t>(Bytes(c.bytes), kNoHeader), c.read_back) << c.value;
    EXPECT_EQ(PlainArchiveReader(Bytes(c.bytes)).ReadSigned(), c.read_back) << c.value;
  }
}

TEST(ArchiveWords, UnsignedIntegersHaveTheseBytes) {
  const struct {
    std::uint64_t value;
    const char* bytes;
  } cases[] = {
      {0, "0000"},
      {16383, "ff3f"},
      {16384, "00c0 0000"},
      {std::uint64_t{1} << 63, "0080 0080 0080 0080 0800"},
      {std::numeric_limits<std::uint64_t>::max(), "ffff ffff ffff ffff 0f00"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Write(c.value, kNoHeader), Bytes(c.bytes)) << c.value;
    EXPECT_EQ(Read<std::uint64_t>(Bytes(c.bytes), kNoHeader), c.value);
  }
}

RC_GTEST_PROP(ArchiveWords, PlainReaderSeesWhatIsWritten, (std::int64_t seed, std::uint64_t natural)) {
  const std::int64_t value = seed >> (natural % 64);  // all magnitudes
  const std::string bytes = Write(value, kNoHeader);
  RC_ASSERT(PlainArchiveReader(bytes).ReadSigned() == Read<std::int64_t>(bytes, kNoHeader));
  RC_ASSERT(PlainArchiveReader(Write(natural, kNoHeader)).ReadUnsigned() == natural);
}

/// True if the bytes are refused as an integer of type T for the reason that it cannot hold them.
template <class T>
bool IsUnrepresentable(const char* bytes) {
  try {
    Read<T>(Bytes(bytes), kNoHeader);
    return false;
  } catch (const portable_binary_iarchive_exception& error) {
    return std::string(error.what()) == "integer cannot be represented";
  }
}

TEST(ArchiveWords, RefusesWhatTheTypeCannotHold) {
  EXPECT_TRUE(IsUnrepresentable<std::uint64_t>("ff7f")) << "-1";
  EXPECT_TRUE(IsUnrepresentable<std::uint32_t>("0080 0080 0400")) << "2^32";
  EXPECT_FALSE(IsUnrepresentable<std::uint32_t>("ffff ffff 0300")) << "2^32 - 1";
  EXPECT_TRUE(IsUnrepresentable<std::int32_t>("0080 0080 0200")) << "2^31";
  EXPECT_FALSE(IsUnrepresentable<std::int32_t>("0080 0080 fe7f")) << "-2^31";
  EXPECT_TRUE(IsUnrepresentable<std::int32_t>("ffff ffff fd7f")) << "-2^31 - 1";
  EXPECT_TRUE(IsUnrepresentable<std::int64_t>("0080 0080 0080 0080 0800")) << "2^63";
  EXPECT_TRUE(IsUnrepresentable<std::int64_t>("ffff ffff ffff ffff f77f")) << "-2^63 - 1";
  EXPECT_TRUE(IsUnrepresentable<std::int64_t>("0080 0080 0080 0080 1000")) << "2^64";
  EXPECT_TRUE(IsUnrepresentable<std::int64_t>("0080 0080 0080 0080 0080 0000")) << "90 bits";
  EXPECT_TRUE(IsUnrepresentable<bool>("0200")) << "a bool of 2";
  EXPECT_TRUE(IsUnrepresentable<bool>("ff7f")) << "a bool of -1";
}

TEST(ArchiveWords, DoublesKeepEveryBit) {
  for (const double value : {0.0, -0.0, 1.0 / 3.0, std::numeric_limits<double>::denorm_min(),
                             -std::numeric_limits<double>::infinity(), std::nan("7")}) {
    std::string raw(sizeof(value), '\0');
    std::memcpy(raw.data(), &value, sizeof(value));
    EXPECT_EQ(Write(value, kNoHeader), raw);
    const auto read = Read<double>(raw, kNoHeader);
    EXPECT_EQ(std::memcmp(&read, &value, sizeof(value)), 0) << value;
  }
}

TEST(ArchiveTexts, AreUtf8WithTheirLengthInBytes) {
  EXPECT_EQ(Write(std::string("a\0b", 3), kNoHeader), Bytes("0300 610062"));
  EXPECT_EQ(Write(std::wstring(L"\u00e4\U0001F600"), kNoHeader), Bytes("0600 c3a4 f09f9880"));
  EXPECT_EQ(Read<std::wstring>(Bytes("0600 c3a4 f09f9880"), kNoHeader), L"\u00e4\U0001F600");
  EXPECT_EQ(Write(std::wstring(1, static_cast<wchar_t>(0xD800)), kNoHeader), Bytes("0100 3f")) << "no UTF-8: a ?";
  EXPECT_EQ(Read<std::wstring>(Bytes("0300 61ff62"), kNoHeader), L"a\ufffdb");
  const std::string long_text(100000, 'x');
  EXPECT_EQ(Read<std::string>(Write(long_text)), long_text);
  EXPECT_EQ(Write(std::filesystem::path("/\u00e4"), kNoHeader), Bytes("0300 2fc3a4"));
  EXPECT_EQ(Read<boost::filesystem::path>(Bytes("0200 2f78"), kNoHeader), "/x");
}

TEST(ArchiveWords, UuidIsSixteenRawBytes) {
  boost::uuids::uuid id{};
  for (std::uint8_t i = 0; i < 16; ++i) id.data[i] = i;
  EXPECT_EQ(Write(id, kNoHeader), Bytes("000102030405060708090a0b0c0d0e0f"));
  EXPECT_EQ(Read<boost::uuids::uuid>(Write(id)), id);
}

/// A sink that takes a limited number of bytes, one at a time or in a run.
class FullDisk : public std::streambuf {
 public:
  explicit FullDisk(std::streamsize room) : room_(room) {}

 private:
  int_type overflow(int_type c) override { return room_-- > 0 ? traits_type::not_eof(c) : traits_type::eof(); }
  std::streamsize xsputn(const char*, std::streamsize count) override {
    const std::streamsize taken = std::min(room_, count);
    room_ -= taken;
    return taken;
  }
  int sync() override { return room_ > 0 ? 0 : -1; }

  std::streamsize room_;
};

TEST(Archive, ShortWriteRaisesAtOnce) {
  const auto code_with_room = [](std::streamsize room) {
    FullDisk disk(room);
    std::ostream stream(&disk);
    try {
      portable_binary_oarchive archive(stream);
      const std::string text = "text";
      archive << text;
      archive.Flush();
    } catch (const boost::archive::archive_exception& error) {
      return error.code;
    }
    return boost::archive::archive_exception::no_exception;
  };
  constexpr std::streamsize kNeeded = 8 + 2 + 4;
  for (std::streamsize room = 0; room <= kNeeded; ++room) {
    EXPECT_EQ(code_with_room(room), boost::archive::archive_exception::output_stream_error) << room;
  }
  EXPECT_EQ(code_with_room(kNeeded + 1), boost::archive::archive_exception::no_exception);
}

}  // namespace
}  // namespace kestrel::testing
