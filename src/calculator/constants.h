#pragma once

#include <map>
#include <string>
#include <string_view>

#include "calculator/functions/function_table.h"

namespace kestrel::calculator {

/// A constant: its value, and whether its name is kept from objects. E and I are left to them: engineers call a
/// modulus and a moment of inertia so.
struct Constant {
  Value value;
  bool is_reserved = true;
};

/// By name with the leading "@": @PI, @E, @TRUE, @FALSE, @I, and the option words of functions with the numbers of
/// EOption.
const std::map<std::wstring, Constant, std::less<>>& Constants();

/// The constant that a bare word stands for where no object has its name: LINEAR for @LINEAR; null if there is none.
const Constant* FindConstant(std::wstring_view bare_word);

}  // namespace kestrel::calculator
