#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "calculator/expression_tree.h"

/// The boundary to the parser generator, whose templates stay in expression_grammar.cpp.
namespace kestrel::calculator {

/// A node as the grammar gives it. `rule` is kNone for the punctuation and the operators that it keeps.
struct SyntaxNode {
  ERule rule = ERule::kNone;
  std::size_t begin = 0;  ///< spaces around are not included
  std::size_t end = 0;
  double number = 0.0;
  std::vector<SyntaxNode> children;
};

enum class EStart { kExpression, kObject };

/// @param marked  the text after MarkBrackets.   @param text  the same text as it came, for texts of failures.
/// Raises CExpressionPositionException if the whole is not what the rule `start` accepts.
SyntaxNode ParseSyntax(std::wstring_view marked, const std::wstring& text, EStart start);

}  // namespace kestrel::calculator
