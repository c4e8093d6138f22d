#pragma once

#include "calculator/functions/function_table.h"

namespace kestrel::calculator {

/// Adds the functions on numbers, vectors and matrices: elementary functions, statistics, complex numbers, linear
/// algebra, modal measures, questions about a value, random numbers, files. What treats a signal as a signal (filters,
/// transforms, interpolation) is elsewhere; yet the functions here take the kinds with a timeline, too:
///
/// - What works entry by entry keeps the timeline. Real entries give real ones wherever a real result exists.
/// - What makes one number of many works on the data. A boolean and a scalar count as one number, a vector is one row
///   of numbers. A matrix gives a vector with one entry per row; a signal gives a vector with one entry per channel,
///   and a scalar if it has one channel only.
/// - A NaN among the numbers goes through to the result, but `min` and `max` leave it out.
void AppendFunctions(FunctionTable& table);

}  // namespace kestrel::calculator
