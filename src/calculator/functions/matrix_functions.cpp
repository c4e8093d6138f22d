#include <Eigen/LU>
#include <algorithm>
#include <cmath>
#include <limits>

#include "calculator/functions/arguments.h"
#include "calculator/functions/dense_matrices.h"
#include "calculator/functions/function_groups.h"

namespace kestrel::calculator {
namespace {

/// All entries of all arguments, one after the other, in a value that has room for them.
Value Join(const Arguments& arguments, Value result) {
  Complex* end = Write(result).first;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Numbers part(arguments, i);
    end = std::copy(part.begin(), part.end(), end);
  }
  Mark(result);
  return result;
}

Value VectorOf(const Arguments& arguments, FunctionContext&) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Numbers part(arguments, i);
    if (part.Kind() > Value::VECTOR) RefuseArgument(i, L"A number or a vector is expected.");
    RequireEntries(count += part.Size());
  }
  return Join(arguments, MakeVector(count));
}

Value MatrixOf(const Arguments& arguments, FunctionContext&) {
  const std::size_t columns = Numbers(arguments, 0).Columns();
  std::size_t rows = 0;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Numbers part(arguments, i);
    if (part.Columns() != columns) RefuseArgument(i, L"Its rows are to be as long as those of the first argument.");
    rows += part.Rows();
    RequireEntries(rows, columns);
  }
  return Join(arguments, MakeMatrix(rows, columns));
}

/// Column below column.
Value Vec(const Arguments& arguments, FunctionContext&) {
  const Numbers numbers(arguments, 0);
  const Dense<Complex> columns = numbers.Cells();  // column-major
  return ToVector(columns.reshaped());
}

Value Mat(const Arguments& arguments, FunctionContext&) {
  const Numbers numbers(arguments, 0);
  if (arguments.size() == 1) return ToMatrix(numbers.Cells());
  const std::size_t rows = GetCount(arguments, 1);
  const std::size_t columns =
      arguments.size() > 2 ? GetCount(arguments, 2) : numbers.Size() / std::max<std::size_t>(rows, 1);
  if (rows * columns != numbers.Size()) RefuseArgument(1, L"Rows times columns are to be the number of entries.");
  const Dense<Complex> entries = numbers.Cells();
  return ToMatrix(entries.reshaped(static_cast<Eigen::Index>(rows), static_cast<Eigen::Index>(columns)));
}

Value Transpose(const Arguments& arguments, FunctionContext&) {
  const Numbers numbers(arguments, 0);
  return numbers.IsScalar() ? Value(*numbers.begin()) : ToMatrix(numbers.Cells().transpose());
}

/// Refuses what is not a square matrix, a scalar being one of one entry.
void RequireSquare(const Numbers& numbers) {
  if (numbers.Kind() == Value::VECTOR || numbers.HasTimeline() || numbers.Rows() != numbers.Columns()) {
    RefuseArgument(0, L"A square matrix is expected.");
  }
}

/// 1 / x rounded to a power of two, so that scaling by it is exact. Not finite for 0 and for what is not finite.
double InvertRoughly(double x) {
  return x > 0.0 && std::isfinite(x) ? std::ldexp(1.0, -std::ilogb(x)) : std::numeric_limits<double>::quiet_NaN();
}

/// diag(c) (diag(r) A diag(c))^-1 diag(r), where r and c bring the largest entries of rows and columns near 1: a matrix
/// whose units differ much is not taken for a singular one.
template <class Scalar>
Dense<Scalar> Invert(Dense<Scalar> matrix) {
  if (matrix.size() == 0) return matrix;
  const Eigen::VectorXd r = matrix.cwiseAbs().rowwise().maxCoeff().unaryExpr(&InvertRoughly);
  matrix = r.asDiagonal() * matrix;
  const Eigen::VectorXd c = matrix.cwiseAbs().colwise().maxCoeff().unaryExpr(&InvertRoughly).transpose();
  matrix = matrix * c.asDiagonal();
  if (!matrix.allFinite()) RefuseArgument(0, L"It is singular, or its entries are not finite.");
  const Eigen::PartialPivLU<Dense<Scalar>> factors(matrix);
  if (!(factors.rcond() >= std::numeric_limits<double>::epsilon())) RefuseArgument(0, L"It is singular.");
  return c.asDiagonal() * factors.inverse() * r.asDiagonal();
}

