#include "persistence/archive/portable_binary_iarchive.h"

#include <boost/archive/impl/archive_serializer_map.ipp>
#include <boost/serialization/extended_type_info.hpp>
#include <boost/serialization/state_saver.hpp>
#include <boost/serialization/void_cast.hpp>

#include <new>
#include <utility>

// The part of the reader that follows class and object numbers; the order of steps is the engine's.

namespace kestrel {

using boost::archive::archive_exception;
using boost::serialization::state_saver;

namespace {

[[noreturn]] void Raise(archive_exception::exception_code code) { throw archive_exception(code); }

/// Takes an object down again that an exception leaves half-loaded; the engine itself would leak it.
class PointeeGuard {
 public:
  using Tables = portable_binary_archive_impl::LoadTables;

  explicit PointeeGuard(const Tables::PointerSerializer& serializer)
      : object_(serializer.heap_allocation()), serializer_(serializer.get_basic_serializer()) {}
  ~PointeeGuard() {
    if (object_ == nullptr) return;
    if (constructed) {
      serializer_.destroy(object_);
    } else {
      ::operator delete(object_);
    }
  }
  PointeeGuard(const PointeeGuard&) = delete;
  PointeeGuard& operator=(const PointeeGuard&) = delete;

  void* Object() const { return object_; }
  void Release() { object_ = nullptr; }

  bool constructed = false;

 private:
  void* object_;
  const Tables::Serializer& serializer_;
};

void* CastToDeclared(void* object, const boost::serialization::extended_type_info& type,
                     const boost::serialization::extended_type_info& declared_type) {
  if (type == declared_type) return object;
  void* const part = const_cast<void*>(boost::serialization::void_upcast(type, declared_type, object));
  if (part == nullptr) Raise(archive_exception::unregistered_class);
  return part;
}

}  // namespace

void portable_binary_iarchive::LoadData(void* object, const Tables::Serializer& serializer, unsigned version) {
  if (depth_ == kDeepestNesting) Raise(archive_exception::input_stream_error);
  const state_saver<unsigned> depth(depth_);
  ++depth_;
  serializer.load_object_data(*this, object, version);
}

void portable_binary_iarchive::LoadPreamble(std::size_t class_id) {
  Tables::Class& description = tables_.ClassAt(class_id);
  if (description.preamble_read) return;
  if (description.serializer->class_info()) {
    load(description.tracked);
    load(description.version);
  } else {
    description.tracked = description.serializer->tracking(get_flags());
    const boost::archive::version_type version = description.serializer->version();
    description.version = version;
  }
  description.preamble_read = true;
}

void portable_binary_iarchive::load_object(void* object, const Tables::Serializer& serializer) {
  if (object == pending_.object && &serializer == pending_.serializer) {
    const unsigned version = pending_.version;
    *pending_.constructed = true;
    pending_ = {};
    return LoadData(object, serializer, version);
  }
  const std::size_t class_id = tables_.Register(serializer);
  LoadPreamble(class_id);
  const std::size_t number = tables_.ObjectCount();
  if (tables_.ClassAt(class_id).tracked) {
    if (LoadObjectId(class_id) != number) return;  // the same object once more: its data are not repeated
    tables_.AddObject(object, class_id);
  }
  LoadData(object, serializer, tables_.ClassAt(class_id).version);
  last_loaded_ = number;
}

/// The number of a tracked object: the next one for an object that is new, else that of an object of the same class.
std::size_t portable_binary_iarchive::LoadObjectId(std::size_t class_id) {
  boost::archive::object_id_type stored;
  load(stored);
  const std::size_t id = static_cast<std::uint32_t>(std::as_const(stored));
  const bool is_new = id == tables_.ObjectCount();
  if (id > tables_.ObjectCount() || (!is_new && tables_.ObjectAt(id).class_id != class_id)) {
    Raise(archive_exception::input_stream_error);
  }
  return id;
}

portable_binary_iarchive::Pointee portable_binary_iarchive::LoadPointee(const Tables::PointerSerializer* declared,
                                                                        const TypeInfo& declared_type, std::size_t size,
                                                                        PointerFinder find) {
  constexpr int kNullPointer = -1;
  boost::archive::class_id_type stored;
  load(stored);
  const int id = static_cast<std::int16_t>(std::as_const(stored));
  if (id == kNullPointer) return {};
  if (id < 0) Raise(archive_exception::input_stream_error);

  const auto class_id = static_cast<std::size_t>(id);
  if (class_id >= tables_.ClassCount()) LoadNewClass(class_id, declared, find);
  const Tables::PointerSerializer* const serializer = tables_.ClassAt(class_id).serializer->get_bpis_ptr();
  if (serializer == nullptr) Raise(archive_exception::unregistered_class);
  LoadPreamble(class_id);

  Pointee result;
  result.tracked = tables_.ClassAt(class_id).tracked;
  if (result.tracked) result.object_id = LoadObjectId(class_id);
  result.created = !result.tracked || result.object_id == tables_.ObjectCount();
  if (result.created) {
    ChargeMemory(size);
    result.address = CreatePointee(*serializer, class_id, declared_type);
  } else {
    void* const object = tables_.ObjectAt(result.object_id).address;
    result.address = CastToDeclared(object, serializer->get_eti(), declared_type);
  }
  return result;
}

/// A class that enters the table at a pointer stands there with the name under which it is exported.
void portable_binary_iarchive::LoadNewClass(std::size_t class_id, const Tables::PointerSerializer* declared,
                                            PointerFinder find) {
  const bool is_named = declared == nullptr || declared->get_basic_serializer().is_polymorphic();
  if (!is_named || class_id != tables_.ClassCount()) Raise(archive_exception::input_stream_error);

  char name[BOOST_SERIALIZATION_MAX_KEY_SIZE];
  boost::archive::class_name_type stored(name);
  load(stored);
  const TypeInfo* const type = name[0] == '\0' ? nullptr : TypeInfo::find(name);
  const Tables::PointerSerializer* const serializer = type == nullptr ? nullptr : find(*type);
  if (serializer == nullptr) Raise(archive_exception::unregistered_class);
  if (tables_.Register(serializer->get_basic_serializer()) != class_id) Raise(archive_exception::input_stream_error);
}

void* portable_binary_iarchive::CreatePointee(const Tables::PointerSerializer& serializer, std::size_t class_id,
                                              const TypeInfo& declared_type) {
  const unsigned version = tables_.ClassAt(class_id).version;
  PointeeGuard guard(serializer);
  if (tables_.ClassAt(class_id).tracked) tables_.AddObject(guard.Object(), class_id);
  {
    const state_saver<Pending> outer(pending_);
    pending_ = {guard.Object(), &serializer.get_basic_serializer(), version, &guard.constructed};
    serializer.load_object_ptr(*this, guard.Object(), version);
  }
  void* const part = CastToDeclared(guard.Object(), serializer.get_eti(), declared_type);
  guard.Release();
  return part;
}

}  // namespace kestrel

template class boost::archive::detail::archive_serializer_map<kestrel::portable_binary_iarchive>;
