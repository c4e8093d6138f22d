#include <algorithm>
#include <boost/numeric/conversion/cast.hpp>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "api/barrier.h"
#include "api/buffers.h"
#include "build/zorsolver.h"
#include "calculator/calculator.h"
#include "calculator/expression_parser.h"
#include "calculator/standard_functions.h"
#include "calculator/value_text.h"
#include "datatypes/criterion.h"
#include "support/strings.h"
#include "zor_api.h"

// Expressions, and the criteria of a built handle, which are expressions over its inputs and outputs.

namespace {

using kestrel::algorithm::datatypes::Criterion;
using kestrel::algorithm::datatypes::CriterionSequence;
using kestrel::api::Guarded;
using kestrel::api::GuardedResult;
using kestrel::api::Target;
using kestrel::math::Matrix;

std::wstring Wide(const char* text) { return text == nullptr ? std::wstring() : kestrel::string::widen(text); }

uint32_t RefuseName(ZOR& record, const std::string& text) {
  record.SetLastError(text);
  return zor_invalid_name;
}

/// Names that an expression could mean already.
bool IsTaken(const ZOR& record, const CriterionSequence& criteria, const std::wstring& name) {
  const auto& solver = record.zorsolver_;
  const auto is_among = [&](const std::vector<std::wstring>& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
  };
  return criteria.Contains(name) || is_among(solver.GetParameterNames()) || is_among(solver.GetResponseNames());
}

uint32_t AddCriterion(ZOR& record, const std::wstring& name, uint32_t type, const char* left, const char* right) {
  const std::string shown = "'" + kestrel::string::narrow(name) + "'";
  CriterionSequence criteria = record.zorsolver_.GetAllCriteria();
  if (!kestrel::string::detail::CheckVariableNameDefault(name, true)) {
    return RefuseName(record, shown + " is not a valid name.");
  }
  if (IsTaken(record, criteria, name)) return RefuseName(record, shown + " is the name of something else already.");
  if (type < zor_objective_min || type > zor_limit_state_greater) {
    record.SetLastError("Unknown criterion type given.");
    return zor_unknown_input_enum;
  }
  Criterion criterion(static_cast<Criterion::eType>(type), Wide(left), Wide(right));
  kestrel::calculator::ParseExpression(criterion.GetLhs());
  if (!criterion.IsObjective()) kestrel::calculator::ParseExpression(criterion.GetRhs());
  criteria.Add(name, criterion);
  record.zorsolver_.SetCriteria(std::move(criteria));
  return zor_success;
}

uint32_t SolveCriteria(zor_handle_t handle, const double* inputs, double* values, uint32_t designs, bool extrapolate) {
  return GuardedResult(handle, [&](const ZOR& record) {
    const Matrix points = kestrel::api::ReadRows(inputs, designs, record.num_inputs_);
    const Matrix all = record.zorsolver_.ApproximateDesigns(points, extrapolate, true);
    return kestrel::api::WriteRows(all, designs, record.num_outputs_, record.zorsolver_.GetAllCriteria().size(),
                                   values);
  });
}

/// "usage", the description and the arguments, indented, and an empty line.
void Describe(const kestrel::calculator::CCalculatorFunctionInfoObject& info, std::wstring& text) {
  text += info.usage + L"\n  " + info.description + L"\n";
  for (const auto& argument : info.arguments) text += L"  " + argument.name + L": " + argument.description + L"\n";
  text += L"\n";
}

}  // namespace

uint32_t zor_add_criterion(zor_handle_t handle, const char* name, uint32_t type, const char* left, const char* right) {
  return GuardedResult(handle, [&](ZOR& record) {
    const boost::shared_lock_guard<boost::shared_mutex> lock(record.mutex_);
    return AddCriterion(record, Wide(name), type, left, right);
  });
}

uint32_t zor_clear_criteria(zor_handle_t handle) {
  return GuardedResult(handle, [&](ZOR& record) {
    const boost::shared_lock_guard<boost::shared_mutex> lock(record.mutex_);
    record.zorsolver_.SetCriteria({});
    return zor_success;
  });
}

uint32_t zor_get_criterion_count(zor_handle_t handle, uint32_t* count) {
  return GuardedResult(handle, [&](const ZOR& record) {
    Target(count) = boost::numeric_cast<uint32_t>(record.zorsolver_.GetAllCriteria().size());
    return zor_success;
  });
}

uint32_t zor_get_criterion_name(zor_handle_t handle, uint32_t index, char** name, size_t* length) {
  return GuardedResult(handle, [&](const ZOR& record) {
    const auto names = record.zorsolver_.GetCriteriaNames();
    if (index >= names.size()) return zor_index_out_of_range;
    kestrel::api::HandOut(kestrel::string::narrow(names[index]), name, length);
    return zor_success;
  });
}

uint32_t zor_solve_criteria(zor_handle_t handle, const double* inputs, double* values, uint32_t designs) {
  return SolveCriteria(handle, inputs, values, designs, false);
}

uint32_t zor_solve_criteria_extrapolate(zor_handle_t handle, const double* inputs, double* values, uint32_t designs) {
  return SolveCriteria(handle, inputs, values, designs, true);
}

uint32_t zor_evaluate_expression(zor_handle_t handle, const char* expression, const char* const* names,
                                 const char* const* expressions, uint32_t count, char** text, size_t* length) {
  return Guarded(handle, [&](const ZOR&) {
    kestrel::calculator::Calculator calculator;
    if (count > 0) {
      kestrel::api::RequirePointer(names);
      kestrel::api::RequirePointer(expressions);
    }
    for (uint32_t i = 0; i < count; ++i) calculator.AddObject(Wide(names[i]), Wide(expressions[i]), {});
    const auto value = calculator.Eval<kestrel::calculator::evaluation_traits::by_value>(Wide(expression));
    kestrel::api::HandOut(kestrel::string::narrow(kestrel::calculator::ToText(value)), text, length);
    return zor_success;
  });
}

uint32_t zor_describe_functions(zor_handle_t handle, char** text, size_t* length) {
  return Guarded(handle, [&](const ZOR&) {
    std::wstring all;
    for (const auto& [name, entry] : *kestrel::calculator::StandardFunctions()) Describe(entry.info, all);
    kestrel::api::HandOut(kestrel::string::narrow(all), text, length);
    return zor_success;
  });
}
