#pragma once

#include <Eigen/Core>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <cstddef>

#include "calculator/functions/arguments.h"
#include "calculator/functions/function_table.h"

/// What functions calculate with: the numbers of a value of any kind, and the loops over them.
namespace kestrel::calculator {

using Complex = Value::Complex;
using NumberRow = Eigen::Map<const Eigen::VectorXcd>;
using NumberCells = Eigen::Map<const Eigen::Matrix<Complex, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>>;

/// A look at the numbers of an argument as rows and columns: a boolean and a scalar are 1 x 1, a vector is one row, a
/// matrix is itself, and so is the data of a signal or of x-y data with one row per channel. Lives no longer than the
/// value. Refusals name the argument `index`.
class Numbers {
 public:
  /// Refuses an uninitialized value, the second form also a text.
  Numbers(const Value& value, std::size_t index);
  Numbers(const Arguments& arguments, std::size_t index);
  Numbers(const Numbers&) = delete;
  Numbers& operator=(const Numbers&) = delete;

  std::size_t Rows() const { return rows_; }
  std::size_t Columns() const { return columns_; }
  std::size_t Size() const { return rows_ * columns_; }
  Value::EKind Kind() const { return kind_; }
  bool IsScalar() const { return kind_ <= Value::SCALAR; }
  bool HasTimeline() const { return kind_ == Value::SIGNAL || kind_ == Value::XYDATA; }
  /// The entries are asked, not the mark of the value.
  bool IsReal() const;

  const Complex* begin() const { return first_; }
  const Complex* end() const { return first_ + Size(); }
  NumberRow Row(std::size_t row) const;
  NumberCells Cells() const;

  /// Return *this, or refuse the argument.
  const Numbers& RequireReal() const;
  const Numbers& RequireSome() const;

 private:
  Complex boolean_;  ///< where a boolean stands as a number
  const Complex* first_ = nullptr;
  std::size_t rows_ = 1;
  std::size_t columns_ = 1;
  Value::EKind kind_;
  std::size_t index_;
};

/// A copy with a scalar in the place of a boolean. Refuses as Numbers.
Value CopyNumbers(const Value& value, std::size_t index);

/// The numbers of a scalar, vector, matrix, signal or x-y data, to be overwritten.
struct WritableNumbers {
  Complex* first;
  std::size_t count;
  Complex* begin() const { return first; }
  Complex* end() const { return first + count; }
};
WritableNumbers Write(Value& value);
/// Marks a value that was written to: complex if an entry is, and not ordered.
void Mark(Value& value);

/// Vectors and matrices made of Eigen expressions.
Value MakeVector(std::size_t entries);
Value MakeMatrix(std::size_t rows, std::size_t columns);

template <class Derived>
Value ToVector(const Eigen::MatrixBase<Derived>& entries) {
  Value result = MakeVector(static_cast<std::size_t>(entries.size()));
  Eigen::Map<Eigen::VectorXcd>(Write(result).first, entries.size()) = entries.template cast<Complex>();
  Mark(result);
  return result;
}

template <class Derived>
Value ToMatrix(const Eigen::MatrixBase<Derived>& cells) {
  Value result = MakeMatrix(static_cast<std::size_t>(cells.rows()), static_cast<std::size_t>(cells.cols()));
  using Cells = Eigen::Matrix<Complex, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
  Eigen::Map<Cells>(Write(result).first, cells.rows(), cells.cols()) = cells.template cast<Complex>();
  Mark(result);
  return result;
}

/// |z|, without the square root of a complex number for a real one.
inline double Modulus(const Complex& z) { return z.imag() == 0.0 ? std::abs(z.real()) : std::abs(z); }

/// The angle of z, that of a negative real number being pi and never -pi: negation leaves a zero imaginary part of
/// either sign behind.
inline double Angle(const Complex& z) { return std::atan2(z.imag() == 0.0 ? 0.0 : z.imag(), z.real()); }

/// The value with map(entry) in the place of every entry; the timeline stays.
template <class Map>
Value MapEntries(const Arguments& arguments, std::size_t index, Map map) {
  Value result = CopyNumbers(GetValue(arguments, index), index);
  for (Complex& entry : Write(result)) entry = map(entry);
  Mark(result);
  return result;
}

/// How an operand is walked beside a result of several rows: a step of 0 repeats its number, or its row.
struct Steps {
  std::size_t row;
  std::size_t column;
};

/// Which operand has the shape of a result that pairs the entries of both, by the rules of the operators: a scalar
/// meets every entry; two vectors or two matrices are of the same shape; a signal meets a signal or a matrix of its
/// shape, or a vector with one entry per sample, and keeps its timeline.
struct Pairing {
  bool left_is_frame;
  Steps left;
  Steps right;
};
/// Refuses the right operand if it does not fit.
Pairing PairUp(const Numbers& left, const Numbers& right, std::size_t right_index);

/// map(left entry, right entry) in the shape that PairUp finds.
template <class Map>
Value MapPairs(const Value& left, const Value& right, std::size_t right_index, Map map) {
  const Numbers a(left, 0);
  const Numbers b(right, right_index);
  const Pairing pairing = PairUp(a, b, right_index);
  Value result = CopyNumbers(pairing.left_is_frame ? left : right, right_index);
  const std::size_t rows = (pairing.left_is_frame ? a : b).Rows();
  const std::size_t columns = (pairing.left_is_frame ? a : b).Columns();
  Complex* cell = Write(result).first;
  for (std::size_t row = 0; row < rows; ++row) {
    const Complex* x = a.begin() + row * pairing.left.row;
    const Complex* y = b.begin() + row * pairing.right.row;
    for (std::size_t column = 0; column < columns; ++column) {
      *cell++ = map(x[column * pairing.left.column], y[column * pairing.right.column]);
    }
  }
  Mark(result);
  return result;
}

/// map(map(first, second), third) ... of at least two arguments.
template <class Map>
Value FoldPairs(const Arguments& arguments, Map map) {
  Value result = MapPairs(GetValue(arguments, 0), GetValue(arguments, 1), 1, map);
  for (std::size_t i = 2; i < arguments.size(); ++i) result = MapPairs(result, GetValue(arguments, i), i, map);
  return result;
}

/// reduce(row) of each row: a vector, or a scalar where the value is a scalar, a vector or a signal of one channel.
template <class Reduce>
Value ReduceRows(const Numbers& numbers, Reduce reduce) {
  if (numbers.Kind() != Value::MATRIX && numbers.Rows() == 1) return Value(Complex(reduce(numbers.Row(0))));
  Value result = MakeVector(numbers.Rows());
  Complex* entry = Write(result).first;
  for (std::size_t row = 0; row < numbers.Rows(); ++row) *entry++ = Complex(reduce(numbers.Row(row)));
  Mark(result);
  return result;
}

}  // namespace kestrel::calculator
