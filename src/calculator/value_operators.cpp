#include "calculator/functions/calculator_exceptions.h"
#include "calculator/value_operations.h"

namespace kestrel::calculator {
namespace {

constexpr auto kNotMatched = L"EvalOperation not matched. Heavy failure.";

}  // namespace

Value EvalOperation(EOperator op, const Value& left, const Value& right) {
  switch (op) {
    case EOperator::kOr: return Or(left, right);
    case EOperator::kAnd: return And(left, right);
    case EOperator::kLessEqual: return Value(left <= right);
    case EOperator::kGreaterEqual: return Value(left >= right);
    case EOperator::kLess: return Value(left < right);
    case EOperator::kGreater: return Value(left > right);
    case EOperator::kEqual: return Value(left == right);
    case EOperator::kUnequal: return Value(left != right);
    case EOperator::kPlus: return left + right;
    case EOperator::kMinus: return left - right;
    case EOperator::kTimes: return left * right;
    case EOperator::kDivide: return left / right;
    case EOperator::kModulo: return left % right;
    case EOperator::kPower: return Power(left, right);
    default: throw CCalculatorException(kNotMatched);
  }
}

Value EvalUnaryOperation(EOperator op, const Value& operand) {
  if (op == EOperator::kNot) return !operand;
  if (op == EOperator::kMinus) return -operand;
  throw CCalculatorException(kNotMatched);
}

}  // namespace kestrel::calculator
