#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "datatypes/shared_name.h"

namespace kestrel::algorithm::datatypes {

/// The positions of unique names in a list. Designs of one run hold the same names in the same order, so whoever asks
/// for them in that order, with the position that he awaits, pays for the comparison of two addresses and no search.
class NameIndex {
 public:
  static constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);

  NameIndex() = default;
  /// Raises utils::logic_error "Name \"...\" is given twice.".
  explicit NameIndex(const std::vector<std::wstring>& names);

  std::size_t size() const { return names_.size(); }
  /// Appends a name that is not known yet.
  void Append(const SharedName& name);

  /// The position of the name, or kUnknown.
  std::size_t Find(const SharedName& name, std::size_t awaited) const {
    if (awaited < names_.size() && names_[awaited] == name) return awaited;
    const auto found = positions_.find(&name.str());
    return found == positions_.end() ? kUnknown : found->second;
  }

 private:
  std::vector<SharedName> names_;
  std::unordered_map<const std::wstring*, std::size_t> positions_;  // equal names share one text: its address tells
};

}  // namespace kestrel::algorithm::datatypes
