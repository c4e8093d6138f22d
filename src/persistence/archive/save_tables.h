#pragma once

#include "persistence/archive/address_numbers.h"

#include <boost/archive/detail/basic_oserializer.hpp>
#include <boost/archive/detail/basic_pointer_oserializer.hpp>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace kestrel::portable_binary_archive_impl {

/// What a writer knows of the classes and the tracked objects of its file, both numbered in the order in which they
/// first appear. It takes the place of the engine's own tables, which are trees: a table of designs is a tracked object
/// per cell, and half of the time of a writer went into them.
class SaveTables {
 public:
  using Serializer = boost::archive::detail::basic_oserializer;
  using PointerSerializer = boost::archive::detail::basic_pointer_oserializer;

  struct Class {
    bool preamble_written = false;
  };

  std::size_t ClassCount() const { return classes_.size(); }
  Class& ClassAt(std::size_t id) { return classes_[id]; }

  /// The number of a class; it enters the table if it is new. Raises an archive exception when the numbers run out.
  std::size_t Register(const Serializer& serializer);

  /// The number of an object and whether it is new.
  std::pair<std::uint32_t, bool> AddObject(const void* address, std::size_t class_id) {
    return object_numbers_.Add(address, static_cast<std::uint32_t>(class_id));
  }

  /// Such an object may not be written by value later on.
  void MarkStoredByPointer(std::uint32_t id);
  bool IsStoredByPointer(std::uint32_t id) const { return id < by_pointer_.size() && by_pointer_[id]; }

 private:
  std::vector<Class> classes_;
  AddressNumbers class_numbers_;
  AddressNumbers object_numbers_;
  std::vector<bool> by_pointer_;
};

}  // namespace kestrel::portable_binary_archive_impl
