#include "calculator/expression_parser.h"

#include <algorithm>
#include <array>
#include <cwctype>
#include <utility>

#include "calculator/bracket_scan.h"
#include "calculator/expression_exceptions.h"
#include "calculator/expression_grammar.h"

namespace kestrel::calculator {
namespace {

bool IsSpace(wchar_t c) { return std::iswspace(static_cast<std::wint_t>(c)) != 0; }

constexpr auto kLastCharacter = static_cast<wchar_t>(0x10FFFF);

constexpr std::array<std::pair<std::wstring_view, EOperator>, 17> kOperators{{
    {L"||", EOperator::kOr},
    {L"&&", EOperator::kAnd},
    {L"<=", EOperator::kLessEqual},
    {L">=", EOperator::kGreaterEqual},
    {L"<", EOperator::kLess},
    {L">", EOperator::kGreater},
    {L"==", EOperator::kEqual},
    {L"!=", EOperator::kUnequal},
    {L"+", EOperator::kPlus},
    {L"-", EOperator::kMinus},
    {L"*", EOperator::kTimes},
    {L"/", EOperator::kDivide},
    {L"%", EOperator::kModulo},
    {L"^", EOperator::kPower},
    {L"**", EOperator::kPower},
    {L"!", EOperator::kNot},
    {L":", EOperator::kSlice},
}};

/// Turns what the grammar gives into the tree that is evaluated, where operators are what their operands hang on.
class TreeBuilder {
 public:
  explicit TreeBuilder(std::wstring_view text) : text_(text) {}

  Node Build(const SyntaxNode& syntax) const {
    switch (syntax.rule) {
      case ERule::kGreedy0:
      case ERule::kGreedy1:
      case ERule::kGreedy2:
      case ERule::kGreedy3:
      case ERule::kGreedy4: return BuildChain(syntax);
      case ERule::kUnary: return BuildUnary(syntax);
      case ERule::kIdxObject: return BuildIndexed(syntax);
      case ERule::kFunction:
      case ERule::kMacro: return BuildCall(syntax);
      case ERule::kAssign:
      case ERule::kAssignMacro: return BuildAssignment(syntax);
      default: return BuildPlain(syntax);
    }
  }

 private:
  static bool IsPunctuation(const SyntaxNode& syntax) { return syntax.rule == ERule::kNone; }
  wchar_t FirstOf(const SyntaxNode& syntax) const { return text_[syntax.begin]; }

  EOperator OperatorOf(const SyntaxNode& syntax) const {
    const auto word = text_.substr(syntax.begin, syntax.end - syntax.begin);
    const auto* found =
        std::find_if(kOperators.begin(), kOperators.end(), [word](const auto& row) { return row.first == word; });
    return found == kOperators.end() ? EOperator::kNone : found->second;
  }

  static Node Begin(const SyntaxNode& syntax) {
    Node node;
    node.rule = syntax.rule;
    node.begin = syntax.begin;
    node.end = syntax.end;
    node.number = syntax.number;
    return node;
  }

  /// Leaves, literals, branches: their children without the punctuation.
  Node BuildPlain(const SyntaxNode& syntax) const {
    Node node = Begin(syntax);
    node.children.reserve(syntax.children.size());
    for (const SyntaxNode& child : syntax.children) {
      if (!IsPunctuation(child)) node.children.push_back(Build(child));
    }
    return node;
  }

  Node BuildChain(const SyntaxNode& syntax) const {
    Node node = Begin(syntax);
    node.children.reserve(syntax.children.size() / 2 + 1);
    EOperator joined_by = EOperator::kNone;
    for (const SyntaxNode& child : syntax.children) {
      if (IsPunctuation(child)) {
        joined_by = OperatorOf(child);
      } else {
        node.children.push_back(Build(child));
        node.children.back().joined_by = joined_by;
      }
    }
    return node;
  }

  Node BuildUnary(const SyntaxNode& syntax) const {
    Node node = BuildPlain(syntax);
    node.op = OperatorOf(syntax.children.front());
    return node;
  }

