#include "persistence/archive/portable_binary_oarchive.h"

#include "support/strings.h"

#include <boost/archive/impl/archive_serializer_map.ipp>
#include <boost/archive/impl/basic_binary_oprimitive.ipp>

#include <cstring>
#include <ostream>

namespace kestrel {

namespace impl = portable_binary_archive_impl;
using boost::archive::archive_exception;

namespace {

constexpr unsigned kPayloadBits = 15;
constexpr unsigned kPayloadMask = 0x7FFF;
constexpr unsigned kAnotherWordFollows = 0x8000;
constexpr unsigned long kLargestLastWord = 16383;  // bit 14 of the last word is the sign

impl::AnnotationMode ModeOf(unsigned flags) {
  if ((flags & boost::archive::no_header) != 0) return impl::AnnotationMode::kNone;
  const unsigned mode = flags & impl::kAnnotationFlags;
  return mode == 0 ? impl::AnnotationMode::kChecksum : static_cast<impl::AnnotationMode>(mode);
}

}  // namespace

portable_binary_oarchive::portable_binary_oarchive(std::ostream& stream, unsigned flags)
    : Engine(flags & ~impl::kAnnotationFlags),
      // The engine would imbue the buffer with another locale. Bytes need none, and a file buffer with pending output
      // that cannot be written answers with an exception that the destructor could not let out.
      Primitive(*stream.rdbuf(), true),
      mode_(ModeOf(flags)) {
  if ((flags & boost::archive::no_header) == 0) WriteHeader();
}

void portable_binary_oarchive::WriteHeader() {
  save_binary(impl::kMagic, sizeof(impl::kMagic));
  save_binary(&impl::kFormatVersion, sizeof(impl::kFormatVersion));
  save(impl::kLibraryVersion);
  switch (mode_) {
    case impl::AnnotationMode::kChecksum: return WriteWord(impl::kHeaderAnnotated | impl::kHeaderChecksums);
    case impl::AnnotationMode::kName: return WriteWord(impl::kHeaderAnnotated);
    case impl::AnnotationMode::kNone: return WriteWord(0);
  }
}

void portable_binary_oarchive::Flush() {
  if (m_sb.pubsync() != 0) throw archive_exception(archive_exception::output_stream_error);
}

// sputc is a plain store while the stream's buffer has room; sputn is a virtual call.
void portable_binary_oarchive::WriteWord(unsigned word) {
  using Traits = std::char_traits<char>;
  const auto low = m_sb.sputc(Traits::to_char_type(static_cast<int>(word & 0xFFU)));
  const auto high = m_sb.sputc(Traits::to_char_type(static_cast<int>(word >> 8 & 0xFFU)));
  if (Traits::eq_int_type(low, Traits::eof()) || Traits::eq_int_type(high, Traits::eof())) {
    throw archive_exception(archive_exception::output_stream_error);
  }
}

void portable_binary_oarchive::save_impl_unsigned(unsigned long value, char /*nominal_size*/) {
  while (value > kLargestLastWord) {
    WriteWord((value & kPayloadMask) | kAnotherWordFollows);
    value >>= kPayloadBits;
  }
  WriteWord(static_cast<unsigned>(value));
}

// The test for negative numbers takes 15 bits for the last word where 14 are left beside the sign, so -32767 to -16385
// are lost; files rely on it.
void portable_binary_oarchive::save_impl_signed(long value, char nominal_size) {
  if (value >= 0) return save_impl_unsigned(static_cast<unsigned long>(value), nominal_size);
  while (value < -static_cast<long>(kPayloadMask)) {
    WriteWord((static_cast<unsigned>(value) & kPayloadMask) | kAnotherWordFollows);
    value >>= kPayloadBits;
  }
  WriteWord(static_cast<unsigned>(value) & kPayloadMask);
}

void portable_binary_oarchive::store_native(unsigned long bits) { save_binary(&bits, sizeof(bits)); }

void portable_binary_oarchive::save(double value) {
  unsigned long bits = 0;
  static_assert(sizeof(bits) == sizeof(value));
  std::memcpy(&bits, &value, sizeof(value));
  store_native(bits);
}

void portable_binary_oarchive::save(const std::string& text) {
  save_impl_unsigned(text.size(), sizeof(std::size_t));
  save_binary(text.data(), text.size());
}

void portable_binary_oarchive::save(const std::wstring& text) {
  save(string::to_utf8(text, string::EUTF8ConversionErrorMode::kReplace, L'?'));
}

void portable_binary_oarchive::WriteAnnotation(const char* name) {
  switch (mode_) {
    case impl::AnnotationMode::kChecksum: return WriteWord(checksums_[name].checksum);
    case impl::AnnotationMode::kName: return save(std::string(name));
    case impl::AnnotationMode::kNone: return;
  }
}

boost::serialization::library_version_type portable_binary_oarchive::get_library_version() const {
  return boost::serialization::library_version_type(impl::kLibraryVersion);
}

}  // namespace kestrel

template class boost::archive::detail::archive_serializer_map<kestrel::portable_binary_oarchive>;
template class boost::archive::detail::common_oarchive<kestrel::portable_binary_oarchive>;
template class boost::archive::basic_binary_oprimitive<kestrel::portable_binary_oarchive, char, std::char_traits<char>>;
