#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel::calculator {

/// The rules of the grammar by their ids. What a node of a tree is called after.
enum class ERule : int {
  kNone = 0,  ///< an item that was left out, as the second of x[1,]
  kExpression = 1,
  kConstant = 2,
  kFunction = 3,
  kIdent = 4,
  kNumber = 5,
  kOperand = 6,
  kUnary = 7,
  kGreedy0 = 8,   ///< || &&
  kGreedy1 = 9,   ///< <= >= < > == !=
  kGreedy2 = 10,  ///< + -
  kGreedy3 = 11,  ///< * / %
  kGreedy4 = 12,  ///< ^ **
  kIdxObject = 13,
  kObject = 14,
  kVector = 15,
  kBracketed = 16,
  kMatrix = 17,
  kAssign = 18,
  kString = 19,
  kAssignMacro = 20,
  kMacro = 21,
  kIf = 22,
  kSwitch = 23
};

/// The words that texts of failures use for rules. Number and bracketed have none.
const std::map<ERule, std::wstring>& RuleNames();

enum class EOperator : char {
  kNone,
  kOr,
  kAnd,
  kLessEqual,
  kGreaterEqual,
  kLess,
  kGreater,
  kEqual,
  kUnequal,
  kPlus,
  kMinus,
  kTimes,
  kDivide,
  kModulo,
  kPower,
  kNot,
  kIndex,  ///< of an indexed object: x[i], x[i,j], ...
  kSlice   ///< of an indexed object: x[a:b:c]
};

/// One node of the tree of an expression. What its children are, by rule:
///
/// - greedy0 to greedy4: a chain a + b - c of operators of one precedence, which associate to the left: the operands,
///   each but the first with the operator before it as `joined_by`. A long chain is a wide node, not a deep tree.
/// - unary: the operand; `op` is the operator.
/// - idx_object: what is indexed, then the items; `op` says which form it is. Items that were left out are kNone.
/// - vector: the elements. matrix: its rows (vectors) and matrices put before a row.
/// - function, macro: the name (ident), then the arguments.
/// - assign: the targets (objects), then the right side. assign_macro: the name and the formal arguments (idents), then
///   the body.
/// - if: condition and both branches. switch: the value, then pairs of case and result, then the default.
/// - number, constant, object, string, ident: none.
struct Node {
  ERule rule = ERule::kNone;
  EOperator op = EOperator::kNone;
  EOperator joined_by = EOperator::kNone;
  std::size_t begin = 0;  ///< of the text that it stands for, in characters of the whole text
  std::size_t end = 0;
  double number = 0.0;            ///< of a number
  std::size_t written_begin = 0;  ///< of an argument or a right side: the same with the brackets around it
  std::size_t written_end = 0;
  std::vector<Node> children;
};

/// A parsed text. Not changed any more, so that it can be shared and evaluated many times.
struct Expression {
  std::wstring text;
  Node root;
  std::vector<std::wstring> objects;  ///< names in the place of objects, each once, sorted; targets included
  std::vector<std::wstring> macros;   ///< names of the macros that are called, each once, sorted

  std::wstring_view TextOf(const Node& node) const {
    return std::wstring_view(text).substr(node.begin, node.end - node.begin);
  }
  /// All that stands between the separators of an argument, or behind the sign of an assignment.
  std::wstring_view WrittenTextOf(const Node& node) const {
    return std::wstring_view(text).substr(node.written_begin, node.written_end - node.written_begin);
  }
};

}  // namespace kestrel::calculator
