#pragma once

#include <memory>

#include "datatypes/nvp_sequence.h"
#include "datatypes/parameter_manager.h"
#include "random_variables/random_variable_set.h"

namespace kestrel::algorithm::datatypes {

/// The random variables around one design point: one for each active, not constant parameter with a distribution, in
/// the manager's order. A mixed parameter's distribution moves its mean to the design's value. A Nataf model if there
/// are correlations between them, else independent variables. Every failure is a utils::runtime_error.
std::unique_ptr<RVSet_Base> TransformDesignPointToRVSet(const ParameterManager& manager,
                                                        const CDesignEntrySequence& design_point);

}  // namespace kestrel::algorithm::datatypes
