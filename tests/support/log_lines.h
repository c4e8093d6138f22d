#pragma once

#include <sstream>
#include <string>

#include "support/log.h"

namespace kestrel::testing {

/// What a check writes to a stream log: one line per message, the level in front.
template <class Check>
std::wstring LogOf(Check&& check) {
  std::wostringstream text;
  utils::log::BasicStreamLog log(text);
  check(log);
  return text.str();
}

}  // namespace kestrel::testing
