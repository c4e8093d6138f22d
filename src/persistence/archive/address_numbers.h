#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace kestrel::portable_binary_archive_impl {

/// Numbers addresses in the order in which they first appear. The first member of an object stands at the address of
/// the whole, so a kind, say a number of the class, tells objects at one address apart.
class AddressNumbers {
 public:
  std::uint32_t Count() const { return count_; }

  /// The number of the address and whether it is new. The address is not null.
  std::pair<std::uint32_t, bool> Add(const void* address, std::uint32_t kind = 0) {
    if (entries_.size() <= 2 * std::size_t{count_}) Grow();
    Entry& entry = Find(address, kind);
    if (entry.address != nullptr) return {entry.number, false};
    entry = {address, kind, count_};
    return {count_++, true};
  }

 private:
  struct Entry {
    const void* address = nullptr;  ///< null: a free place
    std::uint32_t kind = 0;
    std::uint32_t number = 0;
  };

  /// Where the entry stands, or the free place for it: linear probing in a table that is at most half full.
  Entry& Find(const void* address, std::uint32_t kind) {
    constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15;  // of 2^64: Fibonacci hashing (Knuth)
    constexpr unsigned kHighBits = 32;
    const std::uint64_t hash = (reinterpret_cast<std::uintptr_t>(address) ^ kind) * kGoldenRatio;
    const std::size_t mask = entries_.size() - 1;
    std::size_t place = (hash >> kHighBits) & mask;
    while (entries_[place].address != nullptr && (entries_[place].address != address || entries_[place].kind != kind)) {
      place = (place + 1) & mask;
    }
    return entries_[place];
  }

  void Grow();

  std::vector<Entry> entries_;  // a power of two of them
  std::uint32_t count_ = 0;
};

}  // namespace kestrel::portable_binary_archive_impl
