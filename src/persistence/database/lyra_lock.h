#pragma once

#include <boost/interprocess/sync/named_sharable_mutex.hpp>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrel::algorithm::datatypes::detail {

/// A path as a number: the combining step of a 64-bit `boost::hash_combine` over its bytes as signed values, from 0,
/// and the same step once more, from 0, over what came out. With m = 0xc6a4a7935bd1e995 the step is
///
///   combine(h, k) = (h ^ (k m ^ (k m >> 47)) m) m + 0xe6546b64.
std::uint64_t HashBytes(std::string_view path);

/// The name of the lock of a path: "kestrel-lyra-" and the number in decimal digits.
std::string hash_str(std::string_view path);

/// While it lives, no other process writes to the path, if they all ask. The lock is a named object in shared memory of
/// 160 bytes with the rights 0644, which holds a reader-writer lock; it stays there for the next save.
///
/// Where the lock cannot be had, the writing goes on without it: that is so when shared memory fails, and when nobody
/// gives it back in time, which means that its holder died. The object is then removed, so that later saves have a
/// fresh one and need not wait.
class PathWriteLock {
 public:
  static constexpr std::chrono::seconds kLongestWait{60};

  explicit PathWriteLock(std::string_view path, std::chrono::milliseconds longest_wait = kLongestWait);
  ~PathWriteLock();
  PathWriteLock(const PathWriteLock&) = delete;
  PathWriteLock& operator=(const PathWriteLock&) = delete;

  bool IsLocked() const { return mutex_.has_value(); }

 private:
  std::optional<boost::interprocess::named_sharable_mutex> mutex_;
};

}  // namespace kestrel::algorithm::datatypes::detail
