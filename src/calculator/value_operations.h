#pragma once

#include <vector>

#include "calculator/expression_tree.h"
#include "calculator/functions/function_table.h"

/// What operators, brackets and literals of an expression do with values. What Variant itself raises passes through.
namespace kestrel::calculator {

/// left op right, by the operators of Variant; comparisons and logic give booleans, && and || look at both sides.
/// Raises CCalculatorException "EvalOperation not matched. Heavy failure." for what is no operator of two operands.
Value EvalOperation(EOperator op, const Value& left, const Value& right);

/// !operand or -operand. Raises as EvalOperation.
Value EvalUnaryOperation(EOperator op, const Value& operand);

/// The elements one after the other, each a SCALAR or a VECTOR; the result has up to kMaximalEntries entries.
Value MakeVector(const std::vector<const Value*>& elements);

/// A matrix row by row.
class MatrixBuilder {
 public:
  /// Appends a row of scalars, or each vector as a row of its own. All calls for one matrix give scalars, or all give
  /// vectors; "Type inconsistency detected" else. Scalar rows of different lengths are an "Irregular matrix.".
  void AppendRow(const std::vector<const Value*>& elements);
  /// Appends all rows of a matrix.
  void AppendMatrix(const Value& matrix);
  Value Build() const;

 private:
  void Append(std::vector<Value::Complex> row, const wchar_t* length_failure);

  std::vector<std::vector<Value::Complex>> rows_;
  std::size_t entries_ = 0;
  Value::EKind kind_ = Value::UNINITIALIZED;  ///< of the elements
};

/// x[i], x[i,j], x[i,], x[,j]; an item that was left out is null.
/// - One item: an entry of a vector, a row of a matrix, a sample of a signal or x-y data.
/// - Two: a cell, a row or a column of a matrix, or of the data of a signal or x-y data.
Value EvalIndex(const Value& operand, const std::vector<const Value*>& items);

/// x[a:b:c] of a vector: the entries a, a + c, ... up to and including b. Left out (null) are 0, the last index and 1.
/// A negative step gives the same range from its end to its beginning. Fractions of items are dropped.
Value EvalSlice(const Value& operand, const std::vector<const Value*>& items);

}  // namespace kestrel::calculator
