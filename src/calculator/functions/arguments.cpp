#include "calculator/functions/arguments.h"

#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <variant>

#include "calculator/functions/calculator_exceptions.h"

namespace kestrel::calculator {
namespace {

const Argument& Find(const Arguments& arguments, std::size_t index) {
  if (index >= arguments.size()) RefuseArgument(index, L"It is missing.");
  return arguments[index];
}

/// The real part of an entry whose imaginary part must be 0.
double RequireReal(const Value::Complex& entry, std::size_t index) {
  if (entry.imag() != 0.0) RefuseArgument(index, L"A real number is expected, not a complex one.");
  return entry.real();
}

}  // namespace

void RefuseArgument(std::size_t index, const std::wstring& text) {
  throw CCalculatorException(L"Argument " + std::to_wstring(index + 1) + L": " + text);
}

const Value& GetValue(const Arguments& arguments, std::size_t index) {
  if (const auto* value = std::get_if<Value>(&Find(arguments, index))) return *value;
  RefuseArgument(index, L"A value is expected, not a text in quotes.");
}

const std::wstring& GetText(const Arguments& arguments, std::size_t index) {
  if (const auto* text = std::get_if<std::wstring>(&Find(arguments, index))) return *text;
  RefuseArgument(index, L"A text in double quotes is expected.");
}

double GetReal(const Arguments& arguments, std::size_t index) {
  const Value& value = GetValue(arguments, index);
  if (value.GetKind() == Value::BOOLEAN) return value.GetBoolean() ? 1.0 : 0.0;
  if (value.GetKind() != Value::SCALAR) RefuseArgument(index, L"A number is expected.");
  return RequireReal(value.GetScalar(), index);
}

double GetRealOr(const Arguments& arguments, std::size_t index, double absent) {
  return index < arguments.size() ? GetReal(arguments, index) : absent;
}

long GetInteger(const Arguments& arguments, std::size_t index, long least, long most) {
  const double number = GetReal(arguments, index);
  if (std::trunc(number) == number && number >= static_cast<double>(least) && number <= static_cast<double>(most)) {
    return static_cast<long>(number);
  }
  RefuseArgument(index,
                 L"A whole number from " + std::to_wstring(least) + L" to " + std::to_wstring(most) + L" is expected.");
}

long GetIntegerOr(const Arguments& arguments, std::size_t index, long least, long most, long absent) {
  return index < arguments.size() ? GetInteger(arguments, index, least, most) : absent;
}

std::size_t GetCount(const Arguments& arguments, std::size_t index) {
  if (GetReal(arguments, index) > static_cast<double>(kMaximalEntries)) RequireEntries(kMaximalEntries + 1);
  return static_cast<std::size_t>(GetInteger(arguments, index, 0, kMaximalEntries));
}

bool GetFlag(const Arguments& arguments, std::size_t index) { return GetReal(arguments, index) != 0.0; }

bool GetFlagOr(const Arguments& arguments, std::size_t index, bool absent) {
  return index < arguments.size() ? GetFlag(arguments, index) : absent;
}

std::vector<double> GetReals(const Arguments& arguments, std::size_t index) {
  const Value& value = GetValue(arguments, index);
  std::vector<double> reals;
  if (value.GetKind() == Value::VECTOR) {
    reals.reserve(value.size());
    for (const Value::Complex& entry : value.GetVector()) reals.push_back(RequireReal(entry, index));
  } else {
    reals.push_back(GetReal(arguments, index));
  }
  for (const double real : reals) {
    if (!std::isfinite(real)) RefuseArgument(index, L"Finite numbers are expected.");
  }
  return reals;
}

void RequireEntries(std::size_t rows, std::size_t columns) {
  if (columns == 0 || rows <= kMaximalEntries / columns) return;
  throw CCalculatorException(L"The result would have more than " + std::to_wstring(kMaximalEntries) + L" entries.");
}

void RequireOperations(std::size_t a, std::size_t b, std::size_t c) {
  constexpr double kMaximalOperations = 1e9;
  const double operations = static_cast<double>(a) * static_cast<double>(b) * static_cast<double>(c);
  if (operations > kMaximalOperations) throw CCalculatorException(L"The result would take too many operations.");
}

}  // namespace kestrel::calculator
