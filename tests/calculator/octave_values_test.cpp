#include <gtest/gtest.h>

#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <complex>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "calculator/calculator.h"
#include "calculator/standard_functions.h"
#include "support/strings.h"

// The whole way from a text to its value against another program: octave_values.m writes the expressions and values.

namespace kestrel::calculator::test {
namespace {

using Numbers = std::vector<std::complex<double>>;

struct Line {
  std::string expression;
  Numbers values;
};

std::vector<Line> ReadLines() {
  std::vector<Line> lines;
  std::ifstream file(ZOR_OCTAVE_VALUES);
  for (std::string text; std::getline(file, text);) {
    std::istringstream fields(text);
    Line line;
    std::getline(fields, line.expression, '\t');
    for (double real = 0.0, imaginary = 0.0; fields >> real >> imaginary;) line.values.emplace_back(real, imaginary);
    lines.push_back(std::move(line));
  }
  return lines;
}

/// Its entries, row by row; of a signal the data.
Numbers Entries(const Value& value) {
  if (value.GetKind() == Value::BOOLEAN) return {value.GetBoolean() ? 1.0 : 0.0};
  if (value.GetKind() == Value::SCALAR) return {value.GetScalar()};
  const auto gather = [](const auto& entries) { return Numbers(entries.data().begin(), entries.data().end()); };
  return value.GetKind() == Value::VECTOR ? gather(value.GetVector()) : gather(value.GetMatrix());
}

/// The largest difference, as a share of the largest entry.
double Difference(const Numbers& values, const Numbers& expected) {
  double difference = 0.0;
  double largest = 0.0;
  for (std::size_t k = 0; k < expected.size(); ++k) {
    difference = std::max(difference, std::abs(values[k] - expected[k]));
    largest = std::max(largest, std::abs(expected[k]));
  }
  return difference / std::max(largest, 1e-300);
}

TEST(StandardFunctions, AgreeWithOctave) {
  const std::vector<Line> lines = ReadLines();
  ASSERT_GT(lines.size(), 100u);
  Calculator calculator(StandardFunctions());
  for (const Line& line : lines) {
    const Numbers values = Entries(calculator.Eval<evaluation_traits::by_value>(string::widen(line.expression)));
    ASSERT_EQ(values.size(), line.values.size()) << line.expression;
    EXPECT_LT(Difference(values, line.values), 1e-12) << line.expression;
  }
}

}  // namespace
}  // namespace kestrel::calculator::test
