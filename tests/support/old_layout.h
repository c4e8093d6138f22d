#pragma once

#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/old_record.h"
#include "support/read_to_the_end.h"
#include "support/stored.h"

namespace kestrel::testing {

/// How a class is stored in each of its versions: the fields in their order, which versions have them, and what reading
/// leaves in a record whose file lacks one. Fields are named by a member, a getter or any other function of the record.
template <class Record, int kTracking = boost::serialization::track_always>
class Layout {
 public:
  static constexpr unsigned kPresent = boost::serialization::version<Record>::value;

  /// @param full  a record whose fields are not those of a new one.
  explicit Layout(const Record& full) : full_(std::make_shared<Record>(full)) {}

  template <class Base>
  Layout& BasePart(const char* name) {
    return Field(name, [](const Record& record) -> const Base& { return record; });
  }

  /// A field of all versions.
  template <class Get>
  Layout& Field(const char* name, Get get) {
    return Since(0, name, get, [](Record&) {});
  }

  /// A field that version `since` brought.
  /// @param absent  what it is after reading an older file: the value of the member, or a function that puts it there.
  template <class Get, class Absent>
  Layout& Since(unsigned since, const char* name, Get get, Absent absent) {
    const auto leave = [=](Record& record) {
      if constexpr (std::is_invocable_v<Absent, Record&>) {
        absent(record);
      } else {
        std::invoke(get, record) = absent;
      }
    };
    const auto write = [=](FieldWriter& field, const Record& record) { field(name, std::invoke(get, record)); };
    steps_.push_back([=](unsigned version, FieldWriter* field, Record& record) {
      if (field != nullptr && version >= since) write(*field, record);
      if (field == nullptr && version < since) leave(record);
    });
    return *this;
  }

  /// A field that version `until` dropped.
  /// @param take  what reading makes of it; nothing unless given.
  template <class Value>
  Layout& Below(unsigned until, const char* name, Value old, std::function<void(Record&)> take = {}) {
    const auto value = std::make_shared<const Value>(std::move(old));
    steps_.push_back([=](unsigned version, FieldWriter* field, Record& record) {
      if (version >= until) return;
      if (field != nullptr) (*field)(name, *value);
      if (field == nullptr && take) take(record);
    });
    return *this;
  }

  /// The full record as a file of that version.
  template <unsigned kVersion>
  std::string Bytes() const {
    return StoreOld<kVersion, kTracking>([this](FieldWriter& field) {
      for (const Step& step : steps_) step(kVersion, &field, *full_);
    });
  }

  /// What reading such a file gives.
  Record Expected(unsigned version) const {
    Record record = *full_;
    for (const Step& step : steps_) step(version, nullptr, record);
    return record;
  }

  /// Every version is read as expected, and the present one is stored with the bytes that the layout says.
  /// @param into  what the records that read hold before; nothing of it may stay.
  void ExpectEveryVersionIsRead(const Record& into = Record()) const {
    EXPECT_TRUE(Store(*full_) == Bytes<kPresent>()) << "the layout is not that of the present version";
    ExpectAreRead(into, std::make_integer_sequence<unsigned, kPresent + 1>());
  }

 private:
  /// Writes its field, or, without a writer, changes the record as reading does.
  using Step = std::function<void(unsigned version, FieldWriter*, Record&)>;

  template <unsigned... kVersions>
  void ExpectAreRead(const Record& into, std::integer_sequence<unsigned, kVersions...>) const {
    (ExpectIsRead<kVersions>(into), ...);
  }

  template <unsigned kVersion>
  void ExpectIsRead(Record read) const {
    SCOPED_TRACE("version " + std::to_string(kVersion));
    EXPECT_NO_THROW(ReadToTheEnd(Bytes<kVersion>(), read));
    EXPECT_TRUE(Store(read) == Store(Expected(kVersion)));
  }

  std::shared_ptr<Record> full_;
  std::vector<Step> steps_;
};

}  // namespace kestrel::testing
