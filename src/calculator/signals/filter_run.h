#pragma once

#include "calculator/signals/filter_design.h"
#include "support/linear_algebra.h"

namespace kestrel::calculator {

using Column = Eigen::Ref<math::Vector>;

/// Filters uniform samples in place, from rest: what was before the first sample counts as 0.
void RunForward(const Cascade& cascade, Column samples);

/// Filters uniform samples in place, forward and then backward, so that nothing is delayed and the gain is squared. At
/// each end the signal is continued by its reflection in its end point, for as long as the filter rings (or as there
/// are samples), and its last value there counts as the value of all time before.
void RunBothWays(const Cascade& cascade, Column samples);

}  // namespace kestrel::calculator
