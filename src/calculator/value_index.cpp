#include <boost/numeric/ublas/vector.hpp>
#include <cmath>

#include "calculator/functions/calculator_exceptions.h"
#include "calculator/value_operations.h"

namespace kestrel::calculator {
namespace {

bool HasTimeline(const Value& value) { return value.GetKind() == Value::SIGNAL || value.GetKind() == Value::XYDATA; }
bool HasCells(const Value& value) { return value.GetKind() == Value::MATRIX || HasTimeline(value); }

void RequireSupport(bool is_supported, const wchar_t* facility) {
  if (!is_supported) throw CCalculatorException(std::wstring(facility) + L" not supported by this type");
}

Value Extract(const Value& operand, const Value& item) {
  RequireSupport(operand.GetKind() == Value::VECTOR || HasCells(operand), L"Index extraction");
  const std::size_t index = item.ToIndex();
  if (operand.GetKind() == Value::VECTOR) return Value(operand.at(index));
  return operand.GetKind() == Value::MATRIX ? operand.GetRow(index) : operand.GetSample(index);
}

Value ExtractCell(const Value& operand, const Value& row, const Value& column) {
  RequireSupport(HasCells(operand), L"Cell extraction");
  return Value(operand.at(row.ToIndex(), column.ToIndex()));
}

Value ExtractRow(const Value& operand, const Value& row) {
  RequireSupport(HasCells(operand), L"Row extraction");
  return operand.GetRow(row.ToIndex());
}

Value ExtractColumn(const Value& operand, const Value& column) {
  RequireSupport(HasCells(operand), L"Column extraction");
  return operand.GetColumn(column.ToIndex());
}

/// The whole number that an item stands for; `absent` for null.
double GetItem(const Value* item, double absent) {
  if (item == nullptr) return absent;
  if (item->GetKind() == Value::BOOLEAN) return item->GetBoolean() ? 1.0 : 0.0;
  if (item->GetKind() != Value::SCALAR) {
    throw CCalculatorException(L"Item number used in slice definitions must be SCALAR or BOOLEAN");
  }
  if (item->GetScalar().imag() != 0.0) throw math::CTypeException(L"Index must be real.");
  return std::trunc(item->GetScalar().real());
}

/// An index below `size` that is not negative; a NaN is out of bounds, too.
std::size_t RequireIndex(double index, std::size_t size, const wchar_t* failure) {
  if (!(index >= 0.0 && index < static_cast<double>(size))) throw CCalculatorException(failure);
  return static_cast<std::size_t>(index);
}

/// The size of a step, which leads beyond a vector of this size at the latest.
std::size_t StepSize(double step, std::size_t size) {
  if (step == 0.0 || std::isnan(step)) throw CCalculatorException(L"Slice step cannot be zero");
  return static_cast<std::size_t>(std::fmin(std::fabs(step), static_cast<double>(size)));
}

}  // namespace

Value EvalIndex(const Value& operand, const std::vector<const Value*>& items) {
  if (items.size() > 2) throw CCalculatorException(L"Invalid number of arguments given to index operator []");
  const Value* first = items.empty() ? nullptr : items.front();
  const Value* second = items.size() < 2 ? nullptr : items.back();
  if (first == nullptr && second == nullptr) throw CCalculatorException(L"No index given");
  if (items.size() == 1) return Extract(operand, *first);
  if (second == nullptr) return ExtractRow(operand, *first);
  if (first == nullptr) return ExtractColumn(operand, *second);
  return ExtractCell(operand, *first, *second);
}

Value EvalSlice(const Value& operand, const std::vector<const Value*>& items) {
  if (operand.GetKind() != Value::VECTOR) throw CCalculatorException(L"Slice operations supported on vectors only");
  const auto item = [&items](std::size_t i) { return i < items.size() ? items[i] : nullptr; };
  const std::size_t size = operand.size();
  const std::size_t begin = RequireIndex(GetItem(item(0), 0.0), size, L"Start index out of bounds");
  const std::size_t end =
      RequireIndex(GetItem(item(1), static_cast<double>(size) - 1.0), size, L"End index out of bounds");
  if (end < begin) throw CCalculatorException(L"Negative range specified");
  const double step = GetItem(item(2), 1.0);
  const std::size_t stride = StepSize(step, size);

  const auto& entries = operand.GetVector();
  Value::VectorType slice((end - begin) / stride + 1);
  for (std::size_t i = 0; i < slice.size(); ++i) {
    slice(i) = entries(step > 0.0 ? begin + i * stride : end - i * stride);
  }
  return Value(slice);
}

}  // namespace kestrel::calculator
