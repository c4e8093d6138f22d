#pragma once

#include "datatypes/design_manager.h"
#include "datatypes/parameter_manager.h"
#include "support/log.h"

namespace kestrel::algorithm::datatypes {

/// How far bounds taken from values stand outside them, as a part of the values' range.
constexpr double kBoundsFactor = 0.1;

/// The parameters that the designs imply, in the order of the first design that has them. Names whose values are all
/// numbers (Real, or a scalar Variant) become continuous with the bounds
///   [min - lower_factor (max - min), max + upper_factor (max - min)],
/// all others (texts, truth values, integers) discrete with their states in the order of appearance. Bounds must not be
/// equal: a constant column of value c gets c -+ factor max(|c|, 1), and a factor of 0 counts there as kBoundsFactor.
///
/// To the log: "Design container is empty." (and the answer is empty), "Added discrete state \"...\" for parameter
/// ...", and, for a parameter without a finite value, which stays without bounds, "Unable to extract lower bound for
/// parameter
/// \"...\"" and "Unable to extract upper bound for parameter \"...\"".
ParameterManager extractParametersFromDesigns(const DesignManager& manager, utils::log::LogBase& log,
                                              double lower_factor = kBoundsFactor, double upper_factor = kBoundsFactor);

}  // namespace kestrel::algorithm::datatypes
