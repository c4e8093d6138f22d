#include "handle.h"

#include "errors.h"

namespace kestrel::cli {

Handle::Handle() {
  zor_handle_t handle = nullptr;
  const std::uint32_t code = zor_create(&handle);
  handle_.reset(handle);
  Check(code);
}

void Handle::Check(std::uint32_t code) const {
  if (code != zor_success) throw WorkError(ErrorText(code));
}

std::string Handle::ErrorText(std::uint32_t code) const {
  std::string text = zor_get_last_error(handle_.get());
  if (const char* const description = zor_get_error_description(code); text.empty() && description != nullptr) {
    text = description;
  }
  while (!text.empty() && text.back() == '\n') text.pop_back();
  return text;
}

std::string TakeText(char* buffer, std::size_t length) {
  const std::unique_ptr<char, void (*)(void*)> owner(buffer, &zor_release_buf);
  return buffer == nullptr ? std::string() : std::string(buffer, length);
}

}  // namespace kestrel::cli
