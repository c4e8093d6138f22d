#include "calculator/macros.h"

#include <algorithm>
#include <cwctype>

#include "calculator/expression_exceptions.h"
#include "calculator/expression_parser.h"

namespace kestrel::calculator {
namespace {

void Collect(const Expression& expression, const Node& node, std::vector<ObjectIdPosition>& found) {
  if (node.rule == ERule::kObject) found.push_back({std::wstring(expression.TextOf(node)), node.begin});
  for (const Node& child : node.children) Collect(expression, child, found);
}

/// A name, a number without exponent sign, a constant or a text in quotes: stays one operand wherever it is put.
bool IsSingle(const std::wstring& text) {
  if (text.front() == L'"') return true;
  return std::all_of(text.begin(), text.end(), [](wchar_t c) {
    return c == L'@' || c == L'_' || c == L'\'' || c == L'.' || std::iswalnum(static_cast<std::wint_t>(c)) != 0;
  });
}

std::wstring AsOperand(const std::wstring& text) { return text.empty() || IsSingle(text) ? text : L'(' + text + L')'; }

}  // namespace

std::vector<ObjectIdPosition> FindObjectIds(const Expression& expression) {
  std::vector<ObjectIdPosition> found;
  Collect(expression, expression.root, found);
  return found;
}

std::wstring ReplaceNames(const std::wstring& text, const std::vector<ObjectIdPosition>& names,
                          const std::vector<std::wstring>& replacements) {
  std::wstring result;
  std::size_t copied = 0;
  for (std::size_t i = 0; i < names.size(); ++i) {
    result.append(text, copied, names[i].position - copied).append(replacements[i]);
    copied = names[i].position + names[i].name.size();
    if (result.size() > kMaximalTextLength) {
      throw CExpressionPositionException(L"Expression too long", text, names[i].position);
    }
  }
  return result.append(text, copied);
}

std::wstring MapMacroExpression(const CalculatorTypeTraits::Macro& macro, const Expression& body,
                                const std::vector<std::wstring>& arguments) {
  const auto& formal = macro.arguments;
  if (arguments.size() != formal.size()) {
    throw CCalculatorException(L"Number of arguments error while calling a macro");
  }
  std::vector<ObjectIdPosition> names;
  std::vector<std::wstring> replacements;
  for (ObjectIdPosition& name : FindObjectIds(body)) {
    const auto found = std::find(formal.begin(), formal.end(), name.name);
    if (found == formal.end()) continue;
    replacements.push_back(AsOperand(arguments[static_cast<std::size_t>(found - formal.begin())]));
    names.push_back(std::move(name));
  }
  return ReplaceNames(body.text, names, replacements);
}

}  // namespace kestrel::calculator
