#include "persistence/archive/portable_binary_oarchive.h"

#include <boost/serialization/extended_type_info.hpp>
#include <boost/serialization/state_saver.hpp>

#include <tuple>

// The part of the writer that numbers classes and objects; the order of steps is the engine's.

namespace kestrel {

using boost::archive::archive_exception;

void portable_binary_oarchive::WritePreamble(const Tables::Serializer& serializer, std::size_t class_id) {
  if (serializer.class_info()) {
    save(boost::archive::tracking_type(serializer.tracking(get_flags())));
    save(boost::archive::version_type(serializer.version()));
  }
  tables_.ClassAt(class_id).preamble_written = true;
}

void portable_binary_oarchive::save_object(const void* object, const Tables::Serializer& serializer) {
  if (object == pending_.object && &serializer == pending_.serializer) {
    return serializer.save_object_data(*this, object);
  }
  const std::size_t class_id = tables_.Register(serializer);
  if (serializer.class_info() && !tables_.ClassAt(class_id).preamble_written) WritePreamble(serializer, class_id);
  if (serializer.tracking(get_flags())) {
    const auto [id, is_new] = tables_.AddObject(object, class_id);
    // What a reader makes from the pointer is another object than the one it is to load here.
    if (!is_new && tables_.IsStoredByPointer(id)) throw archive_exception(archive_exception::pointer_conflict);
    save(id);
    if (!is_new) return;
  }
  serializer.save_object_data(*this, object);
}

void portable_binary_oarchive::save_pointer(const void* object, const Tables::PointerSerializer* pointer_serializer) {
  const Tables::Serializer& serializer = pointer_serializer->get_basic_serializer();
  const std::size_t known_classes = tables_.ClassCount();
  const std::size_t class_id = tables_.Register(serializer);
  save(static_cast<std::int16_t>(class_id));
  if (!tables_.ClassAt(class_id).preamble_written) {
    if (class_id == known_classes && serializer.is_polymorphic()) SaveClassName(serializer);
    WritePreamble(serializer, class_id);
  }
  const bool is_tracked = serializer.tracking(get_flags());
  std::uint32_t id = 0;
  if (is_tracked) {
    bool is_new = false;
    std::tie(id, is_new) = tables_.AddObject(object, class_id);
    save(id);
    if (!is_new) return;
  }
  {
    const boost::serialization::state_saver<Pending> outer(pending_);
    pending_ = {object, &serializer};
    pointer_serializer->save_object_ptr(*this, object);
  }
  if (is_tracked) tables_.MarkStoredByPointer(id);
}

/// A class that enters the table at a pointer stands there with the name under which it is exported.
void portable_binary_oarchive::SaveClassName(const Tables::Serializer& serializer) {
  const char* const key = serializer.get_eti().get_key();
  if (key == nullptr) throw archive_exception(archive_exception::unregistered_class);
  save(std::string(key));
}

}  // namespace kestrel
