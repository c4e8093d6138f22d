#pragma once

#include "persistence/archive/address_numbers.h"

#include <boost/archive/detail/basic_iserializer.hpp>
#include <boost/archive/detail/basic_pointer_iserializer.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace kestrel::portable_binary_archive_impl {

/// What a reader knows of the classes and the tracked objects of its file, both numbered in the order in which they
/// first appear. It takes the place of the engine's own tables, which trust what the file says.
class LoadTables {
 public:
  using Serializer = boost::archive::detail::basic_iserializer;
  using PointerSerializer = boost::archive::detail::basic_pointer_iserializer;

  struct Class {
    const Serializer* serializer;
    bool preamble_read = false;
    bool tracked = false;
    unsigned version = 0;
  };

  std::size_t ClassCount() const { return classes_.size(); }
  Class& ClassAt(std::size_t id) { return classes_[id]; }

  /// The number of a class; it enters the table if it is new. Raises an archive exception when the numbers run out.
  std::size_t Register(const Serializer& serializer);

  struct Object {
    void* address;
    std::size_t class_id;
  };

  std::size_t ObjectCount() const { return objects_.size(); }
  const Object& ObjectAt(std::size_t id) const { return objects_[id]; }
  void AddObject(void* address, std::size_t class_id) { objects_.push_back({address, class_id}); }

  /// The objects from number `first` on that lie in the `size` bytes at `from` are now at `to`.
  void MoveObjects(std::size_t first, const void* from, const void* to, std::size_t size);

  /// The shared pointers that own loaded objects, by object number; null if none does. An object belongs to one kind
  /// of pointer only.
  std::unordered_map<std::size_t, std::shared_ptr<void>>& Owners(const std::shared_ptr<void>*) { return std_owners_; }
  std::unordered_map<std::size_t, boost::shared_ptr<void>>& Owners(const boost::shared_ptr<void>*) {
    return boost_owners_;
  }

 private:
  std::vector<Class> classes_;
  AddressNumbers class_numbers_;
  std::vector<Object> objects_;
  std::unordered_map<std::size_t, std::shared_ptr<void>> std_owners_;
  std::unordered_map<std::size_t, boost::shared_ptr<void>> boost_owners_;
};

}  // namespace kestrel::portable_binary_archive_impl
