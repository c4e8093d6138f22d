#pragma once

#include <string>

#include "support/exceptions.h"

namespace kestrel::calculator {

/// Base of all that parsing and evaluating an expression raise.
class CCalculatorException : public utils::runtime_error {
 public:
  using utils::runtime_error::runtime_error;
};

}  // namespace kestrel::calculator
