#include <utility>

#include "calculator/functions/arguments.h"
#include "calculator/signals/filter_design.h"
#include "calculator/signals/filter_run.h"
#include "calculator/signals/filter_signals.h"
#include "calculator/signals/function_groups.h"
#include "calculator/signals/option_arguments.h"

namespace kestrel::calculator {
namespace {

using Infos = std::vector<CCalculatorArgumentInfoObject>;

constexpr double kGreatestFrequency = 0.5 - kLeastFrequency;

/// A frequency as a share of the sampling frequency.
double GetFrequency(const Arguments& arguments, std::size_t index, double step) {
  return step * GetRealBetween(arguments, index, kLeastFrequency / step, kGreatestFrequency / step);
}

/// The kind as argument 1, and one or two cut-off frequencies from argument `index` on.
PassBand GetPassBand(const Arguments& arguments, std::size_t index, double step) {
  PassBand band;
  band.kind = GetOption(arguments, 1, {EOption::LOWPASS, EOption::HIGHPASS, EOption::BANDPASS, EOption::BANDSTOP});
  band.low = GetFrequency(arguments, index, step);
  const bool has_two = band.kind == EOption::BANDPASS || band.kind == EOption::BANDSTOP;
  if (!has_two && arguments.size() > index + 1) {
    RefuseArgument(index + 1, L"A second cut-off frequency is for BANDPASS and BANDSTOP only.");
  }
  if (!has_two) return band;
  band.high = GetFrequency(arguments, index + 1, step);
  if (band.high - band.low < kLeastFrequency) {
    RefuseArgument(index + 1, L"The second cut-off frequency must lie above the first.");
  }
  return band;
}

int GetOrder(const Arguments& arguments) { return static_cast<int>(GetInteger(arguments, 2, 1, kMaximalFilterOrder)); }

ColumnFilter Forward(Cascade cascade) {
  return [cascade = std::move(cascade)](Column samples) { RunForward(cascade, samples); };
}

ColumnFilter BothWays(Cascade cascade) {
  return [cascade = std::move(cascade)](Column samples) { RunBothWays(cascade, samples); };
}

ColumnFilter MakeButterworth(const Arguments& arguments, double step) {
  return Forward(DesignFilter(ButterworthPrototype(GetOrder(arguments)), GetPassBand(arguments, 3, step)));
}

ColumnFilter MakeSineButterworth(const Arguments& arguments, double step) {
  return BothWays(DesignFilter(ButterworthPrototype(GetOrder(arguments)), GetPassBand(arguments, 3, step)));
}

ColumnFilter MakeBessel(const Arguments& arguments, double step) {
  return Forward(DesignFilter(BesselPrototype(GetOrder(arguments)), GetPassBand(arguments, 3, step)));
}

ColumnFilter MakeChebyshevOne(const Arguments& arguments, double step) {
  const double ripple = GetRealBetween(arguments, 3, 1e-6, 60.0);
  return Forward(DesignFilter(ChebyshevOnePrototype(GetOrder(arguments), ripple), GetPassBand(arguments, 4, step)));
}

ColumnFilter MakeChebyshevTwo(const Arguments& arguments, double step) {
  const double attenuation = GetRealBetween(arguments, 3, 0.1, 240.0);
  return Forward(
      DesignFilter(ChebyshevTwoPrototype(GetOrder(arguments), attenuation), GetPassBand(arguments, 4, step)));
}

ColumnFilter MakeChannelClass(const Arguments& arguments, double step) {
  const double unit = GetRealOr(arguments, 2, 1.0);
  if (!(unit > 0.0)) RefuseArgument(2, L"A length above 0 is expected.");
  const double factor = 2.0775 * step * unit;
  const double cfc = GetRealBetween(arguments, 1, kLeastFrequency / factor, kGreatestFrequency / factor);
  return BothWays(DesignChannelClass(cfc, step * unit));
}

const CCalculatorArgumentInfoObject kSignal = {L"s", L"Signal or x-y data."};
const CCalculatorArgumentInfoObject kKind = {L"kind", L"LOWPASS, HIGHPASS, BANDPASS or BANDSTOP."};
const CCalculatorArgumentInfoObject kOrder = {
    L"order", L"The order of the low pass that the filter is made from, 1 to 20. Bands have twice this order."};
const CCalculatorArgumentInfoObject kLow = {
    L"f",
    L"The cut-off frequency in cycles per unit of the timeline (Hz for seconds), or the lower one of a band; from "
    L"0.00001 of the sampling frequency to as much below half of it."};
const CCalculatorArgumentInfoObject kHigh = {L"f2", L"The upper cut-off frequency of a band.", true};

const Infos kPlain = {kSignal, kKind, kOrder, kLow, kHigh};
const Infos kRippled = {kSignal, kKind, kOrder, {L"ripple", L"Ripple in the pass band in dB, 1e-6 to 60."},
                        kLow,    kHigh};
const Infos kStopped = {
    kSignal, kKind, kOrder, {L"attenuation", L"Least attenuation in the stop band in dB, 0.1 to 240."}, kLow, kHigh};
const Infos kClass = {
    kSignal,
    {L"cfc", L"Channel frequency class, such as 60, 180, 600 or 1000."},
    {L"unit", L"Length of a unit of the timeline in seconds: 0.001 for milliseconds. Default 1.", true}};

void AppendChannelClass(FunctionTable& table) {
  const std::vector<FunctionRow> rows = {
      {L"saeFilter",
       L"The phaseless low pass of a channel frequency class after SAE J211: its Butterworth filter with two poles, "
       L"run forward and backward. Each end is continued by its reflection in the end point.",
       kClass, L"saeFilter(s, cfc, unit)", &Filtered<&MakeChannelClass, ESampling::UNIFORM>},
      {L"saeFilterABQ", kAnySampling, kClass, L"saeFilterABQ(s, cfc, unit)",
       &Filtered<&MakeChannelClass, ESampling::ANY>},
  };
  AppendRows(table, rows);
}

void AppendButterworth(FunctionTable& table) {
  const std::vector<FunctionRow> rows = {
      {L"butterworthFilter",
       L"A Butterworth filter, run once from rest; half the power passes at the cut-off. The analog filter with its "
       L"cut-off prewarped, by the bilinear transform, as sections of second order.",
       kPlain, L"butterworthFilter(s, kind, order, f, f2)", &Filtered<&MakeButterworth, ESampling::UNIFORM>},
      {L"butterworthFilterABQ", kAnySampling, kPlain, L"butterworthFilterABQ(s, kind, order, f, f2)",
       &Filtered<&MakeButterworth, ESampling::ANY>},
      {L"sineButterworthFilter",
       L"The filter of butterworthFilter, run forward and backward, so that nothing is delayed and a quarter of the "
       L"power passes at the cut-off. Each end is continued by its reflection in the end point, which continues a sine "
       L"at its zeros as a sine.",
       kPlain, L"sineButterworthFilter(s, kind, order, f, f2)", &Filtered<&MakeSineButterworth, ESampling::UNIFORM>},
      {L"sineButterworthFilterABQ", kAnySampling, kPlain, L"sineButterworthFilterABQ(s, kind, order, f, f2)",
       &Filtered<&MakeSineButterworth, ESampling::ANY>},
      {L"besselFilter",
       L"A Bessel filter (flat group delay in the pass band of the low pass), run once from rest; half the power "
       L"passes at the cut-off. Made like butterworthFilter.",
       kPlain, L"besselFilter(s, kind, order, f, f2)", &Filtered<&MakeBessel, ESampling::UNIFORM>},
  };
  AppendRows(table, rows);
}

void AppendChebyshev(FunctionTable& table) {
  const std::vector<FunctionRow> rows = {
      {L"chebyOneFilter",
       L"A Chebyshev filter of the first kind, run once from rest: the gain ripples between 1 and the ripple in the "
       L"pass band, which ends at the cut-off, and falls from there. Made like butterworthFilter.",
       kRippled, L"chebyOneFilter(s, kind, order, ripple, f, f2)", &Filtered<&MakeChebyshevOne, ESampling::UNIFORM>},
      {L"chebyOneFilterABQ", kAnySampling, kRippled, L"chebyOneFilterABQ(s, kind, order, ripple, f, f2)",
       &Filtered<&MakeChebyshevOne, ESampling::ANY>},
      {L"chebyTwoFilter",
       L"A Chebyshev filter of the second kind, run once from rest: no ripple in the pass band, and at least the "
       L"attenuation in the stop band, which begins at the cut-off. Made like butterworthFilter.",
       kStopped, L"chebyTwoFilter(s, kind, order, attenuation, f, f2)",
       &Filtered<&MakeChebyshevTwo, ESampling::UNIFORM>},
      {L"chebyTwoFilterABQ", kAnySampling, kStopped, L"chebyTwoFilterABQ(s, kind, order, attenuation, f, f2)",
       &Filtered<&MakeChebyshevTwo, ESampling::ANY>},
  };
  AppendRows(table, rows);
}

}  // namespace

void AppendFilters(FunctionTable& table) {
  AppendChannelClass(table);
  AppendButterworth(table);
  AppendChebyshev(table);
}

}  // namespace kestrel::calculator
