#include "persistence/archive/save_tables.h"

#include <boost/archive/archive_exception.hpp>

#include <limits>

namespace kestrel::portable_binary_archive_impl {

std::size_t SaveTables::Register(const Serializer& serializer) {
  constexpr std::size_t kMostClasses = std::numeric_limits<std::int16_t>::max();
  const auto [id, is_new] = class_numbers_.Add(&serializer);
  if (is_new) {
    using boost::archive::archive_exception;
    if (classes_.size() == kMostClasses) throw archive_exception(archive_exception::output_stream_error);
    classes_.emplace_back();
  }
  return id;
}

void SaveTables::MarkStoredByPointer(std::uint32_t id) {
  if (id >= by_pointer_.size()) by_pointer_.resize(std::size_t{id} + 1, false);
  by_pointer_[id] = true;
}

}  // namespace kestrel::portable_binary_archive_impl
