#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "support/strings.h"
#include "values/variant_builders.h"

namespace kestrel::math::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

Value Calculate(const Value& left, char operation, const Value& right) {
  switch (operation) {
    case '+': return left + right;
    case '-': return left - right;
    case '*': return left * right;
    case '/': return left / right;
    case '%': return left % right;
    default: return Power(left, right);
  }
}

struct Case {
  std::string name;
  Value left;
  char operation;
  Value right;
  Value expected;
};

TEST(VariantArithmetic, WorksEntryByEntry) {
  const Value signal = Signal2({0, 1}, {1, 2, 3, 4});
  const Case cases[] = {
      {"scalars", Scalar(3), '-', Scalar(5), Scalar(-2)},
      {"boolean counts as a scalar", Boolean(true), '+', Boolean(true), Scalar(2)},
      {"complex", Scalar(0, 1), '*', Scalar(0, 1), Scalar(-1)},
      {"scalar ahead of a vector", Scalar(6), '/', Vector({2, 3}), Vector({3, 2})},
      {"scalar behind a matrix", Matrix2({1, 2, 3, 4}), '-', Scalar(1), Matrix2({0, 1, 2, 3})},
      {"vectors", Vector({1, 2}), '*', Vector({3, 4}), Vector({3, 8})},
      {"matrices by entry", Matrix2({1, 2, 3, 4}), '*', Matrix2({1, 2, 3, 4}), Matrix2({1, 4, 9, 16})},
      {"the left timeline stays", signal, '-', Signal2({5, 6}, {1, 1, 1, 1}), Signal2({0, 1}, {0, 1, 2, 3})},
      {"scalar ahead of a signal", Scalar(1), '-', signal, Signal2({0, 1}, {0, -1, -2, -3})},
      {"matrix ahead of a signal", Matrix2({5, 5, 5, 5}), '-', signal, Signal2({0, 1}, {4, 3, 2, 1})},
      {"vector with an entry per sample", signal, '*', Vector({1, 10}), Signal2({0, 1}, {1, 20, 3, 40})},
      {"a real division by zero is infinite", Scalar(1), '/', Scalar(0), Scalar(kInfinity)},
      {"infinity stays real", Scalar(kInfinity), '*', Scalar(-2), Scalar(-kInfinity)},
      {"remainder", Vector({-7, 7}), '%', Scalar(4), Vector({-3, 3})},
      {"power", Vector({2, -2}), '^', Scalar(3), Vector({8, -8})},
  };
  for (const Case& c : cases) {
    const Value result = Calculate(c.left, c.operation, c.right);
    EXPECT_TRUE(result == c.expected) << c.name << ": " << string::narrow(Text(result));
  }
  for (const Value& base : {Scalar(-1), -Scalar(1), Scalar(-1, -0.0)}) {
    EXPECT_LT(std::abs(Power(base, Scalar(0.5)).GetScalar() - Value::Complex(0, 1)), 1e-12);
  }
  EXPECT_TRUE(-signal == Signal2({0, 1}, {-1, -2, -3, -4}));
}

TEST(VariantArithmetic, RefusesKindsThatDoNotFit) {
  const Value signal = Signal2({0, 1}, {1, 2, 3, 4});
  EXPECT_THROW(Value() + Scalar(1), CTypeException);
  EXPECT_THROW(Scalar(1) + Value(), CTypeException);
  EXPECT_THROW(-Value(), CTypeException);
  EXPECT_THROW(Vector({1, 2}) + Matrix2({1, 2, 3, 4}), CTypeException);
  EXPECT_THROW(Scalar(1, 1) % Scalar(2), CTypeException);
  EXPECT_THROW(!Vector({1}), CTypeException);
  EXPECT_THROW(Or(Boolean(true), Vector({1})), CTypeException);
  EXPECT_THROW(Vector({1, 2}) + Vector({1}), CDomainException);
  EXPECT_THROW(Matrix2({1, 2}) + Matrix2({1, 2, 3, 4}), CDomainException);
  EXPECT_THROW(signal + Vector({1, 2, 3}), CDomainException);
  EXPECT_THROW(signal + Signal2({0, 1, 2}, {1, 2, 3, 4, 5, 6}), CDomainException);
}

TEST(VariantArithmetic, KnowsTruth) {
  EXPECT_TRUE(And(Boolean(true), Scalar(0, 1)).GetBoolean());
  EXPECT_FALSE(And(Boolean(true), Scalar(0)).GetBoolean());
  EXPECT_TRUE(Or(Scalar(std::numeric_limits<double>::quiet_NaN()), Boolean(false)).GetBoolean());
  EXPECT_TRUE((!Scalar(0)).GetBoolean());
}

}  // namespace
}  // namespace kestrel::math::test
