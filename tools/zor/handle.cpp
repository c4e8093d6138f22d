#include "handle.h"

#include <string>

#include "errors.h"

namespace kestrel::cli {

Handle::Handle() {
  zor_handle_t handle = nullptr;
  const std::uint32_t code = zor_create(&handle);
  handle_.reset(handle);
  Check(code);
}

void Handle::Check(std::uint32_t code) const {
  if (code == zor_success) return;
  std::string text = zor_get_last_error(handle_.get());
  if (const char* const description = zor_get_error_description(code); text.empty() && description != nullptr) {
    text = description;
  }
  while (!text.empty() && text.back() == '\n') text.pop_back();
  throw WorkError(text);
}

}  // namespace kestrel::cli
