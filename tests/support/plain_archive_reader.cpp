#include "support/plain_archive_reader.h"

#include <cstring>
#include <stdexcept>
#include <utility>

namespace kestrel::testing {

std::uint16_t PlainChecksum(const std::string& text) {
  unsigned crc = 0;
  for (const char c : text) {
    crc ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 1U) != 0 ? (crc >> 1) ^ 0x8408U : crc >> 1;
  }
  return static_cast<std::uint16_t>(crc);
}

PlainArchiveReader::PlainArchiveReader(std::string bytes, std::size_t position)
    : bytes_(std::move(bytes)), position_(position) {}

void PlainArchiveReader::Fail(const std::string& what) const {
  throw std::runtime_error(what + " at byte " + std::to_string(position_));
}

std::string PlainArchiveReader::ReadRaw(std::size_t size) {
  if (size > bytes_.size() - position_) Fail("file ends within " + std::to_string(size) + " bytes");
  position_ += size;
  return bytes_.substr(position_ - size, size);
}

unsigned PlainArchiveReader::ReadWord() {
  const std::string raw = ReadRaw(2);
  return static_cast<unsigned char>(raw[0]) + 256U * static_cast<unsigned char>(raw[1]);
}

void PlainArchiveReader::ReadHeader() {
  if (ReadRaw(4) != std::string("KBA\x04")) Fail("bad magic or format version");
  if (ReadUnsigned() != 17) Fail("bad library version");
  header_flags_ = ReadWord();
}

PlainArchiveReader& PlainArchiveReader::Expect(const std::string& name) {
  if (header_flags_ == 1) {
    const std::string found = ReadString();
    if (found != name) Fail("expected item " + name + ", found " + found);
  } else if (header_flags_ == 3) {
    if (ReadWord() != PlainChecksum(name)) Fail("expected the checksum of item " + name);
  }
  return *this;
}

std::vector<unsigned> PlainArchiveReader::ReadGroups() {
  std::vector<unsigned> groups;
  unsigned word = 0;
  do {
    word = ReadWord();
    groups.push_back(word % 0x8000U);
  } while (word >= 0x8000U);
  if (groups.size() > 5) Fail("integer of more than 75 bits");
  return groups;
}

std::int64_t PlainArchiveReader::ReadSigned() {
  const std::vector<unsigned> groups = ReadGroups();
  std::uint64_t value = groups.back() >= 0x4000U ? ~std::uint64_t{0} : 0;  // bit 14 of the last word is the sign
  for (auto group = groups.rbegin(); group != groups.rend(); ++group) value = value * 0x8000U + *group;
  return static_cast<std::int64_t>(value);
}

std::uint64_t PlainArchiveReader::ReadUnsigned() {
  const std::size_t begin = position_;
  if (ReadGroups().back() >= 0x4000U) Fail("negative number");
  position_ = begin;
  return static_cast<std::uint64_t>(ReadSigned());
}

bool PlainArchiveReader::ReadBool() {
  const unsigned word = ReadWord();
  if (word > 1) Fail("bool that is neither 0 nor 1");
  return word == 1;
}

double PlainArchiveReader::ReadDouble() {
  double value = 0.0;
  std::memcpy(&value, ReadRaw(sizeof(value)).data(), sizeof(value));
  return value;
}

std::string PlainArchiveReader::ReadString() { return ReadRaw(ReadUnsigned()); }

std::uint64_t PlainArchiveReader::ReadCount(std::uint64_t item_version) {
  const std::uint64_t count = Expect("count").ReadUnsigned();
  if (Expect("item_version").ReadUnsigned() != item_version) Fail("unexpected item_version");
  return count;
}

std::size_t PlainArchiveReader::ClassNumber(const std::string& key) {
  for (std::size_t i = 0; i < classes_.size(); ++i) {
    if (classes_[i].key == key) return i;
  }
  classes_.push_back({key});
  return classes_.size() - 1;
}

PlainArchiveReader::Object PlainArchiveReader::BeginKnownClass(std::size_t number) {
  Class& description = classes_[number];
  if (!description.preamble_read) {
    description.tracked = ReadBool();
    description.version = ReadUnsigned();
    description.preamble_read = true;
  }
  Object object{description.key, description.version, description.tracked};
  if (!object.tracked) return object;
  object.object_id = ReadUnsigned();
  object.is_reference = object.object_id < object_classes_.size();
  if (object.object_id > object_classes_.size()) Fail("object number out of order");
  if (object.is_reference && object_classes_[object.object_id] != number) Fail("reference to another class");
  if (!object.is_reference) object_classes_.push_back(number);
  return object;
}

PlainArchiveReader::Object PlainArchiveReader::BeginObject(const std::string& class_key) {
  return BeginKnownClass(ClassNumber(class_key));
}

void PlainArchiveReader::BeginObjectWithoutClassInfo(const std::string& class_key) { ClassNumber(class_key); }

PlainArchiveReader::Object PlainArchiveReader::BeginPointer(const std::string& declared_key) {
  if (!declared_key.empty()) ClassNumber(declared_key);
  const std::int64_t id = ReadSigned();
  if (id == -1) {
    Object null;
    null.is_null = true;
    return null;
  }
  if (id < 0 || static_cast<std::size_t>(id) > classes_.size()) Fail("class number out of order");
  const auto number = static_cast<std::size_t>(id);
  if (number == classes_.size() && ClassNumber(ReadString()) != number) Fail("class with two numbers");
  return BeginKnownClass(number);
}

PlainArchiveReader::Matrix PlainArchiveReader::ReadMatrix(const std::string& class_key) {
  if (BeginObject(class_key).version != 2) Fail("matrix that is not of version 2");
  Matrix matrix;
  matrix.cols = ReadSigned();
  matrix.rows = ReadSigned();
  for (std::int64_t i = 0; i < matrix.cols * matrix.rows; ++i) matrix.items.push_back(ReadDouble());
  return matrix;
}

}  // namespace kestrel::testing
