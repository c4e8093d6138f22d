#pragma once

#include <exception>
#include <string>

#include "support/exceptions.h"

namespace kestrel::testing {

/// The text of what a call raises; empty if that is nothing.
template <class Call>
std::wstring RaisedText(Call&& call) {
  try {
    call();
  } catch (const std::exception& error) {
    return utils::exception_what(error);
  }
  return {};
}

}  // namespace kestrel::testing
