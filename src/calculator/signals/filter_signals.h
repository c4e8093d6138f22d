#pragma once

#include <functional>
#include <string>

#include "calculator/functions/function_table.h"
#include "calculator/signals/filter_run.h"
#include "calculator/signals/samples.h"

/// The frame of all filters: reads the signal, filters each channel, and gives the signal back.
namespace kestrel::calculator {

/// Filters one column of uniform samples in place.
using ColumnFilter = std::function<void(Column)>;

/// Reads the arguments behind the signal and makes their filter.
/// @param step  the sampling step, in units of the timeline.
using FilterMaker = ColumnFilter (*)(const Arguments& arguments, double step);

enum class ESampling {
  UNIFORM,  ///< another sampling is refused
  ANY  ///< filtered is what ResampledUniformly makes of it; the result is that, by lines, at the original abscissae
};

/// Argument 0, filtered. Refuses fewer than 2 samples.
Samples FilteredSamples(const Arguments& arguments, FilterMaker maker, ESampling sampling);

/// A function of the table.
template <FilterMaker maker, ESampling sampling>
Value Filtered(const Arguments& arguments, FunctionContext& /*context*/) {
  return ToValue(FilteredSamples(arguments, maker, sampling));
}

/// A real argument from `least` to `most`; refuses all else.
double GetRealBetween(const Arguments& arguments, std::size_t index, double least, double most);

/// What the functions for any sampling say of themselves.
inline constexpr auto kAnySampling =
    L"As the function without ABQ in its name, for x-y data and signals of any sampling: they are brought, by lines, "
    L"to a uniform timeline of their smallest step (and at most ten times as many samples), filtered, and brought "
    L"back, by lines, to their abscissae, which may repeat, but not descend.";

}  // namespace kestrel::calculator
