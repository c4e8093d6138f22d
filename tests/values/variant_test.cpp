#include "values/variant.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <utility>
#include <vector>

#include "support/strings.h"
#include "values/variant_builders.h"

namespace kestrel::math::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// One value of each kind, in the order of the kinds and of operator<.
std::vector<Value> OneOfEachKind() {
  return {Value(),
          Boolean(false),
          Scalar(2, 1),
          Vector({1, 2, 3}),
          Matrix2({1, 2, 3, 4}),
          Signal2({0, 1, 2}, {1, 2, 3, 4, 5, 6}),
          Signal2({2, 1, 0}, {1, 2, 3, 4, 5, 6}, Value::XYDATA)};
}

TEST(Variant, KnowsItsKindThroughCopiesAndMoves) {
  const std::vector<std::wstring> texts = {L"UNINITIALIZED ",
                                           L"BOOLEAN 0",
                                           L"SCALAR (2,1)",
                                           L"VECTOR [1, 2, 3]",
                                           L"MATRIX [[1, 2], [3, 4]]",
                                           L"SIGNAL [0, 1, 2] [[1, 2, 3], [4, 5, 6]]",
                                           L"XYDATA [2, 1, 0] [[1, 2, 3], [4, 5, 6]]"};
  const std::vector<Value> values = OneOfEachKind();
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(values[i].GetKind(), static_cast<int>(i) - 1);
    Value copy = values[i];
    EXPECT_EQ(Text(copy), texts[i]);
    const Value moved = std::move(copy);
    EXPECT_EQ(Text(moved), texts[i]);
    EXPECT_EQ(copy.GetKind(), Value::UNINITIALIZED);  // NOLINT(bugprone-use-after-move): what a move leaves is stated
    EXPECT_TRUE(moved == values[i]);
  }
}

TEST(Variant, CopiesDoNotShareContent) {
  const Value original = Vector({1, 2});
  Value copy = original;
  copy.VectorRef()(0) = 7;
  EXPECT_EQ(original.at(0), 1.0);
  EXPECT_EQ(copy.at(0), 7.0);
}

TEST(Variant, OrdersAndDistinguishesTheKinds) {
  const std::vector<Value> values = OneOfEachKind();
  for (std::size_t i = 0; i < values.size(); ++i) {
    for (std::size_t j = 0; j < values.size(); ++j) {
      EXPECT_EQ(values[i] == values[j], i == j) << i << " " << j;
      EXPECT_EQ(values[i] < values[j], i < j) << i << " " << j;
      EXPECT_EQ(values[i].Equal(values[j]), i == j) << i << " " << j;
    }
  }
}

TEST(Variant, ComparesByContent) {
  EXPECT_TRUE(Boolean(true) == Scalar(1));
  EXPECT_FALSE(Scalar(kNaN) == Scalar(kNaN));
  EXPECT_FALSE(Scalar(kNaN) <= Scalar(1));
  EXPECT_TRUE(Scalar(kNaN).Equal(Scalar(kNaN)));
  EXPECT_TRUE(Scalar(2) >= Boolean(true));
  EXPECT_TRUE(Scalar(1, 1) < Scalar(1, 2));
  EXPECT_TRUE(Vector({1, 2}) < Vector({1, 2, 0}));
  EXPECT_FALSE(Vector({1, 2}) == Vector({1, 2, 0}));
  EXPECT_FALSE(Value(MakeMatrix(1, 2, {1, 2})) == Value(MakeMatrix(2, 1, {1, 2})));
  EXPECT_TRUE(Signal2({0, 1}, {9, 9, 9, 9}) < Signal2({0, 2}, {1, 1, 1, 1}));
  EXPECT_TRUE(Vector({1, 1e-17}).Equal(Vector({1, 0})));
  EXPECT_FALSE(Vector({1, 2}).Equal(Vector({1.01, 2})));
  EXPECT_TRUE(Vector({1, 2}).NearTo(Vector({1.01, 2}), 0.1));
  EXPECT_FALSE(Vector({0}).NearTo(Vector({0.001}), 0.1));
}

