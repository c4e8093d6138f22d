#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "calculator/expression_tree.h"

namespace kestrel::calculator {

/// Trees of the texts that were evaluated last, so that a text is parsed once and evaluated often. Holds texts of up to
/// kMaximalCharacters in all (some 20 MB of trees) and starts anew when they are exceeded.
class ExpressionCache {
 public:
  static constexpr std::size_t kMaximalCharacters = 200'000;

  /// The tree of the text. Raises what ParseExpression raises.
  std::shared_ptr<const Expression> Get(const std::wstring& text);

 private:
  std::unordered_map<std::wstring_view, std::shared_ptr<const Expression>> trees_;  ///< the keys point into the values
  std::size_t characters_ = 0;
};

}  // namespace kestrel::calculator
