#pragma once

#include <cstddef>

#include "calculator/functions/function_table.h"
#include "support/linear_algebra.h"

/// Signals and x-y data in the form that numerical functions work with.
namespace kestrel::calculator {

/// The content of a signal or of x-y data as real numbers.
struct Samples {
  math::Vector abscissae;  ///< the timeline, one entry per sample
  math::Matrix values;     ///< samples x columns: the channels and, behind them, the imaginary parts if is_complex
  bool is_complex = false;
  Value::EKind kind = Value::SIGNAL;

  math::Index size() const { return abscissae.size(); }
};

/// True for a signal and for x-y data.
bool HasTimeline(const Value& value);

/// The argument as a signal or x-y data of finite numbers with a channel and at least `least` samples; the timeline of
/// a signal does not descend. Refuses all else.
Samples GetSamples(const Arguments& arguments, std::size_t index, math::Index least = 1);

/// The same with the kinds VECTOR and SCALAR counting as x-y data over the numbers 0, 1, ... of the entries.
Samples GetSamplesOrVector(const Arguments& arguments, std::size_t index);

/// Back to a value. Raises CCalculatorException if a number is not finite: the samples were, so that it overflowed.
Value ToValue(const Samples& samples);

/// One number per column of `values`, as a scalar if there is one channel and as a vector if there are several. Raises
/// as above.
Value ToChannelValue(const math::Vector& columns, bool is_complex);

/// True if each abscissa is larger than the one before.
bool IsAscending(const math::Vector& abscissae);

/// True if the abscissae ascend by the same step within 1e-6 of it.
bool IsUniform(const math::Vector& abscissae);

/// Refuses argument `index` unless each abscissa is larger than the one before.
void RequireAscending(const Samples& samples, std::size_t index);

/// The step of the abscissae. Refuses argument `index` unless they are uniform.
double RequireUniform(const math::Vector& abscissae, std::size_t index);

/// The mean step over the whole range, 0 for a single sample. Differences that are far smaller (kSameAbscissa times
/// the step) are taken for rounding.
double MeanStep(const math::Vector& abscissae);
inline constexpr double kSameAbscissa = 1e-9;

}  // namespace kestrel::calculator
