#pragma once

#include "calculator/functions/numbers.h"

/// Functions of one number that the real numbers do not always suffice for.
namespace kestrel::calculator {

/// function(entry) of every entry: with a double where the entry is real and `exists` holds for it, with a Complex
/// elsewhere. A real entry counts as the limit from above the branch cut.
template <class Function, class Exists>
Value MapWhere(const Arguments& arguments, Exists exists, Function function) {
  return MapEntries(arguments, 0, [&](const Complex& z) -> Complex {
    if (z.imag() != 0.0) return function(z);
    if (exists(z.real())) return function(z.real());
    return function(Complex(z.real()));
  });
}

/// Of a function that is real for all real numbers.
template <class Function>
Value MapEverywhere(const Arguments& arguments, Function function) {
  return MapWhere(
      arguments, [](double) { return true; }, function);
}

}  // namespace kestrel::calculator
