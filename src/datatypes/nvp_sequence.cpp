#include "datatypes/nvp_sequence.h"

#include <boost/archive/archive_exception.hpp>

#include "datatypes/criterion.h"
#include "persistence/archive/archives.h"

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

KESTREL_INSTANTIATE_SERIALIZE(kestrel::CDesignEntrySequence)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::CVariantSequence)
KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::CriterionSequence)
