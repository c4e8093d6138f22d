#include "datatypes/name_index.h"

#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {

NameIndex::NameIndex(const std::vector<std::wstring>& names) {
  names_.reserve(names.size());
  for (const std::wstring& name : names) {
    const SharedName shared(name);
    if (Find(shared, kUnknown) != kUnknown) throw utils::logic_error(L"Name \"" + name + L"\" is given twice.");
    Append(shared);
  }
}

void NameIndex::Append(const SharedName& name) {
  positions_.emplace(&name.str(), names_.size());
  names_.push_back(name);
}

}  // namespace kestrel::algorithm::datatypes
