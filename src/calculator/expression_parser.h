#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "calculator/expression_tree.h"

namespace kestrel::calculator {

/// Longer texts are refused.
inline constexpr std::size_t kMaximalTextLength = 100'000;
/// Brackets, calls, branches and macro definitions nest up to this depth.
inline constexpr std::size_t kMaximalNesting = 100;

/// Parses a text by the rules of the grammar (expression_grammar.cpp), in a time that grows with its length and not
/// with the depth. May be called from several threads. Raises CExpressionPositionException: "Error while parsing" with
/// the position of the token that no rule could get beyond (the opening bracket, if one is not closed), "Expression too
/// long", "Expression nested too deeply", "Number out of range".
std::shared_ptr<const Expression> ParseExpression(std::wstring text);

/// True if the whole text, without skipping spaces, is what the rule object accepts.
bool IsObjectId(std::wstring_view text);

}  // namespace kestrel::calculator
