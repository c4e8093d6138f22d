#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <utility>

#include "calculator/functions/arguments.h"
#include "calculator/functions/calculator_exceptions.h"
#include "calculator/value_operations.h"

namespace kestrel::calculator {
namespace {

bool IsElement(const Value& value) { return value.GetKind() == Value::SCALAR || value.GetKind() == Value::VECTOR; }

template <class Iterator>
Iterator CopyEntries(const Value& element, Iterator to) {
  if (element.GetKind() == Value::VECTOR) {
    return std::copy(element.GetVector().data().begin(), element.GetVector().data().end(), to);
  }
  *to = element.GetScalar();
  return ++to;
}

}  // namespace

Value MakeVector(const std::vector<const Value*>& elements) {
  std::size_t count = 0;
  for (const Value* element : elements) {
    if (!IsElement(*element)) throw CCalculatorException(L"Wrong input type - SCALAR or VECTOR expected");
    count += element->size();
    RequireEntries(count);
  }
  Value::VectorType entries(count);
  auto end = entries.data().begin();
  for (const Value* element : elements) end = CopyEntries(*element, end);
  return Value(entries);
}

void MatrixBuilder::AppendRow(const std::vector<const Value*>& elements) {
  std::vector<Value::Complex> scalars;
  for (const Value* element : elements) {
    if (!IsElement(*element)) throw CCalculatorException(L"Wrong input type, SCALAR or VECTOR expected");
    if (kind_ == Value::UNINITIALIZED) kind_ = element->GetKind();
    if (kind_ != element->GetKind()) throw CCalculatorException(L"Type inconsistency detected");
    if (kind_ == Value::SCALAR) {
      scalars.push_back(element->GetScalar());
      continue;
    }
    const auto& entries = element->GetVector().data();
    Append({entries.begin(), entries.end()}, L"Given vector input must be of same length");
  }
  if (kind_ == Value::SCALAR) Append(std::move(scalars), L"Irregular matrix.");
}

void MatrixBuilder::AppendMatrix(const Value& matrix) {
  for (std::size_t row = 0; row < matrix.size1(); ++row) {
    const Value entries = matrix.GetRow(row);
    Append({entries.GetVector().begin(), entries.GetVector().end()}, L"Irregular matrix.");
  }
}

void MatrixBuilder::Append(std::vector<Value::Complex> row, const wchar_t* length_failure) {
  if (!rows_.empty() && rows_.front().size() != row.size()) throw CCalculatorException(length_failure);
  entries_ += row.size();
  RequireEntries(entries_);
  rows_.push_back(std::move(row));
}

Value MatrixBuilder::Build() const {
  Value::MatrixType cells(rows_.size(), rows_.empty() ? 0 : rows_.front().size());
  auto end = cells.data().begin();
  for (const auto& row : rows_) end = std::copy(row.begin(), row.end(), end);
  return Value(cells);
}

}  // namespace kestrel::calculator
