#include <algorithm>

#include "calculator/constants.h"
#include "calculator/dependencies.h"
#include "calculator/evaluator.h"
#include "calculator/expression_exceptions.h"

namespace kestrel::calculator {
namespace {

std::wstring Quoted(const std::wstring& name) { return L"\"" + name + L"\""; }

const FunctionEntry& FindFunction(const FunctionTable& functions, const std::wstring& name, std::size_t arguments) {
  const auto found = functions.find(name);
  if (found == functions.end()) throw CCalculatorException(L"Function '" + name + L"' not known.");
  const FunctionEntry& entry = found->second;
  if (arguments < entry.minimal_arguments || arguments > entry.maximal_arguments) {
    throw CCalculatorException(L"Wrong number of arguments provided to " + name);
  }
  return entry;
}

void RequireDistinct(const std::vector<std::wstring>& arguments) {
  for (auto name = arguments.begin(); name != arguments.end(); ++name) {
    if (std::find(arguments.begin(), name, *name) == name) continue;
    throw CCalculatorException(L"Macro argument " + Quoted(*name) + L" erroneously used repeatedly in argument list");
  }
}

void RequireNoCircle(CalculatorState& state, const Expression& expression, const std::wstring& name) {
  if (!DependsOn(state, expression, name)) return;
  throw CCircularDependencyException(L"Assignment denied because of a circular dependency around " + Quoted(name) +
                                     L": object " + name + L" depends on expression dependent on " + name);
}

void StoreMacro(CalculatorState& state, const CalculatorTypeTraits::Macro& macro) {
  const StoredMacro* known = state.FindMacro(macro.name);
  const bool is_built_in = known != nullptr && known->is_built_in;
  if (is_built_in || (known == nullptr && state.macros.size() >= kMaximalMacros)) {
    throw CCalculatorException(L"Couldn't assign macro " + Quoted(macro.name) +
                               (is_built_in ? L": it is built in" : L": there are too many"));
  }
  state.macros.insert_or_assign(macro.name, StoredMacro{macro, false, ++state.revision});
}

}  // namespace

Arguments Evaluator::EvaluateArguments(const Node& node) {
  Arguments arguments;
  arguments.reserve(node.children.size());
  for (auto child = node.children.begin() + 1; child != node.children.end(); ++child) {
    if (child->rule == ERule::kString) {
      const auto text = expression_->TextOf(*child);
      arguments.emplace_back(std::wstring(text.substr(1, text.size() - 2)));
      continue;
    }
    OperandValue value = EvaluateNode(*child);
    if (!value.IsOwn()) ChargeValue(value.Get());  // functions get copies
    arguments.emplace_back(std::move(value).Take());
  }
  return arguments;
}

OperandValue Evaluator::EvaluateFunction(const Node& node) {
  const FunctionEntry& entry = FindFunction(*state_.functions, TextOf(node.children.front()), node.children.size() - 1);
  const Arguments arguments = EvaluateArguments(node);
  return OperandValue(entry.function(arguments, context_));
}

OperandValue Evaluator::EvaluateMacro(const Node& node) {
  const std::wstring name = TextOf(node.children.front());
  const StoredMacro* stored = state_.FindMacro(name);
  if (stored == nullptr) throw CCalculatorException(L"Unknown macro \"$" + name + L"\" called");
  if (node.children.size() - 1 != stored->macro.arguments.size()) {
    throw CCalculatorException(L"Invalid number of arguments: \"$" + name + L"\"");
  }
  std::vector<std::wstring> arguments;
  for (auto child = node.children.begin() + 1; child != node.children.end(); ++child) {
    arguments.emplace_back(expression_->WrittenTextOf(*child));
  }
  const auto body = state_.expressions.Get(stored->macro.expression);
  const auto mapped = state_.expressions.Get(MapMacroExpression(stored->macro, *body, arguments));
  Charge(mapped->text.size());
  return Evaluate(*mapped);
}

void Evaluator::RequireAssignable(const std::wstring& name) const {
  const Object* object = state_.FindObject(name);
  const Constant* constant = FindConstant(name);
  if ((object == nullptr || !object->is_immutable) && (constant == nullptr || !constant->is_reserved)) return;
  throw CCalculatorException(L"Irregular object assignment: " + Quoted(name) + L" is an immutable object");
}

OperandValue Evaluator::Assign(const Node& node) {
  std::vector<std::wstring> targets;
  for (auto child = node.children.begin(); child + 1 != node.children.end(); ++child) targets.push_back(TextOf(*child));
  for (const std::wstring& target : targets) RequireAssignable(target);

  const std::wstring text(expression_->WrittenTextOf(node.children.back()));
  OperandValue value = EvaluateNode(node.children.back());
  const auto expression = state_.expressions.Get(text);
  for (const std::wstring& target : targets) RequireNoCircle(state_, *expression, target);
  for (const std::wstring& target : targets) {
    try {
      StoreObject(state_, target, text, value.Get(), false);
      ChargeValue(value.Get());
    } catch (const CCalculatorException& error) {
      throw CCalculatorException(L"Couldn't assign object " + Quoted(target) + L": " + error.What());
    }
  }
  return value;
}

OperandValue Evaluator::AssignMacro(const Node& node) {
  CalculatorTypeTraits::Macro macro;
  macro.name = TextOf(node.children.front());
  for (auto child = node.children.begin() + 1; child + 1 != node.children.end(); ++child) {
    macro.arguments.push_back(TextOf(*child));
  }
  RequireDistinct(macro.arguments);
  macro.expression = expression_->WrittenTextOf(node.children.back());
  StoreMacro(state_, macro);
  return OperandValue(Value());
}

}  // namespace kestrel::calculator
