#pragma once

#include "selection/search_context.h"

namespace kestrel::math::metamodel {

/// Leaves out inputs that say the same as others. The inputs of a stepwise polynomial stay; the others of importance 1
/// join them in the order of their independence, as long as the inputs chosen so far explain them by no more than
/// `max_input_corr_` squared.
/// @returns the working importance with 0 for every input that is not chosen.
IndexVector CheckCorrelatedInputs(const SearchContext& context);

}  // namespace kestrel::math::metamodel
