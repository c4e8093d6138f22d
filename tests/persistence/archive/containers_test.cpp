#include "persistence/archive/round_trip.h"
#include "persistence/archive/test_records.h"
#include "support/matrix_compare.h"
#include "support/plain_archive_reader.h"

#include <gtest/gtest.h>

namespace kestrel::testing {
namespace {

constexpr unsigned kUnannotated = kNoHeader;
constexpr char kHalf[] = "000000000000e03f";

TEST(ArchiveContainers, HaveTheseBytes) {
  EXPECT_EQ(Write(std::vector<double>{0.5}, kUnannotated), Bytes("0100 0000") + Bytes(kHalf));
  EXPECT_EQ(Write(std::vector<double>{0.5}).substr(8), std::string(Bytes("e1e4 0100 c252 0000 3020")) + Bytes(kHalf))
      << "count, item_version, item";
  EXPECT_EQ(Write(std::vector<bool>{true, false}, kUnannotated), Bytes("0200 0100 0000")) << "no item_version";
  EXPECT_EQ(Write(std::list<std::wstring>{L"a"}, kUnannotated), Bytes("0000 0000 0100 0000 0100 61"));
  EXPECT_EQ(Write(std::map<int, int>{{1, 2}}, kUnannotated), Bytes("0000 0000 0100 0000 0000 0000 0100 0200"));
  EXPECT_EQ(Write(std::vector<Cell>(1), kUnannotated).substr(0, 8), Bytes("0000 0000 0100 0300"))
      << "item_version is the class version of the elements";
  EXPECT_EQ(Write(boost::optional<int>(7), kUnannotated), Bytes("0000 0100 0100 0700"));
  EXPECT_EQ(Write(std::optional<int>(7), kUnannotated), Bytes("0000 0100 0100 0700"));
  EXPECT_EQ(Write(boost::variant<int, std::string>("a"), kUnannotated), Bytes("0100 0000 0000 0100 0100 61"))
      << "tracked always";
  EXPECT_EQ(Write(boost::dynamic_bitset<>(3, 5), kUnannotated), Bytes("0000 0000 0300 0100 0000 0500"));
}

TEST(ArchiveMatrices, AreRawBehindTheirSizes) {
  const math::Matrix matrix = math::Matrix::Constant(2, 1, 0.5);
  const std::string body = Bytes("0100 0200") + Bytes(kHalf) + Bytes(kHalf);
  EXPECT_EQ(Write(matrix).substr(8), Bytes("0000 0200") + body) << "no annotations in version 2";
  EXPECT_EQ(Write(math::Vector(matrix)).substr(8), Bytes("0000 0200") + body);
  EXPECT_EQ(Write(math::Matrix(0, 3)).substr(8), Bytes("0000 0200 0300 0000"));
  EXPECT_EQ(Write((math::IndexVector(2) << 3, 16384).finished()).substr(8),
            Bytes("0000 0200 0100 0200 0300 00c0 0000"));
  EXPECT_EQ(Read<math::Matrix>(Write(math::Matrix(0, 3))).cols(), 3);
}

TEST(ArchiveMatrices, OfOldVersionsAreAnnotated) {
  const auto sum_of = [](const char* name) {
    const std::uint16_t sum = PlainChecksum(name);
    return std::string{static_cast<char>(sum & 0xFFU), static_cast<char>(sum >> 8)};
  };
  const std::string body =
      sum_of("cols") + Bytes("0100") + sum_of("rows") + Bytes("0100") + sum_of("item") + Bytes(kHalf);
  const std::string bytes = Bytes("4b4241 04 1100 0300 0000 0100") + body;
  EXPECT_TRUE(MatrixNear(Read<math::Matrix>(bytes, 0x100000), math::Matrix::Constant(1, 1, 0.5), 0.0));
  EXPECT_TRUE(MatrixNear(Read<math::Vector>(bytes, 0x100000), math::Matrix::Constant(1, 1, 0.5), 0.0));
}

void ExpectSameAsMade(const Mixed& read) {
  const Mixed made = MakeMixed();
  EXPECT_EQ(read.numbers, made.numbers);
  ASSERT_EQ(read.cells.size(), 3U);
  EXPECT_EQ(read.cells[2].value, 3.0);
  EXPECT_EQ(read.cells[2].read_version, 3U);
  EXPECT_EQ(read.texts, made.texts);
  EXPECT_EQ(read.cell_map.at("b").value, 5.0);
  EXPECT_EQ(read.set, made.set);
  EXPECT_EQ(read.hash_set, made.hash_set);
  EXPECT_EQ(read.flags, made.flags);
  EXPECT_EQ(read.bits, made.bits);
  EXPECT_EQ(read.boost_optional->value, 6.0);
  EXPECT_EQ(read.optional, made.optional);
  EXPECT_EQ(boost::get<Cell>(read.variant).value, 7.0);
  EXPECT_TRUE(MatrixNear(read.matrix, made.matrix, 0.0));
  EXPECT_TRUE(MatrixNear(read.vector, made.vector, 0.0));
  EXPECT_EQ(read.indices, made.indices);
  EXPECT_EQ(read.shape->Area(), 4.0);
  EXPECT_EQ(read.shape, read.same_shape);
  EXPECT_EQ(dynamic_cast<const Square&>(*read.shape).next->Area(), 0.0);
  EXPECT_EQ(read.boost_disc->radius, 0.0);
  EXPECT_EQ(read.owned->number, 0);
}

TEST(ArchiveContainers, ComeBackInEveryMode) {
  for (const unsigned mode : {0x1000U, 0x2000U, 0x3000U, kNoHeader}) {
    SCOPED_TRACE(mode);
    const std::string bytes = Write(MakeMixed(), mode);
    Mixed read = MakeMixed();
    read.numbers.clear();
    ReadInto(bytes, read, 0x100000 | (mode & kNoHeader));
    ExpectSameAsMade(read);
    EXPECT_EQ(Write(read, mode), bytes);
  }
}

/// A stream that cannot tell how much it has left, nor go back.
class Pipe : public std::streambuf {
 public:
  explicit Pipe(std::string bytes) : bytes_(std::move(bytes)) {
    setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
  }

