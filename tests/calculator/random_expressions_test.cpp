#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <random>

#include "calculator/test_functions.h"
#include "support/strings.h"

namespace kestrel::calculator::test {
namespace {

/// A text with its value as plain arithmetic on doubles gives it. `level` is that of the loosest operator in it, from 0
/// for comparisons to 5 for what needs no parentheses.
struct Written {
  std::wstring text;
  double value = 0.0;
  int level = 5;
};

/// Writes expressions with as few parentheses as the precedences need, and some more.
class Writer {
 public:
  explicit Writer(std::uint64_t seed) : random_(seed) {}

  Written Write(int depth) {
    const int kind = Draw(depth > 0 ? 9 : 1);
    if (kind == 0) return Number();
    if (kind == 1) return Unary(depth);
    if (kind == 2) return Call(depth);
    if (kind == 3) return Branch(depth);
    if (kind == 4) return Element(depth);
    return Binary(depth, kind - 5);
  }

 private:
  int Draw(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }
  std::wstring Space() { return std::wstring(static_cast<std::size_t>(Draw(3) / 2), L' '); }

  Written Number() {
    const int number = Draw(40);
    return {std::to_wstring(number / 4) + (number % 4 == 0   ? L""
                                           : number % 4 == 1 ? L".25"
                                           : number % 4 == 2 ? L".5"
                                                             : L".75"),
            number / 4.0, 5};
  }

  /// In parentheses if its operators bind looser than `level`, or by chance.
  std::wstring At(const Written& written, int level) {
    if (written.level >= level && Draw(6) > 0) return written.text;
    return L"(" + Space() + written.text + Space() + L")";
  }

  Written Unary(int depth) {
    const Written operand = Write(depth - 1);
    if (Draw(2) == 0) return {L"!" + Space() + At(operand, 4), operand.value == 0.0 ? 1.0 : 0.0, 3};
    return {L"-" + Space() + At(operand, 4), -operand.value, 3};
  }

  Written Call(int depth) {
    const Written argument = Write(depth - 1);
    return {L"abs(" + argument.text + L")", std::fabs(argument.value), 5};
  }

  Written Branch(int depth) {
    const Written condition = Write(depth - 1);
    const Written yes = Write(depth - 1);
    const Written no = Write(depth - 1);
    const bool holds = condition.value != 0.0;  // a NaN holds
    return {L"(#if " + condition.text + L" : " + yes.text + L" #else " + no.text + L")", holds ? yes.value : no.value,
            5};
  }

  Written Element(int depth) {
    const Written elements[] = {Write(depth - 1), Write(depth - 1), Write(depth - 1)};
    const int index = Draw(3);
    // Less zero, a boolean is a number and every other value stays. A literal at the beginning of an element would be a
    // leading one before its own index.
    std::wstring text = L"[";
    for (const Written& element : elements) {
      const std::wstring difference = At(element, 2) + L" - 0";
      text += text.size() > 1 ? L"," : L"";
      text += difference.front() == L'[' ? L"(" + difference + L")" : difference;
    }
    return {text + L"][" + std::to_wstring(index) + L"]", elements[index].value, 5};
  }

  Written Binary(int depth, int level) {
    const Written left = Write(depth - 1);
    const Written right = Write(depth - 1);
    const double a = left.value;
    const double b = right.value;
    const int which = Draw(2);
    const auto join = [&](const wchar_t* op, double value) -> Written {
      // From the left: the left operand may be of the same level, the right one may not.
      return {At(left, level) + Space() + op + Space() + At(right, level + 1), value, level};
    };
    switch (level) {
      case 0: return which == 0 ? join(L"<", a < b ? 1.0 : 0.0) : join(L"!=", a != b ? 1.0 : 0.0);
      case 1: return which == 0 ? join(L"+", a + b) : join(L"-", a - b);
      case 2: return which == 0 ? join(L"*", a * b) : join(L"/", a / b);
      default: return {At(left, 5) + L"^" + std::to_wstring(which + 2), std::pow(a, which + 2), 4};
    }
  }

  std::mt19937_64 random_;
};

bool Same(double a, double b) { return (std::isnan(a) && std::isnan(b)) || a == b; }

RC_GTEST_PROP(RandomExpressions, HaveTheValueOfPlainArithmetic, (std::uint64_t seed)) {
  static Calculator calculator = MakeCalculator();
  const Written written = Writer(seed).Write(6);
  RC_PRE(written.text.size() < 20'000);
  const Value value = Evaluate(calculator, written.text);
  const double number = value.GetKind() == Value::BOOLEAN ? double(value.GetBoolean()) : value.GetScalar().real();
  if (!Same(number, written.value)) RC_FAIL(string::narrow(written.text));
}

}  // namespace
}  // namespace kestrel::calculator::test
