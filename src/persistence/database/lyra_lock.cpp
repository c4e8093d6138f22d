#include "persistence/database/lyra_lock.h"

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <boost/interprocess/exceptions.hpp>
#include <boost/interprocess/permissions.hpp>

namespace kestrel::algorithm::datatypes::detail {
namespace {

namespace interprocess = boost::interprocess;

constexpr int kRights = 0644;

/// Condition variables of the C library can lose a wake-up, so a long wait is a row of short ones: each looks at the
/// lock anew.
constexpr std::chrono::milliseconds kSlice{20};

std::uint64_t Combine(std::uint64_t hash, std::uint64_t value) {
  constexpr std::uint64_t kMultiplier = 0xc6a4a7935bd1e995;
  constexpr int kShift = 47;
  constexpr std::uint64_t kAddend = 0xe6546b64;
  value *= kMultiplier;
  value ^= value >> kShift;
  value *= kMultiplier;
  return (hash ^ value) * kMultiplier + kAddend;
}

bool LockWithin(interprocess::named_sharable_mutex& mutex, std::chrono::milliseconds longest_wait) {
  const auto end = std::chrono::steady_clock::now() + longest_wait;
  do {
    const auto now = boost::posix_time::microsec_clock::universal_time();
    if (mutex.timed_lock(now + boost::posix_time::milliseconds(kSlice.count()))) return true;
  } while (std::chrono::steady_clock::now() < end);
  return false;
}

}  // namespace

std::uint64_t HashBytes(std::string_view path) {
  std::uint64_t hash = 0;
  for (const char byte : path) hash = Combine(hash, static_cast<std::uint64_t>(static_cast<signed char>(byte)));
  return Combine(0, hash);
}

std::string hash_str(std::string_view path) { return "kestrel-lyra-" + std::to_string(HashBytes(path)); }

PathWriteLock::PathWriteLock(std::string_view path, std::chrono::milliseconds longest_wait) {
  const std::string name = hash_str(path);
  try {
    mutex_.emplace(interprocess::open_or_create, name.c_str(), interprocess::permissions(kRights));
    if (LockWithin(*mutex_, longest_wait)) return;
    interprocess::named_sharable_mutex::remove(name.c_str());
  } catch (const interprocess::interprocess_exception&) {
    // A save without its turn is better than none.
  }
  mutex_.reset();
}

PathWriteLock::~PathWriteLock() {
  if (mutex_) mutex_->unlock();
}

}  // namespace kestrel::algorithm::datatypes::detail
