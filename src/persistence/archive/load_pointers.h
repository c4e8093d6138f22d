#pragma once

#include "persistence/archive/portable_binary_iarchive.h"

#include <boost/archive/archive_exception.hpp>
#include <boost/serialization/shared_ptr.hpp>
#include <boost/serialization/unique_ptr.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <memory>
#include <type_traits>

// How portable_binary_iarchive loads smart pointers. The bytes are those that the engine writes. The engine's own
// loading lets a file make two owners of one object, or an owner of an object that was loaded by value; here an object
// that is owned already can only be met again by a shared pointer of the same kind. An object that is still being read
// has no owner yet, so that it cannot come to own itself either.

namespace kestrel::portable_binary_archive_impl {

/// @tparam Shared  std::shared_ptr<T> or boost::shared_ptr<T>; @tparam AnyShared  the same kind for void.
template <class Shared, class AnyShared>
void LoadShared(portable_binary_iarchive& archive, Shared& pointer) {
  using T = typename Shared::element_type;
  archive.check_annotation("px");
  const auto pointee = archive.LoadPointee<std::remove_const_t<T>>();
  T* const address = static_cast<T*>(pointee.address);
  if (pointee.created || address == nullptr) pointer.reset(address);
  if (address == nullptr || !pointee.tracked) return;

  auto& owners = archive.LoadedObjects().Owners(static_cast<const AnyShared*>(nullptr));
  if (pointee.created) {
    using std::const_pointer_cast;
    owners.emplace(pointee.object_id, const_pointer_cast<std::remove_const_t<T>>(pointer));
    return;
  }
  const auto owner = owners.find(pointee.object_id);
  if (owner == owners.end()) {
    using boost::archive::archive_exception;
    throw archive_exception(archive_exception::pointer_conflict);
  }
  pointer = Shared(owner->second, address);
}

}  // namespace kestrel::portable_binary_archive_impl

namespace boost::serialization {

template <class T>
void load(kestrel::portable_binary_iarchive& archive, std::shared_ptr<T>& pointer, unsigned /*version*/) {
  kestrel::portable_binary_archive_impl::LoadShared<std::shared_ptr<T>, std::shared_ptr<void>>(archive, pointer);
}

template <class T>
void load(kestrel::portable_binary_iarchive& archive, boost::shared_ptr<T>& pointer, unsigned /*version*/) {
  kestrel::portable_binary_archive_impl::LoadShared<boost::shared_ptr<T>, boost::shared_ptr<void>>(archive, pointer);
}

template <class T>
void load(kestrel::portable_binary_iarchive& archive, std::unique_ptr<T>& pointer, unsigned /*version*/) {
  archive.check_annotation("tx");
  const auto pointee = archive.LoadPointee<std::remove_const_t<T>>();
  if (pointee.address != nullptr && !pointee.created) {
    throw archive::archive_exception(archive::archive_exception::pointer_conflict);
  }
  pointer.reset(static_cast<T*>(pointee.address));
}

}  // namespace boost::serialization
