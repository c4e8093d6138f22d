#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "statistics/random.h"
#include "values/variant.h"

namespace kestrel::calculator {

using Value = math::Variant<double>;

/// What stands between the parentheses of a call: a value, or a text in double quotes.
using Argument = std::variant<Value, std::wstring>;
using Arguments = std::vector<Argument>;

/// No result and no intermediate value of a function has more entries than this (a vector of 160 MB).
inline constexpr std::size_t kMaximalEntries = 10'000'000;

/// What a call may use besides its arguments.
struct FunctionContext {
  math::random::Generator& generator;                       ///< of the calculator
  bool may_read_files = false;                              ///< `read` refuses if not
  std::function<Value(const std::wstring& text)> evaluate;  ///< evaluates an expression, one level deeper
};

/// Gives the value of a call. The count of arguments was checked before. Raises CCalculatorException, or what the
/// operations on Variant raise, with a text that says which argument does not fit.
using Function = Value (*)(const Arguments& arguments, FunctionContext& context);

/// One argument of a function, for a reader.
struct CCalculatorArgumentInfoObject {
  std::wstring name;
  std::wstring description;
  bool optional = false;
};

/// A function, for a reader: what it does, its arguments in their order, and how a call looks.
struct CCalculatorFunctionInfoObject {
  std::wstring name;
  std::wstring description;
  std::vector<CCalculatorArgumentInfoObject> arguments;  ///< the optional ones at the end
  std::wstring usage;                                    ///< "atan2(y, x)"; one form a line if there are several
};

/// A function, for a call.
struct FunctionEntry {
  CCalculatorFunctionInfoObject info;
  Function function = nullptr;
  std::size_t minimal_arguments = 0;
  std::size_t maximal_arguments = 0;  ///< SIZE_MAX for any number
};

/// By name.
using FunctionTable = std::map<std::wstring, FunctionEntry, std::less<>>;

}  // namespace kestrel::calculator
