#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/matrix_proxy.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <ostream>

#include "values/variant.h"

namespace kestrel::math {
namespace {

using Value = Variant<double>;

void Print(std::wostream& stream, const Value::Complex& value) {
  if (value.imag() == 0.0) {
    stream << value.real();
  } else {
    stream << L'(' << value.real() << L',' << value.imag() << L')';
  }
}

template <class Items, class PrintItem>
void PrintList(std::wostream& stream, std::size_t size, const Items& items, PrintItem print_item) {
  stream << L'[';
  for (std::size_t i = 0; i < size; ++i) {
    if (i > 0) stream << L", ";
    print_item(items, i);
  }
  stream << L']';
}

template <class Vector>
void PrintVector(std::wostream& stream, const Vector& values) {
  PrintList(stream, values.size(), values, [&](const Vector& v, std::size_t i) { Print(stream, v(i)); });
}

void PrintMatrix(std::wostream& stream, const Value::MatrixType& values) {
  PrintList(stream, values.size1(), values,
            [&](const Value::MatrixType& m, std::size_t i) { PrintVector(stream, boost::numeric::ublas::row(m, i)); });
}

}  // namespace

std::wostream& operator<<(std::wostream& stream, const Value& value) {
  switch (value.GetKind()) {
    case Value::UNINITIALIZED: break;
    case Value::BOOLEAN: stream << value.GetBoolean(); break;
    case Value::SCALAR: Print(stream, value.GetScalar()); break;
    case Value::VECTOR: PrintVector(stream, value.GetVector()); break;
    case Value::MATRIX: PrintMatrix(stream, value.GetMatrix()); break;
    case Value::SIGNAL:
    case Value::XYDATA:
      PrintVector(stream, value.GetTimeline());
      stream << L' ';
      PrintMatrix(stream, value.GetMatrix());
      break;
  }
  return stream;
}

}  // namespace kestrel::math
