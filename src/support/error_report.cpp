#include "support/error_report.h"

#include <iostream>

#include "support/exceptions.h"

namespace kestrel::error {

std::atomic<bool> replace_exception_by_assert{false};

void Report(const std::wstring& message) {
  if (!replace_exception_by_assert) throw utils::runtime_error(message);
  std::wcerr << message << std::endl;
  // A character that the stream's locale cannot show spoils this message, not the ones after it.
  std::wcerr.clear();
}

}  // namespace kestrel::error
