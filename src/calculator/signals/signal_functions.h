#pragma once

#include "calculator/functions/function_table.h"

namespace kestrel::calculator {

/// Adds the functions that make, cut, calculate with, resample, transform and filter signals and x-y data.
///
/// What holds for all of them: a signal has a finite timeline that does not descend, x-y data has finite abscissae of
/// any order. Functions that calculate refuse samples that are not finite and results too large for a number, so that
/// none makes a NaN; signal, series, xydata, extract and window take any. Complex data pass wherever the function is
/// linear. Refusals are CCalculatorException and name the argument.
void AppendSignalFunctions(FunctionTable& table);

}  // namespace kestrel::calculator
