#pragma once

#include <functional>
#include <sstream>
#include <string>

#include "persistence/archive/archives.h"

/// Files of older class versions, written by tests.
namespace kestrel::testing {

/// Puts named fields into an archive: field("name", value)("name", value). Records that are identified by their address
/// must outlive the writing.
struct FieldWriter {
  template <class Value>
  FieldWriter& operator()(const char* name, const Value& value) {
    archive << boost::serialization::make_nvp(name, value);
    return *this;
  }

  portable_binary_oarchive& archive;
};

/// Stands for a record of an older class version: the fields that `write` puts into the archive.
template <unsigned Version>
struct OldRecord {
  std::function<void(FieldWriter&)> write;

  void serialize(portable_binary_oarchive& archive, unsigned) {
    FieldWriter writer{archive};
    write(writer);
  }
};

/// Writes the fields as an always tracked record of that version and reads them as a `Record`.
template <class Record, unsigned Version>
void ReadOld(Record& record, std::function<void(FieldWriter&)> write) {
  std::stringstream stream;
  const OldRecord<Version> old{std::move(write)};
  portable_binary_oarchive(stream, 0) << old;
  portable_binary_iarchive(stream, portable_binary_archive_impl::kThrowOnMismatch) >> record;
}

}  // namespace kestrel::testing

namespace boost::serialization {

template <unsigned Version>
struct version<kestrel::testing::OldRecord<Version>> {
  using tag = mpl::integral_c_tag;
  using type = mpl::int_<Version>;
  static constexpr unsigned value = Version;
};

template <unsigned Version>
struct tracking_level<kestrel::testing::OldRecord<Version>> {
  using tag = mpl::integral_c_tag;
  using type = mpl::int_<track_always>;
  static constexpr int value = track_always;
};

}  // namespace boost::serialization
