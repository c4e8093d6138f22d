#pragma once

#include <set>
#include <string>
#include <vector>

#include "calculator/calculator_state.h"

namespace kestrel::calculator {

/// What an expression uses, directly and through the macros that it calls.
struct References {
  std::set<std::wstring, std::less<>> objects;  ///< names, whether or not there are such objects
  Revision macros_changed_at = 0;               ///< the latest change of a macro that is called
};

/// Texts of macros that are no expressions count as texts that use nothing.
References CollectReferences(CalculatorState& state, const Expression& expression);

/// True if the value of the expression depends on the object of this name, through any number of other objects. Texts
/// that are given to functions in quotes are not looked into.
bool DependsOn(CalculatorState& state, const Expression& expression, std::wstring_view name);

/// The parsed text of the object; null if it has none or if it is no expression.
std::shared_ptr<const Expression> FindExpression(CalculatorState& state, Object& object);

}  // namespace kestrel::calculator
