#include "calculator/functions/call.h"

namespace kestrel::calculator::test {
namespace {

const Value kSignal = Signal2({0, 1, 2}, {1, 2, 6, -2, 0, 2});

TEST(StatisticalFunctions, ReduceVectorsMatricesAndSignals) {
  ExpectValues(std::vector<Case>{
      {L"sum", {Vector({1, 2, {3, 4}})}, Scalar(6, 4)},
      {L"sum", {Vector({})}, Scalar(0)},
      {L"sum", {Boolean(true)}, Scalar(1)},
      {L"sum", {Matrix2({1, 2, 3, 4})}, Vector({3, 7})},
      {L"sum", {Value(MakeMatrix(1, 2, {1, 2}))}, Vector({3})},
      {L"sum", {kSignal}, Vector({9, 0})},
      {L"sum", {Signal1({0, 1}, {3, 4})}, Scalar(7)},
      {L"mean", {kSignal}, Vector({3, 0})},
      {L"mean", {Signal1({5, 6}, {3, 4}, Value::XYDATA)}, Scalar(3.5)},
      {L"stddev", {kSignal}, Vector({std::sqrt(7.0), 2})},
      {L"stddev", {Scalar(3)}, Scalar(0)},
      {L"stddev", {Vector({{0, 1}, {0, -1}})}, Scalar(M_SQRT2)},
      {L"rms", {kSignal}, Vector({std::sqrt(41.0 / 3), std::sqrt(8.0 / 3)})},
      {L"rms", {Vector({1, kNaN})}, Scalar(kNaN)},
      {L"rmsdev", {kSignal}, Vector({std::sqrt(14.0 / 3), std::sqrt(8.0 / 3)})},
      {L"rmsdev", {Vector({1, 5}), Vector({4, 1})}, Scalar(std::sqrt(12.5))},
      {L"rmsdev", {kSignal, Scalar(1)}, Vector({std::sqrt(26.0 / 3), std::sqrt(11.0 / 3)})},
      {L"euklidnorm", {kSignal}, Vector({std::sqrt(41.0), std::sqrt(8.0)})},
      {L"euklidnorm", {Vector({3, {0, 4}})}, Scalar(5)},
  });
}

TEST(StatisticalFunctions, NormsAndPowerMeans) {
  ExpectValues(std::vector<Case>{
      {L"norm", {Vector({3, -4})}, Scalar(5)},
      {L"norm", {Vector({3, -4}), Scalar(1)}, Scalar(7)},
      {L"norm", {Vector({3, -4}), Scalar(kInfinity)}, Scalar(4)},
      {L"norm", {kSignal, Scalar(3)}, Vector({std::cbrt(225.0), std::cbrt(16.0)})},
      {L"norm", {Vector({1, kNaN, 2}), Scalar(kInfinity)}, Scalar(kNaN)},
      {L"norm", {Vector({1, -kInfinity}), Scalar(3)}, Scalar(kInfinity)},
      {L"norm", {Vector({})}, Scalar(0)},
      {L"powmean", {Vector({1, 4, 4}), Scalar(-1)}, Scalar(2)},
      {L"powmean", {Vector({1, 8}), Scalar(0)}, Scalar(std::sqrt(8.0))},
      {L"powmean", {Vector({-1, 3}), Scalar(1)}, Scalar(2)},
      {L"powmean", {Vector({1, 7}), Scalar(2)}, Scalar(5)},
      {L"powmean", {Vector({0, 7}), Scalar(-2)}, Scalar(0)},
      {L"powmean", {Vector({2, 7}), Scalar(-kInfinity)}, Scalar(2)},
      {L"powmeandev", {kSignal, Scalar(1)}, Vector({2, 4.0 / 3})},
      {L"powmeandev", {Vector({1, 5}), Scalar(3), Scalar(1)}, Scalar(4 / std::cbrt(2.0))},
  });
}

/// Squares and cubes of these are no doubles.
TEST(StatisticalFunctions, KeepTheRangeOfTheEntries) {
  for (const double unit : {1e200, 1e-200}) {
    const Value x = Vector({3 * unit, 4 * unit});
    EXPECT_DOUBLE_EQ(Call(L"euklidnorm", {x}).GetScalar().real(), 5 * unit);
    EXPECT_DOUBLE_EQ(Call(L"norm", {x, Scalar(3)}).GetScalar().real(), std::cbrt(91.0) * unit);
    EXPECT_DOUBLE_EQ(Call(L"powmean", {x, Scalar(-3)}).GetScalar().real(), std::cbrt(2 / (1.0 / 27 + 1.0 / 64)) * unit);
    EXPECT_DOUBLE_EQ(Call(L"stddev", {x}).GetScalar().real(), unit / M_SQRT2);
  }
}

TEST(ExtremaFunctions, FindEntriesAndSamples) {
  ExpectValues(std::vector<Case>{
      {L"min", {Vector({kNaN, 3, -1, 2})}, Scalar(-1)},
      {L"max", {Vector({3, -1, kNaN})}, Scalar(3)},
      {L"max", {Vector({kNaN, kNaN})}, Scalar(kNaN)},
      {L"min", {Boolean(true)}, Scalar(1)},
      {L"min", {Matrix2({4, 2, 1, 3})}, Vector({2, 1})},
      {L"max", {Signal1({10, 20, 30}, {1, 5, 2})}, Vector({20, 5})},
      {L"min", {Signal2({10, 20, 30}, {4, 1, 1, 7, 8, 9})}, Vector({20, 1, 8})},
      {L"max", {Signal2({10, 20}, {1, 4, 9, 3}, Value::XYDATA)}, Vector({20, 4, 3})},
      {L"min", {Scalar(3), Boolean(true), Scalar(2)}, Scalar(1)},
      {L"max", {Vector({1, 5, kNaN}), Vector({2, kNaN, 3})}, Vector({2, 5, 3})},
      {L"max", {Scalar(2), Vector({1, 5}), Scalar(3)}, Vector({3, 5})},
      {L"min", {kSignal, Scalar(1)}, Signal2({0, 1, 2}, {1, 1, 1, -2, 0, 1})},
  });
}

TEST(SequenceFunctions, MakeSortAndMap) {
  const Value table_x = Vector({0, 1, 3});
  const Value table_y = Vector({10, 20, 0});
  ExpectValues(std::vector<Case>{
      {L"linspace", {Scalar(1), Scalar(3), Scalar(3)}, Vector({1, 2, 3})},
      {L"linspace", {Scalar(1), Scalar(1), Scalar(1)}, Vector({1})},
      {L"linspace", {Scalar(5), Scalar(9), Scalar(1)}, Vector({5})},
      {L"linspace", {Scalar(5), Scalar(9), Scalar(0)}, Vector({})},
      {L"linspace", {Scalar(-1.5e308), Scalar(1.5e308), Scalar(3)}, Vector({-1.5e308, 0, 1.5e308})},
      {L"sort", {Vector({3, kNaN, 1, {1, -1}})}, Vector({{1, -1}, 1, 3, kNaN})},
      {L"sort", {Vector({3, kNaN, 1}), Boolean(true)}, Vector({3, 1, kNaN})},
      {L"sort", {Matrix2({2, 1, 4, 3})}, Matrix2({1, 2, 3, 4})},
      {L"sort",
       {Signal2({3, 1, 2}, {30, 10, 20, 33, 11, 22}, Value::XYDATA)},
       Signal2({1, 2, 3}, {10, 20, 30, 11, 22, 33}, Value::XYDATA)},
      {L"mapping", {Vector({-1, 0.5, 1, 2, 9}), table_x, table_y}, Vector({10, 15, 20, 10, 0})},
      {L"mapping", {Signal1({7, 8}, {0, 2.5}), table_x, table_y}, Signal1({7, 8}, {10, 5})},
      {L"mapping", {Scalar(kNaN), table_x, table_y}, Scalar(kNaN)},
      {L"mapping", {Scalar(4), Scalar(1), Scalar(6)}, Scalar(6)},
  });
  EXPECT_TRUE(Call(L"sort", {Vector({2, 1})}).IsOrdered());
  EXPECT_FALSE(Call(L"abs", {Call(L"sort", {Vector({2, -1})})}).IsOrdered());
  const Value whole = Call(L"linspace", {Scalar(1), Scalar(1000), Scalar(1000)});
  for (std::size_t i = 0; i < 1000; ++i) ASSERT_EQ(whole.at(i), static_cast<double>(i + 1));
}

}  // namespace
}  // namespace kestrel::calculator::test
