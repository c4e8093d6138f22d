#include "support/exceptions.h"

#include "support/strings.h"

namespace kestrel::utils {

runtime_error::runtime_error(const std::wstring& message)
    : std::runtime_error(string::narrow(message)), utils::exception(message) {}

logic_error::logic_error(const std::wstring& message)
    : std::logic_error(string::narrow(message)), utils::exception(message) {}

invalid_argument::invalid_argument(const std::wstring& message)
    : std::invalid_argument(string::narrow(message)), utils::exception(message) {}

out_of_range::out_of_range(const std::wstring& message)
    : std::out_of_range(string::narrow(message)), utils::exception(message) {}

std::wstring exception_what(const std::exception& error) {
  if (const auto* const own = dynamic_cast<const exception*>(&error)) return own->What();
  return string::widen(error.what());
}

}  // namespace kestrel::utils
