#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>

#include "calculator/expression_parser.h"
#include "calculator/test_functions.h"
#include "support/strings.h"

namespace kestrel::calculator::test {
namespace {

/// The position of the failure; nothing if the text is an expression.
std::optional<std::size_t> FailurePosition(const std::wstring& text) {
  try {
    ParseExpression(text);
  } catch (const CExpressionPositionException& error) {
    EXPECT_EQ(error.Expression(), text);
    return error.Position();
  }
  return std::nullopt;
}

TEST(ExpressionSyntax, FailuresTellWhere) {
  const struct {
    const wchar_t* text;
    std::size_t position;
  } cases[] = {
      {L"", 0},        {L"   ", 3},       {L"1 + ", 4},           {L"1 2", 2},
      {L"1 + * 2", 4}, {L"f(1, 2 3)", 7}, {L"f(1,", 4},           {L"(1 + 2", 6},
      {L"1)", 1},      {L"[1, 2", 0},     {L"[1, 2)", 0},         {L"[]", 1},
      {L"[1 2]", 3},   {L"x[1", 3},       {L"[[1,2],]", 7},       {L"if", 0},
      {L"--1", 1},     {L"2^-1", 2},      {L"\"a\"", 0},          {L"f(\"\")", 2},
      {L"a = ", 4},    {L"a = = 1", 4},   {L"$F(x + 1) = x", 10}, {L"#if 1 : 2", 9},
      {L"x[0][1]", 4}, {L"3 = 4", 2},     {L"(a = 1)", 3},        {L"1e", 0},
      {L"a # b", 2},   {L"$F(1", 4},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FailurePosition(c.text), std::optional<std::size_t>(c.position)) << string::narrow(c.text);
  }
}

TEST(ExpressionSyntax, FailuresQuoteTheText) {
  Calculator calculator = MakeCalculator();
  EXPECT_EQ(FailureOf(calculator, L"1 + * 2"), L"Error while parsing at character 5 of \"1 + * 2\".");
  const std::wstring long_sum = L"1" + std::wstring(500, L'+');
  EXPECT_LT(FailureOf(calculator, long_sum).size(), 200U);
  EXPECT_EQ(FailureOf(calculator, L"1e999"), L"Number out of range at character 1 of \"1e999\".");
}

/// Which texts of brackets are literals, leading literals and indices, found by trying everything at every place: the
/// rules of vector, matrix and index with the literal before an element taken first where an expression follows it.
class Brackets {
 public:
  explicit Brackets(const std::wstring& text) : text_(text) {}

  /// The shape of the whole text as far as the rules say, empty if it is no expression: a number is n, an operator
  /// joins two shapes, V() and M() are vector and matrix, I() what is indexed and its items.
  std::wstring Shape() {
    const auto shape = ReadExpression();
    return at_ == text_.size() && shape ? *shape : L"";
  }

 private:
  using Result = std::optional<std::wstring>;

  bool Next(wchar_t c) const { return at_ < text_.size() && text_[at_] == c; }
  bool Take(wchar_t c) { return Next(c) && ++at_ > 0; }

  Result ReadExpression() {
    Result shape = ReadIndexed();
    while (shape && Next(L'+')) {
      const std::size_t before = at_++;
      const Result right = ReadIndexed();
      if (!right) {
        at_ = before;
        break;
      }
      shape = *shape + L"+" + *right;
    }
    return shape;
  }

  Result ReadIndexed() {
    const Result operand = ReadOperand();
    if (!operand || !Next(L'[')) return operand;
    const std::size_t before = at_++;
    std::wstring items = Attempt(&Brackets::ReadExpression).value_or(L"");
    const bool has_comma = Take(L',');
    const Result second = Attempt(&Brackets::ReadExpression);
    if (has_comma || second) items += L"," + second.value_or(L"");
    while (Take(L',')) items += L"," + Attempt(&Brackets::ReadExpression).value_or(L"");
    if (Take(L']')) return L"I(" + *operand + L":" + items + L")";
    at_ = before;
    return operand;
  }

