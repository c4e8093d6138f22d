#include "persistence/database/lyra_attached_path.h"

#include "persistence/archive/archives.h"
#include "persistence/archive/serialize_fields.h"

namespace kestrel::algorithm::datatypes {

void LYRAAttachedPath::SetArguments(std::wstring arguments, bool auto_insert_placeholders) {
  arguments_ = std::move(arguments);
  autoInsertPlaceholders_ = auto_insert_placeholders;
}

bool LYRAAttachedPath::operator==(const LYRAAttachedPath& other) const {
  bool equal = true;
  ForEachField([&](const char*, auto field, unsigned) { equal = equal && this->*field == other.*field; });
  return equal;
}

template <class Archive>
void LYRAAttachedPath::serialize(Archive& archive, unsigned int version) {
  persistence::SerializeFields(archive, *this, version);
}

}  // namespace kestrel::algorithm::datatypes

KESTREL_INSTANTIATE_SERIALIZE(kestrel::algorithm::datatypes::LYRAAttachedPath)
