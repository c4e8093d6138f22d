#pragma once

#include <string>

#include "support/log.h"

namespace kestrel::zor {

/// The messages of error level, one a line, the last without a line feed.
inline std::wstring ErrorLines(const utils::log::VectorLog& log) {
  std::wstring lines;
  for (const auto& [level, text] : log.GetEntries()) {
    if (level == utils::log::LogLevel::kError) lines += (lines.empty() ? L"" : L"\n") + text;
  }
  return lines;
}

}  // namespace kestrel::zor
