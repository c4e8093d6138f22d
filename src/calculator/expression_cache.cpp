#include "calculator/expression_cache.h"

#include "calculator/expression_parser.h"

namespace kestrel::calculator {

std::shared_ptr<const Expression> ExpressionCache::Get(const std::wstring& text) {
  const auto known = trees_.find(text);
  if (known != trees_.end()) return known->second;

  auto expression = ParseExpression(text);
  characters_ += text.size();
  if (characters_ > kMaximalCharacters) {
    trees_.clear();
    characters_ = text.size();
  }
  trees_.emplace(expression->text, expression);
  return expression;
}

}  // namespace kestrel::calculator
