#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <iterator>
#include <string>

#include "calculator/functions/arguments.h"
#include "calculator/signals/function_groups.h"
#include "calculator/signals/samples.h"

namespace kestrel::calculator {
namespace {

const Value& GetTimed(const Arguments& arguments, std::size_t index) {
  const Value& value = GetValue(arguments, index);
  if (HasTimeline(value)) return value;
  RefuseArgument(index, L"A signal or x-y data is expected.");
}

/// The abscissae in ascending order.
math::Vector SortedAbscissae(const Arguments& arguments, std::size_t index) {
  math::Vector abscissae = GetSamples(arguments, index).abscissae;
  std::sort(abscissae.begin(), abscissae.end());
  return abscissae;
}

/// Writes the numbers of `sorted` from `from` to `to` without those that lie closer than `distance` behind their
/// predecessor; the last one gives way to `to`.
std::vector<double> Thinned(const std::vector<double>& sorted, double from, double to, double distance) {
  std::vector<double> kept = {from};
  for (const double number : sorted) {
    if (number - kept.back() > distance && to - number > distance) kept.push_back(number);
  }
  if (to > from) kept.push_back(to);
  return kept;
}

Value Lct(const Arguments& arguments, FunctionContext& /*context*/) {
  const math::Vector first = SortedAbscissae(arguments, 0);
  const math::Vector second = SortedAbscissae(arguments, 1);
  RequireEntries(static_cast<std::size_t>(first.size() + second.size()));
  const double from = std::max(*first.begin(), *second.begin());
  const double to = std::min(*(first.end() - 1), *(second.end() - 1));
  if (from > to) RefuseArgument(1, L"The timelines do not overlap.");
  std::vector<double> merged;
  std::merge(first.begin(), first.end(), second.begin(), second.end(), std::back_inserter(merged));
  const double step = std::min(MeanStep(first), MeanStep(second));
  const std::vector<double> common = Thinned(merged, from, to, kSameAbscissa * step);
  Value::VectorType timeline(common.size());
  std::copy(common.begin(), common.end(), timeline.begin());
  return Value(timeline);
}

/// The timeline for 0, channel k - 1 for k.
Value::VectorType Row(const Value& signal, std::size_t row) {
  return row == 0 ? signal.GetTimeline() : signal.GetRow(row - 1).GetVector();
}

std::size_t ToRow(const Value& signal, double number) {
  if (std::trunc(number) == number && number >= 0.0 && number <= static_cast<double>(signal.size1())) {
    return static_cast<std::size_t>(number);
  }
  RefuseArgument(1, L"A whole number from 0 to " + std::to_wstring(signal.size1()) + L" is expected.");
}

Value Extract(const Arguments& arguments, FunctionContext& /*context*/) {
  const Value& signal = GetTimed(arguments, 0);
  const std::vector<double> numbers = GetReals(arguments, 1);
  if (GetValue(arguments, 1).GetKind() != Value::VECTOR) return Value(Row(signal, ToRow(signal, numbers[0])));
  RequireEntries(numbers.size(), signal.size2());
  Value::MatrixType rows(numbers.size(), signal.size2());
  auto end = rows.data().begin();
  for (const double number : numbers) {
    const Value::VectorType row = Row(signal, ToRow(signal, number));
    end = std::copy(row.begin(), row.end(), end);
  }
  return Value(rows);
}

/// Numbers of the samples whose abscissa lies from `from` to `to`.
std::vector<std::size_t> SamplesWithin(const Value::VectorType& timeline, double from, double to) {
  double least = INFINITY;
  double most = -INFINITY;
  for (const Value::Complex& x : timeline) {
    least = std::min(least, x.real());
    most = std::max(most, x.real());
  }
  const double steps = std::max(1.0, static_cast<double>(timeline.size()) - 1.0);
  const double slack = std::isfinite(most - least) ? kSameAbscissa * (most - least) / steps : 0.0;
  std::vector<std::size_t> within;
  for (std::size_t i = 0; i < timeline.size(); ++i) {
    if (timeline(i).real() >= from - slack && timeline(i).real() <= to + slack) within.push_back(i);
  }
  return within;
}

Value Window(const Arguments& arguments, FunctionContext& /*context*/) {
  const Value& signal = GetTimed(arguments, 0);
  const double from = GetReal(arguments, 1);
  const double to = GetReal(arguments, 2);
  if (!(from <= to)) RefuseArgument(2, L"The end of the window must not lie before its start.");
  const std::vector<std::size_t> within = SamplesWithin(signal.GetTimeline(), from, to);
  if (within.empty()) RefuseArgument(0, L"No sample lies in the window.");
  Value::VectorType timeline(within.size());
  Value::MatrixType data(signal.size1(), within.size());
  for (std::size_t i = 0; i < within.size(); ++i) {
    timeline(i) = signal.GetTimeline()(within[i]);
    for (std::size_t row = 0; row < data.size1(); ++row) data(row, i) = signal.GetMatrix()(row, within[i]);
  }
  return {timeline, data, signal.GetKind()};
}

}  // namespace

void AppendExtraction(FunctionTable& table) {
  const CCalculatorArgumentInfoObject signal = {L"s", L"Signal or x-y data."};
  const std::vector<FunctionRow> rows = {
      {L"lct",
       L"The longest common timeline, as a vector: the abscissae of both, in ascending order and without repetitions, "
       L"within the range that both cover. Abscissae closer than 1e-9 of the mean step count as one.",
       {signal, {L"s2", L"Another one."}},
       L"lct(s, s2)",
       &Lct},
      {L"extract",
       L"Row 0, the timeline, or row k, channel k, as a vector; for a vector of row numbers a matrix of these rows.",
       {signal, {L"k", L"A row number from 0 to the number of channels, or a vector of them."}},
       L"extract(s, k)",
       &Extract},
      {L"window",
       L"The samples with an abscissa in the window, both ends included (within 1e-9 of the mean step); nothing is "
       L"interpolated. A window without samples is refused.",
       {signal, {L"from", L"First abscissa."}, {L"to", L"Last abscissa."}},
       L"window(s, from, to)",
       &Window},
  };
  AppendRows(table, rows);
}

}  // namespace kestrel::calculator
