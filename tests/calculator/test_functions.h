#pragma once

#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include "calculator/calculator.h"
#include "calculator/functions/arguments.h"
#include "values/variant_builders.h"

/// A small table of functions, so that the language is tested apart from the library of functions.
namespace kestrel::calculator::test {

using math::test::Boolean;
using math::test::Matrix2;
using math::test::Scalar;
using math::test::Signal2;
using math::test::Text;
using math::test::Vector;

inline FunctionTable TestFunctions() {
  constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();
  FunctionTable table;
  const auto add = [&table](const wchar_t* name, std::size_t least, std::size_t most, Function function) {
    table[name] = {{name, L"", {}, name}, function, least, most};
  };
  add(L"sqrt", 1, 1, [](const Arguments& a, FunctionContext&) { return Value(std::sqrt(GetReal(a, 0)), 0.0); });
  add(L"abs", 1, 1, [](const Arguments& a, FunctionContext&) { return Value(std::fabs(GetReal(a, 0)), 0.0); });
  add(L"count", 0, kAny, [](const Arguments& a, FunctionContext&) { return Value(double(a.size()), 0.0); });
  add(L"length", 1, 1, [](const Arguments& a, FunctionContext&) { return Value(double(GetText(a, 0).size()), 0.0); });
  add(L"size2", 1, 1, [](const Arguments& a, FunctionContext&) { return Value(double(GetValue(a, 0).size2()), 0.0); });
  add(L"linspace", 3, 3, [](const Arguments& a, FunctionContext&) {
    const double first = GetReal(a, 0);
    const double step = GetReal(a, 1) - first;
    const auto count = static_cast<std::size_t>(GetReal(a, 2));
    RequireEntries(count);
    Value::VectorType values(count);
    for (std::size_t i = 0; i < count; ++i) values(i) = first + step * double(i) / double(count - 1);
    return Value(values);
  });
  add(L"rand", 0, 0, [](const Arguments&, FunctionContext& context) {
    return Value(std::uniform_real_distribution<double>()(context.generator), 0.0);
  });
  add(L"calculate", 1, 1, [](const Arguments& a, FunctionContext& context) { return context.evaluate(GetText(a, 0)); });
  add(L"may_read", 0, 0, [](const Arguments&, FunctionContext& context) { return Value(context.may_read_files); });
  return table;
}

inline Calculator MakeCalculator() {
  static const auto functions = std::make_shared<const FunctionTable>(TestFunctions());
  return Calculator(functions);
}

inline Value Evaluate(Calculator& calculator, const std::wstring& text) {
  return calculator.Eval<evaluation_traits::by_value>(text);
}

/// The text of what evaluating raises; empty if nothing is raised.
inline std::wstring FailureOf(Calculator& calculator, const std::wstring& text) {
  try {
    Evaluate(calculator, text);
  } catch (const utils::runtime_error& error) {
    return error.What();
  }
  return {};
}

}  // namespace kestrel::calculator::test
