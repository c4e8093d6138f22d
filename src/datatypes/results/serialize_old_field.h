#pragma once

#include <boost/serialization/nvp.hpp>

namespace kestrel::persistence {

/// Reads a field that only old files have and hands it on, for the caller to take over or to drop.
template <class Value, class Archive>
Value OldField(Archive& archive, const char* name) {
  Value value{};
  archive& boost::serialization::make_nvp(name, value);
  return value;
}

}  // namespace kestrel::persistence