Value InvertMatrix(const Arguments& arguments, FunctionContext&) {
  const Numbers numbers(arguments, 0);
  RequireSquare(numbers);
  RequireOperations(numbers.Rows(), numbers.Rows(), numbers.Rows());
  return WithScalarOf(numbers, [&](auto scalar) {
    const auto inverse = Invert(ToDense<decltype(scalar)>(numbers));
    return numbers.IsScalar() ? Value(Complex(inverse(0, 0))) : ToMatrix(inverse);
  });
}

enum ELuPart : long { kPacked, kLower, kUpper, kPermutation };

template <class Scalar>
Value LuPart(const Dense<Scalar>& matrix, long part) {
  const Eigen::PartialPivLU<Dense<Scalar>> factors(matrix);
  const Dense<Scalar>& packed = factors.matrixLU();
  switch (part) {
    case kLower: return ToMatrix(Dense<Scalar>(packed.template triangularView<Eigen::UnitLower>()));
    case kUpper: return ToMatrix(Dense<Scalar>(packed.template triangularView<Eigen::Upper>()));
    case kPermutation: return ToMatrix(Dense<Scalar>(factors.permutationP().toDenseMatrix().template cast<Scalar>()));
    default: return ToMatrix(packed);
  }
}

Value LuFactorize(const Arguments& arguments, FunctionContext&) {
  const Numbers numbers(arguments, 0);
  RequireSquare(numbers);
  RequireOperations(numbers.Rows(), numbers.Rows(), numbers.Rows());
  const long part = GetIntegerOr(arguments, 1, kPacked, kPermutation, kPacked);
  return WithScalarOf(numbers, [&](auto scalar) { return LuPart(ToDense<decltype(scalar)>(numbers), part); });
}

void RequireVector(const Numbers& numbers, std::size_t index) {
  if (numbers.Kind() > Value::VECTOR) RefuseArgument(index, L"A number or a vector is expected.");
}

Value InnerProduct(const Arguments& arguments, FunctionContext&) {
  const Numbers a(arguments, 0);
  const Numbers b(arguments, 1);
  RequireVector(a, 0);
  RequireVector(b, 1);
  if (a.Size() != b.Size()) RefuseArgument(1, L"It is to have as many entries as the first argument.");
  return Value(Complex(a.Row(0).dot(b.Row(0))));  // conjugates a
}

Value OuterProduct(const Arguments& arguments, FunctionContext&) {
  const Numbers a(arguments, 0);
  const Numbers b(arguments, 1);
  RequireVector(a, 0);
  RequireVector(b, 1);
  RequireEntries(a.Size(), b.Size());
  return WithScalarOf(a, b, [&](auto scalar) {
    using Scalar = decltype(scalar);
    return ToMatrix(ToDense<Scalar>(a, true).lazyProduct(ToDense<Scalar>(b)));
  });
}

/// A vector on the left is a row, one on the right a column, and the result has the kind that is left.
Value MatrixProduct(const Arguments& arguments, FunctionContext&) {
  const Numbers a(arguments, 0);
  const Numbers b(arguments, 1);
  const bool a_is_row = a.Kind() <= Value::VECTOR;
  const bool b_is_column = b.Kind() <= Value::VECTOR;
  if (a.Columns() != (b_is_column ? b.Size() : b.Rows())) {
    RefuseArgument(1, L"It is to have as many rows as the first argument has columns.");
  }
  RequireEntries(a.Rows(), b_is_column ? 1 : b.Columns());
  RequireOperations(a.Rows(), a.Columns(), b_is_column ? 1 : b.Columns());
  return WithScalarOf(a, b, [&](auto scalar) {
    using Scalar = decltype(scalar);
    const Dense<Scalar> product = ToDense<Scalar>(a) * ToDense<Scalar>(b, true);
    if (a_is_row && b_is_column) return Value(Complex(product.sum()));
    return a_is_row || b_is_column ? ToVector(product.reshaped()) : ToMatrix(product);
  });
}