 private:
  std::string bytes_;
};

TEST(ArchiveContainers, ComeThroughAPipe) {
  Pipe pipe(Write(MakeMixed()));
  std::istream stream(&pipe);
  Mixed read;
  portable_binary_iarchive(stream, 0x100000) >> read;
  ExpectSameAsMade(read);
}

TEST(ArchiveContainers, PlainReaderWalksThem) {
  PlainArchiveReader reader(Write(MakeMixed()));
  reader.ReadHeader();
  reader.BeginObject("Mixed");
  reader.Expect("numbers_").BeginObjectWithoutClassInfo("vector<double>");
  ASSERT_EQ(reader.ReadCount(), 2U);
  EXPECT_EQ(reader.Expect("item").ReadDouble(), 0.5);
  EXPECT_EQ(reader.Expect("item").ReadDouble(), -1.0);
  reader.Expect("cells_").BeginObject("vector<Cell>");
  ASSERT_EQ(reader.ReadCount(3), 3U);
  for (std::uint64_t i = 0; i < 3; ++i) {
    const auto cell = reader.Expect("item").BeginObject("Cell");
    EXPECT_EQ(cell.version, 3U);
    EXPECT_EQ(cell.object_id, i);
    EXPECT_EQ(reader.Expect("value_").ReadDouble(), static_cast<double>(i + 1));
  }
  reader.Expect("texts_").BeginObject("list<wstring>");
  ASSERT_EQ(reader.ReadCount(), 2U);
  EXPECT_EQ(reader.Expect("item").ReadString(), "one");
  EXPECT_EQ(reader.Expect("item").ReadString(), "\u00e4");
  EXPECT_NO_THROW(reader.Expect("cell_map_"));
}

/// Points at one of the cells of a vector.
struct PointingRecord {
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("cells_", cells) & boost::serialization::make_nvp("chosen_", chosen);
  }
  std::vector<Cell> cells;
  Cell* chosen = nullptr;
};

TEST(ArchiveContainers, TrackedElementsKeepTheirAddressWhileTheVectorGrows) {
  PointingRecord written;
  written.cells.resize(1000);
  written.cells[17].value = 4.0;
  written.chosen = &written.cells[17];
  const auto read = Read<PointingRecord>(Write(written));
  EXPECT_EQ(read.chosen, &read.cells[17]);
}

}  // namespace
}  // namespace kestrel::testing
