#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "handle.h"

// What comes from a file may be anything. A read ends in success or in a code, in bounded time and memory, and what was
// read can be asked without harm.

namespace zor_test {
namespace {

std::string StoreSmallModel() {
  const Handle built = MakeBuilt(MakeTable(8, 2, 1));
  void* buffer = nullptr;
  std::size_t size = 0;
  EXPECT_EQ(zor_write_db_buf(built.get(), &buffer, &size), zor_success);
  std::string bytes(static_cast<const char*>(buffer), size);
  zor_release_buf(buffer);
  return bytes;
}

/// True if it was taken for a model. Asks that for all that touches its data.
bool ReadAndAsk(const std::string& bytes) {
  zor_handle_t raw = nullptr;
  if (zor_read_db_buf(&raw, bytes.data(), bytes.size()) != zor_success) return false;
  const Handle handle(raw);
  uint32_t inputs = 0;
  uint32_t outputs = 0;
  if (zor_get_input_count(raw, &inputs) != zor_success || inputs > 16) return true;
  if (zor_get_output_count(raw, &outputs) != zor_success || outputs > 16) return true;
  const std::vector<double> point(inputs, 0.5);
  std::vector<double> values(64);
  zor_solve_extrapolate(raw, point.data(), values.data(), 1);
  zor_calculate_gradients_per_output_extrapolate(raw, 0, point.data(), 1, values.data());
  zor_calculate_errors_per_output_extrapolate(raw, 0, point.data(), 1, values.data());
  zor_get_input_bounds(raw, values.data());
  return true;
}

/// Mismatched annotations are reported on the standard error stream: thousands of lines here.
class Quiet {
 public:
  Quiet() { ::testing::internal::CaptureStderr(); }
  ~Quiet() { ::testing::internal::GetCapturedStderr(); }
};

TEST(HostileModel, TruncatedAnywhereIsRefused) {
  const Quiet quiet;
  const std::string whole = StoreSmallModel();
  ASSERT_TRUE(ReadAndAsk(whole));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(ReadAndAsk(whole.substr(0, size))) << "at byte " << size << " of " << whole.size();
  }
}

TEST(HostileModel, WithAnySingleBitFlippedDoesNoHarm) {
  const Quiet quiet;
  const std::string whole = StoreSmallModel();
  double slowest = 0.0;
  for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
    std::string flipped = whole;
    flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
    const auto start = std::chrono::steady_clock::now();
    ReadAndAsk(flipped);
    slowest = std::max(slowest, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  EXPECT_LT(slowest, 1.0);
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  EXPECT_LT(usage.ru_maxrss, 1024 * 1024) << "KiB";
}

/// The numbers 2^31, 2^63 and -1 in the words of the format.
const std::string kHugeNumbers[] = {
    {"\x00\x80\x00\x80\x02\x00", 6}, {"\x00\x80\x00\x80\x00\x80\x00\x80\x08\x00", 10}, {"\xff\x7f", 2}};

TEST(HostileModel, WithAHugeNumberAtAnyWordDoesNoHarm) {
  const Quiet quiet;
  const std::string whole = StoreSmallModel();
  for (std::size_t position = 8; position + 2 <= whole.size(); position += 2) {
    for (const std::string& huge : kHugeNumbers) {
      ReadAndAsk(whole.substr(0, position) + huge + whole.substr(position + 2));
    }
  }
}

}  // namespace
}  // namespace zor_test
