#include "persistence/archive/round_trip.h"
#include "persistence/archive/test_records.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

// This program counts what its allocations hold, so that a reader that trusts a number in a file, or loses an object
// when it gives up, is seen at once.

namespace {

std::atomic<std::size_t> live_bytes{0};
std::atomic<std::size_t> peak_bytes{0};

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  const std::size_t live = live_bytes += malloc_usable_size(memory);
  if (live > peak_bytes) peak_bytes = live;
  return memory;
}

// Without this one a sanitizer's own would meet our delete.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void operator delete(void* memory) noexcept {
  live_bytes -= malloc_usable_size(memory);
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace kestrel::testing {
namespace {

/// What a load may hold at its highest: the reader itself and the record, whatever the file promises.
constexpr std::size_t kMostBytes = std::size_t{1} << 20;

/// Loads a record, which may raise exceptions of the archive only; expects that memory stays low and is given back.
/// Returns whether the record was read.
template <class Record>
bool Survives(const std::string& bytes, unsigned flags, std::streambuf* pipe = nullptr) {
  std::istringstream file(bytes);
  std::istream stream(pipe != nullptr ? pipe : file.rdbuf());
  const std::size_t before = live_bytes;
  peak_bytes = before;
  bool is_read = false;
  try {
    Record record;
    portable_binary_iarchive(stream, flags) >> record;
    is_read = true;
  } catch (const boost::archive::archive_exception&) {
  }
  EXPECT_LE(peak_bytes - before, kMostBytes);
  EXPECT_EQ(live_bytes, before) << "leak";
  return is_read;
}

class Pipe : public std::streambuf {
 public:
  explicit Pipe(std::string bytes) : bytes_(std::move(bytes)) {
    setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
  }

 private:
  std::string bytes_;
};

constexpr unsigned kModes[] = {0x1000U, 0x3000U};
constexpr unsigned kPassOverMismatches = 0x200000;

TEST(HostileFiles, EveryTruncationIsRefused) {
  for (const unsigned mode : kModes) {
    const std::string whole = Write(MakeMixed(), mode);
    EXPECT_TRUE(Survives<Mixed>(whole, kPassOverMismatches));
    for (std::size_t size = 0; size < whole.size(); ++size) {
      EXPECT_FALSE(Survives<Mixed>(whole.substr(0, size), kPassOverMismatches)) << mode << ", " << size << " bytes";
    }
  }
}

TEST(HostileFiles, EveryFlippedBitIsReadOrRefused) {
  for (const unsigned mode : kModes) {
    const std::string whole = Write(MakeMixed(), mode);
    for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
      std::string bytes = whole;
      bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ (1 << bit % 8));
      SCOPED_TRACE(bit);
      Survives<Mixed>(bytes, kPassOverMismatches);
      Pipe pipe(bytes);
      Survives<Mixed>({}, kPassOverMismatches, &pipe);
      if (HasFailure()) return;
    }
  }
}

struct Large {
  template <class Archive>
  void serialize(Archive&, unsigned) {}
  double content[50] = {};
};

TEST(HostileFiles, CountsThatTheFileCannotHoldTakeNoMemory) {
  const std::string huge = "ffff ffff ffff ffff 0700";  // 2^63 - 1
  const std::string million = "c084 1e00";
  const std::string zeros(200, '0');
  const auto refused = [](auto record, const std::string& hex) {
    Pipe pipe(Bytes(hex));
    return !Survives<decltype(record)>(Bytes(hex), kNoHeader) && !Survives<decltype(record)>({}, kNoHeader, &pipe);
  };
  for (const std::string& count : {huge, million}) {
    SCOPED_TRACE(count);
    EXPECT_TRUE(refused(std::string(), count + zeros));
    EXPECT_TRUE(refused(std::wstring(), count + zeros));
    EXPECT_TRUE(refused(std::vector<double>(), count + zeros));
    EXPECT_TRUE(refused(std::vector<bool>(), count + zeros));
    EXPECT_TRUE(refused(std::vector<std::string>(), "0000 0000" + count + zeros));
    EXPECT_TRUE(refused(std::list<std::string>(), "0000 0000" + count + zeros));
    EXPECT_TRUE(refused(std::map<int, int>(), "0000 0000" + count + zeros));
    EXPECT_TRUE(refused(math::Matrix(), "0000 0200" + count + "0200" + zeros)) << "columns";
    EXPECT_TRUE(refused(math::Matrix(), "0000 0200 0200" + count + zeros)) << "rows";
    EXPECT_TRUE(refused(math::Matrix(), "0000 0200" + count + count + zeros)) << "both";
    EXPECT_TRUE(refused(math::Vector(), "0000 0200 0100" + count + zeros));
    EXPECT_TRUE(refused(math::IndexVector(), "0000 0200 0100" + count + zeros));
    EXPECT_TRUE(refused(boost::dynamic_bitset<>(), "0000 0000" + count + "0100 0000 0000")) << "bits without blocks";
  }
  EXPECT_TRUE(refused(math::Matrix(), "0000 0200 0000" + huge)) << "rows of nothing";
  EXPECT_TRUE(refused(math::Matrix(), "0000 0200 ff7f 0000" + zeros)) << "-1 columns";
  EXPECT_TRUE(refused(math::Vector(), "0000 0200 0200 0100" + zeros)) << "a vector of 2 columns";
  EXPECT_TRUE(refused(boost::dynamic_bitset<>(), "0000 0000 4100 0100 0000 0000")) << "65 bits in 1 block";
  EXPECT_FALSE(refused(boost::dynamic_bitset<>(), "0000 0000 4000 0100 0000 0000")) << "64 bits in 1 block";
}

TEST(HostileFiles, BucketCountsAreNotBelieved) {
  EXPECT_TRUE(
      Survives<boost::unordered_set<int>>(Bytes("0000 0000 0100 ffff ffff ffff ffff 0700 0000 0500"), kNoHeader));
}

TEST(HostileFiles, VariantsHaveTheirAlternativesOnly) {
  using Record = boost::variant<int, std::string>;
  EXPECT_TRUE(Survives<Record>(Bytes("0100 0000 0000 0000 0700"), kNoHeader));
  EXPECT_FALSE(Survives<Record>(Bytes("0100 0000 0000 0200 0700"), kNoHeader));
  EXPECT_FALSE(Survives<Record>(Bytes("0100 0000 0000 ff7f 0700"), kNoHeader));
}

TEST(HostileFiles, ElementsWithoutBytesDoNotFillTheMemory) {
  // 200,000 elements of 400 bytes each in memory and none in the file: 80 MB from 400 kB
  std::ostringstream stream;
  portable_binary_oarchive archive(stream, kNoHeader);
  archive << std::vector<Large>();
  const std::string preamble = stream.str().substr(0, 4);
  const std::string bytes = preamble + Bytes("c08c 0600 0000 0000 0000") + std::string(400000, '\0');
  const std::size_t before = live_bytes;
  peak_bytes = before;
  EXPECT_THROW(Read<std::vector<Large>>(bytes, kNoHeader), boost::archive::archive_exception);
  EXPECT_LT(peak_bytes - before, std::size_t{60} << 20);
}

}  // namespace
}  // namespace kestrel::testing
