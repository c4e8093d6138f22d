#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <streambuf>

namespace kestrel::api {

/// A stream's buffer whose bytes go to the caller as they are: one block of malloc, which moves without a copy once it
/// is large.
class ByteCollector : public std::streambuf {
 public:
  ByteCollector() = default;
  ByteCollector(const ByteCollector&) = delete;
  ByteCollector& operator=(const ByteCollector&) = delete;
  ~ByteCollector() override { std::free(block_); }

  /// The block, to be freed by the caller. Not null, even if nothing was written.
  void* Release(std::size_t& size) {
    size = Size();
    Resize(size == 0 ? 1 : size);
    char* const block = block_;
    block_ = nullptr;
    setp(nullptr, nullptr);
    return block;
  }

 protected:
  int_type overflow(int_type byte) override {
    constexpr std::size_t kFirstCapacity = 4096;
    Resize(block_ == nullptr ? kFirstCapacity : 2 * Size());
    if (traits_type::eq_int_type(byte, traits_type::eof())) return traits_type::not_eof(byte);
    return sputc(traits_type::to_char_type(byte));
  }

 private:
  std::size_t Size() const { return block_ == nullptr ? 0 : static_cast<std::size_t>(pptr() - block_); }

  void Resize(std::size_t capacity) {
    const std::size_t size = Size();
    char* const grown = static_cast<char*>(std::realloc(block_, capacity));
    if (grown == nullptr) throw std::bad_alloc();
    block_ = grown;
    setp(block_ + size, block_ + capacity);
  }

  char* block_ = nullptr;
};

}  // namespace kestrel::api
