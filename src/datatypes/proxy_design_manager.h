#pragma once

#include <cstddef>
#include <functional>
#include <iterator>
#include <utility>

#include "datatypes/design_manager.h"

namespace kestrel::algorithm::datatypes {

/// A read-only view of those items of a container for which `filter(item)` is true. The container outlives the view.
template <class Container, class Filter>
class IteratableDataProxy {
 public:
  class const_iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using Position = typename Container::const_iterator;
    using value_type = typename std::iterator_traits<Position>::value_type;
    using difference_type = std::ptrdiff_t;
    using pointer = const value_type*;
    using reference = const value_type&;

    const_iterator() = default;
    const_iterator(const IteratableDataProxy& proxy, Position position) : proxy_(&proxy), position_(position) {
      SkipFiltered();
    }

    reference operator*() const { return *position_; }
    pointer operator->() const { return &*position_; }
    const_iterator& operator++() {
      ++position_;
      SkipFiltered();
      return *this;
    }
    const_iterator operator++(int) {
      const_iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const const_iterator& other) const { return position_ == other.position_; }
    bool operator!=(const const_iterator& other) const { return position_ != other.position_; }

   private:
    void SkipFiltered() {
      while (position_ != proxy_->data_->end() && !proxy_->filter_(*position_)) ++position_;
    }

    const IteratableDataProxy* proxy_ = nullptr;
    Position position_{};
  };

  IteratableDataProxy(const Container& data, Filter filter) : data_(&data), filter_(std::move(filter)) {}

  const_iterator begin() const { return {*this, data_->begin()}; }
  const_iterator end() const { return {*this, data_->end()}; }
  bool empty() const { return begin() == end(); }
  /// Counts, by asking the filter for every item.
  std::size_t size() const { return static_cast<std::size_t>(std::distance(begin(), end())); }

 private:
  const Container* data_;
  Filter filter_;
};

/// `filter(design)` is true for the designs that the view shows.
using ProxyDesignManagerFilter = std::function<bool(const Design&)>;
using ProxyDesignManager = IteratableDataProxy<DesignManager, ProxyDesignManagerFilter>;

}  // namespace kestrel::algorithm::datatypes
