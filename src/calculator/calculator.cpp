#include "calculator/calculator.h"

#include <algorithm>
#include <random>

#include "calculator/calculator_state.h"
#include "calculator/constants.h"
#include "calculator/dependencies.h"
#include "calculator/evaluator.h"
#include "calculator/standard_functions.h"

namespace kestrel::calculator {
namespace {

Object& RequireObject(CalculatorState& state, std::wstring_view name) {
  if (Object* object = state.FindObject(name)) return *object;
  throw CCalculatorObjectUnknownException(std::wstring(name), L"");
}

}  // namespace

Calculator::CCalculator() : CCalculator(StandardFunctions()) {}

Calculator::CCalculator(std::shared_ptr<const FunctionTable> functions) : state_(std::make_unique<CalculatorState>()) {
  state_->functions = std::move(functions);
  Init();
}

Calculator::CCalculator(CCalculator&&) noexcept = default;
Calculator& Calculator::operator=(CCalculator&&) noexcept = default;
Calculator::~CCalculator() = default;

// Rule names and constants are tables that all calculators share.
void Calculator::Init() {
  for (const Macro& macro : BuiltInMacros()) state_->macros.emplace(macro.name, StoredMacro{macro, true});
}

void Calculator::AddObject(const std::wstring& name, const std::wstring& expression, const Value& value,
                           bool is_immutable) {
  StoreObject(*state_, name, expression, value, is_immutable);
}

bool Calculator::RemoveObject(std::wstring_view name) {
  const auto found = state_->objects.find(name);
  if (found == state_->objects.end()) return false;
  state_->objects.erase(found);
  ++state_->revision;
  return true;
}

bool Calculator::IsObject(std::wstring_view name) const { return state_->FindObject(name) != nullptr; }

const Calculator::ObjectTuple& Calculator::GetTuple(std::wstring_view name) const {
  return *RequireObject(*state_, name).tuple;
}

const Calculator::ObjectTuple* Calculator::GetTuple(std::wstring_view name, const std::nothrow_t&) const noexcept {
  const Object* object = state_->FindObject(name);
  return object == nullptr ? nullptr : object->tuple.get();
}

bool Calculator::IsObjectIdValid(std::wstring_view name, bool strict) const { return IsValidObjectName(name, strict); }

template <>
const Value& Calculator::Eval<evaluation_traits::by_reference>(const std::wstring& text) {
  const auto expression = state_->expressions.Get(text);
  Evaluator evaluator(*state_);
  OperandValue value = evaluator.Evaluate(*expression);
  if (!value.IsOwn()) return value.Get();
  state_->result = std::move(value).Take();
  return state_->result;
}

template <>
Value Calculator::Eval<evaluation_traits::by_value>(const std::wstring& text) {
  const auto expression = state_->expressions.Get(text);
  Evaluator evaluator(*state_);
  return evaluator.Evaluate(*expression).Take();
}

const Value& Calculator::EvalObject(std::wstring_view name) {
  Evaluator(*state_).Refresh(RequireObject(*state_, name));
  return RequireObject(*state_, name).GetValue();
}

bool Calculator::HasCircularDependencies(std::wstring_view name) {
  const auto expression = FindExpression(*state_, RequireObject(*state_, name));
  return expression && DependsOn(*state_, *expression, name);
}

std::vector<ObjectIdPosition> Calculator::GetObjectIdPositions(const std::wstring& text) {
  std::vector<ObjectIdPosition> found;
  try {
    found = FindObjectIds(*state_->expressions.Get(text));
  } catch (const CExpressionPositionException& error) {
    throw CExpressionPositionException(L"Error determining object positions", text, error.Position());
  }
  const auto is_constant = [this](const ObjectIdPosition& id) {
    return state_->FindObject(id.name) == nullptr && FindConstant(id.name) != nullptr;
  };
  found.erase(std::remove_if(found.begin(), found.end(), is_constant), found.end());
  return found;
}

std::wstring Calculator::ReplaceObjectIds(const std::wstring& text, const std::map<std::wstring, std::wstring>& names) {
  const std::vector<ObjectIdPosition> ids = GetObjectIdPositions(text);
  std::vector<std::wstring> replacements;
  for (const ObjectIdPosition& id : ids) {
    const auto other = names.find(id.name);
    if (other == names.end()) throw CCalculatorException(L"Object not found. Heavy runtime error occurred.");
    if (!IsObjectIdValid(other->second, true)) {
      throw CCalculatorException(L"Object can't be replaced. Heavy runtime error occurred.");
    }
    replacements.push_back(other->second);
  }
  return ReplaceNames(text, ids, replacements);
}

std::wstring Calculator::MapMacroExpression(const Macro& macro, const std::vector<std::wstring>& arguments) {
  return calculator::MapMacroExpression(macro, *state_->expressions.Get(macro.expression), arguments);
}

const Calculator::Macro* Calculator::FindMacro(std::wstring_view name) const {
  const StoredMacro* stored = state_->FindMacro(name);
  return stored == nullptr ? nullptr : &stored->macro;
}

const FunctionTable& Calculator::GetFunctions() const { return *state_->functions; }

void Calculator::InitRng(std::optional<std::uint64_t> seed) {
  std::random_device entropy;
  const auto draw = [&entropy] { return std::uint64_t{entropy()} << 32 | entropy(); };
  state_->generator.seed(seed ? *seed : draw());
}

math::random::Generator& Calculator::GetRandomNumberGenerator() { return state_->generator; }

void Calculator::AllowFileReading(bool may_read_files) { state_->may_read_files = may_read_files; }

}  // namespace kestrel::calculator
