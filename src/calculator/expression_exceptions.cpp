#include "calculator/expression_exceptions.h"

#include <algorithm>

namespace kestrel::calculator {
namespace {

constexpr std::size_t kQuotedBefore = 60;
constexpr std::size_t kQuoted = 100;

std::wstring Quote(const std::wstring& expression, std::size_t position) {
  const std::size_t first = position > kQuotedBefore ? position - kQuotedBefore : 0;
  const std::wstring dots = L"...";
  return (first > 0 ? dots : L"") + expression.substr(std::min(first, expression.size()), kQuoted) +
         (first + kQuoted < expression.size() ? dots : L"");
}

}  // namespace

CExpressionPositionExceptionInitializer::CExpressionPositionExceptionInitializer(const std::wstring& what,
                                                                                 const std::wstring& expression,
                                                                                 std::size_t position)
    : text_(what + L" at character " + std::to_wstring(position + 1) + L" of \"" + Quote(expression, position) +
            L"\".") {}

CExpressionPositionException::CExpressionPositionException(const std::wstring& what, std::wstring expression,
                                                           std::size_t position)
    : CCalculatorException(CExpressionPositionExceptionInitializer(what, expression, position).Text()),
      expression_(std::move(expression)),
      position_(position) {}

CCalculatorObjectUnknownException::CCalculatorObjectUnknownException(std::wstring name, std::wstring expression)
    : CCalculatorException(L"Object \"" + name + L"\" not known."),
      name_(std::move(name)),
      expression_(std::move(expression)) {}

}  // namespace kestrel::calculator
