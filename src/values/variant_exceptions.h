#pragma once

#include "support/exceptions.h"

namespace kestrel::math {

/// What operations on `Variant` raise.
class CVariantException : public utils::runtime_error {
 public:
  using utils::runtime_error::runtime_error;
};

/// The kind of the value does not have what was asked for.
class CTypeException : public CVariantException {
 public:
  using CVariantException::CVariantException;
};

/// The kind fits, an index or a dimension does not.
class CDomainException : public CVariantException {
 public:
  using CVariantException::CVariantException;
};

}  // namespace kestrel::math
