#pragma once

#include <algorithm>
#include <boost/format.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "datatypes/design_entry.h"
#include "datatypes/shared_name.h"
#include "persistence/archive/persistent.h"
#include "support/exceptions.h"

namespace kestrel {

/// An ordered sequence of name-value pairs with unique names. The order of insertion is the order, and it is
/// significant. A name is searched linearly; sequences are short, and equal names share their text.
///
/// @tparam K  the name, a wide string to every caller.   @tparam V  the value.
/// @tparam I  a header that the sequence carries along and compares but does not interpret.
template <class K, class V, class I>
class CNVPSequence {
  static_assert(std::is_same_v<K, std::wstring>, "names are wide strings");

 public:
  using key_type = K;
  using mapped_type = V;
  using value_type = std::pair<SharedName, V>;
  using Sequence = std::list<value_type>;

  CNVPSequence() = default;
  explicit CNVPSequence(const I& header) : header_(header) {}

  const I& GetHeader() const { return header_; }
  std::size_t size() const { return seq_.size(); }
  bool empty() const { return seq_.empty(); }
  /// The header stays.
  void ClearAll() { seq_.clear(); }
  const Sequence& GetSequence() const { return seq_; }
  auto begin() const { return seq_.begin(); }
  auto end() const { return seq_.end(); }

  bool Contains(const K& key) const { return GetByKey(key, std::nothrow) != nullptr; }

  /// Appends and returns the stored value. Raises utils::invalid_argument for a name that exists already.
  V& Add(value_type pair);
  V& Add(const K& key, V value) { return Add(value_type(key, std::move(value))); }
  V& push_back(value_type pair) { return Add(std::move(pair)); }
  /// True if the pair was there.
  bool Remove(const K& key);

  /// Raise utils::invalid_argument for a name that does not exist.
  const value_type& GetByKey(const K& key) const;
  const V& GetDataConst(const K& key) const { return GetByKey(key).second; }
  V& GetDataNonConst(const K& key) { return const_cast<V&>(GetByKey(key).second); }
  const V& operator[](const K& key) const { return GetDataConst(key); }
  V& operator[](const K& key) { return GetDataNonConst(key); }

  /// Null for a name that does not exist.
  const value_type* GetByKey(const K& key, const std::nothrow_t&) const;
  const V* GetData(const K& key, const std::nothrow_t&) const;
  V* GetData(const K& key, const std::nothrow_t& nothrow) {
    return const_cast<V*>(std::as_const(*this).GetData(key, nothrow));
  }

  /// Calls visit(name, value) for each pair in order; it may change the value.
  template <class Visit>
  void ForEach(Visit visit) {
    for (auto& [name, value] : seq_) visit(std::as_const(name), value);
  }

  /// Puts the names in ascending order of rank(name); those of equal rank keep theirs.
  template <class Rank>
  void SortBy(Rank rank) {
    const auto precedes = [&rank](const value_type& a, const value_type& b) { return rank(a.first) < rank(b.first); };
    if (!std::is_sorted(seq_.begin(), seq_.end(), precedes)) seq_.sort(precedes);
  }

  /// The pairs of `keys`, in their order. Raises utils::invalid_argument if one is missing and `skip_missing` is false.
  CNVPSequence ExtractInOrder(const std::vector<K>& keys, bool skip_missing) const;

  /// Headers, and pair by pair in order.
  bool operator==(const CNVPSequence& other) const { return header_ == other.header_ && seq_ == other.seq_; }
  bool operator!=(const CNVPSequence& other) const { return !(*this == other); }

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  bool NamesAreUnique() const;

  I header_{};
  Sequence seq_;
};

using CDesignEntrySequence = CNVPSequence<std::wstring, CDesignEntry, std::uint64_t>;
using CVariantSequence = CNVPSequence<std::wstring, math::Variant<double>, std::uint64_t>;

template <class K, class V, class I>
V& CNVPSequence<K, V, I>::Add(value_type pair) {
  // Shared names are told apart by their addresses, which is faster than the search for a text.
  if (std::any_of(seq_.begin(), seq_.end(), [&](const value_type& p) { return p.first == pair.first; })) {
    const auto text =
        boost::wformat(L"Value ( %1%, %2% ) already exists in this sequence") % pair.first.str() % pair.second;
    throw utils::invalid_argument(text.str());
  }
  return seq_.emplace_back(std::move(pair)).second;
}

template <class K, class V, class I>
bool CNVPSequence<K, V, I>::Remove(const K& key) {
  const auto found = std::find_if(seq_.begin(), seq_.end(), [&](const value_type& pair) { return pair.first == key; });
  if (found == seq_.end()) return false;
  seq_.erase(found);
  return true;
}

template <class K, class V, class I>
auto CNVPSequence<K, V, I>::GetByKey(const K& key) const -> const value_type& {
  if (const value_type* const pair = GetByKey(key, std::nothrow)) return *pair;
  throw utils::invalid_argument((boost::wformat(L"Key \"%1%\" does not exist in this sequence") % key).str());
}

template <class K, class V, class I>
auto CNVPSequence<K, V, I>::GetByKey(const K& key, const std::nothrow_t&) const -> const value_type* {
  const auto found = std::find_if(seq_.begin(), seq_.end(), [&](const value_type& pair) { return pair.first == key; });
  return found == seq_.end() ? nullptr : &*found;
}

template <class K, class V, class I>
const V* CNVPSequence<K, V, I>::GetData(const K& key, const std::nothrow_t& nothrow) const {
  const value_type* const pair = GetByKey(key, nothrow);
  return pair == nullptr ? nullptr : &pair->second;
}

template <class K, class V, class I>
CNVPSequence<K, V, I> CNVPSequence<K, V, I>::ExtractInOrder(const std::vector<K>& keys, bool skip_missing) const {
  CNVPSequence extracted(header_);
  for (const K& key : keys) {
    if (const value_type* const pair = GetByKey(key, std::nothrow)) extracted.Add(*pair);
  }
  if (!skip_missing && extracted.size() != keys.size()) {
    boost::wformat text(L"NVPSequence: Found only %1% key(s) but %2% key(s) have been expected");
    throw utils::invalid_argument((text % extracted.size() % keys.size()).str());
  }
  return extracted;
}

template <class K, class V, class I>
bool CNVPSequence<K, V, I>::NamesAreUnique() const {
  std::vector<const std::wstring*> texts;  // equal names share one text, so its address tells
  texts.reserve(seq_.size());
  for (const value_type& pair : seq_) texts.push_back(&pair.first.str());
  std::sort(texts.begin(), texts.end(), std::less<>());
  return std::adjacent_find(texts.begin(), texts.end()) == texts.end();
}

}  // namespace kestrel
