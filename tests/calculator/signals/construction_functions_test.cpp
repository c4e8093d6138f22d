#include <gtest/gtest.h>

#include "calculator/signals/signal_calls.h"

namespace kestrel::calculator::test {
namespace {

struct Case {
  std::string name;
  std::wstring function;
  Arguments arguments;
  Value expected;
};

void ExpectAll(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    const Value result = Call(c.function, c.arguments);
    EXPECT_TRUE(result == c.expected && result.GetKind() == c.expected.GetKind())
        << c.name << ": " << result.GetKindS();
    if (result != c.expected) std::wcerr << result << L" instead of " << c.expected << std::endl;
  }
}

const Value kRising = Signal({0, 1, 2, 3}, {{0, 10, 20, 30}, {5, 6, 7, 8}});
const Value kFalling = XyData({3, 1, 2}, {{30, 10, 20}});

TEST(SignalConstruction, PutsRowsTogether) {
  const Value x = VectorOf({0, 1});
  ExpectAll({
      {"a channel", L"signal", {x, VectorOf({4, 5})}, Signal({0, 1}, {{4, 5}})},
      {"channels of vectors and matrices",
       L"signal",
       {x, VectorOf({4, 5}), MatrixOf({{6, 7}, {8, 9}})},
       Signal({0, 1}, {{4, 5}, {6, 7}, {8, 9}})},
      {"a step keeps its two samples", L"signal", {VectorOf({1, 1}), x}, Signal({1, 1}, {{0, 1}})},
      {"one sample", L"signal", {Number(3), Number(4)}, Signal({3}, {{4}})},
      {"rows of a matrix", L"signal", {MatrixOf({{0, 1}, {4, 5}})}, Signal({0, 1}, {{4, 5}})},
      {"x-y data that ascends", L"signal", {XyData({0, 1}, {{4, 5}})}, Signal({0, 1}, {{4, 5}})},
      {"abscissae of any order", L"xydata", {VectorOf({1, 0}), VectorOf({4, 5})}, XyData({1, 0}, {{4, 5}})},
      {"a signal", L"xydata", {kRising}, XyData({0, 1, 2, 3}, {{0, 10, 20, 30}, {5, 6, 7, 8}})},
      {"steps of 1 from 0", L"series", {VectorOf({4, 5, 6})}, Signal({0, 1, 2}, {{4, 5, 6}})},
      {"its own steps",
       L"series",
       {MatrixOf({{4, 5}, {6, 7}}), Number(0.5), Number(-1)},
       Signal({-1, -0.5}, {{4, 5}, {6, 7}})},
  });
}

TEST(SignalExtraction, PicksRowsAndSamples) {
  ExpectAll({
      {"the timeline", L"extract", {kRising, Number(0)}, VectorOf({0, 1, 2, 3})},
      {"the last channel", L"extract", {kRising, Number(2)}, VectorOf({5, 6, 7, 8})},
      {"rows in any order",
       L"extract",
       {kFalling, VectorOf({1, 0, 1})},
       MatrixOf({{30, 10, 20}, {3, 1, 2}, {30, 10, 20}})},
      {"a vector of one row is a matrix", L"extract", {kFalling, VectorOf({0})}, MatrixOf({{3, 1, 2}})},
      {"both ends included", L"window", {kRising, Number(1), Number(2)}, Signal({1, 2}, {{10, 20}, {6, 7}})},
      {"nothing interpolated", L"window", {kRising, Number(0.5), Number(1.5)}, Signal({1}, {{10}, {6}})},
      {"beyond both ends", L"window", {kRising, Number(-9), Number(9)}, kRising},
      {"x-y data keeps its order", L"window", {kFalling, Number(1.5), Number(3)}, XyData({3, 2}, {{30, 20}})},
  });
  // 3 * 0.1 is a little more than 0.3 in binary.
  EXPECT_EQ(Call(L"window", {Signal(Steps(0.1, 6), {Numbers(6, 1.0)}), Number(0.1), Number(0.3)}).size2(), 3u);
}

TEST(SignalExtraction, FindsTheLongestCommonTimeline) {
  const auto timed = [](const Numbers& timeline) { return Signal(timeline, {timeline}); };
  ExpectAll({
      {"union where both are", L"lct", {timed({0, 2, 4}), timed({1, 2, 3, 5})}, VectorOf({1, 2, 3, 4})},
      {"ends of one between samples of the other", L"lct", {timed({0, 10}), timed({2.5, 7.5})}, VectorOf({2.5, 7.5})},
      {"one point", L"lct", {timed({0, 1}), timed({1, 2})}, VectorOf({1})},
      {"sorted", L"lct", {kFalling, timed({0, 2.5, 4})}, VectorOf({1, 2, 2.5, 3})},
      {"repetitions", L"lct", {timed({0, 1, 1, 2}), timed({0, 1, 2})}, VectorOf({0, 1, 2})},
  });
  const Value common = Call(L"lct", {timed(Steps(0.1, 101)), timed(Steps(0.7 / 7.0 * (1 + 1e-15), 101))});
  EXPECT_EQ(common.size(), 101u) << "abscissae that differ by rounding count once";
}

TEST(SignalPeaks, FindsTurningPoints) {
  const Numbers y = {9, 1, 4, 4, 2, 2.5, -7, 0, 0};
  const Value signal = Signal(Steps(10, 9), {y, Steps(1, 9)});
  ExpectAll({
      {"all", L"peaks", {VectorOf(y)}, XyData({1, 2, 4, 5, 6}, {{1, 4, 2, 2.5, -7}})},
      {"minima", L"minpeaks", {VectorOf(y)}, XyData({1, 4, 6}, {{1, 2, -7}})},
      {"maxima", L"maxpeaks", {VectorOf(y)}, XyData({2, 5}, {{4, 2.5}})},
      {"a ripple below the tolerance", L"maxpeaks", {VectorOf(y), Number(0.5)}, XyData({2}, {{4}})},
      {"its end is not the next turn", L"peaks", {VectorOf(y), Number(0.5)}, XyData({1, 2, 6}, {{1, 4, -7}})},
      {"magnitude", L"magpeaks", {VectorOf(y)}, XyData({2, 6}, {{4, -7}})},
      {"all channels at the turns of one", L"minpeaks", {signal, Number(2.5)}, Signal({10, 60}, {{1, -7}, {1, 6}})},
      {"none in the other", L"peaks", {signal, Number(0), Number(2)}, Signal({}, {{}, {}})},
      {"a constant", L"peaks", {VectorOf({1, 1, 1})}, XyData({}, {{}})},
  });
}

}  // namespace
}  // namespace kestrel::calculator::test
