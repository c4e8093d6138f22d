#pragma once

#include "support/linear_algebra.h"
#include "surrogates/surrogate2_settings_base.h"

namespace kestrel::math::metamodel {

/// How far a selection of inputs explains another input of the sample.
class InputDependence {
 public:
  /// @param inputs  N x n, one row per sample; outlives the object.
  /// @param high_limit  the squared correlation from which one selected input is explanation enough.
  InputDependence(const Matrix& inputs, double high_limit);

  /// The largest squared correlation of the input with a selected one if that is above the high limit; else R2 of the
  /// input's column in a linear regression on the selected inputs, 1.0 for a constant column.
  double ExplainedBy(const Selection& selection, Index input);

 private:
  double LargestSquaredCorrelation(const Selection& selection, Index input) const;
  void Regress(const Selection& selection);

  const Matrix& inputs_;
  double high_limit_;
  Matrix points_;                ///< the inputs on the scale of a regression
  Matrix squared_correlations_;  ///< n x n
  Selection regressed_;          ///< the selection behind `r2_`; of size 0 before the first regression
  Vector r2_;                    ///< of every input on `regressed_`: one factorisation serves all columns
};

}  // namespace kestrel::math::metamodel
