#pragma once

#include <boost/archive/archive_exception.hpp>

#include <cstddef>
#include <cstdint>
#include <type_traits>

/// What the writer and the reader of the portable binary format share: the fixed words of the header, the flag bits of
/// both constructors, the checksum of names and the guard that switches annotations off.
namespace kestrel {

/// Thrown by the reader: an integer that its type cannot hold, or an item under another name than expected.
class portable_binary_iarchive_exception : public virtual boost::archive::archive_exception {
 public:
  enum exception_code { integer_cannot_be_represented = 0, annotation_mismatch = 1 };

  explicit portable_binary_iarchive_exception(exception_code reason) noexcept;
  const char* what() const noexcept override;

  exception_code archive_code;
};

namespace portable_binary_archive_impl {

constexpr char kMagic[3] = {'K', 'B', 'A'};
constexpr unsigned char kFormatVersion = 4;          ///< the version written, and the last one read
constexpr unsigned char kFirstVersionWithFlags = 2;  ///< older files have no word of header flags and no annotations
constexpr unsigned char kFirstVersionWithShortClassId = 3;
constexpr std::uint16_t kLibraryVersion = 17;  ///< a constant of the format, whatever the installed engine says

/// How the name of an item stands before it; the bits 0x3000 of the writer's flags.
enum class AnnotationMode : unsigned { kChecksum = 0x1000, kName = 0x2000, kNone = 0x3000 };

constexpr unsigned kAnnotationFlags = 0x3000;
constexpr unsigned kThrowOnMismatch = 0x100000;  ///< reader: a wrong annotation raises
constexpr unsigned kIgnoreMismatch = 0x200000;   ///< reader: a wrong annotation is passed over in silence
constexpr std::uint16_t kHeaderAnnotated = 1;    ///< header flags: names or checksums stand before the items
constexpr std::uint16_t kHeaderChecksums = 2;    ///< header flags, with the one above: checksums

/// CRC-16/KERMIT: reflected polynomial 0x8408, taken four bits at a time.
std::uint16_t Crc16(const char* data, std::size_t size, std::uint16_t seed);

/// The two operations that portable_binary_archive_noannotate needs.
class AnnotationSwitch {
 public:
  virtual void disable_annotations() = 0;
  virtual void enable_annotations() = 0;

 protected:
  ~AnnotationSwitch() = default;
};

}  // namespace portable_binary_archive_impl

/// Writes or reads without annotations while it lives; guards nest. Does nothing for other kinds of archives.
template <class Archive>
class portable_binary_archive_noannotate {
  static constexpr bool kHasSwitch = std::is_base_of_v<portable_binary_archive_impl::AnnotationSwitch, Archive>;

 public:
  explicit portable_binary_archive_noannotate(Archive& archive) : archive_(archive) {
    if constexpr (kHasSwitch) archive_.disable_annotations();
  }
  ~portable_binary_archive_noannotate() {
    if constexpr (kHasSwitch) archive_.enable_annotations();
  }
  portable_binary_archive_noannotate(const portable_binary_archive_noannotate&) = delete;
  portable_binary_archive_noannotate& operator=(const portable_binary_archive_noannotate&) = delete;

 private:
  [[maybe_unused]] Archive& archive_;
};

/// True if the buffer begins as an archive of a version that can be read; looks at the header only.
bool PortableBinaryArchiveCheck(const char* data, unsigned long size);

}  // namespace kestrel
