#pragma once

#include "persistence/archive/archive_format.h"

#include <boost/archive/basic_binary_iprimitive.hpp>
#include <boost/archive/detail/common_iarchive.hpp>
#include <boost/archive/detail/register_archive.hpp>
#include <boost/filesystem/path.hpp>
#include <boost/serialization/collection_size_type.hpp>
#include <boost/serialization/item_version_type.hpp>
#include <boost/serialization/library_version_type.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/string.hpp>
#include <boost/uuid/uuid.hpp>

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <limits>
#include <map>
#include <string>
#include <type_traits>

namespace kestrel {

/// Reads the portable binary format of format versions 0 to 4. Files are not trusted: what they say is checked before
/// memory is taken, and what does not fit raises an exception of `boost::archive::archive_exception`.
class portable_binary_iarchive
    : public boost::archive::detail::common_iarchive<portable_binary_iarchive>,
      public boost::archive::basic_binary_iprimitive<portable_binary_iarchive, char, std::char_traits<char>>,
      public portable_binary_archive_impl::AnnotationSwitch {
  using Engine = boost::archive::detail::common_iarchive<portable_binary_iarchive>;
  using Primitive = boost::archive::basic_binary_iprimitive<portable_binary_iarchive, char, std::char_traits<char>>;

 public:
  /// @param flags  those of the engine (no_header: none is read, and there are no annotations); 0x100000 raises on a
  ///               wrong annotation and 0x200000 passes over it, where otherwise it is told on std::cerr.
  explicit portable_binary_iarchive(std::istream& stream, unsigned flags = 0);

  void disable_annotations() override { ++annotations_disabled_; }
  void enable_annotations() override { --annotations_disabled_; }

  void check_annotation(const char* name) {
    if (mode_ != 0 && annotations_disabled_ == 0 && name != nullptr) CheckAnnotation(name);
  }

  void load_impl_storage(long& value, char nominal_size, bool& negative);
  void load_native(unsigned long& bits);

  template <class T, std::enable_if_t<std::is_integral_v<T>, int> = 0>
  void load(T& value) {
    if constexpr (std::is_signed_v<T>) {
      value = static_cast<T>(LoadSigned(std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), sizeof(T)));
    } else {
      value = static_cast<T>(LoadUnsigned(std::numeric_limits<T>::max(), sizeof(T)));
    }
  }
  void load(bool& value) { value = LoadUnsigned(1, sizeof(bool)) == 1; }
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

 private:
  friend class boost::archive::detail::interface_iarchive<portable_binary_iarchive>;
  friend class boost::archive::load_access;

  template <class T>
  void load_override(T& value) {
    Engine::load_override(value);
  }
  template <class T>
  void load_override(const boost::serialization::nvp<T>& item) {
    check_annotation(item.name());
    Engine::load_override(item.value());
  }

  long LoadSigned(long lowest, long highest, char nominal_size);
  unsigned long LoadUnsigned(unsigned long highest, char nominal_size);
  unsigned ReadWord();
  void ReadHeader();
  void CheckAnnotation(const char* name);

  unsigned mode_ = 0;
  unsigned mismatch_policy_ = 0;
  unsigned annotations_disabled_ = 0;
  bool old_class_id_ = false;
  std::multimap<std::uint16_t, std::string> remembered_names_;
};

}  // namespace kestrel

BOOST_SERIALIZATION_REGISTER_ARCHIVE(kestrel::portable_binary_iarchive)
