#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace kestrel::testing {

/// A second way to the bytes of the portable binary archive, written from the format alone: it decodes words, compares
/// annotations and keeps the tables of classes and tracked objects without any help of the serialization engine. The
/// caller walks a record by saying what must come next. Whatever does not fit raises std::runtime_error, which tells
/// the position in the file.
class PlainArchiveReader {
 public:
  explicit PlainArchiveReader(std::string bytes, std::size_t position = 0);

  /// Magic, format version 4, library version 17, and the word that tells the kind of annotations.
  void ReadHeader();

  /// The annotation of an item; files without annotations have none.
  PlainArchiveReader& Expect(const std::string& name);

  std::uint64_t ReadUnsigned();
  std::int64_t ReadSigned();
  bool ReadBool();
  double ReadDouble();
  std::string ReadString();  ///< narrow; of a wide one its UTF-8
  std::string ReadRaw(std::size_t size);

  /// "count" and "item_version" of a container; returns the count.
  std::uint64_t ReadCount(std::uint64_t item_version = 0);

  /// What stands ahead of an object's data.
  struct Object {
    std::string class_key;
    std::uint64_t version = 0;
    bool tracked = false;
    std::uint64_t object_id = 0;  ///< if it is tracked
    bool is_null = false;         ///< pointers only
    bool is_reference = false;    ///< the object was met before, no data follow
  };

  /// An object by value. Classes take their numbers in order of first use under the caller's own key, which must be one
  /// for each type; objects without class information (containers of plain numbers) take a number, too.
  Object BeginObject(const std::string& class_key);
  void BeginObjectWithoutClassInfo(const std::string& class_key);

  /// A pointer to an object. `declared_key` is the static type of the pointer, empty if that is an abstract class. The
  /// keys of classes that appear through a base pointer must be their exported names.
  Object BeginPointer(const std::string& declared_key);

  /// A dense matrix or vector of version 2 with its preamble.
  struct Matrix {
    std::int64_t cols = 0;
    std::int64_t rows = 0;
    std::vector<double> items;  ///< by columns
  };
  Matrix ReadMatrix(const std::string& class_key);

  std::size_t Position() const { return position_; }
  bool AtEnd() const { return position_ == bytes_.size(); }

 private:
  struct Class {
    std::string key;
    bool preamble_read = false;
    bool tracked = false;
    std::uint64_t version = 0;
  };

  [[noreturn]] void Fail(const std::string& what) const;
  unsigned ReadWord();
  std::vector<unsigned> ReadGroups();
  std::size_t ClassNumber(const std::string& key);
  Object BeginKnownClass(std::size_t number);

  std::string bytes_;
  std::size_t position_;
  unsigned header_flags_ = 0;
  std::vector<Class> classes_;
  std::vector<std::size_t> object_classes_;  // by object number
};

/// CRC-16/KERMIT, bit by bit.
std::uint16_t PlainChecksum(const std::string& text);

}  // namespace kestrel::testing
