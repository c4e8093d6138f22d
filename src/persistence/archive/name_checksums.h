#pragma once

#include "persistence/archive/archive_format.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string>

namespace kestrel::portable_binary_archive_impl {

/// The checksums of item names, remembered: an archive meets few names, each of them very often. A slot is found by the
/// address of the text and holds a copy of it, because the text behind an address can change.
class NameChecksums {
 public:
  struct Slot {
    std::string name;
    std::uint16_t checksum = 0;
    bool used = false;  ///< for the owner's purposes; false again when the slot passes to another name
  };

  Slot& operator[](const char* name) {
    constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15;  // of 2^64: Fibonacci hashing (Knuth)
    Slot& slot = slots_[reinterpret_cast<std::uintptr_t>(name) * kGoldenRatio >> (64 - kSlotBits)];
    if (std::strcmp(slot.name.c_str(), name) != 0) {
      slot.name = name;
      slot.checksum = Crc16(slot.name.data(), slot.name.size(), 0);
      slot.used = false;
    }
    return slot;
  }

 private:
  static constexpr unsigned kSlotBits = 9;

  std::array<Slot, 1U << kSlotBits> slots_;  // an empty name has the checksum 0, as the empty slots say
};

}  // namespace kestrel::portable_binary_archive_impl
