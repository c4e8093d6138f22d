#include "calculator/expression_tree.h"

namespace kestrel::calculator {

const std::map<ERule, std::wstring>& RuleNames() {
  static const std::map<ERule, std::wstring> names = {
      {ERule::kExpression, L"expression"},
      {ERule::kConstant, L"constant"},
      {ERule::kFunction, L"function"},
      {ERule::kIdent, L"ident"},
      {ERule::kOperand, L"operand"},
      {ERule::kUnary, L"unary operation"},
      {ERule::kGreedy0, L"binary greedy[0] operation"},
      {ERule::kGreedy1, L"binary greedy[1] operation"},
      {ERule::kGreedy2, L"binary greedy[2] operation"},
      {ERule::kGreedy3, L"binary greedy[3] operation"},
      {ERule::kGreedy4, L"binary greedy[4] operation"},
      {ERule::kIdxObject, L"idx_object"},
      {ERule::kObject, L"object"},
      {ERule::kVector, L"vector"},
      {ERule::kMatrix, L"matrix"},
      {ERule::kAssign, L"assign"},
      {ERule::kString, L"string"},
      {ERule::kAssignMacro, L"assign_macro"},
      {ERule::kMacro, L"macro"},
      {ERule::kIf, L"if"},
      {ERule::kSwitch, L"switch"},
  };
  return names;
}

}  // namespace kestrel::calculator
