#pragma once

#include "persistence/archive/portable_binary_iarchive.h"

#include <boost/dynamic_bitset/serialization.hpp>
#include <boost/serialization/boost_unordered_set.hpp>
#include <boost/serialization/detail/stack_constructor.hpp>
#include <boost/serialization/list.hpp>
#include <boost/serialization/map.hpp>
#include <boost/serialization/set.hpp>
#include <boost/serialization/unordered_set.hpp>
#include <boost/serialization/utility.hpp>
#include <boost/serialization/variant.hpp>
#include <boost/serialization/vector.hpp>
#include <boost/unordered_set.hpp>
#include <boost/variant.hpp>

#include <algorithm>
#include <list>
#include <map>
#include <set>
#include <type_traits>
#include <unordered_set>
#include <utility>
#include <vector>

// How portable_binary_iarchive loads containers. The bytes are those that the engine writes. The overloads are more
// special than the engine's, which take memory for as many elements as the file promises; these let a container grow
// while its elements arrive.

namespace kestrel::portable_binary_archive_impl {

constexpr std::size_t kNodeBytes = 48;  // what a list, tree or hash takes beside the element

inline std::size_t LoadCollectionCount(portable_binary_iarchive& archive) {
  archive.check_annotation("count");
  return archive.LoadCount(1);
}

/// The class version of the elements, which nothing here depends on.
inline void SkipItemVersion(portable_binary_iarchive& archive) {
  boost::serialization::item_version_type item_version(0);
  archive >> BOOST_SERIALIZATION_NVP(item_version);
}

/// Loads an element into a local and has `insert` put it into its place; `insert` returns where that is.
template <class T, class Insert>
void LoadElement(portable_binary_iarchive& archive, Insert insert) {
  const std::size_t first = archive.LoadedObjects().ObjectCount();
  boost::serialization::detail::stack_construct<portable_binary_iarchive, T> element(archive, 0);
  archive >> boost::serialization::make_nvp("item", element.reference());
  const auto* const place = insert(std::move(element.reference()));
  archive.LoadedObjects().MoveObjects(first, element.address(), place, sizeof(T));
}

/// A growing vector moves its elements, and with them the tracked objects from number `first` on.
template <class Vector>
void GrowBy1(portable_binary_iarchive& archive, Vector& vector, std::size_t first) {
  const auto* const old_place = vector.data();
  const std::size_t old_bytes = vector.size() * sizeof(*old_place);
  vector.emplace_back();
  if (vector.data() != old_place) archive.LoadedObjects().MoveObjects(first, old_place, vector.data(), old_bytes);
}

template <class Set>
void LoadSet(portable_binary_iarchive& archive, Set& set, std::size_t count) {
  using T = typename Set::value_type;
  set.clear();
  for (; count > 0; --count) {
    archive.ChargeMemory(sizeof(T) + kNodeBytes);
    LoadElement<T>(archive, [&](T&& element) { return &*set.insert(set.end(), std::move(element)); });
  }
}

template <class Map>
void LoadMap(portable_binary_iarchive& archive, Map& map) {
  using T = typename Map::value_type;
  std::size_t count = LoadCollectionCount(archive);
  SkipItemVersion(archive);
  map.clear();
  for (; count > 0; --count) {
    archive.ChargeMemory(sizeof(T) + kNodeBytes);
    LoadElement<T>(archive, [&](T&& element) { return &*map.insert(map.end(), std::move(element)); });
  }
}

template <class Set>
void LoadHashSet(portable_binary_iarchive& archive, Set& set) {
  const std::size_t count = LoadCollectionCount(archive);
  boost::serialization::collection_size_type bucket_count;  // of the writer's table; ours finds its own
  archive >> BOOST_SERIALIZATION_NVP(bucket_count);
  SkipItemVersion(archive);
  LoadSet(archive, set, count);
}

}  // namespace kestrel::portable_binary_archive_impl

