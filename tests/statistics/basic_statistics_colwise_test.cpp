#include "statistics/basic_statistics_colwise.h"

#include <gtest/gtest.h>

#include <cmath>

#include "statistics/basic_statistics.h"
#include "statistics/sample_data.h"
#include "support/matrix_compare.h"

namespace kestrel::math::statistics {
namespace {

using testing::kNaN;
using testing::MatrixNear;
using testing::Numbers;

constexpr double kRounding = 1e-14;

// Columns of every kind: two ordinary ones, one that follows the first, a constant one, one of two levels, and two
// with NaN in different rows.
Matrix MixedColumns() {
  Matrix m(7, 7);
  m.leftCols(2) = testing::UniformMatrix(7, 2, 1);
  m.col(2) = 3.0 - 2.0 * m.col(0).array();
  m.col(3).setConstant(4.0);
  m.col(4) << 0.3, 0.7, 0.7, 0.3, 0.7, 0.3, 0.3;
  m.rightCols(2) = testing::UniformMatrix(7, 2, 2);
  m(1, 5) = m(4, 6) = m(5, 6) = kNaN;
  return m;
}

TEST(MomentsColwise, SkipTheMissingValuesOfFlaggedColumns) {
  Matrix m(3, 2);
  m << 1, 2, 3, kNaN, 5, 4;
  EXPECT_EQ(ContainsNanColwise(m), (std::vector<bool>{false, true}));
  EXPECT_TRUE(MatrixNear(MeanColwise(m), Numbers({3, 3}), 0.0));
  EXPECT_TRUE(MatrixNear(MeanColwise(m, {false, false}), Numbers({3, kNaN}), 0.0));
  EXPECT_TRUE(MatrixNear(SigmaColwise(m, Numbers({3, 3})), Numbers({2, std::sqrt(2.0)}), kRounding));
  EXPECT_TRUE(MatrixNear(SigmaColwise(m, Numbers({3, 3}), {false, false}), Numbers({2, kNaN}), kRounding));
  Matrix ranks(3, 2);
  ranks << 1, 1, 2, kNaN, 3, 2;
  EXPECT_TRUE(MatrixNear(calc_rankOrderColwise(m), ranks, 0.0));
}

TEST(CorrelationMatrix, HoldsTheCorrelationOfEachPair) {
  const Matrix m = MixedColumns();
  Matrix linear(7, 7);
  Matrix quadratic(7, 7);
  for (Index j = 0; j < 7; ++j) {
    for (Index i = 0; i < 7; ++i) {
      linear(i, j) = i == j ? 1.0 : CalcLinCC(m.col(i), m.col(j), true, true);
      quadratic(i, j) = CalcQuadCC(m.col(i), m.col(j), true, true);
    }
  }
  const Matrix actual = CalcLinCCMatrixColwise(m);
  EXPECT_TRUE(MatrixNear(actual, linear, kRounding));
  EXPECT_TRUE(MatrixNear(actual, actual.transpose(), 0.0));
  EXPECT_TRUE(MatrixNear(CalcQuadCCMatrixColwise(m), quadratic, kRounding));
  EXPECT_NEAR(linear(0, 2), -1.0, kRounding);
  EXPECT_GT((quadratic - quadratic.transpose()).norm(), 0.1);
}

TEST(ResponseCorrelation, GoesBothWays) {
  const Matrix m = MixedColumns();
  for (const Index response : {1, 5}) {  // without and with NaN
    SCOPED_TRACE(response);
    const Vector y = m.col(response);
    Vector linear(7);
    Matrix quadratic(2, 7);
    for (Index j = 0; j < 7; ++j) {
      linear(j) = CalcLinCC(m.col(j), y, true, true);
      quadratic.col(j) << CalcQuadCC(m.col(j), y, true, true), CalcQuadCC(y, m.col(j), true, true);
    }
    EXPECT_TRUE(MatrixNear(getLinRespCorrelationColwise(m, y), linear, kRounding));
    EXPECT_TRUE(MatrixNear(getQuadRespCorrelationColwise(m, y), quadratic, kRounding));
  }
  const Vector x = Numbers({-2, -1, 0, 1, 2});
  EXPECT_TRUE(MatrixNear(getQuadRespCorrelationColwise(x, x.cwiseAbs2()), Vector(Numbers({1, 0})), kRounding));
}

TEST(DiscreteValues, AreCountedByTheirGaps) {
  struct Case {
    const char* name;
    Vector column;
    std::uint64_t levels;
  };
  const Case cases[] = {
      {"two levels", Numbers({0, 1, 0, 1}), 2},
      {"below the relative tolerance", Numbers({1, 1 + 1.9e-12}), 1},
      {"above the relative tolerance", Numbers({1, 1 + 2.1e-12}), 2},
      {"gap below the share of the range", Numbers({0, 0.9e-10, 1}), 2},
      {"gap above the share of the range", Numbers({1, 1.1e-10, 0}), 3},
      {"missing values", Numbers({kNaN, 2, kNaN, 1, 3}), 3},
      {"only missing values", Numbers({kNaN, kNaN}), 1},
      {"huge", Numbers({-1.5e308, 0, 1.5e308}), 3},
  };
  for (const Case& c : cases) EXPECT_EQ(CalculateNumDiscreteValues(c.column)(0), c.levels) << c.name;
}

TEST(InputFaultsColwise, AreReported) {
  const Matrix m = testing::UniformMatrix(3, 2, 1);
  const Vector two = Numbers({1, 2});
  const Vector three = Numbers({1, 2, 3});
  const std::pair<std::function<void()>, const wchar_t*> cases[] = {
      {[&] { getLinRespCorrelationColwise(Matrix(3, 0), three); }, L"Empty design matrix"},
      {[&] { getQuadRespCorrelationColwise(m, two); }, L"Sizes of design table and response vector not consistent"},
      {[&] { CalcCorrelationSimple(m, three, two, 0, 1); }, L"Sizes of input matrix and mean-vector not consistent"},
      {[&] { CalcCorrelationSimple(m, two, three, 0, 1); }, L"Sizes of input matrix and sigma-vector not consistent"},
      {[&] { CalcCorrelationSimple(m, two, two, 0, 2); }, L"Indices and sizes of input matrix not consistent"},
      {[&] { CalcLinCCMatrixColwise(Matrix(0, 2)); }, L"Empty data vector"},
  };
  for (const auto& [call, text] : cases) EXPECT_EQ(testing::ReportOf(call), text);
}

}  // namespace
}  // namespace kestrel::math::statistics
