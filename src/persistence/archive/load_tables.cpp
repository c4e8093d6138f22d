#include "persistence/archive/load_tables.h"

#include <boost/archive/archive_exception.hpp>

#include <limits>

namespace kestrel::portable_binary_archive_impl {

std::size_t LoadTables::Register(const Serializer& serializer) {
  constexpr std::size_t kMostClasses = std::numeric_limits<std::int16_t>::max();
  const auto [id, is_new] = class_numbers_.Add(&serializer);
  if (is_new) {
    using boost::archive::archive_exception;
    if (classes_.size() == kMostClasses) throw archive_exception(archive_exception::input_stream_error);
    classes_.push_back({&serializer});
  }
  return id;
}

void LoadTables::MoveObjects(std::size_t first, const void* from, const void* to, std::size_t size) {
  const auto from_address = reinterpret_cast<std::uintptr_t>(from);
  for (std::size_t i = first; i < objects_.size(); ++i) {
    const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(objects_[i].address) - from_address;
    if (offset >= size) continue;  // also what lies below: the difference wraps around
    objects_[i].address = reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(to) + offset);
  }
}

}  // namespace kestrel::portable_binary_archive_impl
