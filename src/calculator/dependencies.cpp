#include "calculator/dependencies.h"

#include <algorithm>

#include "calculator/expression_exceptions.h"

namespace kestrel::calculator {
namespace {

std::shared_ptr<const Expression> TryParse(CalculatorState& state, const std::wstring& text) {
  try {
    return state.expressions.Get(text);
  } catch (const CExpressionPositionException&) {
    return nullptr;
  }
}

/// The objects of the body that are not formal arguments, and the macros that it calls.
void AddBody(CalculatorState& state, const StoredMacro& stored, References& references,
             std::vector<std::wstring>& macros) {
  references.macros_changed_at = std::max(references.macros_changed_at, stored.changed_at);
  const auto body = TryParse(state, stored.macro.expression);
  if (!body) return;
  const auto& formal = stored.macro.arguments;
  std::copy_if(
      body->objects.begin(), body->objects.end(), std::inserter(references.objects, references.objects.end()),
      [&formal](const std::wstring& name) { return std::find(formal.begin(), formal.end(), name) == formal.end(); });
  macros.insert(macros.end(), body->macros.begin(), body->macros.end());
}

}  // namespace

References CollectReferences(CalculatorState& state, const Expression& expression) {
  References references;
  references.objects.insert(expression.objects.begin(), expression.objects.end());
  std::vector<std::wstring> macros = expression.macros;  // to look into
  std::set<std::wstring> seen;
  while (!macros.empty()) {
    const std::wstring name = std::move(macros.back());
    macros.pop_back();
    const StoredMacro* macro = state.FindMacro(name);
    if (macro != nullptr && seen.insert(name).second) AddBody(state, *macro, references, macros);
  }
  return references;
}

bool DependsOn(CalculatorState& state, const Expression& expression, std::wstring_view name) {
  std::set<std::wstring, std::less<>> seen = CollectReferences(state, expression).objects;
  std::vector<std::wstring> objects(seen.begin(), seen.end());  // to look into
  while (!objects.empty() && seen.find(name) == seen.end()) {
    Object* object = state.FindObject(objects.back());
    objects.pop_back();
    const auto next = object == nullptr ? nullptr : FindExpression(state, *object);
    if (!next) continue;
    for (const std::wstring& used : CollectReferences(state, *next).objects) {
      if (seen.insert(used).second) objects.push_back(used);
    }
  }
  return seen.find(name) != seen.end();
}

std::shared_ptr<const Expression> FindExpression(CalculatorState& state, Object& object) {
  if (!object.expression && !object.Text().empty()) object.expression = TryParse(state, object.Text());
  return object.expression;
}

}  // namespace kestrel::calculator
