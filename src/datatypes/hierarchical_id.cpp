#include "datatypes/hierarchical_id.h"

#include <utility>
#include <vector>

#include "persistence/archive/archives.h"
#include "support/exceptions.h"

namespace kestrel::utils {
namespace {

/// One step of the 64-bit hash_combine, the mixing step of MurmurHash2 (Appleby): m = 0xc6a4a7935bd1e995, r = 47.
std::uint64_t Combine(std::uint64_t seed, std::uint64_t value) {
  constexpr std::uint64_t kMultiplier = 0xc6a4a7935bd1e995;
  constexpr unsigned kShift = 47;
  constexpr std::uint64_t kAddend = 0xe6546b64;
  value *= kMultiplier;
  value ^= value >> kShift;
  value *= kMultiplier;
  return (seed ^ value) * kMultiplier + kAddend;
}

}  // namespace

template <class T>
CHierachicalId<T>::CHierachicalId(const CHierachicalId& other) : id_(other.id_) {
  CHierachicalId* leaf = this;
  for (const CHierachicalId* level = other.child_.get(); level != nullptr; level = level->child_.get()) {
    leaf->child_ = std::make_unique<CHierachicalId>(level->id_);
    leaf = leaf->child_.get();
  }
}

template <class T>
CHierachicalId<T>& CHierachicalId<T>::operator=(const CHierachicalId& other) {
  return *this = CHierachicalId(other);
}

template <class T>
CHierachicalId<T>& CHierachicalId<T>::operator=(CHierachicalId&& other) noexcept {
  // Taken before the own levels go: `other` may be one of them.
  const T value = other.id_;
  std::unique_ptr<CHierachicalId> child = std::move(other.child_);
  if (&other != this) RemoveChild();
  id_ = value;
  child_ = std::move(child);
  return *this;
}

template <class T>
CHierachicalId<T>& CHierachicalId<T>::operator=(T value) {
  id_ = value;
  return *this;
}

template <class T>
const CHierachicalId<T>& CHierachicalId<T>::GetLeaf() const {
  const CHierachicalId* leaf = this;
  while (leaf->child_) leaf = leaf->child_.get();
  return *leaf;
}

template <class T>
CHierachicalId<T>& CHierachicalId<T>::GetLeaf() {
  CHierachicalId* leaf = this;
  while (leaf->child_) leaf = leaf->child_.get();
  return *leaf;
}

template <class T>
CHierachicalId<T>& CHierachicalId<T>::GetChild() {
  if (!child_) throw logic_error(L"CHierachicalId object has no valid child [01]");
  return *child_;
}

template <class T>
const CHierachicalId<T>& CHierachicalId<T>::GetChild() const {
  if (!child_) throw logic_error(L"CHierachicalId object has no valid child [02]");
  return *child_;
}

template <class T>
void CHierachicalId<T>::RemoveChild() {
  // Each level is freed after its child was taken out of it, so no destructor goes deeper than one level.
  std::unique_ptr<CHierachicalId> rest = std::move(child_);
  while (rest) rest = std::move(rest->child_);
}

template <class T>
CHierachicalId<T>& CHierachicalId<T>::operator/=(T value) {
  GetLeaf().child_ = std::make_unique<CHierachicalId>(value);
  return *this;
}

template <class T>
CHierachicalId<T> CHierachicalId<T>::operator/(T value) const {
  CHierachicalId result(*this);
  result /= value;
  return result;
}

template <class T>
bool CHierachicalId<T>::operator<(const CHierachicalId& other) const {
  const CHierachicalId* left = this;
  const CHierachicalId* right = &other;
  while (left != nullptr && right != nullptr && left->id_ == right->id_) {
    left = left->child_.get();
    right = right->child_.get();
  }
  if (left == nullptr || right == nullptr) return right != nullptr;
  return left->id_ < right->id_;
}

template <class T>
bool CHierachicalId<T>::operator==(const CHierachicalId& other) const {
  const CHierachicalId* left = this;
  const CHierachicalId* right = &other;
  while (left != nullptr && right != nullptr && left->id_ == right->id_) {
    left = left->child_.get();
    right = right->child_.get();
  }
  return left == nullptr && right == nullptr;
}

template <class T>
std::size_t CHierachicalId<T>::Hash() const {
  if (!child_) return Combine(0, id_);
  std::vector<T> levels;
  for (const CHierachicalId* level = this; level != nullptr; level = level->child_.get()) levels.push_back(level->id_);
  std::uint64_t hash = Combine(0, levels.back());
  for (std::size_t i = levels.size() - 1; i-- > 0;) hash = Combine(Combine(0, levels[i]), hash);
  return hash;
}

template <class T>
template <class Archive>
void CHierachicalId<T>::save(Archive& archive, unsigned int) const {
  using boost::serialization::make_nvp;
  std::size_t depth = 0;
  for (const CHierachicalId* level = this; level != nullptr; level = level->child_.get()) ++depth;
  const boost::serialization::collection_size_type count(depth);
  const boost::serialization::item_version_type item_version(0);
  archive << make_nvp("count", count) << make_nvp("item_version", item_version);
  for (const CHierachicalId* level = this; level != nullptr; level = level->child_.get()) {
    archive << make_nvp("item", level->id_);
  }
}

template <class T>
template <class Archive>
void CHierachicalId<T>::load(Archive& archive, unsigned int) {
  using boost::archive::archive_exception;
  using boost::serialization::make_nvp;
  boost::serialization::collection_size_type count(0);
  boost::serialization::item_version_type item_version(0);
  archive >> make_nvp("count", count) >> make_nvp("item_version", item_version);
  const std::size_t depth = std::as_const(count);
  if (depth == 0) boost::serialization::throw_exception(archive_exception(archive_exception::input_stream_error));

  RemoveChild();
  archive >> make_nvp("item", id_);
  CHierachicalId* leaf = this;
  for (std::size_t i = 1; i < depth; ++i) {
    leaf->child_ = std::make_unique<CHierachicalId>();
    leaf = leaf->child_.get();
    archive >> make_nvp("item", leaf->id_);
  }
}

template <class T>
template <class Archive>
void CHierachicalId<T>::serialize(Archive& archive, unsigned int version) {
  boost::serialization::split_member(archive, *this, version);
}

template class CHierachicalId<std::uint64_t>;

}  // namespace kestrel::utils

KESTREL_INSTANTIATE_SERIALIZE(kestrel::utils::CHierachicalId<std::uint64_t>)
