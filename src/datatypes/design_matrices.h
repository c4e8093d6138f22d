#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "datatypes/design_manager.h"
#include "support/linear_algebra.h"

// The roads between designs and dense matrices, one row per design.

namespace kestrel::algorithm::datatypes {

/// A cell as a number: what `ConvertDesignpointEntry<double>` gives or raises, and NaN for an uninitialized cell.
double ToNumber(const CDesignEntry& entry);

/// A sequence of Real values whose cells are known by position, to be copied for each row of a matrix.
class RowSequence {
 public:
  /// Names must be unique.
  explicit RowSequence(const std::vector<std::wstring>& names);
  RowSequence(const RowSequence&) = delete;
  RowSequence& operator=(const RowSequence&) = delete;

  /// @param values  one column per name.
  const CDesignEntrySequence& Fill(const math::MatrixIn& values, math::Index row);

 private:
  CDesignEntrySequence sequence_;
  std::vector<CDesignEntry*> cells_;  // in `sequence_`
};

/// One finished design per row with the ids first_id, first_id + 1, ... and Real values.
/// @param parameters  N x n, one column per parameter name.   @param responses  N x m, one column per response name.
/// Names must be unique; sizes that do not fit raise utils::logic_error.
DesignManager CreateDesignsFromMatrices(const std::vector<std::wstring>& parameter_names,
                                        const math::MatrixIn& parameters,
                                        const std::vector<std::wstring>& response_names,
                                        const math::MatrixIn& responses, std::uint64_t first_id = 1);

/// The values of a design's parameters by `ToNumber`, in their order.
math::Vector DesignToFloatTypeVector(const CDesignEntrySequence& values);

/// N x names.size(): the named parameters or scalar responses of all designs by `ToNumber`. A name that a design does
/// not have gives NaN. Costs no search where a design has its entries in the order of the names, or has the keys of the
/// design before it.
math::Matrix ConvertParametersToMatrix(const DesignManager& manager, const std::vector<std::wstring>& names);
math::Matrix ConvertScalarResponsesToMatrix(const DesignManager& manager, const std::vector<std::wstring>& names);

}  // namespace kestrel::algorithm::datatypes
