#include "persistence/archive/save_tables.h"

#include <boost/archive/archive_exception.hpp>

#include <limits>

namespace kestrel::portable_binary_archive_impl {

std::size_t SaveTables::Register(const Serializer& serializer) {
  constexpr std::size_t kMostClasses = std::numeric_limits<std::int16_t>::max();
  const auto [entry, is_new] = class_ids_.try_emplace(&serializer, classes_.size());
  if (is_new) {
    using boost::archive::archive_exception;
    if (classes_.size() == kMostClasses) throw archive_exception(archive_exception::output_stream_error);
    classes_.emplace_back();
  }
  return entry->second;
}

std::pair<std::uint32_t, bool> SaveTables::AddObject(const void* address, std::size_t class_id) {
  if (objects_.size() <= 2 * std::size_t{object_count_}) Grow();
  Object& object = Find(address, class_id);
  if (object.address != nullptr) return {object.id, false};
  object = {address, static_cast<std::uint32_t>(class_id), object_count_};
  return {object_count_++, true};
}

SaveTables::Object& SaveTables::Find(const void* address, std::size_t class_id) {
  constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15;  // of 2^64: Fibonacci hashing (Knuth)
  constexpr unsigned kHighBits = 32;
  const std::uint64_t hash = (reinterpret_cast<std::uintptr_t>(address) ^ class_id) * kGoldenRatio;
  const std::size_t mask = objects_.size() - 1;
  std::size_t place = (hash >> kHighBits) & mask;
  while (objects_[place].address != nullptr &&
         (objects_[place].address != address || objects_[place].class_id != class_id)) {
    place = (place + 1) & mask;
  }
  return objects_[place];
}

void SaveTables::Grow() {
  constexpr std::size_t kFirstSize = 1024;
  std::vector<Object> old(objects_.empty() ? kFirstSize : 4 * objects_.size());
  old.swap(objects_);
  for (const Object& object : old) {
    if (object.address != nullptr) Find(object.address, object.class_id) = object;
  }
}

void SaveTables::MarkStoredByPointer(std::uint32_t id) {
  if (id >= by_pointer_.size()) by_pointer_.resize(std::size_t{id} + 1, false);
  by_pointer_[id] = true;
}

}  // namespace kestrel::portable_binary_archive_impl
