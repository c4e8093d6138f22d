#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "zor_api.h"

namespace kestrel::cli {

/// A handle of the library that releases itself.
class Handle {
 public:
  /// Throws WorkError if the library cannot make a handle.
  Handle();

  /// Takes over a handle that the library made.
  explicit Handle(zor_handle_t handle) : handle_(handle) {}

  zor_handle_t get() const { return handle_.get(); }

  /// Throws WorkError with the library's text unless the code is that of success.
  void Check(std::uint32_t code) const;

  /// The library's text for a code other than that of success, which its latest call on this handle returned.
  std::string ErrorText(std::uint32_t code) const;

 private:
  struct Release {
    void operator()(zor_handle_t handle) const { zor_release(handle); }
  };
  std::unique_ptr<ZOR, Release> handle_;
};

/// A text that the library handed out. Frees the buffer, which may be null.
std::string TakeText(char* buffer, std::size_t length);

}  // namespace kestrel::cli