  Result ReadOperand() {
    if (Next(L'1')) {
      while (Take(L'1')) continue;
      return L"n";
    }
    if (const Result matrix = Attempt(&Brackets::ReadMatrix)) return matrix;
    return Attempt(&Brackets::ReadVector);
  }

  Result ReadMatrix() { return ReadList(L"M(", &Brackets::ReadMatrix, &Brackets::ReadPlainVector); }
  Result ReadVector() { return ReadList(L"V(", &Brackets::ReadOperandLiteral, &Brackets::ReadExpression); }
  Result ReadOperandLiteral() { return Next(L'[') ? ReadOperand() : std::nullopt; }

  /// A vector that is no matrix.
  Result ReadPlainVector() {
    const std::size_t before = at_;
    if (Attempt(&Brackets::ReadMatrix)) {
      at_ = before;
      return std::nullopt;
    }
    return ReadVector();
  }

  Result ReadList(const wchar_t* name, Result (Brackets::*lead)(), Result (Brackets::*element)()) {
    if (!Take(L'[')) return std::nullopt;
    std::wstring shape = name;
    do {
      const std::size_t before = at_;
      Result leading = Attempt(lead);
      if (leading && (Next(L'[') || Next(L'1'))) {
        shape += *leading + L" ";
      } else {
        at_ = before;
      }
      const Result next = (this->*element)();
      if (!next) return std::nullopt;
      shape += *next + L",";
    } while (Take(L','));
    return Take(L']') ? Result(shape + L")") : std::nullopt;
  }

  Result Attempt(Result (Brackets::*read)()) {
    const std::size_t before = at_;
    Result result = (this->*read)();
    if (!result) at_ = before;
    return result;
  }

  const std::wstring& text_;
  std::size_t at_ = 0;
};

std::wstring ShapeOf(const Node& node) {
  std::wstring shape;
  const auto add_all = [&](std::size_t first, const wchar_t* after) {
    for (std::size_t i = first; i < node.children.size(); ++i) shape += ShapeOf(node.children[i]) + after;
  };
  switch (node.rule) {
    case ERule::kNumber: return L"n";
    case ERule::kVector: add_all(0, L","); return L"V(" + shape + L")";
    case ERule::kMatrix: add_all(0, L","); return L"M(" + shape + L")";
    case ERule::kIdxObject:
      add_all(1, L",");
      shape.pop_back();
      return L"I(" + ShapeOf(node.children.front()) + L":" + shape + L")";
    case ERule::kGreedy2: add_all(0, L"+"); return shape.substr(0, shape.size() - 1);
    default: return L"";
  }
}

/// Leading literals become elements of their own in the tree.
std::wstring WithoutLeads(std::wstring shape) {
  std::replace(shape.begin(), shape.end(), L' ', L',');
  return shape;
}

TEST(ExpressionSyntax, BracketsAreToldApartAsByTryingEverything) {
  const std::wstring letters = L"[],1+";
  constexpr std::size_t kLongest = 8;
  std::size_t expressions = 0;
  std::wstring text;
  const std::function<void(int)> extend = [&](int open) {
    if (open == 0 && !text.empty()) {
      std::wstring shape;
      try {
        shape = ShapeOf(ParseExpression(text)->root);
      } catch (const CExpressionPositionException&) {
      }
      ASSERT_EQ(shape, WithoutLeads(Brackets(text).Shape())) << string::narrow(text);
      if (!shape.empty()) ++expressions;
    }
    if (text.size() == kLongest) return;
    for (const wchar_t c : letters) {
      const int still_open = open + (c == L'[' ? 1 : 0) - (c == L']' ? 1 : 0);
      if (still_open < 0 || still_open > static_cast<int>(kLongest - text.size())) continue;
      text.push_back(c);
      extend(still_open);
      text.pop_back();
      if (::testing::Test::HasFatalFailure()) return;
    }
  };
  extend(0);
  EXPECT_GT(expressions, 100U);
}

}  // namespace
}  // namespace kestrel::calculator::test
