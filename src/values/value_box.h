#pragma once

#include <memory>
#include <utility>

namespace kestrel::math {

/// A value in a block of its own that is copied with its owner. Empty only after it was moved from.
template <class C>
class ValueBox {
 public:
  explicit ValueBox(C content) : content_(std::make_unique<C>(std::move(content))) {}
  ValueBox(const ValueBox& other) : ValueBox(*other) {}
  ValueBox(ValueBox&& other) noexcept = default;
  ValueBox& operator=(const ValueBox& other) { return *this = ValueBox(other); }
  ValueBox& operator=(ValueBox&& other) noexcept = default;
  ~ValueBox() = default;

  C& operator*() { return *content_; }
  const C& operator*() const { return *content_; }

 private:
  std::unique_ptr<C> content_;
};

}  // namespace kestrel::math
