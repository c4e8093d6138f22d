#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "calculator/functions/arguments.h"
#include "calculator/functions/functions.h"
#include "support/strings.h"
#include "values/variant_builders.h"

/// Calls of functions as the evaluator makes them, and comparison of what they give.
namespace kestrel::calculator::test {

using math::test::Boolean;
using math::test::MakeMatrix;
using math::test::MakeVector;
using math::test::Matrix2;
using math::test::Scalar;
using math::test::Signal2;
using math::test::Text;
using math::test::Vector;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

inline const FunctionTable& Functions() {
  static const FunctionTable table = [] {
    FunctionTable functions;
    AppendFunctions(functions);
    return functions;
  }();
  return table;
}

inline Value Call(const std::wstring& name, const Arguments& arguments, FunctionContext& context) {
  const FunctionEntry& entry = Functions().at(name);
  EXPECT_GE(arguments.size(), entry.minimal_arguments) << string::narrow(name);
  EXPECT_LE(arguments.size(), entry.maximal_arguments) << string::narrow(name);
  return entry.function(arguments, context);
}

/// In a context of its own that starts from a fixed seed and neither reads files nor evaluates texts.
inline Value Call(const std::wstring& name, const Arguments& arguments) {
  math::random::Generator generator(4711);
  FunctionContext context{generator, false, nullptr};
  return Call(name, arguments, context);
}

/// One channel.
inline Value Signal1(std::initializer_list<Value::Complex> timeline, std::initializer_list<Value::Complex> data,
                     Value::EKind kind = Value::SIGNAL) {
  return {MakeVector(timeline), MakeVector(data), kind};
}

inline bool AreNear(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return a == b || std::abs(a - b) <= 1e-13 * std::max(1.0, std::abs(b));
}

template <class Container>
bool HasNearEntries(const Container& a, const Container& b) {
  const auto near = [](const Value::Complex& x, const Value::Complex& y) {
    return AreNear(x.real(), y.real()) && AreNear(x.imag(), y.imag());
  };
  return std::equal(a.data().begin(), a.data().end(), b.data().begin(), b.data().end(), near);
}

inline bool IsSame(const Value& result, const Value& expected) {
  if (result.GetKind() != expected.GetKind() || result.IsComplex() != expected.IsComplex()) return false;
  switch (result.GetKind()) {
    case Value::UNINITIALIZED: return true;
    case Value::BOOLEAN: return result.GetBoolean() == expected.GetBoolean();
    case Value::SCALAR: return HasNearEntries(MakeVector({result.GetScalar()}), MakeVector({expected.GetScalar()}));
    case Value::VECTOR: return HasNearEntries(result.GetVector(), expected.GetVector());
    case Value::SIGNAL:
    case Value::XYDATA:
      if (!HasNearEntries(result.GetTimeline(), expected.GetTimeline())) return false;
      [[fallthrough]];
    case Value::MATRIX:
      return result.size1() == expected.size1() && HasNearEntries(result.GetMatrix(), expected.GetMatrix());
  }
  return false;
}

/// A call and its value: same kind, same mark of complex content, entries within 1e-13.
struct Case {
  std::wstring name;
  Arguments arguments;
  Value expected;
};

template <class Cases>
void ExpectValues(const Cases& cases) {
  int number = 0;
  for (const Case& c : cases) {
    const Value result = Call(c.name, c.arguments);
    EXPECT_TRUE(IsSame(result, c.expected))
        << "case " << number << ", " << string::narrow(c.name) << ": " << string::narrow(Text(result))
        << " where expected: " << string::narrow(Text(c.expected));
    ++number;
  }
}

}  // namespace kestrel::calculator::test
