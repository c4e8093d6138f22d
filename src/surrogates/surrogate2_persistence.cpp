#include <algorithm>
#include <type_traits>

#include "persistence/archive/require_stored.h"
#include "surrogates/surrogate2_base.h"

// How SurrogateBase is stored and read: with its sample or, when the caller keeps that elsewhere, without.

namespace kestrel::math::metamodel {

using persistence::RequireStored;

void SurrogateBase::ClearSupportsForSerialize() {
  points_.resize(0, 0);
  values_.resize(0);
  points_transformed_.resize(0, 0);
}

void SurrogateBase::RestoreSupportsAfterSerialize(const MatrixIn& points, const VectorIn& values) {
  RequireStored(points.rows() == values.size(), L"Support points and values do not match.");
  RequireFit(points.rows(), points.cols());
  points_ = points;
  values_ = values;
  RestoreFromSample();
}

void SurrogateBase::FinishLoading() {
  RequireStored(points_.rows() == values_.size(), L"Stored surrogate: points and values do not match.");
  // Without the sample its size is what the rest agrees on.
  const Index num_points = HasSupports() ? points_.rows()
                                         : std::max({points_trans_reduced_.rows(), residuals_.size(), weights_.size(),
                                                     static_cast<Index>(subsets_.size())});
  RequireFit(num_points, GetNumberInputs());
  RestoreFromSample();
}

void SurrogateBase::RequireFit(Index num_points, Index num_inputs) const {
  const auto one_each = [&](auto size) { return size == 0 || static_cast<Index>(size) == num_points; };
  RequireStored(one_each(residuals_.size()) && one_each(subsets_.size()) && one_each(weights_.size()),
                L"Stored surrogate: residuals, subsets or weights do not match the samples.");

  const Selection selection = GetVariableSelection();
  const std::uint64_t settings_inputs = GetSettingsBase().GetNumInputs();
  RequireStored(settings_inputs == 0 || settings_inputs == static_cast<std::uint64_t>(num_inputs),
                L"Stored surrogate: settings do not match the number of inputs.");
  RequireStored(selection.empty() || selection.size() == static_cast<std::uint64_t>(num_inputs),
                L"Stored surrogate: variable selection does not match the number of inputs.");

  const bool scales_inputs = !trans_coord_ || num_inputs == 0 || trans_coord_->AcceptsColumns(num_inputs);
  const bool scales_values = (!trans_value_ || trans_value_->AcceptsColumns(1)) &&  //
                             (!trans_limit_ || trans_limit_->AcceptsColumns(1));
  RequireStored(scales_inputs && scales_values && (need_build_ || !AnyTransformNeedsBuild()),
                L"Stored surrogate: transformations do not match the samples.");

  const bool reduced_absent = points_trans_reduced_.rows() == 0;  // as in old files
  const bool reduced_fits = points_trans_reduced_.rows() == num_points &&
                            (need_build_ || points_trans_reduced_.cols() == static_cast<Index>(selection.count()));
  const bool reduced_needed = residuals_.size() > 0;
  RequireStored(reduced_fits || (reduced_absent && !reduced_needed),
                L"Stored surrogate: transformed points do not match the samples.");
}

void SurrogateBase::RestoreFromSample() {
  points_transformed_.resize(0, 0);
  if (need_build_ || !HasSupports()) return;
  points_transformed_ = TransformPoints(points_);
  if (points_trans_reduced_.rows() == 0) {
    points_trans_reduced_ = SelectVariablesFromPoints(points_transformed_, GetVariableSelection());
  }
  RestoreDerivedData();
}

}  // namespace kestrel::math::metamodel
