#pragma once

#include <boost/mpl/int.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/version.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "persistence/archive/archives.h"
#include "surrogates/surrogate2_base.h"

/// What files hold of every surrogate, open to any content, in any class version.
namespace kestrel::math::metamodel {

/// The settings of a surrogate.
template <unsigned kVersion>
struct StoredSettingsBase {
  std::uint64_t ninputs_ = 2;
  eTransformation coord_transform_ = eTransformation::kMinMax, value_transform_ = eTransformation::kNone;
  eTransformation limit_transform_ = eTransformation::kNone;
  std::vector<double> coord_transform_parameter_, value_transform_parameter_, limit_transform_parameter_;
  std::int32_t handle_failed_ = 0;
  eState state_ = eState::kGiven;
  std::vector<std::wstring> input_names_;
  template <class Archive>
  void serialize(Archive& archive, unsigned version) {
    archive& BOOST_SERIALIZATION_NVP(ninputs_) & BOOST_SERIALIZATION_NVP(coord_transform_);
    archive& BOOST_SERIALIZATION_NVP(coord_transform_parameter_) & BOOST_SERIALIZATION_NVP(value_transform_);
    archive& BOOST_SERIALIZATION_NVP(value_transform_parameter_) & BOOST_SERIALIZATION_NVP(handle_failed_);
    archive& BOOST_SERIALIZATION_NVP(state_);
    if (version < 1) return;
    archive& BOOST_SERIALIZATION_NVP(limit_transform_) & BOOST_SERIALIZATION_NVP(limit_transform_parameter_);
    if (version >= 2) archive& BOOST_SERIALIZATION_NVP(input_names_);
  }
};

/// The sample, the transformations and the results.
template <unsigned kVersion>
struct StoredBase {
  Matrix points_, points_trans_reduced_, single_cops_;
  Vector values_, residuals_, weights_;
  Subsets subsets_;
  bool need_build_ = false;
  std::shared_ptr<transform::Transform> trans_coord_, trans_value_, trans_limit_;
  double points_radii_mean_ = 0.0;
  template <class Archive>
  void serialize(Archive& archive, unsigned version) {
    archive& BOOST_SERIALIZATION_NVP(points_) & BOOST_SERIALIZATION_NVP(values_);
    if (version >= 2) archive& BOOST_SERIALIZATION_NVP(points_trans_reduced_) & BOOST_SERIALIZATION_NVP(residuals_);
    if (version >= 3) archive& BOOST_SERIALIZATION_NVP(subsets_);
    archive& BOOST_SERIALIZATION_NVP(need_build_) & BOOST_SERIALIZATION_NVP(trans_coord_);
    archive& BOOST_SERIALIZATION_NVP(trans_value_);
    if (version >= 1) archive& BOOST_SERIALIZATION_NVP(weights_);
    if (version >= 4) archive& BOOST_SERIALIZATION_NVP(trans_limit_);
    if (version >= 5) archive& BOOST_SERIALIZATION_NVP(single_cops_);
    if (version >= 6) archive& BOOST_SERIALIZATION_NVP(points_radii_mean_);
  }
};

}  // namespace kestrel::math::metamodel

namespace boost::serialization {

template <unsigned kVersion>
struct version<kestrel::math::metamodel::StoredSettingsBase<kVersion>> : mpl::int_<kVersion> {};
template <unsigned kVersion>
struct version<kestrel::math::metamodel::StoredBase<kVersion>> : mpl::int_<kVersion> {};

}  // namespace boost::serialization
