#include "calculator/functions/call.h"

namespace kestrel::calculator::test {
namespace {

TEST(QueryFunctions, KnowSizes) {
  const Value signal = Signal2({0, 1, 2}, {1, 2, 3, 4, 5, 6});
  ExpectValues(std::vector<Case>{
      {L"size", {Boolean(false)}, Scalar(1)},
      {L"size", {Vector({})}, Scalar(0)},
      {L"size", {signal}, Scalar(6)},
      {L"size1", {signal}, Scalar(2)},
      {L"size2", {signal}, Scalar(3)},
      {L"size2", {Matrix2({1, 2})}, Scalar(1)},
      {L"inf2nan", {Vector({1, -kInfinity, {0, 1}})}, Vector({1, kNaN, {0, 1}})},
  });
}

TEST(QueryFunctions, KnowKinds) {
  const std::wstring names[] = {L"isbool", L"isscalar", L"isvector", L"ismatrix", L"issignal", L"isxydata"};
  const Value values[] = {Boolean(true),   Scalar(1),         Vector({}),
                          Matrix2({1, 2}), Signal1({0}, {1}), Signal1({0}, {1}, Value::XYDATA),
                          Value()};
  for (int kind = 0; kind < 6; ++kind) {
    for (const Value& value : values) {
      EXPECT_EQ(Call(names[kind], {value}).GetBoolean(), value.GetKind() == kind) << string::narrow(names[kind]);
    }
  }
  for (const Value& value : values) {
    EXPECT_EQ(Call(L"isinitialized", {value}).GetBoolean(), value.GetKind() != Value::UNINITIALIZED);
  }
  EXPECT_TRUE(Call(L"iscomplex", {Vector({1, {0, 1}})}).GetBoolean());
  EXPECT_FALSE(Call(L"iscomplex", {Scalar(1)}).GetBoolean());
}

/// What isnan, isinf, isfinite and isnormal say, in this order.
TEST(QueryFunctions, KnowNumbers) {
  struct Row {
    Value value;
    std::string expected;
  };
  const Row rows[] = {
      {Boolean(true), "0011"},
      {Scalar(0), "0010"},
      {Scalar(1e-310), "0010"},
      {Scalar(1, kNaN), "1000"},
      {Vector({1, kInfinity}), "0100"},
      {Vector({1, {0, 2}}), "0011"},
      {Vector({1e308, {1e308, 1e308}}), "0011"},
      {Vector({kNaN, kInfinity}), "1100"},
      {Vector({}), "0011"},
      {Signal1({0, 1}, {2, 3}), "0011"},
      {Signal1({0, kInfinity}, {2, 3}), "0101"},
      {Value(), "0000"},
  };
  for (const Row& row : rows) {
    std::string answers;
    for (const auto* name : {L"isnan", L"isinf", L"isfinite", L"isnormal"}) {
      answers += Call(name, {row.value}).GetBoolean() ? '1' : '0';
    }
    EXPECT_EQ(answers, row.expected) << string::narrow(Text(row.value));
  }
}

TEST(FunctionTable, IsCompleteAndDescribed) {
  const std::wstring names =
      L"sin cos tan asin acos atan atan2 sinh cosh tanh asinh acosh atanh deg2rad rad2deg log ln exp sqrt sgn ceil "
      L"floor mod min max round sum mean stddev cplx conj norm abs arg pol2cart cart2pol real imag vector transpose "
      L"invert euklidnorm lufactorize mac comac sdi modepairs innerprod outerprod matrix matrixmult rms rmsdev powmean "
      L"powmeandev mapping linspace sort times size size1 size2 inf2nan isnan isinf isfinite isnormal isinitialized "
      L"isscalar iscomplex ismatrix isvector isbool isxydata issignal rand read calculate vec mat";
  std::wistringstream words(names);
  std::size_t count = 0;
  for (std::wstring name; words >> name; ++count) EXPECT_EQ(Functions().count(name), 1u) << string::narrow(name);
  EXPECT_EQ(Functions().size(), count);
  for (const auto& [name, entry] : Functions()) {
    EXPECT_EQ(entry.info.name, name);
    EXPECT_FALSE(entry.info.description.empty()) << string::narrow(name);
    EXPECT_EQ(entry.info.usage.find(name + L"("), 0u) << string::narrow(name);
    bool optional = false;  // the optional ones stand at the end
    for (const auto& argument : entry.info.arguments) {
      EXPECT_TRUE(argument.optional || !optional) << string::narrow(name);
      optional = argument.optional;
    }
  }
}

}  // namespace
}  // namespace kestrel::calculator::test
