#pragma once

#include "calculator/signals/filter_run.h"

namespace kestrel::calculator {

/// Replaces each sample by the value there of the polynomial that fits, by least squares, the samples up to `reach`
/// places away (Savitzky and Golay). Near the ends these are fewer, and the degree is at most one less than their
/// number. Degree 0 is the moving average.
void SmoothByPolynomials(Column samples, math::Index reach, math::Index degree);

}  // namespace kestrel::calculator