Value Times(const Arguments& arguments, FunctionContext&) {
  return FoldPairs(arguments, [](const Complex& x, const Complex& y) {
    const bool real = x.imag() == 0.0 && y.imag() == 0.0;
    return real ? Complex(x.real() * y.real()) : x * y;  // a complex infinity times a real number has a NaN
  });
}

void AppendAlgebra(FunctionTable& table) {
  const CCalculatorArgumentInfoObject a{L"a", L"A square matrix or a number."};
  const CCalculatorArgumentInfoObject part{
      L"part", L"0 both factors in one matrix (if it is missing), 1 L, 2 U, 3 the permutation P.", true};
  const CCalculatorArgumentInfoObject left{L"a", L"A vector or a number."};
  const CCalculatorArgumentInfoObject right{L"b", L"A vector or a number."};
  const CCalculatorArgumentInfoObject left_matrix{L"a", L"A matrix, or a vector as a row."};
  const CCalculatorArgumentInfoObject right_matrix{L"b", L"A matrix, or a vector as a column."};
  AppendRows(
      table,
      {
          {L"invert", L"Inverse of a matrix; a singular one is refused.", {a}, L"invert(a)", &InvertMatrix},
          {L"lufactorize",
           L"Triangular factors of a matrix with partial pivoting, P a = L U, where L has ones on its diagonal: in "
           L"one matrix (U on and above the diagonal, L below) or one by one.",
           {a, part},
           L"lufactorize(a)\nlufactorize(a, part)",
           &LuFactorize},
          {L"innerprod", L"Sum of conj(a) b.", {left, right}, L"innerprod(a, b)", &InnerProduct},
          {L"outerprod",
           L"Matrix of the products a_i b_j, one row per entry of a.",
           {left, right},
           L"outerprod(a, b)",
           &OuterProduct},
          {L"matrixmult",
           L"Matrix product: of two matrices a matrix, with one vector a vector, of two vectors a number.",
           {left_matrix, right_matrix},
           L"matrixmult(a, b)",
           &MatrixProduct},
      });
}

}  // namespace

void AppendMatrixFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject part{L"a", L"A number or a vector."};
  const CCalculatorArgumentInfoObject parts{L"b", L"Further ones.", true};
  const CCalculatorArgumentInfoObject rows{L"a", L"A vector for a row, or a matrix."};
  const CCalculatorArgumentInfoObject x{L"x", L"Numbers of any kind."};
  const CCalculatorArgumentInfoObject row_count{L"rows", L"Number of rows.", true};
  const CCalculatorArgumentInfoObject column_count{L"columns", L"Number of columns; as many as fit if missing.", true};
  const CCalculatorArgumentInfoObject factor{L"b", L"Numbers of the shape of a, or a number."};
  AppendRows(
      table,
      {
          {L"vector",
           L"Joins numbers and vectors to one vector.",
           {part, parts},
           L"vector(a, b, ...)",
           &VectorOf,
           true},
          {L"matrix",
           L"Puts vectors and the rows of matrices below each other.",
           {rows, parts},
           L"matrix(a, b, ...)",
           &MatrixOf,
           true},
          {L"vec", L"The columns of a matrix one after the other as a vector.", {x}, L"vec(x)", &Vec},
          {L"mat",
           L"A matrix of so many rows and columns, filled column by column: mat(vec(x), size1(x), size2(x)) is x. "
           L"With one argument the data of a signal, or a vector as the only row.",
           {x, row_count, column_count},
           L"mat(x)\nmat(x, rows)\nmat(x, rows, columns)",
           &Mat},
          {L"transpose",
           L"Rows and columns exchanged, without conjugation. A vector counts as a row and gives a matrix with one "
           L"column, a signal gives its data with one row per sample.",
           {x},
           L"transpose(x)",
           &Transpose},
          {L"times",
           L"Product of the entries at the same place, as by the operator *.",
           {x, factor},
           L"times(a, b, ...)",
           &Times,
           true},
      });
  AppendAlgebra(table);
}

}  // namespace kestrel::calculator
