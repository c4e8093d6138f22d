#include <algorithm>
#include <iterator>

#include "calculator/functions/arguments.h"
#include "calculator/signals/function_groups.h"
#include "calculator/signals/samples.h"

namespace kestrel::calculator {
namespace {

using math::Index;

struct Turns {
  std::vector<Index> maxima;  ///< in ascending order, like the minima, with which they alternate
  std::vector<Index> minima;
};

/// The turning points of a curve: between two neighbours of them it rises or falls by more than the tolerance. A
/// plateau counts as its first sample. Neither end of the curve is one.
Turns FindTurns(const math::VectorIn& y, double tolerance) {
  Turns turns;
  Index lowest = 0;  // since the last turning point
  Index highest = 0;
  enum class ESense { UNKNOWN, RISING, FALLING } sense = ESense::UNKNOWN;
  for (Index i = 1; i < y.size(); ++i) {
    if (y(i) > y(highest)) highest = i;
    if (y(i) < y(lowest)) lowest = i;
    if (sense != ESense::FALLING && y(highest) - y(i) > tolerance) {
      // Before the first turn the curve may have risen by no more than the tolerance; then this is no maximum.
      if (sense == ESense::RISING) turns.maxima.push_back(highest);
      sense = ESense::FALLING;
      lowest = i;
    } else if (sense != ESense::RISING && y(i) - y(lowest) > tolerance) {
      if (sense == ESense::FALLING) turns.minima.push_back(lowest);
      sense = ESense::RISING;
      highest = i;
    }
  }
  return turns;
}

Samples Picked(const Samples& samples, const std::vector<Index>& rows) {
  return {samples.abscissae(rows), samples.values(rows, Eigen::all), samples.is_complex, samples.kind};
}

/// The column of the channel that argument 3 names.
math::Vector GetChannel(const Arguments& arguments, const Samples& samples) {
  if (samples.is_complex) RefuseArgument(0, L"Real samples are expected.");
  const auto channels = static_cast<long>(samples.values.cols());
  return samples.values.col(GetIntegerOr(arguments, 2, 1, channels, 1) - 1);
}

double GetTolerance(const Arguments& arguments) {
  const double tolerance = GetRealOr(arguments, 1, 0.0);
  if (!(tolerance >= 0.0)) RefuseArgument(1, L"A tolerance of at least 0 is expected.");
  return tolerance;
}

enum class EPeaks { ALL, MINIMA, MAXIMA, MAGNITUDE };

template <EPeaks which>
Value Peaks(const Arguments& arguments, FunctionContext& /*context*/) {
  const Samples samples = GetSamplesOrVector(arguments, 0);
  const double tolerance = GetTolerance(arguments);
  math::Vector y = GetChannel(arguments, samples);
  if (which == EPeaks::MAGNITUDE) y = y.cwiseAbs().eval();
  const Turns turns = FindTurns(y, tolerance);
  if (which == EPeaks::MINIMA) return ToValue(Picked(samples, turns.minima));
  if (which != EPeaks::ALL) return ToValue(Picked(samples, turns.maxima));
  std::vector<Index> both;
  std::merge(turns.minima.begin(), turns.minima.end(), turns.maxima.begin(), turns.maxima.end(),
             std::back_inserter(both));
  return ToValue(Picked(samples, both));
}

const std::vector<CCalculatorArgumentInfoObject> kArguments = {
    {L"s", L"Signal, x-y data, or a vector, which counts as x-y data over the entry numbers 0, 1, ..."},
    {L"tolerance", L"What the channel rises or falls by between two turning points is more. Default 0.", true},
    {L"channel", L"The channel that is looked at, from 1. Default 1.", true}};

}  // namespace

void AppendPeaks(FunctionTable& table) {
  const std::vector<FunctionRow> rows = {
      {L"peaks",
       L"The samples, of all channels, at which a channel has a local minimum or maximum. A plateau counts as its "
       L"first sample, the ends of the signal do not count, and the result has no samples if there is no such point.",
       kArguments, L"peaks(s, tolerance, channel)", &Peaks<EPeaks::ALL>},
      {L"minpeaks", L"As peaks, for the local minima only.", kArguments, L"minpeaks(s, tolerance, channel)",
       &Peaks<EPeaks::MINIMA>},
      {L"maxpeaks", L"As peaks, for the local maxima only.", kArguments, L"maxpeaks(s, tolerance, channel)",
       &Peaks<EPeaks::MAXIMA>},
      {L"magpeaks", L"As peaks, for the local maxima of the magnitude; the values keep their sign.", kArguments,
       L"magpeaks(s, tolerance, channel)", &Peaks<EPeaks::MAGNITUDE>},
  };
  AppendRows(table, rows);
}

}  // namespace kestrel::calculator
