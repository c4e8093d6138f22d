#include <algorithm>
#include <cmath>
#include <limits>

#include "calculator/functions/arguments.h"
#include "calculator/functions/function_groups.h"
#include "calculator/functions/numbers.h"

namespace kestrel::calculator {
namespace {

Value Count(std::size_t count) { return {static_cast<double>(count), 0.0}; }

Value Size(const Arguments& arguments, FunctionContext&) { return Count(GetValue(arguments, 0).size()); }
Value Size1(const Arguments& arguments, FunctionContext&) { return Count(GetValue(arguments, 0).size1()); }
Value Size2(const Arguments& arguments, FunctionContext&) { return Count(GetValue(arguments, 0).size2()); }

bool IsFiniteEntry(const Complex& z) { return std::isfinite(z.real()) && std::isfinite(z.imag()); }

/// Neither 0 nor subnormal, infinite or NaN.
bool IsNormalEntry(const Complex& z) {
  return IsFiniteEntry(z) && std::isnormal(std::max(std::abs(z.real()), std::abs(z.imag())));
}

bool HasFiniteTimeline(const Value& value) {
  if (value.GetKind() < Value::SIGNAL) return true;
  const auto& timeline = value.GetTimeline();
  return std::all_of(timeline.begin(), timeline.end(), IsFiniteEntry);
}

Value IsNaN(const Arguments& arguments, FunctionContext&) { return Value(GetValue(arguments, 0).IsNaN(true)); }
Value IsInf(const Arguments& arguments, FunctionContext&) { return Value(GetValue(arguments, 0).IsInf(true)); }

Value IsFinite(const Arguments& arguments, FunctionContext&) {
  const Value& value = GetValue(arguments, 0);
  if (value.GetKind() == Value::UNINITIALIZED) return Value(false);
  const Numbers numbers(value, 0);
  return Value(HasFiniteTimeline(value) && std::all_of(numbers.begin(), numbers.end(), IsFiniteEntry));
}

Value IsNormal(const Arguments& arguments, FunctionContext&) {
  const Value& value = GetValue(arguments, 0);
  if (value.GetKind() == Value::UNINITIALIZED) return Value(false);
  const Numbers numbers(value, 0);
  return Value(std::all_of(numbers.begin(), numbers.end(), IsNormalEntry));
}

Value IsInitialized(const Arguments& arguments, FunctionContext&) {
  return Value(GetValue(arguments, 0).GetKind() != Value::UNINITIALIZED);
}
Value IsComplex(const Arguments& arguments, FunctionContext&) {
  const Value& value = GetValue(arguments, 0);
  return Value(value.GetKind() != Value::UNINITIALIZED && !Numbers(value, 0).IsReal());
}

template <Value::EKind kind>
Value IsOfKind(const Arguments& arguments, FunctionContext&) {
  return Value(GetValue(arguments, 0).GetKind() == kind);
}

Value InfToNaN(const Arguments& arguments, FunctionContext&) {
  return MapEntries(arguments, 0, [](const Complex& z) -> Complex {
    const bool infinite = std::isinf(z.real()) || std::isinf(z.imag());
    return infinite ? std::numeric_limits<double>::quiet_NaN() : z;
  });
}

}  // namespace

void AppendQueryFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject x{L"x", L"A value of any kind."};
  const CCalculatorArgumentInfoObject cells{L"x", L"A matrix, a signal or x-y data."};
  AppendRows(
      table,
      {
          {L"size",
           L"Number of entries: 1 for a number, rows times columns of a matrix or of the data of a signal.",
           {x},
           L"size(x)",
           &Size},
          {L"size1", L"Number of rows of a matrix, of channels of a signal.", {cells}, L"size1(x)", &Size1},
          {L"size2", L"Number of columns of a matrix, of samples of a signal.", {cells}, L"size2(x)", &Size2},
          {L"isnan", L"True if an entry is NaN, the timeline included.", {x}, L"isnan(x)", &IsNaN},
          {L"isinf", L"True if an entry is infinite, the timeline included.", {x}, L"isinf(x)", &IsInf},
          {L"isfinite", L"True if no entry is infinite or NaN, the timeline included.", {x}, L"isfinite(x)", &IsFinite},
          {L"isnormal",
           L"True if no entry is 0, subnormal, infinite or NaN. Not asked of a timeline.",
           {x},
           L"isnormal(x)",
           &IsNormal},
          {L"isinitialized", L"True if it has a value.", {x}, L"isinitialized(x)", &IsInitialized},
          {L"iscomplex", L"True if an entry has an imaginary part.", {x}, L"iscomplex(x)", &IsComplex},
          {L"isbool", L"True for a boolean.", {x}, L"isbool(x)", &IsOfKind<Value::BOOLEAN>},
          {L"isscalar", L"True for a number, not for a boolean.", {x}, L"isscalar(x)", &IsOfKind<Value::SCALAR>},
          {L"isvector", L"True for a vector.", {x}, L"isvector(x)", &IsOfKind<Value::VECTOR>},
          {L"ismatrix", L"True for a matrix.", {x}, L"ismatrix(x)", &IsOfKind<Value::MATRIX>},
          {L"issignal", L"True for a signal, not for x-y data.", {x}, L"issignal(x)", &IsOfKind<Value::SIGNAL>},
          {L"isxydata", L"True for x-y data.", {x}, L"isxydata(x)", &IsOfKind<Value::XYDATA>},
          {L"inf2nan", L"Infinite entries replaced by NaN.", {x}, L"inf2nan(x)", &InfToNaN},
      });
}

}  // namespace kestrel::calculator
