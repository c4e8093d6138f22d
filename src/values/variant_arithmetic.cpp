#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>

#include "values/variant.h"

namespace kestrel::math {
namespace {

using Value = Variant<double>;
using Complex = Value::Complex;
using Operation = Complex (*)(const Complex&, const Complex&);

constexpr auto kInvalidType = L"Invalid type.";
constexpr auto kDifferentDimensions = L"Operands have to be of same dimension.";

bool IsScalarLike(const Value& value) { return value.GetKind() == Value::BOOLEAN || value.GetKind() == Value::SCALAR; }
bool HasTimeline(const Value& value) { return value.GetKind() == Value::SIGNAL || value.GetKind() == Value::XYDATA; }

Complex ToScalar(const Value& value) {
  return value.GetKind() == Value::BOOLEAN ? Complex(value.GetBoolean() ? 1.0 : 0.0) : value.GetScalar();
}

template <class Container, class Function>
Container Mapped(Container values, Function function) {
  std::transform(values.data().begin(), values.data().end(), values.data().begin(), function);
  return values;
}

template <class Container>
Container Zipped(Container left, const Container& right, Operation operation) {
  std::transform(left.data().begin(), left.data().end(), right.data().begin(), left.data().begin(), operation);
  return left;
}

template <class Function>
Value Map(const Value& value, Function function) {
  if (IsScalarLike(value)) return Value(function(ToScalar(value)));
  if (value.GetKind() == Value::VECTOR) return Value(Mapped(value.GetVector(), function));
  if (value.GetKind() == Value::MATRIX) return Value(Mapped(value.GetMatrix(), function));
  if (HasTimeline(value)) return Value(value.GetTimeline(), Mapped(value.GetMatrix(), function), value.GetKind());
  throw CTypeException(kInvalidType);
}

Value CombineVectors(const Value& left, const Value& right, Operation operation) {
  if (left.size() != right.size()) throw CDomainException(kDifferentDimensions);
  return Value(Zipped(left.GetVector(), right.GetVector(), operation));
}

/// The operand as a matrix of this shape; a vector repeats in every row.
Value::MatrixType Expanded(const Value& operand, std::size_t rows, std::size_t columns) {
  const bool is_vector = operand.GetKind() == Value::VECTOR;
  const bool fits = is_vector ? operand.size() == columns : operand.size1() == rows && operand.size2() == columns;
  if (!fits) throw CDomainException(kDifferentDimensions);
  if (!is_vector) return operand.GetMatrix();
  Value::MatrixType repeated(rows, columns);
  auto end = repeated.data().begin();
  for (std::size_t row = 0; row < rows; ++row) {
    end = std::copy(operand.GetVector().data().begin(), operand.GetVector().data().end(), end);
  }
  return repeated;
}

/// At least one side is a signal or x-y data, and neither is a scalar.
Value CombineSignals(const Value& left, const Value& right, Operation operation) {
  const Value& frame = HasTimeline(left) ? left : right;
  const std::size_t rows = frame.size1();
  const std::size_t columns = frame.size2();
  const auto data = Zipped(Expanded(left, rows, columns), Expanded(right, rows, columns), operation);
  return Value(frame.GetTimeline(), data, frame.GetKind());
}

Value Combine(const Value& left, const Value& right, Operation operation) {
  if (left.GetKind() == Value::UNINITIALIZED || right.GetKind() == Value::UNINITIALIZED) {
    throw CTypeException(kInvalidType);
  }
  if (IsScalarLike(right)) {
    return Map(left, [operation, b = ToScalar(right)](const Complex& a) { return operation(a, b); });
  }
  if (IsScalarLike(left)) {
    return Map(right, [operation, a = ToScalar(left)](const Complex& b) { return operation(a, b); });
  }
  if (HasTimeline(left) || HasTimeline(right)) return CombineSignals(left, right, operation);
  if (left.GetKind() != right.GetKind()) throw CTypeException(kInvalidType);
  if (left.GetKind() == Value::VECTOR) return CombineVectors(left, right, operation);
  return Value(Zipped(left.GetMatrix(), Expanded(right, left.size1(), left.size2()), operation));
}

bool AreReal(const Complex& a, const Complex& b) { return a.imag() == 0.0 && b.imag() == 0.0; }

Complex Add(const Complex& a, const Complex& b) { return a + b; }
Complex Subtract(const Complex& a, const Complex& b) { return a - b; }

// Real operands take the real operation: the complex one turns 1/0 into a value with a NaN beside the infinity.
Complex Multiply(const Complex& a, const Complex& b) { return AreReal(a, b) ? Complex(a.real() * b.real()) : a * b; }
Complex Divide(const Complex& a, const Complex& b) { return AreReal(a, b) ? Complex(a.real() / b.real()) : a / b; }

Complex Remainder(const Complex& a, const Complex& b) {
  if (!AreReal(a, b)) throw CTypeException(L"Operands of % must be real.");
  return {std::fmod(a.real(), b.real()), 0.0};
}

// The principal value; of a negative real base the one above the cut, whatever the sign of its imaginary zero.
Complex RaiseToPower(const Complex& base, const Complex& exponent) {
  const Complex above(base.real(), base.imag() + 0.0);
  if (!AreReal(base, exponent)) return std::pow(above, exponent);
  const double power = std::pow(base.real(), exponent.real());
  const bool exists = !std::isnan(power) || std::isnan(base.real()) || std::isnan(exponent.real());
  return exists ? Complex(power) : std::pow(above, exponent);
}

// The imaginary part of a real number stays 0, not -0, which would put it below the cuts of the functions.
Complex Negate(const Complex& a) { return {-a.real(), 0.0 - a.imag()}; }

}  // namespace

Value operator+(const Value& left, const Value& right) { return Combine(left, right, &Add); }
Value operator-(const Value& left, const Value& right) { return Combine(left, right, &Subtract); }
Value operator*(const Value& left, const Value& right) { return Combine(left, right, &Multiply); }
Value operator/(const Value& left, const Value& right) { return Combine(left, right, &Divide); }
Value operator%(const Value& left, const Value& right) { return Combine(left, right, &Remainder); }
Value Power(const Value& base, const Value& exponent) { return Combine(base, exponent, &RaiseToPower); }
Value operator-(const Value& value) { return Map(value, &Negate); }

bool IsTrue(const Value& value) {
  if (!IsScalarLike(value)) throw CTypeException(L"Input object not of type BOOLEAN.");
  return ToScalar(value) != 0.0;
}

Value operator!(const Value& value) { return Value(!IsTrue(value)); }

// Both sides are looked at, so that a side without a truth value is always told.
Value And(const Value& left, const Value& right) {
  const bool right_holds = IsTrue(right);
  return Value(IsTrue(left) && right_holds);
}

Value Or(const Value& left, const Value& right) {
  const bool right_holds = IsTrue(right);
  return Value(IsTrue(left) || right_holds);
}

}  // namespace kestrel::math
