#pragma once

#include "persistence/archive/archive_format.h"
#include "persistence/archive/name_checksums.h"
#include "persistence/archive/primitive_types.h"
#include "persistence/archive/save_tables.h"

#include <boost/archive/basic_binary_oprimitive.hpp>
#include <boost/archive/detail/common_oarchive.hpp>
#include <boost/archive/detail/register_archive.hpp>
#include <boost/serialization/nvp.hpp>

#include <iosfwd>
#include <string>
#include <type_traits>

namespace kestrel {

/// Writes the portable binary format: integers as 16-bit words of 15 bits each, doubles as they are, texts in UTF-8,
/// and a check word ahead of every named item. The bytes go through the stream's buffer at once; a short write raises
/// `archive_exception::output_stream_error`.
class portable_binary_oarchive
    : public boost::archive::detail::common_oarchive<portable_binary_oarchive>,
      public boost::archive::basic_binary_oprimitive<portable_binary_oarchive, char, std::char_traits<char>>,
      public portable_binary_archive_impl::AnnotationSwitch {
  using Engine = boost::archive::detail::common_oarchive<portable_binary_oarchive>;
  using Primitive = boost::archive::basic_binary_oprimitive<portable_binary_oarchive, char, std::char_traits<char>>;
  using Tables = portable_binary_archive_impl::SaveTables;

 public:
  /// @param flags  those of the engine (no_header: neither header nor annotations) and, in the bits 0x3000, the kind of
  ///               annotations: 0 or 0x1000 checksums, 0x2000 names, 0x3000 none.
  explicit portable_binary_oarchive(std::ostream& stream, unsigned flags = 0);

  /// Hands what the stream's buffer holds to the file behind it; raises `output_stream_error` if that fails.
  void Flush();

  void disable_annotations() override { ++annotations_disabled_; }
  void enable_annotations() override { --annotations_disabled_; }

  void write_annotation(const char* name) {
    if (annotations_disabled_ == 0 && name != nullptr) WriteAnnotation(name);
  }

  void save_impl_signed(long value, char nominal_size);
  void save_impl_unsigned(unsigned long value, char nominal_size);
  void store_native(unsigned long bits);

  boost::serialization::library_version_type get_library_version() const;

  // What the engine calls for objects and pointers, in the place of its own.

  void register_basic_serializer(const Tables::Serializer& serializer) { tables_.Register(serializer); }
  void save_object(const void* object, const Tables::Serializer& serializer);
  void save_pointer(const void* object, const Tables::PointerSerializer* pointer_serializer);

  template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
  void save(T value) {
    if constexpr (std::is_signed_v<T>) {
      save_impl_signed(value, sizeof(T));
    } else {
      save_impl_unsigned(value, sizeof(T));
    }
  }
  void save(double value);
  void save(const std::string& text);
  void save(const std::wstring& text);
  void save(const std::filesystem::path& path) { save(path.u8string()); }
  void save(const boost::filesystem::path& path) { save(path.string()); }
  void save(const boost::uuids::uuid& id) { save_binary(id.data, id.static_size()); }

  void save(const boost::serialization::collection_size_type& count) { save(static_cast<std::size_t>(count)); }
  void save(const boost::serialization::item_version_type& version) { save(static_cast<unsigned>(version)); }
  void save(const boost::serialization::library_version_type& version) { save(static_cast<unsigned>(version)); }
  void save(const boost::archive::version_type& version) { save(static_cast<std::uint32_t>(version)); }
  void save(const boost::archive::object_id_type& id) { save(static_cast<std::uint32_t>(id)); }
  void save(const boost::archive::object_reference_type& id) { save(static_cast<std::uint32_t>(id)); }
  void save(const boost::archive::class_id_type& id) { save(static_cast<std::int16_t>(id)); }
  void save(const boost::archive::class_id_reference_type& id) { save(static_cast<std::uint16_t>(id)); }
  void save(const boost::archive::class_id_optional_type&) {}
  void save(const boost::archive::tracking_type& tracking) { save(static_cast<bool>(tracking)); }
  void save(const boost::archive::class_name_type& name) { save(std::string(static_cast<const char*>(name))); }

 private:
  friend class boost::archive::detail::interface_oarchive<portable_binary_oarchive>;
  friend class boost::archive::save_access;

  /// The object that save_pointer has announced and whose data come next.
  struct Pending {
    const void* object = nullptr;
    const Tables::Serializer* serializer = nullptr;
  };

  template <class T>
  void save_override(T& value) {
    Engine::save_override(value);
  }
  template <class T>
  void save_override(const boost::serialization::nvp<T>& item) {
    write_annotation(item.name());
    Engine::save_override(item.const_value());
  }

  /// The engine asks for this before every primitive; the format has nothing to end.
  void end_preamble() {}

  void WriteHeader();
  void WriteWord(unsigned word);
  void WriteAnnotation(const char* name);
  void WritePreamble(const Tables::Serializer& serializer, std::size_t class_id);
  void SaveClassName(const Tables::Serializer& serializer);

  portable_binary_archive_impl::AnnotationMode mode_;
  unsigned annotations_disabled_ = 0;
  portable_binary_archive_impl::NameChecksums checksums_;
  Tables tables_;
  Pending pending_;
};

}  // namespace kestrel

BOOST_SERIALIZATION_REGISTER_ARCHIVE(kestrel::portable_binary_oarchive)
