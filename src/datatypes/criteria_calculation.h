#pragma once

#include "calculator/calculator.h"
#include "datatypes/criterion.h"
#include "datatypes/design.h"
#include "datatypes/design_entry.h"
#include "datatypes/parameter_manager.h"
#include "datatypes/run_info.h"

/// The values of criteria and of dependent parameters, which are expressions over the values of a design. A calculator
/// that serves many designs parses each expression once.
namespace kestrel::algorithm::datatypes {

/// Evaluates the criteria in their order and stores both sides and the value:
///
///   an objective   the left side
///   left <= right  right - left, the margin, which is not negative where the comparison holds
///   left >= right  left - right
///   left == right  left - right
///
/// Parameters, responses and the criteria before are objects under their names; a criterion does not hide another
/// object. A criterion that cannot be evaluated gets uninitialized values.
/// @param run_info  what went wrong: "Cannot use object for calculations: ", name, ": " and the reason for each value
///                  that is no object (uninitialized, a text, a name that is no identifier), and a line for each
///                  criterion that failed. Marks a failure if a criterion failed.
void CalculateCriteria(RunInfoMeta& run_info, const CDesignEntrySequence& parameters,
                       const CDesignEntrySequence& responses, CriterionSequence& criteria,
                       calculator::Calculator& calculator);

/// The same for the criteria of a design, which gets the run message if there is something to say.
void CalculateCriteria(Design& design, calculator::Calculator& calculator);

/// Sets the dependent parameters of the manager in the design to the values of their expressions, in their order;
/// parameters that the design does not have are appended. One that cannot be evaluated becomes uninitialized, with a
/// run message.
void CalculateDependentParameters(Design& design, const ParameterManager& manager, calculator::Calculator& calculator);

}  // namespace kestrel::algorithm::datatypes
