#include <gmock/gmock.h>

#include <algorithm>
#include <string>

#include "calculator/functions/calculator_exceptions.h"
#include "calculator/functions/call.h"
#include "calculator/functions/option_words.h"
#include "support/exceptions.h"

namespace kestrel::calculator::test {
namespace {

Value Word(EOption word) { return Scalar(static_cast<double>(word)); }

std::string Refusal(const std::wstring& name, const Arguments& arguments) {
  try {
    Call(name, arguments);
  } catch (const utils::runtime_error& refusal) {
    return refusal.what();
  }
  return "nothing";
}

struct RefusedCall {
  std::wstring name;
  Arguments arguments;
  std::string refusal;
};

TEST(Functions, RefuseArguments) {
  const Value complex = Scalar(1, 1);
  const Value signal = Signal2({0, 1}, {1, 2, 3, 4});
  const RefusedCall calls[] = {
      {L"sin", {L"x"}, "Argument 1: A value is expected, not a text in quotes."},
      {L"sin", {Value()}, "Argument 1: It has no value."},
      {L"log", {Scalar(1), Scalar(1)}, "Argument 2: The base is to be a positive number other than 1."},
      {L"log", {Scalar(1), Scalar(kNaN)}, "Argument 2: The base is to be"},
      {L"round", {Scalar(1), Scalar(0.5)}, "Argument 2: A whole number from -300 to 300 is expected."},
      {L"mod", {complex, Scalar(1)}, "Argument 1: Real numbers are expected, not complex ones."},
      {L"mod", {Vector({1, 2}), Vector({1})}, "Argument 2: Its kind or its dimensions do not fit"},
      {L"mod", {Vector({1, 2}), Matrix2({1, 2, 3, 4})}, "Argument 2: Its kind or its dimensions do not fit"},
      {L"mod", {signal, Vector({1, 2, 3})}, "Argument 2: Its kind or its dimensions do not fit"},
      {L"atan2", {Vector({1, 2, 3})}, "Argument 1: A complex number or a vector [x, y] is expected."},
      {L"cplx", {Scalar(1), complex}, "Argument 2: Real numbers are expected"},
      {L"cart2pol", {Vector({1, 2, 3})}, "Argument 1: A vector of two entries or a matrix with two rows"},
      {L"pol2cart", {Vector({1, 2}), Scalar(1)}, "Argument 2: A number or a vector with as many entries"},
      {L"pol2cart", {complex}, "Argument 1: A vector of two entries or a matrix with two rows"},
      {L"mean", {Vector({})}, "Argument 1: It has no entries."},
      {L"min", {Vector({})}, "Argument 1: It has no entries."},
      {L"min", {Value(MakeMatrix(2, 0, {}))}, "Argument 1: It has no entries."},
      {L"max", {Scalar(1), complex}, "Argument 2: Real numbers are expected"},
      {L"max", {Scalar(1), Vector({1, 2}), Vector({1, 2, 3})}, "Argument 3: Its kind or its dimensions"},
      {L"norm", {Scalar(1), Scalar(0)}, "Argument 2: A positive exponent is expected."},
      {L"powmean", {Scalar(1), Scalar(kNaN)}, "Argument 2: An exponent is expected, not a NaN."},
      {L"rmsdev", {Vector({1, 2}), Vector({1})}, "Argument 2: Its kind or its dimensions"},
      {L"mapping", {Scalar(1), Vector({1, 1}), Vector({1, 2})}, "Argument 2: Its entries are to increase"},
      {L"mapping", {Scalar(1), Vector({}), Vector({})}, "Argument 2: It has no entries."},
      {L"mapping", {Scalar(1), Vector({1, 2}), Vector({1})}, "Argument 3: It is to have as many entries"},
      {L"vector", {Scalar(1), signal}, "Argument 2: A number or a vector is expected."},
      {L"matrix", {Vector({1, 2}), Vector({1})}, "Argument 2: Its rows are to be as long"},
      {L"mat", {Vector({1, 2, 3}), Scalar(2)}, "Argument 2: Rows times columns"},
      {L"mat", {Vector({1, 2, 3}), Scalar(0)}, "Argument 2: Rows times columns"},
      {L"invert", {Matrix2({1, 2, 2, 4})}, "Argument 1: It is singular."},
      {L"invert", {Value(MakeMatrix(3, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9}))}, "Argument 1: It is singular."},
      {L"invert", {Matrix2({0, 0, 1, 1})}, "Argument 1: It is singular, or its entries are not finite."},
      {L"invert", {Matrix2({kNaN, 0, 0, 1})}, "Argument 1: It is singular, or its entries are not finite."},
      {L"invert", {Scalar(0)}, "Argument 1: It is singular, or its entries are not finite."},
      {L"invert", {Matrix2({1, 2, 3, 4, 5, 6})}, "Argument 1: A square matrix is expected."},
      {L"lufactorize", {Vector({1})}, "Argument 1: A square matrix is expected."},
      {L"lufactorize", {Scalar(1), Scalar(4)}, "Argument 2: A whole number from 0 to 3"},
      {L"innerprod", {Vector({1, 2}), Vector({1})}, "Argument 2: It is to have as many entries"},
      {L"innerprod", {Matrix2({1, 2}), Vector({1})}, "Argument 1: A number or a vector is expected."},
      {L"matrixmult", {Matrix2({1, 2, 3, 4}), Vector({1})}, "Argument 2: It is to have as many rows"},
      {L"mac", {Vector({1, 2}), Vector({1})}, "Argument 2: It is to have as many degrees of freedom"},
      {L"comac", {Matrix2({1, 2, 3, 4}), Vector({1, 2})}, "Argument 2: It is to have as many modes"},
      {L"sdi", {Vector({1, 2}), Vector({1, 2})}, "Argument 1: At least three degrees of freedom are expected."},
      {L"size", {Value()}, "Invalid type."},
      {L"size1", {Vector({1})}, "Invalid type. Only types MATRIX, SIGNAL and XYDATA allowed."},
      {L"rand", {Scalar(1), Scalar(1)}, "Argument 1: UNIFORM, NORMAL,"},
      {L"rand", {Word(EOption::UNIFORM), Scalar(1)}, "Wrong number of arguments provided to rand"},
      {L"rand", {Word(EOption::UNIFORM), Scalar(1), Scalar(1)}, "Argument 3: It is to be above the lower bound."},
      {L"rand", {Word(EOption::UNIFORM), Scalar(-1e308), Scalar(1e308)}, "Argument 3: It is to be above"},
      {L"rand", {Word(EOption::NORMAL), Scalar(0), Scalar(kNaN)}, "Argument 3: A finite number is expected."},
      {L"rand", {Word(EOption::EXPONENTIAL), Scalar(0)}, "Argument 2: A positive number is expected."},
      {L"rand", {Word(EOption::TRIANGLE), Scalar(0), Scalar(2), Scalar(1)}, "Argument 3: It is to lie within"},
      {L"read", {Scalar(1)}, "Argument 1: A text in double quotes is expected."},
  };
  for (const RefusedCall& call : calls) {
    EXPECT_THAT(Refusal(call.name, call.arguments), testing::HasSubstr(call.refusal)) << string::narrow(call.name);
  }
}

TEST(Functions, RefuseResultsThatAreTooLarge) {
  const std::string kTooLarge = "The result would have more than 10000000 entries.";
  const Value long_vector = Call(L"linspace", {Scalar(0), Scalar(1), Scalar(4000)});
  const RefusedCall calls[] = {
      {L"linspace", {Scalar(0), Scalar(1), Scalar(1e12)}, ""},
      {L"linspace", {Scalar(0), Scalar(1), Scalar(kInfinity)}, ""},
      {L"rand", {Word(EOption::UNIFORM), Scalar(0), Scalar(1), Scalar(1e300)}, ""},
      {L"outerprod", {long_vector, long_vector}, ""},
      {L"matrixmult", {Call(L"transpose", {long_vector}), Call(L"mat", {long_vector})}, ""},
      {L"mac", {Call(L"mat", {long_vector}), Call(L"mat", {long_vector})}, ""},
      {L"modepairs", {Call(L"mat", {long_vector}), Call(L"mat", {long_vector})}, ""},
  };
  for (const RefusedCall& call : calls)
    EXPECT_EQ(Refusal(call.name, call.arguments), kTooLarge) << string::narrow(call.name);

  Arguments parts(101, Argument(Value(Value::VectorType(100000))));
  EXPECT_EQ(Refusal(L"vector", parts), kTooLarge);
  EXPECT_EQ(Refusal(L"matrix", parts), kTooLarge);
}

TEST(Functions, RefuseWhatWouldTakeTooLong) {
  const Value large(Value::MatrixType(1001, 1001));
  for (const wchar_t* const name : {L"invert", L"lufactorize"}) {
    EXPECT_EQ(Refusal(name, {large}), "The result would take too many operations.") << string::narrow(name);
  }
  for (const wchar_t* const name : {L"matrixmult", L"mac", L"modepairs"}) {
    EXPECT_EQ(Refusal(name, {large, large}), "The result would take too many operations.") << string::narrow(name);
  }
}

/// The same value with its mark of complex content set anew.
Value MarkAnew(const Value& value) {
  switch (value.GetKind()) {
    case Value::SCALAR: return Value(value.GetScalar());
    case Value::VECTOR: return Value(value.GetVector());
    case Value::MATRIX: return Value(value.GetMatrix());
    case Value::SIGNAL:
    case Value::XYDATA: return {value.GetTimeline(), value.GetMatrix(), value.GetKind()};
    default: return value;
  }
}

/// False for a refusal. Any other exception goes on to the test.
bool GivesConsistentValue(const std::wstring& name, const Arguments& arguments) {
  try {
    const Value result = Call(name, arguments);
    EXPECT_EQ(result.IsComplex(), MarkAnew(result).IsComplex()) << string::narrow(name);
    EXPECT_NE(result.GetKind(), Value::UNINITIALIZED) << string::narrow(name);
    return true;
  } catch (const utils::runtime_error&) {
    return false;
  }
}

TEST(Functions, AnswerOrRefuseWhateverIsGiven) {
  const Value values[] = {Value(),
                          Boolean(true),
                          Scalar(kNaN),
                          Scalar(-kInfinity),
                          Scalar(0, 1),
                          Vector({}),
                          Vector({kNaN, 1}),
                          Vector({1, 2, kInfinity}),
                          Value(MakeMatrix(0, 0, {})),
                          Value(MakeMatrix(2, 0, {})),
                          Matrix2({0, 0, 0, 0}),
                          Signal2({}, {}),
                          Signal2({0, kNaN}, {1, kInfinity, 2, {kNaN, 3}}),
                          Value(MakeVector({}), MakeMatrix(0, 0, {}))};
  for (const auto& [name, entry] : Functions()) {
    int answers = 0;
    const std::size_t most = std::min<std::size_t>(entry.maximal_arguments, 3);
    for (std::size_t count = entry.minimal_arguments; count <= most; ++count) {
      for (const Value& first : values) {
        for (const Value& other : values) {
          Arguments arguments(count, other);
          arguments.front() = first;
          answers += GivesConsistentValue(name, arguments) ? 1 : 0;
        }
      }
    }
    const bool refuses_all = name == L"read" || name == L"calculate" || name == L"rand";
    EXPECT_EQ(answers == 0, refuses_all) << string::narrow(name);
  }
}

}  // namespace
}  // namespace kestrel::calculator::test
