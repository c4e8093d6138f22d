#pragma once

#include <atomic>
#include <sstream>
#include <string>

/// The one mechanism by which input checks of statistics, surrogates and settings report.
namespace kestrel::error {

/// With this process-wide flag set a report goes to the wide standard error stream and execution continues.
extern std::atomic<bool> replace_exception_by_assert;

/// Raises `utils::runtime_error` with the message, or writes it with a line end to `std::wcerr` if the flag is set.
void Report(const std::wstring& message);

/// Streams the pieces into one message and reports it: `Report(L"needs ", n, L" points")`.
template <class First, class Second, class... Rest>
void Report(const First& first, const Second& second, const Rest&... rest) {
  std::wostringstream text;
  ((text << first << second) << ... << rest);
  Report(text.str());
}

}  // namespace kestrel::error
