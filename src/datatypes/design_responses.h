#pragma once

#include <list>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/design_manager.h"
#include "support/linear_algebra.h"

// Non-scalar responses and their scalar pieces: element k of the response "r", counted from 0 and row by row, is the
// scalar response "r[k]".

namespace kestrel::algorithm::datatypes {

/// A response and the names of its scalar pieces, in their order; a scalar has one piece of its own name.
using SplitResponseMapping = std::vector<std::pair<std::wstring, std::vector<std::wstring>>>;

SplitResponseMapping GetSplitResponseMapping(const std::list<std::pair<std::wstring, CDesignEntry>>& responses);

/// The names of all scalar pieces of the union of the responses.
/// @param skip_failed  takes only the designs that are not `Design::IsFailed()`.
std::vector<std::wstring> GetScalaredResponseNames(const DesignManager& manager, bool skip_failed);

/// One row per design, one column per scalar piece (real parts). A response that is missing or uninitialized gives NaN
/// in all its columns, as does, with `skip_failed`, every response of a failed design. A response with fewer elements
/// than the mapping has raises what its access raises ("Index out of vector bounds.", "Index out of matrix bounds."); a
/// vector where the mapping has a scalar raises math::CTypeException "Invalid type.".
math::Matrix ConvertResponsesToMatrix(const DesignManager& manager, bool skip_failed);
math::Matrix ConvertResponsesToMatrix(const DesignManager& manager, const SplitResponseMapping& mapping,
                                      bool skip_failed = false);

/// The response that `name` is or is a piece of. Raises utils::logic_error "Response \"...\" can not be found in
/// designs." if the designs know neither.
std::wstring GetOriginalResponseName(const DesignManager& manager, const std::wstring& name);

/// Puts pieces together again: in each design the responses "name[k]" become one vector Variant "name" at the place of
/// the first of them, in the order of k. All other responses stay where they are, as do pieces that are not scalar
/// numbers and those of a vector whose name another response has.
void compressResponses(DesignManager& manager);

}  // namespace kestrel::algorithm::datatypes
