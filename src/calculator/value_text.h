#pragma once

#include <string>

#include "calculator/functions/function_table.h"

namespace kestrel::calculator {

/// The value as an expression that gives it again, with the fewest digits that do: 0.1, [1,2], [[1,2],[3,4]], 3-4*@I,
/// @TRUE, signal([0,0.1],[1,2]), xydata([0,0.1],[1,2]). "nan", "inf" and "-inf" stand for what no expression can name;
/// an uninitialized value is an empty text.
std::wstring ToText(const Value& value);

}  // namespace kestrel::calculator
