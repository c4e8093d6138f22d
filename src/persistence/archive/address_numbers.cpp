#include "persistence/archive/address_numbers.h"

namespace kestrel::portable_binary_archive_impl {

void AddressNumbers::Grow() {
  constexpr std::size_t kFirstSize = 128;
  std::vector<Entry> old(entries_.empty() ? kFirstSize : 4 * entries_.size());
  old.swap(entries_);
  for (const Entry& entry : old) {
    if (entry.address != nullptr) Find(entry.address, entry.kind) = entry;
  }
}

}  // namespace kestrel::portable_binary_archive_impl
