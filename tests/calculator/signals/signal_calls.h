#pragma once

#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <string>
#include <vector>

#include "calculator/functions/option_words.h"
#include "calculator/signals/signal_functions.h"
#include "support/linear_algebra.h"

/// Short ways to call functions of signals in tests.
namespace kestrel::calculator::test {

using Numbers = std::vector<double>;

inline constexpr double kPi = 3.14159265358979323846;

inline const FunctionTable& Table() {
  static const FunctionTable table = [] {
    FunctionTable functions;
    AppendSignalFunctions(functions);
    return functions;
  }();
  return table;
}

inline Value Call(const std::wstring& name, const Arguments& arguments) {
  math::random::Generator generator(1);
  FunctionContext context = {generator, false, {}};
  return Table().at(name).function(arguments, context);
}

inline Value Number(double real, double imaginary = 0.0) { return {real, imaginary}; }
inline Value Word(EOption option) { return Number(static_cast<double>(option)); }

inline Value::VectorType Entries(const Numbers& numbers) {
  Value::VectorType entries(numbers.size());
  std::copy(numbers.begin(), numbers.end(), entries.begin());
  return entries;
}

inline Value VectorOf(const Numbers& numbers) { return Value(Entries(numbers)); }

inline Value::MatrixType Cells(const std::vector<Numbers>& rows) {
  Value::MatrixType cells(rows.size(), rows.empty() ? 0 : rows[0].size());
  for (std::size_t row = 0; row < rows.size(); ++row) {
    for (std::size_t column = 0; column < rows[row].size(); ++column) cells(row, column) = rows[row][column];
  }
  return cells;
}

inline Value MatrixOf(const std::vector<Numbers>& rows) { return Value(Cells(rows)); }
inline Value Signal(const Numbers& timeline, const std::vector<Numbers>& channels) {
  return {Entries(timeline), Cells(channels), Value::SIGNAL};
}
inline Value XyData(const Numbers& abscissae, const std::vector<Numbers>& channels) {
  return {Entries(abscissae), Cells(channels), Value::XYDATA};
}

template <class Curve>
Numbers Sampled(const Numbers& abscissae, Curve curve) {
  Numbers values(abscissae.size());
  std::transform(abscissae.begin(), abscissae.end(), values.begin(), curve);
  return values;
}

/// i * step for i = 0 ... count - 1.
inline Numbers Steps(double step, std::size_t count) {
  Numbers numbers(count);
  for (std::size_t i = 0; i < count; ++i) numbers[i] = step * static_cast<double>(i);
  return numbers;
}

/// The real parts of row k of a signal: 0 the timeline, 1 the first channel.
inline math::Vector RowOf(const Value& signal, std::size_t k = 1) {
  const Value::VectorType row = k == 0 ? signal.GetTimeline() : signal.GetRow(k - 1).GetVector();
  return math::Vector::NullaryExpr(static_cast<math::Index>(row.size()),
                                   [&](math::Index i) { return row(static_cast<std::size_t>(i)).real(); });
}

inline math::Vector ToEigen(const Numbers& numbers) {
  return Eigen::Map<const math::Vector>(numbers.data(), static_cast<math::Index>(numbers.size()));
}

}  // namespace kestrel::calculator::test
