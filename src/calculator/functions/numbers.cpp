#include "calculator/functions/numbers.h"

#include <algorithm>

namespace kestrel::calculator {
namespace {

bool IsRealEntry(const Complex& entry) { return entry.imag() == 0.0; }

/// True if the operand can be paired with every entry of the frame.
bool Fits(const Numbers& operand, const Numbers& frame) {
  if (operand.IsScalar()) return true;
  const bool has_timeline = operand.HasTimeline() || frame.HasTimeline();
  if (frame.HasTimeline() && operand.Kind() == Value::VECTOR) return operand.Columns() == frame.Columns();
  if (!has_timeline && operand.Kind() != frame.Kind()) return false;
  return operand.Rows() == frame.Rows() && operand.Columns() == frame.Columns();
}

Steps FindSteps(const Numbers& operand) {
  if (operand.IsScalar()) return {0, 0};
  return {operand.Kind() == Value::VECTOR ? 0 : operand.Columns(), 1};
}

}  // namespace

Numbers::Numbers(const Value& value, std::size_t index) : kind_(value.GetKind()), index_(index) {
  switch (kind_) {
    case Value::UNINITIALIZED: RefuseArgument(index, L"It has no value.");
    case Value::BOOLEAN:
      boolean_ = value.GetBoolean() ? 1.0 : 0.0;
      first_ = &boolean_;
      break;
    case Value::SCALAR: first_ = &value.GetScalar(); break;
    case Value::VECTOR:
      first_ = value.GetVector().data().begin();
      columns_ = value.GetVector().size();
      break;
    case Value::MATRIX:
    case Value::SIGNAL:
    case Value::XYDATA:
      first_ = value.GetMatrix().data().begin();
      rows_ = value.size1();
      columns_ = value.size2();
      break;
  }
}

Numbers::Numbers(const Arguments& arguments, std::size_t index) : Numbers(GetValue(arguments, index), index) {}

bool Numbers::IsReal() const { return std::all_of(begin(), end(), IsRealEntry); }

NumberRow Numbers::Row(std::size_t row) const { return {first_ + row * columns_, static_cast<Eigen::Index>(columns_)}; }

NumberCells Numbers::Cells() const {
  return {first_, static_cast<Eigen::Index>(rows_), static_cast<Eigen::Index>(columns_)};
}

const Numbers& Numbers::RequireReal() const {
  if (!IsReal()) RefuseArgument(index_, L"Real numbers are expected, not complex ones.");
  return *this;
}

const Numbers& Numbers::RequireSome() const {
  if (Size() == 0) RefuseArgument(index_, L"It has no entries.");
  return *this;
}

Value CopyNumbers(const Value& value, std::size_t index) {
  if (value.GetKind() == Value::UNINITIALIZED) RefuseArgument(index, L"It has no value.");
  if (value.GetKind() == Value::BOOLEAN) return {value.GetBoolean() ? 1.0 : 0.0, 0.0};
  return value;
}

WritableNumbers Write(Value& value) {
  switch (value.GetKind()) {
    case Value::VECTOR: return {value.VectorRef().data().begin(), value.VectorRef().size()};
    case Value::MATRIX: return {value.MatrixRef().data().begin(), value.size()};
    case Value::SIGNAL:
    case Value::XYDATA: return {value.SignalMatrixRef().data().begin(), value.size()};
    default: return {&value.ScalarRef(), 1};
  }
}

void Mark(Value& value) {
  const WritableNumbers numbers = Write(value);
  value.SetComplex(!std::all_of(numbers.begin(), numbers.end(), IsRealEntry));
  value.SetOrdered(false);
}

Value MakeVector(std::size_t entries) {
  Value result;
  result.SetKind(Value::VECTOR);
  result.VectorRef().resize(entries, false);
  return result;
}

Value MakeMatrix(std::size_t rows, std::size_t columns) {
  Value result;
  result.SetKind(Value::MATRIX);
  result.MatrixRef().resize(rows, columns, false);
  return result;
}

Pairing PairUp(const Numbers& left, const Numbers& right, std::size_t right_index) {
  const bool left_is_frame = left.HasTimeline() || right.IsScalar() || (!left.IsScalar() && !right.HasTimeline());
  const bool fit = left_is_frame ? Fits(right, left) : Fits(left, right);
  if (!fit) RefuseArgument(right_index, L"Its kind or its dimensions do not fit those of the first argument.");
  return {left_is_frame, FindSteps(left), FindSteps(right)};
}

}  // namespace kestrel::calculator
