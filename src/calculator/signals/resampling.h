#pragma once

#include "calculator/signals/samples.h"

namespace kestrel::calculator {

/// The signal, by lines, on a uniform timeline over the same range, with the smallest step of the samples, but at most
/// ten times as many samples. Where abscissae repeat, the first sample counts. Uniform samples stay as they are.
/// Refuses argument `index` unless its abscissae ascend, repetitions allowed, over a range above 0.
Samples ResampledUniformly(const Samples& samples, std::size_t index);

/// The curve of lines through the columns of `values` over `from`, at other abscissae in its range.
math::Matrix InterpolatedLines(const math::Vector& from, const math::Matrix& values, const math::Vector& to);

}  // namespace kestrel::calculator
