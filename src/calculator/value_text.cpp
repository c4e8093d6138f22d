#include "calculator/value_text.h"

#include <array>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <charconv>
#include <cmath>

namespace kestrel::calculator {
namespace {

void AppendReal(double number, std::wstring& text) {
  if (std::isnan(number)) {  // whatever its sign
    text += L"nan";
    return;
  }
  std::array<char, 32> digits{};  // the longest double has 24
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), end);
}

void AppendNumber(const Value::Complex& number, std::wstring& text) {
  const bool has_imaginary_part = number.imag() != 0.0;
  if (number.real() != 0.0 || !has_imaginary_part) AppendReal(number.real(), text);
  if (!has_imaginary_part) return;
  if (number.real() != 0.0 && !std::signbit(number.imag())) text += L'+';
  AppendReal(number.imag(), text);
  text += L"*@I";
}

/// "[1,2,3]" of count items, each appended by `append_item(index)`.
template <class AppendItem>
void AppendList(std::size_t count, AppendItem append_item, std::wstring& text) {
  text += L'[';
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) text += L',';
    append_item(i);
  }
  text += L']';
}

void AppendVector(const Value::VectorType& vector, std::wstring& text) {
  AppendList(
      vector.size(), [&](std::size_t i) { AppendNumber(vector(i), text); }, text);
}

void AppendRow(const Value::MatrixType& matrix, std::size_t row, std::wstring& text) {
  AppendList(
      matrix.size2(), [&](std::size_t column) { AppendNumber(matrix(row, column), text); }, text);
}

void AppendMatrix(const Value::MatrixType& matrix, std::wstring& text) {
  AppendList(
      matrix.size1(), [&](std::size_t row) { AppendRow(matrix, row, text); }, text);
}

/// A single channel is a vector, several are a matrix.
void AppendSignal(const wchar_t* function, const Value& value, std::wstring& text) {
  text += function;
  text += L'(';
  AppendVector(value.GetTimeline(), text);
  text += L',';
  const Value::MatrixType& channels = value.GetMatrix();
  channels.size1() == 1 ? AppendRow(channels, 0, text) : AppendMatrix(channels, text);
  text += L')';
}

}  // namespace

std::wstring ToText(const Value& value) {
  std::wstring text;
  switch (value.GetKind()) {
    case Value::UNINITIALIZED: break;
    case Value::BOOLEAN: text = value.GetBoolean() ? L"@TRUE" : L"@FALSE"; break;
    case Value::SCALAR: AppendNumber(value.GetScalar(), text); break;
    case Value::VECTOR: AppendVector(value.GetVector(), text); break;
    case Value::MATRIX: AppendMatrix(value.GetMatrix(), text); break;
    case Value::SIGNAL: AppendSignal(L"signal", value, text); break;
    case Value::XYDATA: AppendSignal(L"xydata", value, text); break;
  }
  return text;
}

}  // namespace kestrel::calculator
