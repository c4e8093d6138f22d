#include "calculator/functions/arguments.h"
#include "calculator/signals/filter_design.h"
#include "calculator/signals/filter_run.h"
#include "calculator/signals/filter_signals.h"
#include "calculator/signals/function_groups.h"
#include "calculator/signals/smoothing.h"

namespace kestrel::calculator {
namespace {

using math::Index;

constexpr long kLargestWindow = 1001;
constexpr long kHighestDegree = 9;
/// The low pass of the decimation still has a place at half the new sampling frequency.
constexpr long kLargestFactor = 10'000;

/// A Chebyshev filter of the second kind that lets constants through as they are, and nothing above 1e-4 of what the
/// new sampling would show at a wrong frequency: 40 dB in each direction.
ColumnFilter MakeAntiAlias(const Arguments& arguments, double /*step*/) {
  const long factor = GetInteger(arguments, 1, 1, kLargestFactor);
  if (factor == 1) return [](Column /*samples*/) {};
  const PassBand band = {EOption::LOWPASS, 0.5 / static_cast<double>(factor), 0.0};
  return
      [cascade = DesignFilter(ChebyshevTwoPrototype(8, 40.0), band)](Column samples) { RunBothWays(cascade, samples); };
}

template <ESampling sampling>
Value Decimate(const Arguments& arguments, FunctionContext& /*context*/) {
  const Samples samples = FilteredSamples(arguments, &MakeAntiAlias, sampling);
  const long factor = GetInteger(arguments, 1, 1, kLargestFactor);
  const auto kept = Eigen::seq(Index{0}, samples.size() - 1, static_cast<Index>(factor));
  return ToValue({samples.abscissae(kept), samples.values(kept, Eigen::all), samples.is_complex, samples.kind});
}

ColumnFilter MakeSmoother(const Arguments& arguments, double /*step*/) {
  const long window = GetInteger(arguments, 1, 1, kLargestWindow);
  if (window % 2 == 0) RefuseArgument(1, L"An odd number of samples is expected.");
  const long degree = GetIntegerOr(arguments, 2, 0, kHighestDegree, 0);
  if (degree >= window) RefuseArgument(2, L"The degree must be less than the number of samples.");
  return [window, degree](Column samples) { SmoothByPolynomials(samples, window / 2, degree); };
}

}  // namespace

void AppendSmoothing(FunctionTable& table) {
  const CCalculatorArgumentInfoObject signal = {L"s", L"Signal or x-y data."};
  const std::vector<CCalculatorArgumentInfoObject> decimation = {
      signal, {L"factor", L"Every so many samples one is kept, from the first; 1 to 10000."}};
  const std::vector<CCalculatorArgumentInfoObject> smoothing = {
      signal,
      {L"window", L"An odd number of samples, 1 to 1001."},
      {L"degree", L"Degree of the polynomials, 0 to 9 and less than the window. Default 0, the moving average.", true}};
  const std::vector<FunctionRow> rows = {
      {L"decimateFilter",
       L"Every so many samples one, after a phaseless low pass that keeps frequencies above half of the new sampling "
       L"frequency out: a Chebyshev filter of the second kind of order 8 with 40 dB from there on, run forward and "
       L"backward. Each end is continued by its reflection in the end point.",
       decimation, L"decimateFilter(s, factor)", &Decimate<ESampling::UNIFORM>},
      {L"decimateFilterABQ", kAnySampling, decimation, L"decimateFilterABQ(s, factor)", &Decimate<ESampling::ANY>},
      {L"smoothFilter",
       L"Each sample replaced by the value there of the polynomial that fits the samples of the window around it by "
       L"least squares (Savitzky and Golay); degree 0 gives the moving average. Near the ends the window ends where "
       L"the signal does.",
       smoothing, L"smoothFilter(s, window, degree)", &Filtered<&MakeSmoother, ESampling::UNIFORM>},
      {L"smoothFilterABQ", kAnySampling, smoothing, L"smoothFilterABQ(s, window, degree)",
       &Filtered<&MakeSmoother, ESampling::ANY>},
  };
  AppendRows(table, rows);
}

}  // namespace kestrel::calculator