TEST(Variant, CountsItsElements) {
  const std::vector<std::size_t> sizes = {1, 1, 3, 4, 6, 6};
  const std::vector<Value> values = OneOfEachKind();
  for (std::size_t i = 0; i < sizes.size(); ++i) EXPECT_EQ(values[i + 1].size(), sizes[i]);
  EXPECT_EQ(values[5].size1(), 2u);
  EXPECT_EQ(values[5].size2(), 3u);
}

TEST(Variant, GivesRowsColumnsAndSamples) {
  const Value signal = Signal2({0, 1, 2}, {1, 2, 3, 4, 5, 6});
  EXPECT_TRUE(signal.GetRow(1) == Vector({4, 5, 6}));
  EXPECT_TRUE(signal.GetColumn(2) == Vector({3, 6}));
  EXPECT_TRUE(signal.GetSample(2) == Vector({2, 3, 6}));
  EXPECT_EQ(signal(1, 0), 4.0);
  EXPECT_EQ(Scalar(2.7).ToIndex(), 2u);
}

TEST(Variant, FindsNaNAndInfinity) {
  struct Case {
    Value value;
    bool any_nan, all_nan, any_infinite, all_infinite;
  };
  const Case cases[] = {{Value(), false, false, false, false},
                        {Boolean(true), false, false, false, false},
                        {Scalar(kNaN), true, true, false, false},
                        {Scalar(0, kInfinity), false, false, true, true},
                        {Vector({}), false, false, false, false},
                        {Vector({kNaN, -kInfinity}), true, false, true, false},
                        {Matrix2({kNaN, kNaN}), true, true, false, false},
                        {Signal2({kNaN, 1}, {1, 2, 3, 4}), true, false, false, false}};
  for (const Case& c : cases) {
    const std::string name = string::narrow(Text(c.value));
    EXPECT_EQ(c.value.IsNaN(true), c.any_nan) << name;
    EXPECT_EQ(c.value.IsNaN(false), c.all_nan) << name;
    EXPECT_EQ(c.value.IsInf(true), c.any_infinite) << name;
    EXPECT_EQ(c.value.IsInf(false), c.all_infinite) << name;
  }
}

TEST(Variant, MarksComplexContent) {
  EXPECT_FALSE(Scalar(1).IsComplex());
  EXPECT_TRUE(Vector({1, {0, 2}}).IsComplex());
  EXPECT_TRUE(Signal2({0, 1}, {1, 2, 3, {4, 1}}).IsComplex());
}

TEST(Variant, TurnsSignalsIntoXYDataAndElseStartsAnew) {
  Value value = Signal2({0, 1}, {1, 2, 3, 4});
  value.SetKind(Value::XYDATA);
  EXPECT_TRUE(value == Signal2({0, 1}, {1, 2, 3, 4}, Value::XYDATA));
  EXPECT_FALSE(value.IsFlipped());
  value.SetKind(Value::SCALAR);
  EXPECT_TRUE(value == Scalar(0));
  EXPECT_TRUE(OneOfEachKind().back().IsFlipped());
}

TEST(Variant, AddsChannels) {
  Value signal = Signal2({0, 1}, {1, 2, 3, 4});
  signal.addChannels(Vector({5, {6, 1}}));
  signal.addChannels(signal);
  EXPECT_TRUE(signal == Value(MakeVector({0, 1}), MakeMatrix(6, 2, {1, 2, 3, 4, 5, {6, 1}, 1, 2, 3, 4, 5, {6, 1}})));
  EXPECT_TRUE(signal.IsComplex());
}

struct Refusal {
  std::wstring message;
  std::function<void()> act;
};

template <class Exception>
void ExpectRefusals(const std::vector<Refusal>& refusals) {
  for (const Refusal& refusal : refusals) {
    try {
      refusal.act();
      ADD_FAILURE() << "not refused: " << string::narrow(refusal.message);
    } catch (const Exception& error) {
      EXPECT_EQ(error.What(), refusal.message);
    }
  }
}

