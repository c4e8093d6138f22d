#include "calculator/functions/call.h"

namespace kestrel::calculator::test {
namespace {

Value Matrix(std::size_t rows, std::initializer_list<Value::Complex> cells) {
  return Value(MakeMatrix(rows, cells.size() / rows, cells));
}

TEST(MatrixFunctions, PutEntriesTogether) {
  ExpectValues(std::vector<Case>{
      {L"vector", {Scalar(1), Vector({2, {0, 3}}), Boolean(true), Vector({})}, Vector({1, 2, {0, 3}, 1})},
      {L"vector", {Vector({})}, Vector({})},
      {L"matrix", {Vector({1, 2}), Matrix2({3, 4, 5, 6})}, Matrix(3, {1, 2, 3, 4, 5, 6})},
      {L"matrix", {Signal2({0, 1}, {1, 2, 3, 4})}, Matrix2({1, 2, 3, 4})},
      {L"vec", {Matrix2({1, 2, 3, 4, 5, 6})}, Vector({1, 4, 2, 5, 3, 6})},
      {L"vec", {Scalar(7)}, Vector({7})},
      {L"mat", {Vector({1, 4, 2, 5, 3, 6}), Scalar(2), Scalar(3)}, Matrix2({1, 2, 3, 4, 5, 6})},
      {L"mat", {Vector({1, 4, 2, 5, 3, 6}), Scalar(2)}, Matrix2({1, 2, 3, 4, 5, 6})},
      {L"mat", {Signal2({0, 1}, {1, 2, 3, 4})}, Matrix2({1, 2, 3, 4})},
      {L"mat", {Vector({}), Scalar(0)}, Value(MakeMatrix(0, 0, {}))},
      {L"transpose", {Matrix2({1, {2, 1}, 3, 4, 5, 6})}, Matrix(3, {1, 4, {2, 1}, 5, 3, 6})},
      {L"transpose", {Vector({1, 2})}, Matrix2({1, 2})},
      {L"transpose", {Signal1({0, 1}, {3, 4})}, Matrix2({3, 4})},
      {L"transpose", {Boolean(true)}, Scalar(1)},
  });
}

TEST(MatrixFunctions, AddChannelsSampleBySample) {
  const Value channels = Matrix2({1, 2, 3, 10, 20, 30});
  EXPECT_TRUE(IsSame(Call(L"sum", {Call(L"transpose", {channels})}), Vector({11, 22, 33})));
  const Value one_channel = Vector({1, 2, 3});
  EXPECT_TRUE(IsSame(Call(L"sum", {Call(L"transpose", {one_channel})}), one_channel));
}

TEST(MatrixFunctions, Multiply) {
  const Value a = Matrix2({1, 2, 3, 4});
  ExpectValues(std::vector<Case>{
      {L"innerprod", {Vector({{0, 1}, 2}), Vector({{0, 1}, 3})}, Scalar(7)},
      {L"innerprod", {Vector({}), Vector({})}, Scalar(0)},
      {L"outerprod", {Vector({1, {0, 1}}), Vector({2, {0, 3}})}, Matrix2({2, {0, 3}, {0, 2}, -3})},
      {L"outerprod", {Vector({1, 2}), Scalar(3)}, Matrix2({3, 6})},
      {L"matrixmult", {a, Matrix2({0, 1, 1, 0})}, Matrix2({2, 1, 4, 3})},
      {L"matrixmult", {a, Vector({1, 10})}, Vector({21, 43})},
      {L"matrixmult", {Vector({1, 10}), a}, Vector({31, 42})},
      {L"matrixmult", {Vector({1, {0, 1}}), Vector({1, {0, 1}})}, Scalar(0)},
      {L"matrixmult", {Matrix2({1, 1}), Value(MakeMatrix(1, 2, {2, {0, 1}}))}, Matrix2({2, {0, 1}, 2, {0, 1}})},
  });
}

void ExpectIdentity(const Value& product, double tolerance) {
  for (std::size_t i = 0; i < product.size1(); ++i) {
    for (std::size_t j = 0; j < product.size2(); ++j) {
      EXPECT_NEAR(std::abs(product.at(i, j) - (i == j ? 1.0 : 0.0)), 0.0, tolerance) << i << ", " << j;
    }
  }
}

TEST(MatrixFunctions, Invert) {
  const Value matrices[] = {
      Matrix2({0, 2, 4, 1}),
      Matrix(3, {{1, 1}, 2, 0, 3, {0, -1}, 5, 1, 1, {2, 2}}),
  };
  for (const Value& matrix : matrices) {
    const Value inverse = Call(L"invert", {matrix});
    EXPECT_EQ(inverse.IsComplex(), matrix.IsComplex());
    ExpectIdentity(Call(L"matrixmult", {matrix, inverse}), 1e-15);
  }
  ExpectValues(std::vector<Case>{
      {L"invert", {Matrix2({2, 0, 0, 4})}, Matrix2({0.5, 0, 0, 0.25})},
      {L"invert", {Matrix2({1e-30, 0, 0, 1e30})}, Matrix2({1e30, 0, 0, 1e-30})},
      {L"invert", {Matrix2({2e11, 1, 1, 2e-11})}, Matrix2({2e-11 / 3, -1.0 / 3, -1.0 / 3, 2e11 / 3})},
      {L"invert", {Scalar(0, 2)}, Scalar(0, -0.5)},
      {L"invert", {Value(MakeMatrix(0, 0, {}))}, Value(MakeMatrix(0, 0, {}))},
  });
}

TEST(MatrixFunctions, FactorizeWithPivots) {
  for (const Value& a :
       {Matrix(3, {0, 2, 1, 4, 1, 1, 2, 5, 3}), Matrix(2, {{0, 1}, 2, 3, {1, 1}}), Matrix2({0, 0, 0, 0})}) {
    const Value packed = Call(L"lufactorize", {a});
    const Value lower = Call(L"lufactorize", {a, Scalar(1)});
    const Value upper = Call(L"lufactorize", {a, Scalar(2)});
    const Value permutation = Call(L"lufactorize", {a, Scalar(3)});
    EXPECT_TRUE(IsSame(Call(L"matrixmult", {permutation, a}), Call(L"matrixmult", {lower, upper})));
    for (std::size_t i = 0; i < a.size1(); ++i) {
      EXPECT_EQ(lower.at(i, i), 1.0);
      for (std::size_t j = 0; j < a.size1(); ++j) {
        EXPECT_EQ(packed.at(i, j), (j < i ? lower : upper).at(i, j));
        EXPECT_EQ((j < i ? upper : lower).at(i, j), (i == j ? 1.0 : 0.0));
        EXPECT_LE(std::abs(lower.at(i, j)), 1.0 + 1e-15);  // the largest entry of the column is the pivot
      }
    }
  }
}

}  // namespace
}  // namespace kestrel::calculator::test
