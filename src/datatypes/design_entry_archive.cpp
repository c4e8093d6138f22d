#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include "datatypes/design_entry.h"
#include "persistence/archive/archives.h"

namespace kestrel {
namespace {

using boost::serialization::make_nvp;

/// The content of a cell before version 4.
using OldData = boost::variant<UninitializedType, double, std::int64_t, std::wstring, bool>;

struct ToCell : boost::static_visitor<CDesignEntry> {
  template <class T>
  CDesignEntry operator()(const T& value) const {
    return value;
  }
};

}  // namespace

template <class Archive>
void CDesignEntry::serialize(Archive& archive, unsigned int version) {
  if constexpr (Archive::is_loading::value) {
    LoadData(archive, version);
  } else {
    archive& make_nvp("data_", data_);
  }
}

template <class Archive>
void CDesignEntry::LoadData(Archive& archive, unsigned int version) {
  if (version >= 5) {
    archive >> make_nvp("data_", data_);
  } else if (version == 4) {
    VariantType value;
    archive >> make_nvp("data_", value);
    *this = CDesignEntry(value);
  } else {
    OldData value;
    archive >> make_nvp("data_", value);
    *this = boost::apply_visitor(ToCell(), value);
  }
}

}  // namespace kestrel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::CDesignEntry)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::CDesignEntry)
