#include "datatypes/criteria_calculation.h"

#include <exception>
#include <list>
#include <string>
#include <unordered_set>
#include <utility>

#include "support/strings.h"

namespace kestrel::algorithm::datatypes {
namespace {

using calculator::Calculator;
using Value = CDesignEntry::VariantType;
using Messages = std::list<std::wstring>;
using namespace enums::CriterionType;

constexpr const wchar_t* kActor = L"Calculator";

/// Runs the work; what it throws becomes a message behind the text. False if it threw.
template <class Work>
bool Tell(Messages& messages, const std::wstring& text, Work work) {
  try {
    work();
    return true;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& failure) {
    messages.push_back(text + L": " + string::widen(failure.what()));
    return false;
  }
}

/// The cell as a value of the expression language.
Value ToValue(const CDesignEntry& entry) {
  if (entry.GetDomainType() == enums::DesignEntry::STRING) throw utils::runtime_error(L"It is a text.");
  if (entry.IsUninitialized()) throw utils::runtime_error(L"It has no value.");
  return ConvertDesignpointEntry<Value>(entry);
}

/// Real numbers and booleans become cells of their own kind.
CDesignEntry ToEntry(const Value& value) {
  if (value.GetKind() == Value::BOOLEAN) return value.GetBoolean();
  if (value.GetKind() == Value::SCALAR && value.GetScalar().imag() == 0.0) return value.GetScalar().real();
  return value;
}

/// An object of an earlier design with this name does not stay.
void AddObject(Calculator& calculator, const std::wstring& name, const CDesignEntry& entry, Messages& messages) {
  const bool is_added = Tell(messages, L"Cannot use object for calculations: " + name,
                             [&] { calculator.AddObject(name, L"", ToValue(entry)); });
  if (!is_added) calculator.RemoveObject(name);
}

void AddObjects(Calculator& calculator, const CDesignEntrySequence& entries, Messages& messages) {
  for (const auto& [name, entry] : entries) AddObject(calculator, name, entry, messages);
}

using NameSet = std::unordered_set<const std::wstring*>;  // equal names share one text: its address tells

NameSet NamesOf(const CDesignEntrySequence& parameters, const CDesignEntrySequence& responses) {
  NameSet names;
  names.reserve(parameters.size() + responses.size());
  for (const auto& pair : parameters) names.insert(&pair.first.str());
  for (const auto& pair : responses) names.insert(&pair.first.str());
  return names;
}

/// A side of a criterion, or the expression of a parameter.
Value Evaluate(Calculator& calculator, const std::wstring& expression) {
  return calculator.Eval<calculator::evaluation_traits::by_value>(expression);
}

Value Margin(eType type, const Value& lhs, const Value& rhs) {
  const bool is_less = type == CONSTRAINT_LESS || type == LIMIT_STATE_LESS;
  return is_less ? rhs - lhs : lhs - rhs;
}

/// Both sides and the value, or an exception and the criterion as it was.
void EvaluateCriterion(Criterion& criterion, Calculator& calculator) {
  const bool compares = criterion.IsConstraint() || criterion.IsLimitState();
  const Value lhs = Evaluate(calculator, criterion.GetLhs());
  if (!compares) return criterion.SetValues(ToEntry(lhs), ToEntry(lhs), {}, false);
  const Value rhs = Evaluate(calculator, criterion.GetRhs());
  criterion.SetValues(ToEntry(Margin(criterion.GetType(), lhs, rhs)), ToEntry(lhs), ToEntry(rhs), false);
}

}  // namespace

void CalculateCriteria(RunInfoMeta& run_info, const CDesignEntrySequence& parameters,
                       const CDesignEntrySequence& responses, CriterionSequence& criteria, Calculator& calculator) {
  Messages messages;
  AddObjects(calculator, parameters, messages);
  AddObjects(calculator, responses, messages);
  // A criterion is an object, too, unless something else has its name or no object can have it.
  const NameSet taken = NamesOf(parameters, responses);
  const auto becomes_object = [&](const SharedName& name) {
    return taken.count(&name.str()) == 0 && calculator.IsObjectIdValid(name.str(), true);
  };
  for (const auto& pair : criteria) {
    if (becomes_object(pair.first)) calculator.RemoveObject(pair.first.str());  // the value of an earlier design
  }
  bool has_failed = false;
  criteria.ForEach([&](const SharedName& name, Criterion& criterion) {
    criterion.SetValues({}, {}, {}, false);
    if (!Tell(messages, L"Criterion " + name.str(), [&] { EvaluateCriterion(criterion, calculator); })) {
      has_failed = true;
    } else if (becomes_object(name)) {
      AddObject(calculator, name, criterion.GetValue(), messages);
    }
  });
  run_info = RunInfoMeta(has_failed ? eRunInfo::kFailed : eRunInfo::kNone, kActor, {}, std::move(messages));
}

void CalculateCriteria(Design& design, Calculator& calculator) {
  CriterionSequence criteria = design.GetCriteria();
  RunInfoMeta run_info;
  CalculateCriteria(run_info, design.GetParameters(), design.GetResponses(), criteria, calculator);
  design.SetCriteria(std::move(criteria));
  if (!run_info.GetMessage().empty()) design.AddStatus(std::move(run_info));
}

void CalculateDependentParameters(Design& design, const ParameterManager& manager, Calculator& calculator) {
  Messages messages;
  CDesignEntrySequence parameters = design.GetParameters();
  bool has_failed = false;
  bool is_prepared = false;
  for (const Parameter& parameter : manager.GetParameters()) {
    if (!parameter.IsDependent()) continue;
    if (!is_prepared) AddObjects(calculator, parameters, messages);
    is_prepared = true;
    const std::wstring& name = parameter.GetName();
    calculator.RemoveObject(name);
    CDesignEntry entry;
    if (Tell(messages, L"Parameter " + name,
             [&] { entry = ToEntry(Evaluate(calculator, parameter.GetDependencyExpression())); })) {
      AddObject(calculator, name, entry, messages);
    } else {
      has_failed = true;
    }
    if (CDesignEntry* const known = parameters.GetData(name, std::nothrow)) {
      *known = entry;
    } else {
      parameters.Add(name, entry);
    }
  }
  if (!is_prepared) return;
  design.SetParametersUnsafe(std::move(parameters));
  if (has_failed) design.AddStatus(RunInfoMeta(eRunInfo::kFailed, kActor, {}, std::move(messages)));
}

}  // namespace kestrel::algorithm::datatypes
