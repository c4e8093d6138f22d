#include "calculator/calculator_state.h"

namespace kestrel::calculator {
namespace {

template <class Table>
auto* Find(Table& table, std::wstring_view name) {
  const auto found = table.find(name);
  return found == table.end() ? nullptr : &found->second;
}

}  // namespace

const Object* CalculatorState::FindObject(std::wstring_view name) const { return Find(objects, name); }
Object* CalculatorState::FindObject(std::wstring_view name) { return Find(objects, name); }
const StoredMacro* CalculatorState::FindMacro(std::wstring_view name) const { return Find(macros, name); }

void CalculatorState::SetTuple(Object& object, CalculatorTypeTraits::ObjectTuple tuple) {
  if (walkers > 0 && object.tuple) retired.push_back(std::move(object.tuple));
  object.tuple = std::make_shared<const CalculatorTypeTraits::ObjectTuple>(std::move(tuple));
}

std::shared_ptr<const Expression> CalculatorState::ExpressionOf(Object& object) {
  if (!object.expression && !object.Text().empty()) object.expression = expressions.Get(object.Text());
  return object.expression;
}

}  // namespace kestrel::calculator
