#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <string>
#include <utility>

#include "calculator/functions/arguments.h"
#include "calculator/signals/function_groups.h"
#include "calculator/signals/samples.h"

namespace kestrel::calculator {
namespace {

Value::VectorType ToVector(const std::vector<double>& numbers) {
  Value::VectorType vector(numbers.size());
  std::copy(numbers.begin(), numbers.end(), vector.begin());
  return vector;
}

/// The channels that an argument stands for: a vector is one, a matrix has one per row, a number is one of one sample.
Value::MatrixType GetChannels(const Arguments& arguments, std::size_t index) {
  const Value& value = GetValue(arguments, index);
  if (value.GetKind() == Value::MATRIX) return value.GetMatrix();
  if (value.GetKind() == Value::VECTOR) {
    Value::MatrixType row(1, value.size());
    std::copy(value.GetVector().begin(), value.GetVector().end(), row.data().begin());
    return row;
  }
  if (value.GetKind() == Value::SCALAR) return {1, 1, value.GetScalar()};
  RefuseArgument(index, L"A vector or a matrix with one row per channel is expected.");
}

/// Appends the rows of `more`, which came as argument `index`.
void AppendChannels(Value::MatrixType& channels, const Value::MatrixType& more, std::size_t samples,
                    std::size_t index) {
  if (more.size2() != samples) {
    RefuseArgument(index, L"It has " + std::to_wstring(more.size2()) + L" samples, the timeline has " +
                              std::to_wstring(samples) + L".");
  }
  const std::size_t old_rows = channels.size1();
  RequireEntries(old_rows + more.size1(), samples);
  channels.resize(old_rows + more.size1(), samples, true);
  std::copy(more.data().begin(), more.data().end(),
            channels.data().begin() + static_cast<std::ptrdiff_t>(old_rows * samples));
}

void RequireTimeline(const std::vector<double>& timeline, std::size_t index) {
  if (!std::is_sorted(timeline.begin(), timeline.end())) {
    RefuseArgument(index, L"The timeline of a signal must ascend; see xydata.");
  }
}

/// Abscissae as the first argument, channels as the others.
Value Assemble(const Arguments& arguments, Value::EKind kind) {
  const std::vector<double> abscissae = GetReals(arguments, 0);
  if (kind == Value::SIGNAL) RequireTimeline(abscissae, 0);
  Value::MatrixType channels(0, abscissae.size());
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    AppendChannels(channels, GetChannels(arguments, i), abscissae.size(), i);
  }
  return {ToVector(abscissae), channels, kind};
}

/// The first row of a matrix as abscissae, the others as channels.
Value FromRows(const Value& rows, Value::EKind kind) {
  if (rows.size1() < 2) RefuseArgument(0, L"A matrix of a timeline and at least one channel is expected.");
  const Value::MatrixType& cells = rows.GetMatrix();
  Value::MatrixType channels(rows.size1() - 1, rows.size2());
  std::copy(cells.data().begin() + static_cast<std::ptrdiff_t>(rows.size2()), cells.data().end(),
            channels.data().begin());
  const std::vector<double> abscissae = GetReals({rows.GetRow(0)}, 0);
  if (kind == Value::SIGNAL) RequireTimeline(abscissae, 0);
  return {ToVector(abscissae), channels, kind};
}

Value Convert(Value value, Value::EKind kind) {
  if (kind == Value::SIGNAL) RequireTimeline(GetReals({Value(value.GetTimeline())}, 0), 0);
  value.SetKind(kind);
  return value;
}

template <Value::EKind kind>
Value Make(const Arguments& arguments, FunctionContext& /*context*/) {
  if (arguments.size() > 1) return Assemble(arguments, kind);
  const Value& value = GetValue(arguments, 0);
  if (HasTimeline(value)) return Convert(value, kind);
  if (value.GetKind() == Value::MATRIX) return FromRows(value, kind);
  RefuseArgument(0, L"A matrix, a signal or x-y data is expected, or a vector followed by channels.");
}

Value Series(const Arguments& arguments, FunctionContext& /*context*/) {
  const Value::MatrixType channels = GetChannels(arguments, 0);
  const double step = GetRealOr(arguments, 1, 1.0);
  const double start = GetRealOr(arguments, 2, 0.0);
  Value::VectorType timeline(channels.size2());
  for (std::size_t i = 0; i < timeline.size(); ++i) timeline(i) = start + step * static_cast<double>(i);
  const double end = timeline.empty() ? start : timeline(timeline.size() - 1).real();
  if (!(step > 0.0) || !std::isfinite(step)) RefuseArgument(1, L"A step above 0 is expected.");
  if (!std::isfinite(start) || !std::isfinite(end)) RefuseArgument(2, L"The timeline is not finite.");
  return {timeline, channels, Value::SIGNAL};
}

const std::vector<CCalculatorArgumentInfoObject> kChannels = {
    {L"x",
     L"The abscissae, a vector; or alone, a matrix whose first row they are and whose other rows are channels; or "
     L"alone, a signal or x-y data."},
    {L"y", L"A channel as a vector, or several as the rows of a matrix; any number of such arguments.", true}};

}  // namespace

void AppendConstruction(FunctionTable& table) {
  const std::vector<FunctionRow> rows = {
      {L"signal", L"A signal of a timeline, which must not descend, and channels with one entry per point of it.",
       kChannels, L"signal(x, y, ...)\nsignal(matrix)\nsignal(xydata)", &Make<Value::SIGNAL>, true},
      {L"series",
       L"A signal that is sampled uniformly: sample i of the channels belongs to the time start + i * step.",
       {{L"y", L"A channel as a vector, or several as the rows of a matrix."},
        {L"step", L"The distance of two samples, above 0. Default 1.", true},
        {L"start", L"The time of the first sample. Default 0.", true}},
       L"series(y, step, start)",
       &Series},
      {L"xydata", L"X-y data of abscissae in any order and channels with one entry per abscissa.", kChannels,
       L"xydata(x, y, ...)\nxydata(signal)\nxydata(matrix)", &Make<Value::XYDATA>, true},
  };
  AppendRows(table, rows);
}

}  // namespace kestrel::calculator
