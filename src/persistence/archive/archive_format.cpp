#include "persistence/archive/archive_format.h"

#include <array>
#include <cstring>

namespace kestrel {

portable_binary_iarchive_exception::portable_binary_iarchive_exception(exception_code reason) noexcept
    : boost::archive::archive_exception(boost::archive::archive_exception::other_exception), archive_code(reason) {}

const char* portable_binary_iarchive_exception::what() const noexcept {
  switch (archive_code) {
    case integer_cannot_be_represented: return "integer cannot be represented";
    case annotation_mismatch: return "annotation mismatch";
  }
  return boost::archive::archive_exception::what();
}

namespace portable_binary_archive_impl {

std::uint16_t Crc16(const char* data, std::size_t size, std::uint16_t seed) {
  static constexpr std::array<std::uint16_t, 16> kTable{0x0000, 0x1081, 0x2102, 0x3183, 0x4204, 0x5285, 0x6306, 0x7387,
                                                        0x8408, 0x9489, 0xA50A, 0xB58B, 0xC60C, 0xD68D, 0xE70E, 0xF78F};
  unsigned crc = seed;
  for (std::size_t i = 0; i < size; ++i) {
    const auto byte = static_cast<unsigned char>(data[i]);
    crc = (crc >> 4) ^ kTable[(crc ^ byte) & 15U];
    crc = (crc >> 4) ^ kTable[(crc ^ (byte >> 4)) & 15U];
  }
  return static_cast<std::uint16_t>(crc);
}

}  // namespace portable_binary_archive_impl

bool PortableBinaryArchiveCheck(const char* data, unsigned long size) {
  namespace impl = portable_binary_archive_impl;
  constexpr unsigned long kShortest = sizeof(impl::kMagic) + 1 + sizeof(std::uint16_t);  // before there were flags
  if (size < kShortest || std::memcmp(data, impl::kMagic, sizeof(impl::kMagic)) != 0) return false;
  const auto version = static_cast<unsigned char>(data[sizeof(impl::kMagic)]);
  if (version > impl::kFormatVersion) return false;
  return version < impl::kFirstVersionWithFlags || size >= kShortest + sizeof(std::uint16_t);
}

}  // namespace kestrel
