#include <algorithm>
#include <type_traits>

#include "persistence/archive/archives.h"
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

  const auto fits = [](const auto& transformation, Index columns) {
    return !transformation || transformation->AcceptsColumns(columns);
  };
  // Settings without a number of inputs leave nothing to compare with; such a model takes points without columns.
  const bool scales_inputs = num_inputs == 0 || fits(trans_coord_, num_inputs);
  RequireStored(scales_inputs && fits(trans_value_, 1) && fits(trans_limit_, 1),
                L"Stored surrogate: transformations do not match the samples.");
  RequireStored(need_build_ || !AnyTransformNeedsBuild(), L"Stored surrogate: a transformation is not built.");

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

template <class Archive>
void SurrogateBase::serialize(Archive& archive, const unsigned int version) {
  // A field that the file's class version does not have is as in a new surrogate.
  const auto field = [&](const char* name, auto& value, unsigned since) {
    if (version >= since) {
      archive& boost::serialization::make_nvp(name, value);
    } else {
      value = std::decay_t<decltype(value)>();
    }
  };
  field("points_", points_, 0);
  field("values_", values_, 0);
  field("points_trans_reduced_", points_trans_reduced_, 2);
  field("residuals_", residuals_, 2);
  field("subsets_", subsets_, 3);
  field("need_build_", need_build_, 0);
  field("trans_coord_", trans_coord_, 0);
  field("trans_value_", trans_value_, 0);
  field("weights_", weights_, 1);
  field("trans_limit_", trans_limit_, 4);
  field("single_cops_", single_cops_, 5);
  field("points_radii_mean_", points_radii_mean_, 6);
  if (version < 6 && residuals_.size() > 0) points_radii_mean_ = CalcMeanRadius();
}

}  // namespace kestrel::math::metamodel

KESTREL_INSTANTIATE_SERIALIZE(kestrel::math::metamodel::SurrogateBase)
BOOST_CLASS_EXPORT_IMPLEMENT(kestrel::math::metamodel::SurrogateBase)
