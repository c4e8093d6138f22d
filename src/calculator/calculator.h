#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calculator/expression_exceptions.h"
#include "calculator/expression_tree.h"
#include "calculator/functions/function_table.h"
#include "calculator/macros.h"

namespace kestrel::calculator {

struct CalculatorState;

/// How an evaluation gives its value.
namespace evaluation_traits {

/// As a reference: to the value of the object, if the expression is the name of one; else to a value that the
/// calculator keeps. It holds until the next call that is not const.
struct by_reference {
  using Result = const Value&;
};

struct by_value {
  using Result = Value;
};

}  // namespace evaluation_traits

template <class Variant>
class CCalculator;

/// The expression language over Variant values: numbers, vectors, matrices and signals, functions, objects with names,
/// and macros.
///
/// An object holds a value and the expression that it came from. An object is immutable if the caller who added it says
/// so: neither an expression nor AddObject overwrites it until it is removed. The constants are immutable. A word that
/// is no object stands for the constant of that name, LINEAR for @LINEAR.
///
/// Values follow their expressions: with b = 2 * a, b is computed anew when it is asked for after a (or a macro that
/// its expression calls) has changed. Assigning an expression that depends on its own target is denied, so a = a + 1
/// always fails.
///
/// A text is parsed once and evaluated often: the trees of the last texts are kept (expression_cache.h). Texts and
/// evaluations have limits, with a failure beyond them: kMaximalTextLength and kMaximalNesting (expression_parser.h),
/// kMaximalDepth, kMaximalWork, kMaximalObjects and kMaximalMacros (evaluator.h), kMaximalEntries (function_table.h).
///
/// All failures of parsing and evaluating are CCalculatorExceptions; those of operations on values (CVariantException)
/// pass through. What an expression has assigned before it failed stays. One thread uses a calculator at a time.
template <>
class CCalculator<math::Variant<double>> {
 public:
  using Macro = CalculatorTypeTraits::Macro;
  using ObjectTuple = CalculatorTypeTraits::ObjectTuple;

  /// With all functions of the library (standard_functions.h).
  CCalculator();
  /// @param functions  what expressions can call; shared between calculators.
  explicit CCalculator(std::shared_ptr<const FunctionTable> functions);
  CCalculator(CCalculator&&) noexcept;
  CCalculator& operator=(CCalculator&&) noexcept;
  ~CCalculator();

  /// Adds an object or overwrites it.
  /// @param expression  where the value came from; empty if it is just given. The value is taken for that of the
  ///                    expression now; an uninitialized one is computed when it is asked for. A text that is no
  ///                    expression stays without effect as long as there is a value.
  /// Raises CCalculatorException "Invalid identifier: ...", "Can't overwrite immutable object ...", "Can't insert
  /// object ...".
  void AddObject(const std::wstring& name, const std::wstring& expression, const Value& value,
                 bool is_immutable = false);
  /// Forgets an object, an immutable one, too. False if there is none.
  bool RemoveObject(std::wstring_view name);

  bool IsObject(std::wstring_view name) const;
  /// Name, expression text and value as they were last given or computed; holds until the next call that is not const.
  /// Raises CCalculatorObjectUnknownException.
  const ObjectTuple& GetTuple(std::wstring_view name) const;
  /// Null for an unknown name.
  const ObjectTuple* GetTuple(std::wstring_view name, const std::nothrow_t&) const noexcept;

  /// True if the whole text is a name: a letter or '_', then letters, digits, '_', ''' or '.', and not the word "if" in
  /// any case.
  /// @param strict  also false for the names of the constants but E and I. Names of functions are free: a function is
  ///                told by its bracket, so sin and sin(sin) go together. string::detail::CheckVariableNameDefault is
  ///                the same rule without a calculator.
  bool IsObjectIdValid(std::wstring_view name, bool strict) const;

  /// The value of an expression; an assignment gives the value assigned, a macro definition an uninitialized one.
  template <class Traits>
  typename Traits::Result Eval(const std::wstring& text);

  /// The value of an object, computed anew where it has to be. Holds until the next call that is not const. Raises
  /// CCalculatorObjectUnknownException, CCircularDependencyException, and what evaluating the expression raises.
  const Value& EvalObject(std::wstring_view name);

  /// True if the expression of the object depends on the object. Raises CCalculatorObjectUnknownException.
  bool HasCircularDependencies(std::wstring_view name);

  /// The names in the place of objects, targets of assignments included, in the order of the text; but for words that
  /// stand for constants. Raises CExpressionPositionException "Error determining object positions".
  std::vector<ObjectIdPosition> GetObjectIdPositions(const std::wstring& text);
  /// The text with other names for its objects. Raises as GetObjectIdPositions, and CCalculatorException "Object not
  /// found. Heavy runtime error occurred." for a name that has no entry in the map, "Object can't be replaced. Heavy
  /// runtime error occurred." for an entry that is no valid name.
  std::wstring ReplaceObjectIds(const std::wstring& text, const std::map<std::wstring, std::wstring>& names);

  /// See macros.h. Raises CExpressionPositionException if the text of the macro is no expression.
  std::wstring MapMacroExpression(const Macro& macro, const std::vector<std::wstring>& arguments);
  /// Null for an unknown name (without the "$").
  const Macro* FindMacro(std::wstring_view name) const;

  const FunctionTable& GetFunctions() const;
  const std::map<ERule, std::wstring>& GetRuleNames() const { return RuleNames(); }

  /// The generator starts from a fixed seed, so that the same expressions give the same numbers.
  /// @param seed  without one, entropy of the system takes its place.
  void InitRng(std::optional<std::uint64_t> seed = std::nullopt);
  math::random::Generator& GetRandomNumberGenerator();

  /// Whether functions may read files; they may not unless this is called.
  void AllowFileReading(bool may_read_files);

 private:
  void Init();

  std::unique_ptr<CalculatorState> state_;
};

using Calculator = CCalculator<Value>;

template <>
const Value& Calculator::Eval<evaluation_traits::by_reference>(const std::wstring& text);
template <>
Value Calculator::Eval<evaluation_traits::by_value>(const std::wstring& text);

}  // namespace kestrel::calculator
