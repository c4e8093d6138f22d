#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "calculator/functions/call.h"

namespace kestrel::calculator::test {
namespace {

struct Reference {
  std::wstring name;
  Value::Complex x;
  Value::Complex value;
};

std::vector<Reference> ReadReferences() {
  std::vector<Reference> references;
  std::ifstream file(ZOR_REFERENCE_VALUES);
  std::string line;
  while (std::getline(file, line)) {
    std::istringstream fields(line);
    std::string name;
    double parts[4] = {};
    std::getline(fields, name, ',');
    for (double& part : parts) {
      fields >> part;
      fields.ignore(1);
    }
    references.push_back({string::widen(name), {parts[0], parts[1]}, {parts[2], parts[3]}});
  }
  return references;
}

TEST(ElementaryFunctions, AgreeWithReferenceValues) {
  const auto references = ReadReferences();
  ASSERT_EQ(references.size(), 16u * 7u);
  for (const Reference& reference : references) {
    const Value result = Call(reference.name, {Value(reference.x)});
    EXPECT_TRUE(IsSame(result, Value(reference.value)))
        << string::narrow(reference.name) << reference.x << ": " << string::narrow(Text(result));
  }
}

TEST(ElementaryFunctions, WorkEntryByEntryOnEveryKind) {
  ExpectValues(std::vector<Case>{
      {L"sqrt", {Boolean(true)}, Scalar(1)},
      {L"sqrt", {Scalar(-4)}, Scalar(0, 2)},
      {L"sqrt", {Scalar(-4, -0.0)}, Scalar(0, 2)},
      {L"sqrt", {Vector({4, -9})}, Vector({2, {0, 3}})},
      {L"sqrt", {Vector({})}, Vector({})},
      {L"sqrt", {Scalar(kNaN)}, Scalar(kNaN)},
      {L"exp", {Matrix2({0, 1, -1, -kInfinity})}, Matrix2({1, M_E, 1 / M_E, 0})},
      {L"abs", {Signal2({0, 1}, {-1, 2, {3, 4}, -5})}, Signal2({0, 1}, {1, 2, 5, 5})},
      {L"abs", {Signal2({3, 1}, {-1, 2, -3, 4}, Value::XYDATA)}, Signal2({3, 1}, {1, 2, 3, 4}, Value::XYDATA)},
      {L"ln", {Scalar(0)}, Scalar(-kInfinity)},
      {L"asin", {Scalar(kNaN)}, Scalar(kNaN)},
      {L"atanh", {Scalar(1)}, Scalar(kInfinity)},
      {L"log", {Vector({1000, 0.01})}, Vector({3, -2})},
      {L"log", {Vector({8, 0.25}), Scalar(2)}, Vector({3, -2})},
      {L"log", {Scalar(-9), Scalar(3)}, Scalar(2, M_PI / std::log(3.0))},
      {L"deg2rad", {Vector({180, -90})}, Vector({M_PI, -M_PI / 2})},
      {L"rad2deg", {Scalar(M_PI)}, Scalar(180)},
  });
  EXPECT_EQ(Call(L"log", {Scalar(8), Scalar(2)}).GetScalar(), 3.0);  // exactly
}

TEST(ElementaryFunctions, Round) {
  ExpectValues(std::vector<Case>{
      {L"round", {Vector({2.5, -2.5, 0.49})}, Vector({3, -3, 0})},
      {L"round", {Scalar(3.14159), Scalar(3)}, Scalar(3.142)},
      {L"round", {Scalar(12345), Scalar(-2)}, Scalar(12300)},
      {L"round", {Vector({1e200, -kInfinity}), Scalar(300)}, Vector({1e200, -kInfinity})},
      {L"round", {Scalar(1.6, -1.4)}, Scalar(2, -1)},
      {L"ceil", {Scalar(-1.5, 0.5)}, Scalar(-1, 1)},
      {L"floor", {Vector({-1.5, 1.5})}, Vector({-2, 1})},
      {L"sgn", {Vector({-3, 0, 7, {3, 4}})}, Vector({-1, 0, 1, {0.6, 0.8}})},
      {L"sgn", {Scalar(kNaN)}, Scalar(kNaN)},
      {L"mod", {Vector({7, -7, 6, -6}), Scalar(3)}, Vector({1, 2, 0, 0})},
      {L"mod", {Scalar(7), Vector({-3, 0, 2.5})}, Vector({-2, 7, 2})},
  });
}

TEST(ElementaryFunctions, PairOperandsAsTheOperatorsDo) {
  const Value signal = Signal2({0, 1}, {5, 6, 7, 8});
  ExpectValues(std::vector<Case>{
      {L"mod", {signal, Scalar(4)}, Signal2({0, 1}, {1, 2, 3, 0})},
      {L"mod", {Scalar(7), signal}, Signal2({0, 1}, {2, 1, 0, 7})},
      {L"mod", {signal, Vector({2, 4})}, Signal2({0, 1}, {1, 2, 1, 0})},
      {L"mod", {Vector({11, 12}), signal}, Signal2({0, 1}, {1, 0, 4, 4})},
      {L"mod", {Matrix2({11, 12, 13, 14}), signal}, Signal2({0, 1}, {1, 0, 6, 6})},
      {L"mod", {signal, Signal2({2, 3}, {5, 5, 5, 5})}, Signal2({0, 1}, {0, 1, 2, 3})},
      {L"mod", {Matrix2({5, 6, 7, 8}), Matrix2({2, 4, 4, 3})}, Matrix2({1, 2, 3, 2})},
      {L"times", {Scalar(kInfinity), Vector({-1, {0, 1}}), Boolean(true)}, Vector({-kInfinity, {kNaN, kInfinity}})},
      {L"times", {signal, Scalar(2), Vector({1, 10})}, Signal2({0, 1}, {10, 120, 14, 160})},
  });
}

TEST(ComplexFunctions, SplitAndJoin) {
  ExpectValues(std::vector<Case>{
      {L"cplx", {Vector({1, 2}), Scalar(3)}, Vector({{1, 3}, {2, 3}})},
      {L"cplx", {Scalar(1), Scalar(kInfinity)}, Scalar(1, kInfinity)},
      {L"cplx", {Scalar(2), Scalar(0)}, Scalar(2)},
      {L"conj", {Vector({{1, 2}, 3})}, Vector({{1, -2}, 3})},
      {L"real", {Signal2({0, 1}, {{1, 2}, 3, 4, 5})}, Signal2({0, 1}, {1, 3, 4, 5})},
      {L"imag", {Vector({{1, 2}, 3})}, Vector({2, 0})},
      {L"arg", {Vector({{0, 1}, -1, 1})}, Vector({M_PI / 2, M_PI, 0})},
      {L"arg", {-Scalar(1)}, Scalar(M_PI)},
      {L"abs", {Scalar(3e200, 4e200)}, Scalar(5e200)},
  });
}

TEST(ComplexFunctions, FindAnglesAndTurnCoordinates) {
  ExpectValues(std::vector<Case>{
      {L"atan2", {Scalar(1), Scalar(-1)}, Scalar(0.75 * M_PI)},
      {L"atan2", {Vector({1, -1}), Scalar(0)}, Vector({M_PI / 2, -M_PI / 2})},
      {L"atan2", {Scalar(-1, -1)}, Scalar(-0.75 * M_PI)},
      {L"atan2", {-Scalar(2)}, Scalar(M_PI)},
      {L"atan2", {Vector({0, 2})}, Scalar(M_PI / 2)},
      {L"cart2pol", {Scalar(0), Scalar(2)}, Vector({M_PI / 2, 2})},
      {L"cart2pol", {Scalar(3, 4)}, Vector({std::atan2(4, 3), 5})},
      {L"cart2pol", {Vector({-1, 0})}, Vector({M_PI, 1})},
      {L"cart2pol", {Vector({1, 0}), Vector({1, -2})}, Matrix2({M_PI / 4, -M_PI / 2, M_SQRT2, 2})},
      {L"pol2cart", {Scalar(M_PI), Scalar(2)}, Vector({-2, 0})},
      {L"pol2cart", {Matrix2({0, M_PI / 2, 3, 4})}, Matrix2({3, 0, 0, 4})},
  });
}

}  // namespace
}  // namespace kestrel::calculator::test
