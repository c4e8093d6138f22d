#pragma once

#include <cstdint>
#include <memory>

#include "zor_api.h"

namespace kestrel::cli {

/// A handle of the library that releases itself.
class Handle {
 public:
  /// Throws WorkError if the library cannot make a handle.
  Handle();

  zor_handle_t get() const { return handle_.get(); }

  /// Throws WorkError with the library's text unless the code is that of success.
  void Check(std::uint32_t code) const;

 private:
  struct Release {
    void operator()(zor_handle_t handle) const { zor_release(handle); }
  };
  std::unique_ptr<ZOR, Release> handle_;
};

}  // namespace kestrel::cli
