#include "golden/plain_schema.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace kestrel::testing {

std::vector<PlainValue> PlainWalk::WalkPointer(std::string bytes, const Class& declared) {
  PlainWalk walk(std::move(bytes));
  walk.reader_.ReadHeader();
  walk.WalkContent(walk.reader_.BeginPointer(declared.key), declared);
  walk.Require(walk.reader_.AtEnd(), "bytes behind the record");
  return std::move(walk.values_);
}

std::vector<PlainValue> PlainWalk::WalkObject(std::string bytes, std::size_t begin, const Class& description) {
  PlainWalk walk(std::move(bytes), begin);
  walk.reader_.ReadHeader();
  walk.WalkContent(walk.reader_.BeginObject(description.key), description);
  walk.Require(walk.reader_.AtEnd(), "bytes behind the record");
  return std::move(walk.values_);
}

void PlainWalk::Require(bool holds, const std::string& what) const {
  if (!holds) {
    throw std::runtime_error(PathOf("") + ": " + what + " at byte " + std::to_string(reader_.Position()));
  }
}

std::string PlainWalk::PathOf(const std::string& name) const {
  std::string path;
  for (const std::string& level : path_) path += level + "/";
  return path + name;
}

void PlainWalk::Record(const std::string& name, std::string text) {
  values_.push_back({PathOf(name), std::move(text), false, 0.0, reader_.Position()});
}

void PlainWalk::RecordReal(const std::string& name, double value, std::size_t end) {
  char text[32];
  std::snprintf(text, sizeof(text), "%.17g", value);
  values_.push_back({PathOf(name), text, true, value, end});
}

template <class Work>
void PlainWalk::Within(const std::string& name, Work&& work) {
  path_.push_back(name);
  work();
  path_.pop_back();
}

void PlainWalk::WalkContent(const PlainArchiveReader::Object& object, const Class& description) {
  Require(object.class_key == description.key, "a " + object.class_key + " instead of a " + description.key);
  Require(object.version == description.version, description.key + " of version " + std::to_string(object.version));
  Require(object.tracked == description.tracked, description.key + (object.tracked ? " is" : " is not") + " tracked");
  if (object.is_reference) return Record("", "object " + std::to_string(object.object_id));
  WalkFields(description.fields);
}

void PlainWalk::WalkFields(const Fields& fields) {
  for (const auto& [name, field] : fields) field(*this, name);
}

void PlainWalk::WalkItems(std::uint64_t count, const Field& item) {
  Record("count", count);
  for (std::uint64_t i = 0; i < count; ++i) Within(std::to_string(i), [&] { item(*this, "item"); });
}

template <class Value>
PlainWalk::Field PlainWalk::Leaf(Value (PlainArchiveReader::*read)()) {
  return [read](PlainWalk& walk, const std::string& name) { walk.Record(name, (walk.reader_.Expect(name).*read)()); };
}

PlainWalk::Field PlainWalk::Unsigned() { return Leaf(&PlainArchiveReader::ReadUnsigned); }
PlainWalk::Field PlainWalk::Signed() { return Leaf(&PlainArchiveReader::ReadSigned); }
PlainWalk::Field PlainWalk::Bool() { return Leaf(&PlainArchiveReader::ReadBool); }
PlainWalk::Field PlainWalk::Real() { return Leaf(&PlainArchiveReader::ReadDouble); }
PlainWalk::Field PlainWalk::Text() { return Leaf(&PlainArchiveReader::ReadString); }

PlainWalk::Field PlainWalk::Matrix(const std::string& key) {
  return [key](PlainWalk& walk, const std::string& name) {
    const PlainArchiveReader::Matrix matrix = walk.reader_.Expect(name).ReadMatrix(key);
    walk.Within(name, [&] {
      walk.Record("cols", matrix.cols);
      walk.Record("rows", matrix.rows);
      const std::size_t begin = walk.reader_.Position() - sizeof(double) * matrix.items.size();
      for (std::size_t i = 0; i < matrix.items.size(); ++i) {
        walk.RecordReal(std::to_string(i), matrix.items[i], begin + sizeof(double) * (i + 1));
      }
    });
  };
}

PlainWalk::Field PlainWalk::Object(Class description) {
  return [description = std::move(description)](PlainWalk& walk, const std::string& name) {
    walk.reader_.Expect(name);
    walk.Within(name, [&] { walk.WalkContent(walk.reader_.BeginObject(description.key), description); });
  };
}

