#pragma once

#include <cstddef>
#include <string>

#include "calculator/functions/calculator_exceptions.h"

namespace kestrel::calculator {

/// Composes the text of a failure that has a place: "Error while parsing at character 5 of \"1 + * 2\"." Characters
/// count from 1 here. Of a long expression only the surroundings of the place are quoted.
class CExpressionPositionExceptionInitializer {
 public:
  CExpressionPositionExceptionInitializer(const std::wstring& what, const std::wstring& expression,
                                          std::size_t position);
  const std::wstring& Text() const { return text_; }

 private:
  std::wstring text_;
};

/// A text is not an expression.
class CExpressionPositionException : public CCalculatorException {
 public:
  CExpressionPositionException(const std::wstring& what, std::wstring expression, std::size_t position);

  const std::wstring& Expression() const { return expression_; }
  /// Where it went wrong, counted from 0; the length of the expression if more of it was expected.
  std::size_t Position() const { return position_; }

 private:
  std::wstring expression_;
  std::size_t position_;
};

/// An object would depend on itself.
class CCircularDependencyException : public CCalculatorException {
 public:
  using CCalculatorException::CCalculatorException;
};

/// An object that nobody has defined was asked for.
class CCalculatorObjectUnknownException : public CCalculatorException {
 public:
  /// @param expression  where the name stands; empty if it was asked for by itself.
  CCalculatorObjectUnknownException(std::wstring name, std::wstring expression);

  const std::wstring& Name() const { return name_; }
  const std::wstring& Expression() const { return expression_; }

 private:
  std::wstring name_;
  std::wstring expression_;
};

}  // namespace kestrel::calculator
