#include "persistence/archive/portable_binary_iarchive.h"

#include "support/strings.h"

#include <boost/archive/impl/basic_binary_iprimitive.ipp>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <streambuf>

namespace kestrel {

namespace impl = portable_binary_archive_impl;
using boost::archive::archive_exception;

namespace {

constexpr std::size_t kReadStep = std::size_t{1} << 16;  // bytes that are taken on trust from a stream of unknown size

/// What a stream buffer holds already. Its own reading takes a call per byte, or a virtual one for several; nearly all
/// items are of 2 or 8 bytes.
struct Buffered : std::streambuf {
  /// Reads the item, in the byte order of the machine; false, and nothing is read, if the buffer holds fewer bytes.
  template <class T>
  static bool Take(std::streambuf& buffer, T& item) {
    constexpr int kSize = sizeof(item);
    const char* const next = (buffer.*&Buffered::gptr)();
    if ((buffer.*&Buffered::egptr)() - next < kSize) return false;
    std::memcpy(&item, next, kSize);
    (buffer.*&Buffered::gbump)(kSize);
    return true;
  }
};

[[noreturn]] void RaiseUnrepresentable() {
  throw portable_binary_iarchive_exception(portable_binary_iarchive_exception::integer_cannot_be_represented);
}

[[noreturn]] void RaiseMismatch() {
  throw portable_binary_iarchive_exception(portable_binary_iarchive_exception::annotation_mismatch);
}

[[noreturn]] void RaiseStreamError() { throw archive_exception(archive_exception::input_stream_error); }

}  // namespace

portable_binary_iarchive::portable_binary_iarchive(std::istream& stream, unsigned flags)
    : Engine(flags), Primitive(*stream.rdbuf(), true) {
  if ((flags & impl::kThrowOnMismatch) != 0) {
    mismatch_policy_ = MismatchPolicy::kThrow;
  } else if ((flags & impl::kIgnoreMismatch) != 0) {
    mismatch_policy_ = MismatchPolicy::kIgnore;
  }
  if (size_reporting_) reporter_ = std::make_unique<portable_binary_archive_size_reporter>(m_sb, std::cerr);
  set_library_version(boost::serialization::library_version_type(impl::kLibraryVersion));
  FindSize();
  if ((flags & boost::archive::no_header) == 0) ReadHeader();
}

void portable_binary_iarchive::FindSize() {
  const auto seek = [this](std::ios_base::seekdir from) {
    return static_cast<std::streamoff>(m_sb.pubseekoff(0, from, std::ios_base::in));
  };
  const std::streamoff here = seek(std::ios_base::cur);
  if (here < 0) return;
  const std::streamoff end = seek(std::ios_base::end);
  if (end < 0) return;
  if (static_cast<std::streamoff>(m_sb.pubseekpos(here, std::ios_base::in)) != here) RaiseStreamError();
  if (end > here) size_ = static_cast<std::size_t>(end - here);  // special files say 0 and hold something
}

void portable_binary_iarchive::ReadHeader() {
  char magic[sizeof(impl::kMagic)];
  load_binary(magic, sizeof(magic));
  unsigned char version = 0;
  load_binary(&version, sizeof(version));
  if (std::memcmp(magic, impl::kMagic, sizeof(magic)) != 0 || version > impl::kFormatVersion) {
    throw archive_exception(archive_exception::invalid_signature);
  }
  if (LoadUnsigned(std::numeric_limits<unsigned>::max(), sizeof(unsigned)) > impl::kLibraryVersion) {
    throw archive_exception(archive_exception::unsupported_version);
  }
  old_class_id_ = version < impl::kFirstVersionWithShortClassId;
  if (version < impl::kFirstVersionWithFlags) return;
  const unsigned header_flags = ReadWord();
  if ((header_flags & impl::kHeaderAnnotated) == 0) return;
  mode_ = (header_flags & impl::kHeaderChecksums) != 0 ? Annotations::kChecksums : Annotations::kNames;
}

void portable_binary_iarchive::load_binary(void* address, std::size_t size) {
  const auto wanted = static_cast<std::streamsize>(size);
  if (wanted < 0 || m_sb.sgetn(static_cast<char*>(address), wanted) != wanted) RaiseStreamError();
  consumed_ += size;
}

void portable_binary_iarchive::RequireBytesLeft(std::size_t count, std::size_t least_bytes) const {
  if (KnowsBytesLeft() && count > BytesLeft() / least_bytes) RaiseStreamError();
}

std::size_t portable_binary_iarchive::LoadCount(std::size_t least_bytes) {
  const std::size_t count = LoadUnsigned(std::numeric_limits<std::size_t>::max(), sizeof(std::size_t));
  RequireBytesLeft(count, least_bytes);
  return count;
}

// The records of legitimate files that take the most memory for their bytes are made of empty texts and containers:
// about 20 bytes in memory for each in the file.
void portable_binary_iarchive::ChargeMemory(std::size_t bytes) {
  constexpr std::size_t kFreeOfCharge = std::size_t{1} << 24;
  constexpr std::size_t kMemoryPerByte = 64;
  charged_memory_ += bytes;
  if (charged_memory_ > kFreeOfCharge && (charged_memory_ - kFreeOfCharge) / kMemoryPerByte > consumed_) {
    RaiseStreamError();
  }
}

unsigned portable_binary_iarchive::ReadWord() {
  std::uint16_t word = 0;
  if (Buffered::Take(m_sb, word)) {
    consumed_ += sizeof(word);
  } else {
    load_binary(&word, sizeof(word));
  }
  return word;
}

void portable_binary_iarchive::load_impl_storage(long& value, char /*nominal_size*/, bool& negative) {
  constexpr unsigned kPayloadBits = 15;
  constexpr unsigned kWidth = 64;
  unsigned long bits = 0;
  for (unsigned shift = 0; shift < kWidth; shift += kPayloadBits) {
    const unsigned word = ReadWord();
    const unsigned long group = word & 0x7FFFU;
    bits |= group << shift;
    if ((word & 0x8000U) != 0) continue;
    const unsigned used = shift + kPayloadBits;
    if (used < kWidth) {
      negative = (group >> (kPayloadBits - 1)) != 0;
      if (negative) bits |= ~0UL << used;
    } else {
      const unsigned long beyond = group >> (kWidth - shift);
      if (beyond != 0 && beyond != 0x7FFFU >> (kWidth - shift)) RaiseUnrepresentable();
      negative = beyond != 0;
    }
    value = static_cast<long>(bits);
    return;
  }
  RaiseUnrepresentable();
}

long portable_binary_iarchive::LoadSigned(long lowest, long highest, char nominal_size) {
  long value = 0;
  bool negative = false;
  load_impl_storage(value, nominal_size, negative);
  if (negative != (value < 0) || value < lowest || value > highest) RaiseUnrepresentable();
  return value;
}

unsigned long portable_binary_iarchive::LoadUnsigned(unsigned long highest, char nominal_size) {
  long value = 0;
  bool negative = false;
  load_impl_storage(value, nominal_size, negative);
  if (negative || static_cast<unsigned long>(value) > highest) RaiseUnrepresentable();
  return static_cast<unsigned long>(value);
}

void portable_binary_iarchive::load_native(unsigned long& bits) {
  if (Buffered::Take(m_sb, bits)) {
    consumed_ += sizeof(bits);
  } else {
    load_binary(&bits, sizeof(bits));
  }
}

void portable_binary_iarchive::load(double& value) {
  unsigned long bits = 0;
  load_native(bits);
  std::memcpy(&value, &bits, sizeof(value));
}

void portable_binary_iarchive::load(std::string& text) {
  const std::size_t size = LoadCount(1);
  text.clear();
  while (text.size() < size) {
    const std::size_t begin = text.size();
    const std::size_t step = KnowsBytesLeft() ? size : std::min(kReadStep, size - begin);
    text.resize(begin + step);
    load_binary(text.data() + begin, step);
  }
  if (reporter_ != nullptr) reporter_->SetExtraInfo(text);
}

void portable_binary_iarchive::load(std::wstring& text) {
  std::string bytes;
  load(bytes);
  text = string::widen(bytes);
}

void portable_binary_iarchive::load(std::filesystem::path& path) {
  std::string text;
  load(text);
  path = std::filesystem::u8path(text);
}

void portable_binary_iarchive::load(boost::filesystem::path& path) {
  std::string text;
  load(text);
  path = text;
}

void portable_binary_iarchive::load(boost::serialization::collection_size_type& count) {
  count = boost::serialization::collection_size_type(
      LoadUnsigned(std::numeric_limits<std::size_t>::max(), sizeof(std::size_t)));
}

void portable_binary_iarchive::load(boost::serialization::item_version_type& version) {
  version = boost::serialization::item_version_type(
      static_cast<unsigned>(LoadUnsigned(std::numeric_limits<unsigned>::max(), sizeof(unsigned))));
}

void portable_binary_iarchive::load(boost::serialization::library_version_type& version) {
  version = boost::serialization::library_version_type(
      static_cast<unsigned>(LoadUnsigned(std::numeric_limits<std::uint16_t>::max(), sizeof(unsigned))));
}

void portable_binary_iarchive::load(boost::archive::version_type& version) {
  version = boost::archive::version_type(
      static_cast<unsigned>(LoadUnsigned(std::numeric_limits<unsigned>::max(), sizeof(unsigned))));
}

void portable_binary_iarchive::load(boost::archive::object_id_type& id) {
  id = boost::archive::object_id_type(LoadUnsigned(std::numeric_limits<std::uint32_t>::max(), sizeof(std::uint32_t)));
}

void portable_binary_iarchive::load(boost::archive::class_id_type& id) {
  using Limits = std::numeric_limits<std::int16_t>;
  const long value = LoadSigned(Limits::min(), Limits::max(), old_class_id_ ? sizeof(long) : sizeof(int));
  id = boost::archive::class_id_type(static_cast<int>(value));
}

void portable_binary_iarchive::load(boost::archive::tracking_type& tracking) {
  bool value = false;
  load(value);
  tracking = boost::archive::tracking_type(value);
}

void portable_binary_iarchive::load(boost::archive::class_name_type& name) {
  std::string text;
  load(text);
  if (text.size() >= BOOST_SERIALIZATION_MAX_KEY_SIZE) throw archive_exception(archive_exception::invalid_class_name);
  std::memcpy(static_cast<char*>(name), text.c_str(), text.size() + 1);
}

void portable_binary_iarchive::CheckAnnotation(const char* name) {
  if (mode_ == Annotations::kNames) {
    CheckName(name);
  } else {
    CheckChecksum(name);
  }
}

void portable_binary_iarchive::CheckName(const char* name) {
  std::string found;
  load(found);
  if (found == name || mismatch_policy_ == MismatchPolicy::kIgnore) return;
  if (mismatch_policy_ == MismatchPolicy::kThrow) RaiseMismatch();
  std::cerr << "portable_binary_iarchive: annotations differ, expected \"" << name << "\", got \"" << found << "\"\n";
}

void portable_binary_iarchive::CheckChecksum(const char* name) {
  const auto found = static_cast<std::uint16_t>(ReadWord());
  auto& expected = checksums_[name];
  if (found == expected.checksum) {
    if (!expected.used) remember_annotation(expected.checksum, expected.name);
    expected.used = true;
    return;
  }
  if (mismatch_policy_ == MismatchPolicy::kThrow) RaiseMismatch();
  if (mismatch_policy_ == MismatchPolicy::kReport) ReportChecksum(name, expected.checksum, found);
}

void portable_binary_iarchive::remember_annotation(std::uint16_t checksum, const std::string& name) {
  const auto [first, last] = remembered_names_.equal_range(checksum);
  const bool is_known = std::any_of(first, last, [&](const auto& entry) { return entry.second == name; });
  if (!is_known) remembered_names_.emplace(checksum, name);
}

void portable_binary_iarchive::ReportChecksum(const char* name, unsigned expected, std::uint16_t found) const {
  std::cerr << "portable_binary_iarchive: annotations differ, expected " << expected << "(\"" << name << "\"), got "
            << found;
  const auto [first, last] = remembered_names_.equal_range(found);
  for (auto entry = first; entry != last; ++entry) {
    std::cerr << (entry == first ? " (could be: " : ", ") << entry->second;
  }
  std::cerr << (first == last ? "\n" : ")\n");
}

void portable_binary_iarchive::size_report_start_impl(const char* type, const char* name) {
  if (reporter_) reporter_->StartElement(type, name);
}

void portable_binary_iarchive::size_report_end_impl(const char* name) {
  if (reporter_) reporter_->EndElement(name);
}

}  // namespace kestrel

template class boost::archive::detail::common_iarchive<kestrel::portable_binary_iarchive>;
template class boost::archive::basic_binary_iprimitive<kestrel::portable_binary_iarchive, char, std::char_traits<char>>;
