#pragma once

#include <string>
#include <vector>

#include "datatypes/design_manager.h"
#include "datatypes/parameter_manager.h"
#include "support/linear_algebra.h"

// Questions about the designs of a container. Dense matrices stand in design_matrices.h, non-scalar responses in
// design_responses.h, the parameters that designs imply in extract_parameters.h.

namespace kestrel::algorithm::datatypes {

/// Names of the first design in its order. An empty container raises std::domain_error "Can't extract parameter names
/// from an empty design container", and so on. Limit states are the criteria of that type, signals the responses that
/// are a Variant of the kind SIGNAL.
std::vector<std::wstring> getParameterNames(const DesignManager& manager);
std::vector<std::wstring> getResponseNames(const DesignManager& manager);
std::vector<std::wstring> getLimitStateNames(const DesignManager& manager);
std::vector<std::wstring> getSignalNames(const DesignManager& manager);

/// The parameter sequences of all designs in their order, not copied: valid as long as the designs are.
std::vector<const CDesignEntrySequence*> getDesignPointsFromDesigns(const DesignManager& manager);

/// The ids of the designs whose parameters equal a row of `values` (one column per name), in the order of the rows,
/// each design once. Raises std::domain_error "Can't extract designs numbers from an empty design container." and
/// "Number of parameters in design container doesn't fit to parameter value matrix.".
std::vector<CHierachicalId> getDesignIDsFromParamValues(const DesignManager& manager,
                                                        const std::vector<std::wstring>& names,
                                                        const math::MatrixIn& values);

/// The extreme entry of one parameter or response by `operator<` of the entries. Bad entries (uninitialized, NaN) and
/// designs without the response are passed over; an uninitialized entry if none is left. An unknown parameter raises
/// what the sequence raises.
/// @param skip_failed  passes over the designs with `Design::IsFailed()`.
CDesignEntry GetMaxValueOfParameterFromDesign(const DesignManager& manager, const std::wstring& name);
CDesignEntry GetMinValueOfParameterFromDesign(const DesignManager& manager, const std::wstring& name);
CDesignEntry GetMaxValueOfResponseFromDesign(const DesignManager& manager, const std::wstring& name, bool skip_failed);
CDesignEntry GetMinValueOfResponseFromDesign(const DesignManager& manager, const std::wstring& name, bool skip_failed);

/// The designs with their parameters in the order of the parameter manager; parameters that it does not know follow in
/// their own order.
DesignManager sortByParameterOrder(DesignManager manager, const ParameterManager& parameters);

}  // namespace kestrel::algorithm::datatypes
