#pragma once

#include <string>
#include <vector>

#include "calculator/calculator_state.h"
#include "calculator/expression_tree.h"

namespace kestrel::calculator {

/// Nodes, objects and macros stand in each other up to this depth in one evaluation.
inline constexpr std::size_t kMaximalDepth = 1000;
/// What one evaluation may cost: kNodeWork for each node, and 1 for each entry of a value that it makes. That is 0.1 s
/// of nodes, 0.3 s of sums or 0.8 s of powers of long vectors, and 0.4 GB of values, if the functions that are called
/// take a time in proportion to their results.
inline constexpr std::size_t kMaximalWork = 25'000'000;
inline constexpr std::size_t kNodeWork = 50;

inline constexpr std::size_t kMaximalObjects = 100'000;
inline constexpr std::size_t kMaximalMacros = 10'000;

/// A value on the way through a tree: one of its own, or one that belongs to an object and is not copied.
class OperandValue {
 public:
  explicit OperandValue(Value value) : own_(std::move(value)) {}
  explicit OperandValue(const Value* object_value) : object_value_(object_value) {}

  const Value& Get() const { return object_value_ != nullptr ? *object_value_ : own_; }
  bool IsOwn() const { return object_value_ == nullptr; }
  Value Take() && { return object_value_ != nullptr ? *object_value_ : std::move(own_); }

 private:
  Value own_;
  const Value* object_value_ = nullptr;
};

/// One walk over the tree of an expression, and over those of the objects and macros that it uses. Operands that refer
/// to objects hold as long as the walk does; the last one holds until the objects change.
class Evaluator {
 public:
  explicit Evaluator(CalculatorState& state);
  Evaluator(const Evaluator&) = delete;
  Evaluator& operator=(const Evaluator&) = delete;
  ~Evaluator();

  /// Raises CCalculatorException and its children, what operations on Variant raise, and what functions raise.
  OperandValue Evaluate(const Expression& expression);

  /// Makes sure that the value of the object holds: computes it if it has none, or if an object or a macro that its
  /// expression uses has changed since. Raises CCircularDependencyException if the object depends on itself.
  void Refresh(Object& object);

 private:
  OperandValue EvaluateNode(const Node& node);
  OperandValue Dispatch(const Node& node);
  OperandValue EvaluateConstant(const Node& node) const;
  OperandValue EvaluateObject(const Node& node);
  OperandValue EvaluateChain(const Node& node);
  OperandValue EvaluateIf(const Node& node);
  OperandValue EvaluateSwitch(const Node& node);
  OperandValue EvaluateVector(const Node& node);
  OperandValue EvaluateMatrix(const Node& node);
  OperandValue EvaluateIndexed(const Node& node);
  OperandValue EvaluateFunction(const Node& node);
  OperandValue EvaluateMacro(const Node& node);
  OperandValue Assign(const Node& node);
  OperandValue AssignMacro(const Node& node);

  std::vector<OperandValue> EvaluateAll(const Node& node, std::size_t first);
  Arguments EvaluateArguments(const Node& node);
  void RequireAssignable(const std::wstring& name) const;
  bool IsOutdated(Object& object);
  std::wstring TextOf(const Node& node) const { return std::wstring(expression_->TextOf(node)); }
  void Charge(std::size_t work);
  void ChargeValue(const Value& value);

  CalculatorState& state_;
  FunctionContext context_;
  const Expression* expression_ = nullptr;  ///< whose nodes are walked over
  std::size_t depth_ = 0;
  std::size_t work_ = 0;
};

/// Puts an object into the table or gives it another expression and value. Raises CCalculatorException "Invalid
/// identifier: ...", "Can't overwrite immutable object ..." and "Can't insert object ..." (more than kMaximalObjects).
void StoreObject(CalculatorState& state, const std::wstring& name, const std::wstring& text, const Value& value,
                 bool is_immutable);

/// The rule for names of objects; see CCalculator::IsObjectIdValid.
bool IsValidObjectName(std::wstring_view name, bool strict);

}  // namespace kestrel::calculator
