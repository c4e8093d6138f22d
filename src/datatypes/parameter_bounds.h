#pragma once

#include <optional>
#include <utility>

#include "datatypes/design_entry.h"
#include "datatypes/parameter.h"

namespace kestrel::algorithm::datatypes {

/// The value of a cell that holds one real number; none for a text, a vector and the like.
std::optional<double> NumberOf(const CDesignEntry& entry);

/// The smallest and the largest number that an optimization parameter may take: its bounds, infinite where they are not
/// set, or those among the states of a discrete one. None for other parameters, and where no state is a number.
std::optional<std::pair<double, double>> NumberBoundsOf(const Parameter& parameter);

}  // namespace kestrel::algorithm::datatypes
