#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/name_index.h"
#include "datatypes/nvp_sequence.h"

namespace kestrel::algorithm::datatypes {

/// The union of sequences in the order of appearance. The first entry of a name is taken; `join(stored, entry)` is told
/// every further one.
template <class Value>
class EntryUnion {
 public:
  using Entries = CNVPSequence<std::wstring, Value, std::uint64_t>;

  template <class Join>
  void Add(const Entries& entries, const Join& join) {
    std::size_t position = NameIndex::kUnknown;
    for (const auto& [name, value] : entries) {
      position = names_.Find(name, position + 1);
      if (position != NameIndex::kUnknown) {
        join(*values_[position], value);
      } else {
        position = names_.size();
        names_.Append(name);
        values_.push_back(&union_.Add({name, value}));
      }
    }
  }

  Entries Take() { return std::move(union_); }

 private:
  NameIndex names_;
  Entries union_;
  std::vector<Value*> values_;  // in `union_`, by position
};

/// Joins cells: a stored one without a value takes the value of the next.
inline void KeepInitialized(CDesignEntry& stored, const CDesignEntry& entry) {
  if (stored.IsUninitialized()) stored = entry;
}

}  // namespace kestrel::algorithm::datatypes
