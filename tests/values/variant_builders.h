#pragma once

#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <initializer_list>
#include <sstream>
#include <string>

#include "values/variant.h"

/// Short ways to write values of all kinds in tests.
namespace kestrel::math::test {

using Value = Variant<double>;

inline Value::VectorType MakeVector(std::initializer_list<Value::Complex> entries) {
  Value::VectorType values(entries.size());
  std::copy(entries.begin(), entries.end(), values.begin());
  return values;
}

inline Value::MatrixType MakeMatrix(std::size_t rows, std::size_t columns,
                                    std::initializer_list<Value::Complex> cells) {
  Value::MatrixType values(rows, columns);
  std::copy(cells.begin(), cells.end(), values.data().begin());
  return values;
}

inline Value Boolean(bool value) { return Value(value); }
inline Value Scalar(double real, double imaginary = 0.0) { return {real, imaginary}; }
inline Value Vector(std::initializer_list<Value::Complex> entries) { return Value(MakeVector(entries)); }
inline Value Matrix2(std::initializer_list<Value::Complex> cells) {
  return Value(MakeMatrix(2, cells.size() / 2, cells));
}
/// Two channels over the timeline.
inline Value Signal2(std::initializer_list<Value::Complex> timeline, std::initializer_list<Value::Complex> cells,
                     Value::EKind kind = Value::SIGNAL) {
  return {MakeVector(timeline), MakeMatrix(2, timeline.size(), cells), kind};
}

inline std::wstring Text(const Value& value) {
  std::wostringstream stream;
  stream << value.GetKindWS() << L' ' << value;
  return stream.str();
}

}  // namespace kestrel::math::test