  /// x, "[", then items and separators. Where an item was left out, an empty node stands; x[1 2] is x[1,2].
  Node BuildIndexed(const SyntaxNode& syntax) const {
    Node node = Begin(syntax);
    node.op = EOperator::kIndex;
    node.children.push_back(Build(syntax.children.front()));
    bool is_open = true;  // an item may come
    for (auto child = syntax.children.begin() + 2; child != syntax.children.end(); ++child) {
      if (!IsPunctuation(*child)) {
        node.children.push_back(Build(*child));
        is_open = false;
        continue;
      }
      if (FirstOf(*child) == L':') node.op = EOperator::kSlice;
      if (is_open) node.children.emplace_back();
      is_open = true;
    }
    if (is_open) node.children.emplace_back();
    return node;
  }

  /// The name and the arguments, each with the whole text between its separators, brackets around it included.
  Node BuildCall(const SyntaxNode& syntax) const {
    Node node = Begin(syntax);
    std::size_t after_separator = 0;
    for (const SyntaxNode& child : syntax.children) {
      if (!IsPunctuation(child)) {
        node.children.push_back(Build(child));
        continue;
      }
      if (after_separator != 0 && node.children.size() > 1)
        SetWritten(node.children.back(), after_separator, child.begin);
      if (FirstOf(child) != L'$') after_separator = child.end;
    }
    return node;
  }

  /// The right side with all its text, which is kept with the object or the macro.
  Node BuildAssignment(const SyntaxNode& syntax) const {
    Node node = BuildPlain(syntax);
    const auto last_sign = std::find_if(syntax.children.rbegin(), syntax.children.rend(), &IsPunctuation);
    SetWritten(node.children.back(), last_sign->end, syntax.end);
    return node;
  }

  /// Keeps the text from begin to end, without the spaces around it, as what was written for the node.
  void SetWritten(Node& node, std::size_t begin, std::size_t end) const {
    while (begin != end && IsSpace(text_[begin])) ++begin;
    while (begin != end && IsSpace(text_[end - 1])) --end;
    node.written_begin = begin;
    node.written_end = end;
  }

  std::wstring_view text_;
};

void RequireText(const std::wstring& text) {
  if (text.size() > kMaximalTextLength) {
    throw CExpressionPositionException(L"Expression too long", text, kMaximalTextLength);
  }
  const auto bad = std::find_if(text.begin(), text.end(), [](wchar_t c) { return c < 0 || c > kLastCharacter; });
  if (bad != text.end()) {
    throw CExpressionPositionException(L"Error while parsing", text, static_cast<std::size_t>(bad - text.begin()));
  }
}

void CollectNames(Expression& expression, const Node& node) {
  if (node.rule == ERule::kObject) expression.objects.emplace_back(expression.TextOf(node));
  if (node.rule == ERule::kMacro) expression.macros.emplace_back(expression.TextOf(node.children.front()));
  for (const Node& child : node.children) CollectNames(expression, child);
}

void SortOnce(std::vector<std::wstring>& names) {
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
}

}  // namespace

std::shared_ptr<const Expression> ParseExpression(std::wstring text) {
  RequireText(text);
  const std::wstring marked = MarkBrackets(text);
  auto expression = std::make_shared<Expression>();
  expression->root = TreeBuilder(text).Build(ParseSyntax(marked, text, EStart::kExpression));
  expression->text = std::move(text);
  CollectNames(*expression, expression->root);
  SortOnce(expression->objects);
  SortOnce(expression->macros);
  return expression;
}

bool IsObjectId(std::wstring_view text) {
  if (text.empty()) return false;
  try {
    const SyntaxNode root = ParseSyntax(text, std::wstring(text), EStart::kObject);
    return root.rule == ERule::kObject && root.begin == 0 && root.end == text.size();
  } catch (const CExpressionPositionException&) {
    return false;
  }
}

}  // namespace kestrel::calculator
