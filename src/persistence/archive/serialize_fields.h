#pragma once

#include <boost/serialization/nvp.hpp>

namespace kestrel::persistence {

/// Stores or reads the fields that `Record::ForEachField` visits (name in files, member, class version that brought
/// it), in that order. A field that the file's version does not have gets the value of a new record.
template <class Record, class Archive>
void SerializeFields(Archive& archive, Record& record, unsigned int version) {
  Record::ForEachField([&](const char* name, auto field, unsigned int since) {
    if (version >= since) {
      archive& boost::serialization::make_nvp(name, record.*field);
    } else {
      record.*field = Record{}.*field;
    }
  });
}

}  // namespace kestrel::persistence
