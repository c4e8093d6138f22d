#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <tuple>

#include "values/real_comparison.h"
#include "values/variant.h"

namespace kestrel::math {
namespace {

using Value = Variant<double>;
using Complex = Value::Complex;

bool IsScalarLike(const Value& value) { return value.GetKind() == Value::BOOLEAN || value.GetKind() == Value::SCALAR; }

Complex ToScalar(const Value& value) {
  return value.GetKind() == Value::BOOLEAN ? Complex(value.GetBoolean() ? 1.0 : 0.0) : value.GetScalar();
}

template <class Container, class Same>
bool SameEntries(const Container& a, const Container& b, Same same) {
  return std::equal(a.data().begin(), a.data().end(), b.data().begin(), b.data().end(), same);
}

template <class Same>
bool SameMatrices(const Value::MatrixType& a, const Value::MatrixType& b, Same same) {
  return a.size1() == b.size1() && a.size2() == b.size2() && SameEntries(a, b, same);
}

/// Same kind (booleans are scalars here), same sizes, and every pair of entries passes.
template <class Same>
bool SameValues(const Value& a, const Value& b, Same same) {
  if (IsScalarLike(a) && IsScalarLike(b)) return same(ToScalar(a), ToScalar(b));
  if (a.GetKind() != b.GetKind()) return false;
  switch (a.GetKind()) {
    case Value::VECTOR: return SameEntries(a.GetVector(), b.GetVector(), same);
    case Value::MATRIX: return SameMatrices(a.GetMatrix(), b.GetMatrix(), same);
    case Value::SIGNAL:
    case Value::XYDATA:
      return SameEntries(a.GetTimeline(), b.GetTimeline(), same) && SameMatrices(a.GetMatrix(), b.GetMatrix(), same);
    default: return true;
  }
}

bool LessComplex(const Complex& a, const Complex& b) {
  return std::make_tuple(a.real(), a.imag()) < std::make_tuple(b.real(), b.imag());
}

template <class Container>
bool LessEntries(const Container& a, const Container& b) {
  return std::lexicographical_compare(a.data().begin(), a.data().end(), b.data().begin(), b.data().end(), LessComplex);
}

bool LessMatrix(const Value::MatrixType& a, const Value::MatrixType& b) {
  const auto shape_a = std::make_tuple(a.size1(), a.size2());
  const auto shape_b = std::make_tuple(b.size1(), b.size2());
  return shape_a != shape_b ? shape_a < shape_b : LessEntries(a, b);
}

bool LessSignal(const Value& a, const Value& b) {
  if (LessEntries(a.GetTimeline(), b.GetTimeline())) return true;
  return !LessEntries(b.GetTimeline(), a.GetTimeline()) && LessMatrix(a.GetMatrix(), b.GetMatrix());
}

/// The place of the kind in the order; booleans and scalars share one.
int Rank(const Value& value) { return IsScalarLike(value) ? Value::SCALAR : value.GetKind(); }

}  // namespace

template <class T>
bool Variant<T>::Equal(const Variant& other) const {
  return SameValues(*this, other, [](const Complex& a, const Complex& b) {
    return math::Equal(a.real(), b.real()) && math::Equal(a.imag(), b.imag());
  });
}

template <class T>
bool Variant<T>::NearTo(const Variant& other, T tolerance) const {
  return SameValues(*this, other, [tolerance](const Complex& a, const Complex& b) {
    return math::NearTo(a.real(), b.real(), tolerance) && math::NearTo(a.imag(), b.imag(), tolerance);
  });
}

template bool Variant<double>::Equal(const Variant<double>&) const;
template bool Variant<double>::NearTo(const Variant<double>&, double) const;

bool operator==(const Value& left, const Value& right) { return SameValues(left, right, std::equal_to<Complex>()); }

bool operator!=(const Value& left, const Value& right) { return !(left == right); }

bool operator<(const Value& left, const Value& right) {
  if (Rank(left) != Rank(right)) return Rank(left) < Rank(right);
  switch (Rank(left)) {
    case Value::SCALAR: return LessComplex(ToScalar(left), ToScalar(right));
    case Value::VECTOR: return LessEntries(left.GetVector(), right.GetVector());
    case Value::MATRIX: return LessMatrix(left.GetMatrix(), right.GetMatrix());
    case Value::SIGNAL:
    case Value::XYDATA: return LessSignal(left, right);
    default: return false;
  }
}

// Not the negation of the opposite order: what a NaN makes incomparable is neither less nor greater.
bool operator<=(const Value& left, const Value& right) { return left < right || left == right; }
bool operator>(const Value& left, const Value& right) { return right < left; }
bool operator>=(const Value& left, const Value& right) { return right <= left; }

}  // namespace kestrel::math
