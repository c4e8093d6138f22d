#include <algorithm>

#include "calculator/constants.h"
#include "calculator/dependencies.h"
#include "calculator/evaluator.h"
#include "calculator/expression_exceptions.h"
#include "calculator/expression_parser.h"

namespace kestrel::calculator {
namespace {

/// Marks an object as being computed for a while.
class EvaluationMark {
 public:
  explicit EvaluationMark(Object& object) : object_(object) { object_.is_evaluating = true; }
  EvaluationMark(const EvaluationMark&) = delete;
  EvaluationMark& operator=(const EvaluationMark&) = delete;
  ~EvaluationMark() { object_.is_evaluating = false; }

 private:
  Object& object_;
};

void RequireNotEvaluating(const Object& object) {
  if (!object.is_evaluating) return;
  throw CCircularDependencyException(L"object " + object.Name() + L" depends on expression dependent on " +
                                     object.Name());
}

}  // namespace

void Evaluator::Refresh(Object& object) {
  if (object.checked_at == state_.revision || object.Text().empty()) return;
  RequireNotEvaluating(object);
  if (depth_ == kMaximalDepth) throw CCalculatorException(L"The evaluation is nested too deeply.");
  ++depth_;
  const EvaluationMark mark(object);
  if (IsOutdated(object)) {
    const auto expression = state_.ExpressionOf(object);
    Value value = Evaluate(*expression).Take();
    state_.SetTuple(object, {object.Name(), object.Text(), std::move(value)});
    object.changed_at = state_.revision;
  }
  object.checked_at = state_.revision;
  --depth_;
}

bool Evaluator::IsOutdated(Object& object) {
  if (object.GetValue().GetKind() == Value::UNINITIALIZED) return true;
  const auto expression = FindExpression(state_, object);
  if (!expression) return false;
  const References references = CollectReferences(state_, *expression);
  Charge(kNodeWork * (references.objects.size() + 1));
  const auto has_changed = [this, &object](const std::wstring& name) {
    Object* used = state_.FindObject(name);
    if (used == nullptr) return false;
    Refresh(*used);
    return used->changed_at > object.changed_at;
  };
  return references.macros_changed_at > object.changed_at ||
         std::any_of(references.objects.begin(), references.objects.end(), has_changed);
}

bool IsValidObjectName(std::wstring_view name, bool strict) {
  if (!IsObjectId(name)) return false;
  const Constant* constant = strict ? FindConstant(name) : nullptr;
  return constant == nullptr || !constant->is_reserved;
}

void StoreObject(CalculatorState& state, const std::wstring& name, const std::wstring& text, const Value& value,
                 bool is_immutable) {
  Object* object = state.FindObject(name);
  if (object == nullptr && !IsValidObjectName(name, true)) {
    throw CCalculatorException(L"Invalid identifier: \"" + name + L"\"");
  }
  if (object != nullptr && object->is_immutable) {
    throw CCalculatorException(L"Can't overwrite immutable object \"" + name + L"\"");
  }
  if (object == nullptr) {
    if (state.objects.size() >= kMaximalObjects) {
      throw CCalculatorException(L"Can't insert object \"" + name + L"\"");
    }
    object = &state.objects[name];
  }
  if (!object->tuple || object->Text() != text) object->expression.reset();
  state.SetTuple(*object, {name, text, value});
  object->is_immutable = is_immutable;
  object->changed_at = object->checked_at = ++state.revision;
  if (value.GetKind() == Value::UNINITIALIZED) object->checked_at = 0;  // to be computed when asked for
}

}  // namespace kestrel::calculator
