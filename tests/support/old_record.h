#pragma once

#include <functional>
#include <sstream>
#include <string>
#include <utility>

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
template <unsigned Version, int Tracking = boost::serialization::track_always>
struct OldRecord {
  std::function<void(FieldWriter&)> write;

  void serialize(portable_binary_oarchive& archive, unsigned) {
    FieldWriter writer{archive};
    write(writer);
  }
};

/// The bytes of a record of that version, stored by value.
template <unsigned Version, int Tracking = boost::serialization::track_always>
std::string StoreOld(std::function<void(FieldWriter&)> write) {
  std::ostringstream stream;
  const OldRecord<Version, Tracking> old{std::move(write)};
  portable_binary_oarchive(stream, 0) << old;
  return stream.str();
}

/// Writes the fields as an always tracked record of that version and reads them as a `Record`.
template <class Record, unsigned Version>
void ReadOld(Record& record, std::function<void(FieldWriter&)> write) {
  std::istringstream stream(StoreOld<Version>(std::move(write)));
  portable_binary_iarchive(stream, portable_binary_archive_impl::kThrowOnMismatch) >> record;
}

}  // namespace kestrel::testing

namespace boost::serialization {

template <unsigned Version, int Tracking>
struct version<kestrel::testing::OldRecord<Version, Tracking>> {
  using tag = mpl::integral_c_tag;
  using type = mpl::int_<Version>;
  static constexpr unsigned value = Version;
};

template <unsigned Version, int Tracking>
struct tracking_level<kestrel::testing::OldRecord<Version, Tracking>> {
  using tag = mpl::integral_c_tag;
  using type = mpl::int_<Tracking>;
  static constexpr int value = Tracking;
};

}  // namespace boost::serialization
