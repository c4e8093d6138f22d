#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <utility>

#include "persistence/archive/persistent.h"

namespace kestrel::utils {

/// A chain of levels, each a value and the owned rest of the chain: "1.5" is the value 1 with the child 5. There is
/// always a root. No operation recurses, so a chain may have any number of levels.
template <class T>
class CHierachicalId {
 public:
  CHierachicalId() = default;
  explicit CHierachicalId(T value) : id_(value) {}
  CHierachicalId(const CHierachicalId& other);
  CHierachicalId(CHierachicalId&& other) noexcept = default;
  CHierachicalId& operator=(const CHierachicalId& other);
  CHierachicalId& operator=(CHierachicalId&& other) noexcept;
  ~CHierachicalId() { RemoveChild(); }

  /// Sets the value of the root; the children stay.
  CHierachicalId& operator=(T value);

  /// The value of the root.
  T operator()() const { return id_; }

  /// The last level.
  const CHierachicalId& GetLeaf() const;
  CHierachicalId& GetLeaf();

  bool HasChild() const { return child_ != nullptr; }
  /// Both raise utils::logic_error if there is no child: "CHierachicalId object has no valid child [01]", the const
  /// form with "[02]".
  CHierachicalId& GetChild();
  const CHierachicalId& GetChild() const;
  /// Drops all levels below the root.
  void RemoveChild();

  /// Appends a level behind the leaf.
  CHierachicalId& operator/=(T value);
  CHierachicalId operator/(T value) const;

  /// Lexicographic from the root; a chain is less than its own continuation.
  bool operator<(const CHierachicalId& other) const;
  bool operator==(const CHierachicalId& other) const;
  bool operator!=(const CHierachicalId& other) const { return !(*this == other); }

  /// The combining step of a 64-bit `boost::hash_combine`, from the leaf to the root: the hash of a level is
  /// combine(combine(0, value), hash of its child), without the second step at the leaf.
  std::size_t Hash() const;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void save(Archive& archive, unsigned int version) const;
  template <class Archive>
  void load(Archive& archive, unsigned int version);
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  T id_{};
  std::unique_ptr<CHierachicalId> child_;
};

template <class T>
std::size_t hash_value(const CHierachicalId<T>& id) {
  return id.Hash();
}

/// The levels in their order with a dot between them.
template <class Char, class T>
std::basic_ostream<Char>& operator<<(std::basic_ostream<Char>& stream, const CHierachicalId<T>& id) {
  stream << id();
  for (const CHierachicalId<T>* level = &id; level->HasChild();) {
    level = &level->GetChild();
    stream << Char('.') << (*level)();
  }
  return stream;
}

extern template class CHierachicalId<std::uint64_t>;

}  // namespace kestrel::utils

namespace kestrel::algorithm::datatypes {

/// The ids of designs, iterations and parameters.
using CHierachicalId = utils::CHierachicalId<std::uint64_t>;

/// For the hash containers of the standard library.
struct HierachicalIdHash {
  std::size_t operator()(const CHierachicalId& id) const { return id.Hash(); }
};

}  // namespace kestrel::algorithm::datatypes

BOOST_CLASS_VERSION(kestrel::utils::CHierachicalId<std::uint64_t>, 0)
BOOST_CLASS_TRACKING(kestrel::utils::CHierachicalId<std::uint64_t>, boost::serialization::track_never)
