#pragma once

#include <exception>
#include <stdexcept>
#include <string>

/// The exception family of the library. A message is a wide full sentence; the standard base holds its UTF-8 form, so
/// that `what()` can be handed to a caller as it is.
namespace kestrel::utils {

class exception {
 public:
  explicit exception(std::wstring message) : message_(std::move(message)) {}
  virtual ~exception() = default;

  const std::wstring& What() const { return message_; }

 private:
  std::wstring message_;
};

class runtime_error : public std::runtime_error, public exception {
 public:
  explicit runtime_error(const std::wstring& message);
};

class logic_error : public std::logic_error, public exception {
 public:
  explicit logic_error(const std::wstring& message);
};

class invalid_argument : public std::invalid_argument, public exception {
 public:
  explicit invalid_argument(const std::wstring& message);
};

class out_of_range : public std::out_of_range, public exception {
 public:
  explicit out_of_range(const std::wstring& message);
};

/// The wide text of any exception: `What()` of the family above, the widened `what()` of every other.
std::wstring exception_what(const std::exception& error);

}  // namespace kestrel::utils
