#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "calculator/expression_cache.h"
#include "calculator/functions/function_table.h"
#include "calculator/macros.h"

namespace kestrel::calculator {

/// Counts the changes of objects and macros. What was computed before a change carries a smaller number.
using Revision = std::uint64_t;

struct Object {
  std::shared_ptr<const CalculatorTypeTraits::ObjectTuple> tuple;  ///< exchanged as a whole
  std::shared_ptr<const Expression> expression;                    ///< parsed when first needed
  bool is_immutable = false;
  bool is_evaluating = false;
  Revision changed_at = 0;  ///< when the value was given or computed
  Revision checked_at = 0;  ///< when the value was last found to hold

  const std::wstring& Name() const { return std::get<0>(*tuple); }
  const std::wstring& Text() const { return std::get<1>(*tuple); }
  const Value& GetValue() const { return std::get<2>(*tuple); }
};

struct StoredMacro {
  CalculatorTypeTraits::Macro macro;
  bool is_built_in = false;
  Revision changed_at = 0;
};

/// What a calculator holds, shared with the walker over its expressions.
struct CalculatorState {
  std::map<std::wstring, Object, std::less<>> objects;
  std::map<std::wstring, StoredMacro, std::less<>> macros;
  std::shared_ptr<const FunctionTable> functions;
  math::random::Generator generator;
  bool may_read_files = false;
  ExpressionCache expressions;
  Revision revision = 0;

  /// While expressions are walked over, operands point to values of objects. Values that are exchanged meanwhile live
  /// here until the walk ends.
  std::vector<std::shared_ptr<const CalculatorTypeTraits::ObjectTuple>> retired;
  std::size_t walkers = 0;

  Value result;  ///< of the last evaluation by reference

  const Object* FindObject(std::wstring_view name) const;
  Object* FindObject(std::wstring_view name);
  const StoredMacro* FindMacro(std::wstring_view name) const;

  /// Exchanges the value of an object.
  void SetTuple(Object& object, CalculatorTypeTraits::ObjectTuple tuple);

  /// The parsed text of an object; null if it has none. Raises what parsing raises.
  std::shared_ptr<const Expression> ExpressionOf(Object& object);
};

}  // namespace kestrel::calculator
