#include "calculator/evaluator.h"

#include <boost/numeric/ublas/vector.hpp>

#include "calculator/constants.h"
#include "calculator/expression_exceptions.h"
#include "calculator/value_operations.h"

namespace kestrel::calculator {
namespace {

std::size_t CountEntries(const Value& value) {
  switch (value.GetKind()) {
    case Value::VECTOR:
    case Value::MATRIX: return value.size();
    case Value::SIGNAL:
    case Value::XYDATA: return value.size() + value.GetTimeline().size();
    default: return 1;
  }
}

[[noreturn]] void RefuseRule(ERule rule) {
  const auto name = RuleNames().find(rule);
  throw CCalculatorException(L"Internal error: rule not handled" +
                             (name == RuleNames().end() ? L"" : L": " + name->second));
}

std::vector<const Value*> Pointers(const std::vector<OperandValue>& operands) {
  std::vector<const Value*> pointers;
  pointers.reserve(operands.size());
  for (const OperandValue& operand : operands) pointers.push_back(&operand.Get());
  return pointers;
}

}  // namespace

Evaluator::Evaluator(CalculatorState& state)
    : state_(state), context_{state.generator, state.may_read_files, [this](const std::wstring& text) {
                                return Evaluate(*state_.expressions.Get(text)).Take();
                              }} {
  ++state_.walkers;
}

Evaluator::~Evaluator() {
  if (--state_.walkers == 0) state_.retired.clear();
}

OperandValue Evaluator::Evaluate(const Expression& expression) {
  const Expression* const around = expression_;
  expression_ = &expression;
  OperandValue value = EvaluateNode(expression.root);
  expression_ = around;  // what throws ends the walk
  return value;
}

OperandValue Evaluator::EvaluateNode(const Node& node) {
  if (depth_ == kMaximalDepth) throw CCalculatorException(L"The evaluation is nested too deeply.");
  Charge(kNodeWork);
  ++depth_;
  OperandValue value = Dispatch(node);
  --depth_;
  if (value.IsOwn()) ChargeValue(value.Get());
  return value;
}

OperandValue Evaluator::Dispatch(const Node& node) {
  switch (node.rule) {
    case ERule::kNumber: return OperandValue(Value(node.number, 0.0));
    case ERule::kConstant: return EvaluateConstant(node);
    case ERule::kObject: return EvaluateObject(node);
    case ERule::kGreedy0:
    case ERule::kGreedy1:
    case ERule::kGreedy2:
    case ERule::kGreedy3:
    case ERule::kGreedy4: return EvaluateChain(node);
    case ERule::kUnary: return OperandValue(EvalUnaryOperation(node.op, EvaluateNode(node.children.front()).Get()));
    case ERule::kIf: return EvaluateIf(node);
    case ERule::kSwitch: return EvaluateSwitch(node);
    case ERule::kVector: return EvaluateVector(node);
    case ERule::kMatrix: return EvaluateMatrix(node);
    case ERule::kIdxObject: return EvaluateIndexed(node);
    case ERule::kFunction: return EvaluateFunction(node);
    case ERule::kMacro: return EvaluateMacro(node);
    case ERule::kAssign: return Assign(node);
    case ERule::kAssignMacro: return AssignMacro(node);
    default: RefuseRule(node.rule);
  }
}

OperandValue Evaluator::EvaluateConstant(const Node& node) const {
  const auto constant = Constants().find(expression_->TextOf(node));
  if (constant == Constants().end()) {
    throw CCalculatorException(L"Error in CONSTANT evaluation occurred: Constant \"" + TextOf(node) + L"\" not known.");
  }
  return OperandValue(&constant->second.value);
}

OperandValue Evaluator::EvaluateObject(const Node& node) {
  const auto name = expression_->TextOf(node);
  if (Object* object = state_.FindObject(name)) {
    Refresh(*object);
    return OperandValue(&object->GetValue());
  }
  if (const Constant* constant = FindConstant(name)) return OperandValue(&constant->value);
  throw CCalculatorObjectUnknownException(std::wstring(name), expression_->text);
}

OperandValue Evaluator::EvaluateChain(const Node& node) {
  OperandValue left = EvaluateNode(node.children.front());
  for (auto next = node.children.begin() + 1; next != node.children.end(); ++next) {
    const OperandValue right = EvaluateNode(*next);
    left = OperandValue(EvalOperation(next->joined_by, left.Get(), right.Get()));
    ChargeValue(left.Get());
  }
  return left;
}

OperandValue Evaluator::EvaluateIf(const Node& node) {
  if (node.children.size() != 3) throw CCalculatorException(L"Unexpected keyword");
  const bool holds = IsTrue(EvaluateNode(node.children[0]).Get());
  return EvaluateNode(node.children[holds ? 1 : 2]);
}

OperandValue Evaluator::EvaluateSwitch(const Node& node) {
  const auto& children = node.children;  // value, (case, result)+, default
  if (children.size() < 4 || children.size() % 2 != 0) throw CCalculatorException(L"Unexpected keyword");
  const OperandValue value = EvaluateNode(children.front());
  for (std::size_t i = 1; i + 1 < children.size(); i += 2) {
    if (EvaluateNode(children[i]).Get() == value.Get()) return EvaluateNode(children[i + 1]);
  }
  return EvaluateNode(children.back());
}

std::vector<OperandValue> Evaluator::EvaluateAll(const Node& node, std::size_t first) {
  std::vector<OperandValue> values;
  values.reserve(node.children.size() - first);
  for (std::size_t i = first; i < node.children.size(); ++i) values.push_back(EvaluateNode(node.children[i]));
  return values;
}

OperandValue Evaluator::EvaluateVector(const Node& node) {
  const std::vector<OperandValue> elements = EvaluateAll(node, 0);
  return OperandValue(MakeVector(Pointers(elements)));
}

OperandValue Evaluator::EvaluateMatrix(const Node& node) {
  MatrixBuilder builder;
  for (const Node& child : node.children) {
    if (child.rule == ERule::kMatrix) {
      builder.AppendMatrix(EvaluateNode(child).Get());
    } else {
      const std::vector<OperandValue> elements = EvaluateAll(child, 0);
      builder.AppendRow(Pointers(elements));
    }
  }
  return OperandValue(builder.Build());
}

OperandValue Evaluator::EvaluateIndexed(const Node& node) {
  const OperandValue operand = EvaluateNode(node.children.front());
  std::vector<OperandValue> values;
  values.reserve(node.children.size());  // so that pointers to them hold
  std::vector<const Value*> items;
  for (auto item = node.children.begin() + 1; item != node.children.end(); ++item) {
    if (item->rule != ERule::kNone) values.push_back(EvaluateNode(*item));
    items.push_back(item->rule != ERule::kNone ? &values.back().Get() : nullptr);
  }
  return OperandValue(node.op == EOperator::kSlice ? EvalSlice(operand.Get(), items) : EvalIndex(operand.Get(), items));
}

void Evaluator::Charge(std::size_t work) {
  work_ += work;
  if (work_ > kMaximalWork) throw CCalculatorException(L"The evaluation takes too many operations.");
}

void Evaluator::ChargeValue(const Value& value) { Charge(CountEntries(value)); }

}  // namespace kestrel::calculator