namespace boost::serialization {

template <class T, class Allocator>
void load(kestrel::portable_binary_iarchive& archive, std::vector<T, Allocator>& vector, unsigned /*version*/) {
  namespace impl = kestrel::portable_binary_archive_impl;
  const std::size_t count = impl::LoadCollectionCount(archive);
  impl::SkipItemVersion(archive);
  vector.clear();
  const std::size_t first = archive.LoadedObjects().ObjectCount();
  for (std::size_t i = 0; i < count; ++i) {
    archive.ChargeMemory(sizeof(T));
    impl::GrowBy1(archive, vector, first);
    archive >> make_nvp("item", vector.back());
  }
}

template <class Allocator>
void load(kestrel::portable_binary_iarchive& archive, std::vector<bool, Allocator>& vector, unsigned /*version*/) {
  const std::size_t count = kestrel::portable_binary_archive_impl::LoadCollectionCount(archive);
  vector.clear();
  for (std::size_t i = 0; i < count; ++i) {
    bool item = false;
    archive >> BOOST_SERIALIZATION_NVP(item);
    vector.push_back(item);
  }
}

template <class T, class Allocator>
void load(kestrel::portable_binary_iarchive& archive, std::list<T, Allocator>& list, unsigned /*version*/) {
  namespace impl = kestrel::portable_binary_archive_impl;
  const std::size_t count = impl::LoadCollectionCount(archive);
  impl::SkipItemVersion(archive);
  list.clear();
  for (std::size_t i = 0; i < count; ++i) {
    archive.ChargeMemory(sizeof(T) + impl::kNodeBytes);
    list.emplace_back();
    archive >> make_nvp("item", list.back());
  }
}

template <class T, class Compare, class Allocator>
void load(kestrel::portable_binary_iarchive& archive, std::set<T, Compare, Allocator>& set, unsigned /*version*/) {
  namespace impl = kestrel::portable_binary_archive_impl;
  const std::size_t count = impl::LoadCollectionCount(archive);
  impl::SkipItemVersion(archive);
  impl::LoadSet(archive, set, count);
}

template <class Key, class T, class Compare, class Allocator>
void load(kestrel::portable_binary_iarchive& archive, std::map<Key, T, Compare, Allocator>& map, unsigned /*version*/) {
  kestrel::portable_binary_archive_impl::LoadMap(archive, map);
}

template <class Key, class T, class Compare, class Allocator>
void load(kestrel::portable_binary_iarchive& archive, std::multimap<Key, T, Compare, Allocator>& map,
          unsigned /*version*/) {
  kestrel::portable_binary_archive_impl::LoadMap(archive, map);
}

template <class T, class Hash, class Equal, class Allocator>
void load(kestrel::portable_binary_iarchive& archive, std::unordered_set<T, Hash, Equal, Allocator>& set,
          unsigned /*version*/) {
  kestrel::portable_binary_archive_impl::LoadHashSet(archive, set);
}

template <class T, class Hash, class Equal, class Allocator>
void load(kestrel::portable_binary_iarchive& archive, boost::unordered_set<T, Hash, Equal, Allocator>& set,
          unsigned /*version*/) {
  kestrel::portable_binary_archive_impl::LoadHashSet(archive, set);
}

/// The blocks must be as many as the bits need; bits beyond the last are dropped.
template <class Block, class Allocator>
void serialize(kestrel::portable_binary_iarchive& archive, boost::dynamic_bitset<Block, Allocator>& bits,
               unsigned /*version*/) {
  using Bits = boost::dynamic_bitset<Block, Allocator>;
  typename Bits::size_type count = 0;
  std::vector<Block, Allocator> blocks;
  archive >> make_nvp("m_num_bits", count) >> make_nvp("m_bits", blocks);
  if (count / Bits::bits_per_block + (count % Bits::bits_per_block != 0 ? 1 : 0) != blocks.size()) {
    throw archive::archive_exception(archive::archive_exception::input_stream_error);
  }
  bits = Bits(blocks.begin(), blocks.end());
  bits.resize(count);
}

template <class First, class... Others>
void load(kestrel::portable_binary_iarchive& archive, boost::variant<First, Others...>& variant, unsigned /*version*/) {
  int which = 0;
  archive >> BOOST_SERIALIZATION_NVP(which);
  const auto load_alternative = [&](auto value) {
    archive >> BOOST_SERIALIZATION_NVP(value);
    variant = std::move(value);
    archive.reset_object_address(&boost::get<decltype(value)>(variant), &value);
    return true;
  };
  int index = 0;
  const bool is_loaded =
      (which == index++ && load_alternative(First{})) ||
      (... || (which == index++ && load_alternative(typename boost::unwrap_recursive<Others>::type{})));
  if (!is_loaded) throw archive::archive_exception(archive::archive_exception::unsupported_version);
}

}  // namespace boost::serialization
