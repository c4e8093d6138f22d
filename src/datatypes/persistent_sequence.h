#pragma once

// The stored form of CNVPSequence, for the source files that instantiate it.

#include <boost/archive/archive_exception.hpp>
#include <boost/serialization/library_version_type.hpp>
// list.hpp needs the above ahead of it.
#include <boost/serialization/list.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/utility.hpp>

#include "datatypes/nvp_sequence.h"

namespace kestrel {

// The pairs are saved and read where they stand, because the cells in them are identified by their address.
template <class K, class V, class I>
template <class Archive>
void CNVPSequence<K, V, I>::serialize(Archive& archive, unsigned int) {
  archive& boost::serialization::make_nvp("header_", header_);
  archive& boost::serialization::make_nvp("seq_", seq_);
  if (Archive::is_loading::value && !NamesAreUnique()) {
    throw boost::archive::archive_exception(boost::archive::archive_exception::input_stream_error);
  }
}

}  // namespace kestrel
