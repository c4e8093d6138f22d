#pragma once

#include "persistence/archive/archive_format.h"
#include "persistence/archive/load_tables.h"
#include "persistence/archive/name_checksums.h"
#include "persistence/archive/primitive_types.h"
#include "persistence/archive/size_reporter.h"

#include <boost/archive/basic_binary_iprimitive.hpp>
#include <boost/archive/detail/common_iarchive.hpp>
#include <boost/archive/detail/register_archive.hpp>
#include <boost/serialization/nvp.hpp>

#include <cstdint>
#include <iosfwd>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace kestrel {

/// Reads the portable binary format of format versions 0 to 4.
///
/// Files are not trusted. Numbers of classes and objects, counts, sizes and names are checked before memory is taken;
/// what does not fit raises an exception of `boost::archive::archive_exception`. Objects stand within objects at most
/// kDeepestNesting deep, and memory grows with the bytes that were read, never with what a count promises. To that end
/// the reader keeps the tables of classes and tracked objects itself and shadows those of the engine; and the headers
/// load_collections.h and load_pointers.h take the place of the engine's loading of containers and pointers.
///
/// The stream stands right behind the last item read at any time.
class portable_binary_iarchive
    : public boost::archive::detail::common_iarchive<portable_binary_iarchive>,
      public boost::archive::basic_binary_iprimitive<portable_binary_iarchive, char, std::char_traits<char>>,
      public portable_binary_archive_impl::AnnotationSwitch {
  using Engine = boost::archive::detail::common_iarchive<portable_binary_iarchive>;
  using Primitive = boost::archive::basic_binary_iprimitive<portable_binary_iarchive, char, std::char_traits<char>>;
  using Tables = portable_binary_archive_impl::LoadTables;

 public:
  /// Objects, base parts and containers that may stand in each other. The deepest legitimate record, a stored model,
  /// needs about 30.
  static constexpr unsigned kDeepestNesting = 128;

  /// Switches the size report, on std::cerr, on for all readers that are made later.
  static inline bool size_reporting_ = false;

  /// @param flags  those of the engine (no_header: none is read, and there are no annotations); 0x100000 raises on a
  ///               wrong annotation and 0x200000 passes over it, where otherwise it is told on std::cerr.
  explicit portable_binary_iarchive(std::istream& stream, unsigned flags = 0);

  void disable_annotations() override { ++annotations_disabled_; }
  void enable_annotations() override { --annotations_disabled_; }

  void check_annotation(const char* name) {
    if (mode_ != Annotations::kNone && annotations_disabled_ == 0 && name != nullptr) CheckAnnotation(name);
  }

  /// One integer in words. `negative` tells the sign, also of values beyond the range of long.
  /// @param nominal_size  bytes that the integer has in memory; the encoding does not depend on it.
  void load_impl_storage(long& value, char nominal_size, bool& negative);
  /// 8 raw bytes.
  void load_native(unsigned long& bits);
  void load_binary(void* address, std::size_t size);

  template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
  void load(T& value) {
    if constexpr (std::is_signed_v<T>) {
      value = static_cast<T>(LoadSigned(std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), sizeof(T)));
    } else {
      value = static_cast<T>(LoadUnsigned(std::numeric_limits<T>::max(), sizeof(T)));
    }
  }
  void load(double& value);
  void load(std::string& text);
  void load(std::wstring& text);
  void load(std::filesystem::path& path);
  void load(boost::filesystem::path& path);
  void load(boost::uuids::uuid& id) { load_binary(id.data, id.static_size()); }

  void load(boost::serialization::collection_size_type& count);
  void load(boost::serialization::item_version_type& version);
  void load(boost::serialization::library_version_type& version);
  void load(boost::archive::version_type& version);
  void load(boost::archive::object_id_type& id);
  void load(boost::archive::class_id_type& id);
  void load(boost::archive::class_id_optional_type&) {}
  void load(boost::archive::tracking_type& tracking);
  void load(boost::archive::class_name_type& name);

  void size_report_start_impl(const char* type, const char* name);
  void size_report_end_impl(const char* name);

  // What the engine calls for objects, and what stands in for its tables.

  void register_basic_serializer(const Tables::Serializer& serializer) { tables_.Register(serializer); }
  void load_object(void* object, const Tables::Serializer& serializer);

  /// An object that was just loaded into a local has been moved to its place.
  template <class New, class Old>
  void reset_object_address(const New* new_address, const Old* old_address) {
    static_assert(sizeof(New) == sizeof(Old));
    tables_.MoveObjects(last_loaded_, old_address, new_address, sizeof(Old));
  }

  // For the loading of containers and pointers.

  /// What a pointer in the file leads to.
  struct Pointee {
    void* address = nullptr;  ///< of the part of the declared type; null for a null pointer
    bool created = false;     ///< made just now, and the caller's to own; otherwise it stands in the table already
    bool tracked = false;
    std::size_t object_id = 0;  ///< if it is tracked
  };

  template <class T>
  Pointee LoadPointee() {
    using Loader = boost::archive::detail::load_pointer_type<portable_binary_iarchive>;
    using DeclaredType = typename boost::serialization::type_info_implementation<T>::type;
    const Tables::PointerSerializer* const declared = Loader::register_type(*this, static_cast<T*>(nullptr));
    return LoadPointee(declared, boost::serialization::singleton<DeclaredType>::get_const_instance(), sizeof(T),
                       Loader::find);
  }

  Tables& LoadedObjects() { return tables_; }

  /// True if the stream can tell how much it has left; of others the bytes left are unlimited.
  bool KnowsBytesLeft() const { return size_ != kUnknownSize; }
  std::size_t BytesLeft() const { return size_ - consumed_; }

  /// Reads a number of elements, each of which takes `least_bytes` at least, and refuses what the stream cannot hold.
  std::size_t LoadCount(std::size_t least_bytes);
  void RequireBytesLeft(std::size_t count, std::size_t least_bytes) const;

  /// To be called before memory is taken for an element: elements of many bytes in memory and few in the file must not
  /// make a small file a large object.
  void ChargeMemory(std::size_t bytes);

 private:
  friend class boost::archive::detail::interface_iarchive<portable_binary_iarchive>;

  enum class Annotations { kNone, kNames, kChecksums };
  enum class MismatchPolicy { kReport, kThrow, kIgnore };
  using PointerFinder = const Tables::PointerSerializer* (*)(const boost::serialization::extended_type_info&);
  using TypeInfo = boost::serialization::extended_type_info;

  static constexpr std::size_t kUnknownSize = std::numeric_limits<std::size_t>::max();

  /// The object that LoadPointee has made and whose data come next.
  struct Pending {
    void* object = nullptr;
    const Tables::Serializer* serializer = nullptr;
    unsigned version = 0;
    bool* constructed = nullptr;  ///< set as soon as the object has a life
  };

  template <class T>
  void load_override(T& value) {
    Engine::load_override(value);
  }
  template <class T>
  void load_override(T*& pointer) {
    pointer = nullptr;
    pointer = static_cast<T*>(LoadPointee<std::remove_const_t<T>>().address);
  }
  template <class T>
  void load_override(const boost::serialization::nvp<T>& item) {
    check_annotation(item.name());
    if (reporter_ != nullptr && item.name() != nullptr) {
      size_report_start_impl(typeid(T).name(), item.name());
      load_override(item.value());
      size_report_end_impl(item.name());
    } else {
      load_override(item.value());
    }
  }

  void FindSize();
  void ReadHeader();
  unsigned ReadWord();
  long LoadSigned(long lowest, long highest, char nominal_size);
  unsigned long LoadUnsigned(unsigned long highest, char nominal_size);

  void CheckAnnotation(const char* name);
  void CheckName(const char* name);
  void CheckChecksum(const char* name);
  void ReportChecksum(const char* name, unsigned expected, std::uint16_t found) const;
  void remember_annotation(std::uint16_t checksum, const std::string& name);

  void LoadData(void* object, const Tables::Serializer& serializer, unsigned version);
  void LoadPreamble(std::size_t class_id);
  Pointee LoadPointee(const Tables::PointerSerializer* declared, const TypeInfo& declared_type, std::size_t size,
                      PointerFinder find);
  void LoadNewClass(std::size_t class_id, const Tables::PointerSerializer* declared, PointerFinder find);
  void* CreatePointee(const Tables::PointerSerializer& serializer, std::size_t class_id, const TypeInfo& declared_type);
  std::size_t LoadObjectId(std::size_t class_id);

  Annotations mode_ = Annotations::kNone;
  MismatchPolicy mismatch_policy_ = MismatchPolicy::kReport;
  unsigned annotations_disabled_ = 0;
  bool old_class_id_ = false;
  portable_binary_archive_impl::NameChecksums checksums_;
  std::multimap<std::uint16_t, std::string> remembered_names_;
  std::unique_ptr<portable_binary_archive_size_reporter> reporter_;

  std::size_t size_ = kUnknownSize;  // bytes of the stream, from where the archive begins
  std::size_t consumed_ = 0;
  std::size_t charged_memory_ = 0;

  Tables tables_;
  Pending pending_;
  std::size_t last_loaded_ = 0;  // number that the last completed object got, or the next one if it is not tracked
  unsigned depth_ = 0;
};

}  // namespace kestrel

BOOST_SERIALIZATION_REGISTER_ARCHIVE(kestrel::portable_binary_iarchive)
