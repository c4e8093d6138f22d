#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/plain_archive_reader.h"

/// The layout of a record as a description that the plain reader follows: every name, class preamble and object number
/// is compared with the file, every value is written down.
namespace kestrel::testing {

/// One value of a file: where it stands, such as "settings_/max_CoI_" or "input_names_/0/item", and what it is.
struct PlainValue {
  std::string path;
  std::string text;      ///< of a number with fraction 17 digits; "null" or "object 7" of a pointer without data
  bool is_real = false;  ///< a number with fraction, 8 bytes of the file
  double real = 0.0;
  std::size_t end = 0;  ///< position in the file behind it
};

class PlainWalk {
 public:
  /// What stands under a name. A field begins with its name.
  using Field = std::function<void(PlainWalk&, const std::string& name)>;

  using Fields = std::vector<std::pair<std::string, Field>>;  ///< in stored order

  struct Class {
    std::string key;  ///< of classes that appear through a base pointer their exported name
    std::uint64_t version;
    bool tracked;
    Fields fields;
  };

  /// Walks an archive that holds one pointer, or one object by value, and nothing behind it. Raises std::runtime_error
  /// for the first deviation, with the path and the position.
  /// @param begin  where the archive begins.
  static std::vector<PlainValue> WalkPointer(std::string bytes, const Class& declared);
  static std::vector<PlainValue> WalkObject(std::string bytes, std::size_t begin, const Class& description);

  static Field Unsigned();
  static Field Signed();  ///< also of an enumeration
  static Field Bool();
  static Field Real();
  static Field Text();
  static Field Matrix(const std::string& key);
  static Field Object(Class description);
  /// A list or a vector of objects, or a map, whose items are pairs.
  static Field List(const std::string& key, const Field& item, std::uint64_t item_version = 0);
  /// The same of plain numbers, which has no preamble.
  static Field Numbers(const std::string& key, const Field& item);
  static Field Pair(const std::string& key, const Field& first, const Field& second);
  static Field Map(const std::string& key, const Field& first, const Field& second);
  /// To an abstract class, with the classes that may stand there.
  static Field Pointer(std::vector<Class> classes);
  /// To a class that may stand there itself: the first.
  static Field PointerToConcrete(std::vector<Class> classes);
  static Field Shared(const std::string& key, const Field& pointer);
  /// One of these, by the number "which".
  static Field Variant(const std::string& key, std::vector<Field> alternatives);
  /// Parts of a record that have no name of their own: one of these, by a number that stands before them.
  static Field Choice(const std::string& number, std::map<std::int64_t, Fields> alternatives);
  /// Fields below a name without an object around them.
  static Field Group(Fields fields);
  /// So many items as the number of that name says, without a name of their own.
  static Field Items(const std::string& count, const Field& item);
  static Field Raw(std::size_t size);

 private:
  explicit PlainWalk(std::string bytes, std::size_t begin = 0) : reader_(std::move(bytes), begin) {}

  static Field PointerTo(const std::string& declared_key, std::vector<Class> classes);
  template <class Value>
  static Field Leaf(Value (PlainArchiveReader::*read)());
  void Require(bool holds, const std::string& what) const;
  void WalkContent(const PlainArchiveReader::Object& object, const Class& description);
  void WalkFields(const Fields& fields);
  void WalkItems(std::uint64_t count, const Field& item);
  const std::string& TextOf(const std::string& name) const;  ///< of a value beside the present one
  /// Runs `work` one level below `name`.
  template <class Work>
  void Within(const std::string& name, Work&& work);
  std::string PathOf(const std::string& name) const;
  void Record(const std::string& name, std::string text);
  void Record(const std::string& name, std::uint64_t value) { Record(name, std::to_string(value)); }
  void Record(const std::string& name, std::int64_t value) { Record(name, std::to_string(value)); }
  void Record(const std::string& name, bool value) { Record(name, std::string(value ? "true" : "false")); }
  void Record(const std::string& name, double value) { RecordReal(name, value, reader_.Position()); }
  void RecordReal(const std::string& name, double value, std::size_t end);

  PlainArchiveReader reader_;
  std::vector<std::string> path_;
  std::vector<PlainValue> values_;
};

}  // namespace kestrel::testing
