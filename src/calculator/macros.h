#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "calculator/expression_tree.h"
#include "calculator/functions/function_table.h"

namespace kestrel::calculator {

/// The records that a calculator keeps.
struct CalculatorTypeTraits {
  /// Name, expression text, value.
  using ObjectTuple = std::tuple<std::wstring, std::wstring, Value>;

  /// A text with formal arguments.
  struct Macro {
    std::wstring name;  ///< without the "$"
    std::vector<std::wstring> arguments;
    std::wstring expression;
  };
};

/// The macros that every calculator has from the beginning. They evaluate signals and compare numbers.
const std::vector<CalculatorTypeTraits::Macro>& BuiltInMacros();

/// A name in the place of an object and where it stands in the text, in characters from 0.
struct ObjectIdPosition {
  std::wstring name;
  std::size_t position = 0;
};

/// All names in the place of objects, in the order of the text.
std::vector<ObjectIdPosition> FindObjectIds(const Expression& expression);

/// The text with each of these names replaced by the text of the same number in `replacements`. Raises
/// CExpressionPositionException "Expression too long".
std::wstring ReplaceNames(const std::wstring& text, const std::vector<ObjectIdPosition>& names,
                          const std::vector<std::wstring>& replacements);

/// The text of the macro with its formal arguments replaced by the texts of the arguments. What is more than a name, a
/// number, a constant or a text in quotes is put in parentheses, so that $F(a+b) with the text 2*x is 2*(a+b).
/// @param body  the parsed text of the macro.
/// Raises CCalculatorException "Number of arguments error while calling a macro" for another number of arguments,
/// CExpressionPositionException "Expression too long".
std::wstring MapMacroExpression(const CalculatorTypeTraits::Macro& macro, const Expression& body,
                                const std::vector<std::wstring>& arguments);

}  // namespace kestrel::calculator
