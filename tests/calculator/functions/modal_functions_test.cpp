#include "calculator/functions/call.h"

namespace kestrel::calculator::test {
namespace {

/// n degrees of freedom and three half waves, one column each.
Value SineModes(std::size_t n) {
  Value::MatrixType modes(n, 3);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t mode = 0; mode < 3; ++mode) {
      modes(i, mode) =
          std::sin(M_PI * static_cast<double>(mode + 1) * static_cast<double>(i) / static_cast<double>(n - 1));
    }
  }
  return Value(modes);
}

TEST(ModalFunctions, AssureModes) {
  ExpectValues(std::vector<Case>{
      {L"mac", {Vector({1, 2, 2}), Vector({2, 2, 1})}, Scalar(64.0 / 81)},
      {L"mac", {Vector({1, 2}), Vector({-1e-200, -2e-200})}, Scalar(1)},
      {L"mac", {Vector({1, {0, 1}}), Vector({{0, 3}, -3})}, Scalar(1)},
      {L"mac", {Vector({1, {0, 1}}), Vector({1, {0, -1}})}, Scalar(0)},
      {L"mac", {Vector({0, 0}), Vector({1, 2})}, Scalar(0)},
      {L"mac", {Matrix2({1, 0, 1, 1}), Vector({1, 0})}, Matrix2({0.5, 0})},
      {L"comac", {Matrix2({1, 2, 0, 1}), Matrix2({2, 4, 1, 0})}, Vector({1, 0})},
      {L"comac", {Matrix2({1, 2, {3, 4}, 1}), Matrix2({2, 1, 1, {0, 2}})}, Vector({16.0 / 25, 49.0 / 130})},
      {L"comac", {Vector({0, 5}), Vector({0, -1})}, Vector({0, 1})},
  });
  const Value mac = Call(L"mac", {SineModes(21), SineModes(21)});
  EXPECT_TRUE(IsSame(mac, Value(MakeMatrix(3, 3, {1, 0, 0, 0, 1, 0, 0, 0, 1}))));
}

TEST(ModalFunctions, PairModesByTheLargestMac) {
  const Value b = Value(MakeMatrix(3, 2, {0, 1, 1, 1, 1, 0}));
  const Value a = Value(MakeMatrix(3, 3, {1, 0, 0, 1, 1, 0, 0, 0.5, 1}));
  // MAC: a0 with b: 0.25, 1; a1: (1.5)^2 / (2 x 1.25) = 0.9, 0.4; a2: 0.5, 0
  ExpectValues(std::vector<Case>{
      {L"modepairs", {a, b}, Matrix2({0, 1, 1, 1, 0, 0.9})},
      {L"modepairs", {a, b, Scalar(0.95)}, Value(MakeMatrix(1, 3, {0, 1, 1}))},
      {L"modepairs", {a, b, Scalar(1.5)}, Value(MakeMatrix(0, 3, {}))},
  });
}

TEST(ModalFunctions, LocateDamage) {
  ExpectValues(std::vector<Case>{
      {L"sdi", {Vector({0, 1, 0, 0}), Vector({0, 0, -3, 0})}, Vector({1.1 / 1.4, 1.1 / 1.4, 1.4 / 1.1, 1.4 / 1.1})},
      {L"sdi", {Vector({0, 1, 2, 3}), Vector({0, 0, 0, 0})}, Vector({1, 1, 1, 1})},  // neither bends
  });
  const Value intact = SineModes(41);
  Value damaged = intact;
  for (std::size_t i = 0; i < 41; ++i) {
    for (std::size_t mode = 0; mode < 3; ++mode) {  // a hinge at 12
      damaged.MatrixRef()(i, mode) += 0.02 * std::max(0.0, 10.0 - std::abs(static_cast<double>(i) - 12.0));
    }
  }
  const Value index = Call(L"sdi", {intact, damaged});
  for (std::size_t i = 0; i < 41; ++i) {
    EXPECT_TRUE(i == 12 || index.at(i).real() < index.at(12).real()) << i;
  }
  EXPECT_GT(index.at(12).real(), 1.02);
}

}  // namespace
}  // namespace kestrel::calculator::test