PlainWalk::Field PlainWalk::List(const std::string& key, const Field& item, std::uint64_t item_version) {
  return [=](PlainWalk& walk, const std::string& name) {
    walk.reader_.Expect(name);
    walk.Within(name, [&] {
      walk.WalkContent(walk.reader_.BeginObject(key), {key, 0, false, {}});
      walk.WalkItems(walk.reader_.ReadCount(item_version), item);
    });
  };
}

PlainWalk::Field PlainWalk::Numbers(const std::string& key, const Field& item) {
  return [=](PlainWalk& walk, const std::string& name) {
    walk.reader_.Expect(name).BeginObjectWithoutClassInfo(key);
    walk.Within(name, [&] { walk.WalkItems(walk.reader_.ReadCount(), item); });
  };
}

PlainWalk::Field PlainWalk::Pair(const std::string& key, const Field& first, const Field& second) {
  return Object({key, 0, false, {{"first", first}, {"second", second}}});
}

PlainWalk::Field PlainWalk::Map(const std::string& key, const Field& first, const Field& second) {
  return List("map of " + key, Pair("entry of " + key, first, second));
}

PlainWalk::Field PlainWalk::Pointer(std::vector<Class> classes) { return PointerTo("", std::move(classes)); }

PlainWalk::Field PlainWalk::PointerToConcrete(std::vector<Class> classes) {
  const std::string declared = classes.front().key;
  return PointerTo(declared, std::move(classes));
}

PlainWalk::Field PlainWalk::PointerTo(const std::string& declared_key, std::vector<Class> classes) {
  return [declared_key, classes = std::move(classes)](PlainWalk& walk, const std::string& name) {
    const PlainArchiveReader::Object object = walk.reader_.Expect(name).BeginPointer(declared_key);
    if (object.is_null) return walk.Record(name, std::string("null"));
    const auto found = std::find_if(classes.begin(), classes.end(),
                                    [&](const Class& description) { return description.key == object.class_key; });
    walk.Within(name, [&] {
      walk.Require(found != classes.end(), "a " + object.class_key);
      walk.WalkContent(object, *found);
    });
  };
}

PlainWalk::Field PlainWalk::Shared(const std::string& key, const Field& pointer) {
  return Object({"shared pointer to " + key, 1, false, {{"px", pointer}}});
}

PlainWalk::Field PlainWalk::Variant(const std::string& key, std::vector<Field> alternatives) {
  return [key, alternatives = std::move(alternatives)](PlainWalk& walk, const std::string& name) {
    walk.reader_.Expect(name);
    walk.Within(name, [&] {
      walk.WalkContent(walk.reader_.BeginObject(key), {key, 0, true, {}});
      const std::int64_t which = walk.reader_.Expect("which").ReadSigned();
      walk.Record("which", which);
      alternatives.at(static_cast<std::size_t>(which))(walk, "value");
    });
  };
}

const std::string& PlainWalk::TextOf(const std::string& name) const {
  const auto found = std::find_if(values_.rbegin(), values_.rend(),
                                  [path = PathOf(name)](const PlainValue& value) { return value.path == path; });
  Require(found != values_.rend(), "no " + name);
  return found->text;
}

PlainWalk::Field PlainWalk::Choice(const std::string& number, std::map<std::int64_t, Fields> alternatives) {
  return [number, alternatives = std::move(alternatives)](PlainWalk& walk, const std::string&) {
    walk.WalkFields(alternatives.at(std::stoll(walk.TextOf(number))));
  };
}

PlainWalk::Field PlainWalk::Group(Fields fields) {
  return [fields = std::move(fields)](PlainWalk& walk, const std::string& name) {
    walk.reader_.Expect(name);
    walk.Within(name, [&] { walk.WalkFields(fields); });
  };
}

PlainWalk::Field PlainWalk::Items(const std::string& count, const Field& item) {
  return [=](PlainWalk& walk, const std::string&) { walk.WalkItems(walk.reader_.Expect(count).ReadUnsigned(), item); };
}

PlainWalk::Field PlainWalk::Raw(std::size_t size) {
  return
      [size](PlainWalk& walk, const std::string& name) { walk.Record(name, walk.reader_.Expect(name).ReadRaw(size)); };
}

}  // namespace kestrel::testing