TEST(Variant, RefusesWhatTheKindDoesNotHave) {
  Value none;
  Value scalar = Scalar(1);
  Value vector = Vector({1, 2});
  const Value matrix = Matrix2({1, 2});
  Value signal = Signal2({0, 1}, {1, 2, 3, 4});
  const auto needs_matrix = L"Invalid type. Only types MATRIX, SIGNAL and XYDATA allowed. \n";
  ExpectRefusals<CTypeException>({
      {L"Input object not of type BOOLEAN.", [&] { scalar.GetBoolean(); }},
      {L"Input object not of type SCALAR.", [&] { Boolean(true).GetScalar(); }},
      {L"Input object not of type VECTOR.", [&] { scalar.GetVector(); }},
      {L"Input object not of type MATRIX.", [&] { vector.GetMatrix(); }},
      {L"Input object has invalid datatype.", [&] { matrix.GetTimeline(); }},
      {L"IsFlipped: Input object has invalid datatype.", [&] { matrix.IsFlipped(); }},
      {L"Variant check failed: GetKind() == BOOLEAN", [&] { scalar.BooleanRef(); }},
      {L"Variant check failed: (ks_.kind_ & skKindMask) == skSCALAR", [&] { vector.ScalarRef(); }},
      {L"Variant check failed: (ks_.kind_ & skKindMask) == skVECTOR", [&] { scalar.VectorRef(); }},
      {L"Variant check failed: ((ks_.kind_ & skKindMask) == skSIGNAL) && (ks_.kind_ != 0)",
       [&] { none.SignalVectorRef(); }},
      {L"Invalid type.", [&] { none.size(); }},
      {needs_matrix, [&] { vector.size1(); }},
      {needs_matrix, [&] { vector.GetRow(0); }},
      {L"Type doesn't support access by index.", [&] { scalar.at(0); }},
      {L"Type doesn't support access by index.", [&] { vector.at(0, 0); }},
      {L"Type doesn't support access by (only one) index.", [&] { matrix.at(0); }},
      {L"Index must be real.", [&] { Scalar(1, 1).ToIndex(); }},
      {L"Channels can be added to signal objects only", [&] { vector.addChannels(vector); }},
      {L"addChannels: object type not supported: SCALAR", [&] { signal.addChannels(scalar); }},
  });
}

TEST(Variant, RefusesWhatIsOutOfBounds) {
  Value signal = Signal2({0, 1}, {1, 2, 3, 4});
  const auto time = MakeVector({0, 1});
  ExpectRefusals<CDomainException>({
      {L"Index out of vector bounds.", [] { Vector({1}).at(1); }},
      {L"Index out of matrix bounds.", [&] { signal.at(1, 2); }},
      {L"This row index doesn't exist in this matrix. \n", [&] { signal.GetRow(2); }},
      {L"This column index doesn't exist in this matrix. \n", [&] { signal.GetColumn(2); }},
      {L"Index out of bounds.", [&] { signal.GetSample(2); }},
      {L"Index must be positive & real.", [] { Scalar(-1).ToIndex(); }},
      {L"Index must be positive & real.", [] { Scalar(kNaN).ToIndex(); }},
      {L"Index out of bounds.", [] { Scalar(kInfinity).ToIndex(); }},
      {L"addChannels: dimensions do not match.", [&] { signal.addChannels(Vector({1})); }},
      {L"Timeline of signal may not be complex.",
       [&] {
         Value(MakeVector({0, {1, 1}}), time);
       }},
      {L"Timeline of XYDATA may not be complex.",
       [&] {
         Value(MakeVector({0, {1, 1}}), time, Value::XYDATA);
       }},
      {L"Timeline of signal and data-matrix have to be of same dimension.", [&] { Value(MakeVector({0}), time); }},
      {L"X- and Y-data have to be of same dimension.", [&] { Value(MakeVector({0}), time, Value::XYDATA); }},
  });
}

}  // namespace
}  // namespace kestrel::math::test
