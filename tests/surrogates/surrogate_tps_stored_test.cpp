#include <gtest/gtest.h>

#include <limits>

#include "surrogates/stored_models.h"
#include "surrogates/surrogate_tps.h"

namespace kestrel::math::metamodel {

/// The stored layout of a thin plate spline, open to any content.
struct StoredTPS {
  struct Settings {
    StoredSettingsBase<2> base;
    double smoothing_ = 0.0;
    Selection selection_ = Selection(2, 3);
    template <class Archive>
    void serialize(Archive& archive, unsigned) {
      archive& boost::serialization::make_nvp("SurrogateSettingsBase", base);
      archive& BOOST_SERIALIZATION_NVP(smoothing_) & BOOST_SERIALIZATION_NVP(selection_);
    }
  };

  StoredBase<6> base;
  Vector radial_coefficients_, linear_coefficients_;
  Settings settings_;
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("SurrogateBase", base) & BOOST_SERIALIZATION_NVP(radial_coefficients_);
    archive& BOOST_SERIALIZATION_NVP(linear_coefficients_) & BOOST_SERIALIZATION_NVP(settings_);
  }
};

namespace {

using testing::FirstNameOutOfOrder;
using testing::MatrixNear;
using testing::RandomPoints;
using testing::RoundTrip;
using testing::Store;

SurrogateTPS Plain() {
  SurrogateTPS spline(kPoints, kValues);
  EXPECT_TRUE(spline.Build());
  return spline;
}

/// Smoothed, on one of the inputs, with a Box-Cox exponent and limits.
SurrogateTPS Full() {
  SurrogateTPS spline(kPoints, kValues);
  SurrogateTPSSettings settings(2);
  settings.SetVariableSelection(Selection(2, 1));
  settings.SetValueTransformation(eTransformation::kBoxCox);
  settings.SetLimitTransformation(eTransformation::kLimits);
  settings.SetLimitTransformationParameter({-1.0, 5.0});
  spline.Initialize(settings);
  EXPECT_TRUE(spline.BuildOptimal(Fifths()));
  return spline;
}

TEST(StoredThinPlateSplines, EvaluateToTheSameBits) {
  for (const auto& make : {Plain, Full}) {
    ExpectStoredToTheBit(make());
    RoundTrip<SurrogateSettingsBase>(make().GetSettingsBase());
  }
  const auto unbuilt = RoundTrip<SurrogateBase>(SurrogateTPS(kPoints, kValues));
  EXPECT_TRUE(unbuilt->Build());
  EXPECT_TRUE(MatrixNear(unbuilt->Approximate(kQuery), Plain().Approximate(kQuery), 0.0));
}

TEST(StoredThinPlateSplines, KeepTheNamesAndTheirOrder) {
  EXPECT_EQ(FirstNameOutOfOrder(Plain(),
                                "SurrogateBase points_radii_mean_ radial_coefficients_ linear_coefficients_ settings_ "
                                "SurrogateSettingsBase input_names_ smoothing_ selection_"),
            "");
  const SurrogateTPS spline = Plain();
  const SurrogateBase* const base = &spline;
  EXPECT_NE(Store(base).find("kestrel::math::metamodel::SurrogateTPS"), std::string::npos);
}

/// The plain spline as its file holds it.
StoredTPS Record() {
  const SurrogateTPS spline = Plain();
  StoredTPS record;
  FillSample(record.base);
  record.radial_coefficients_ = spline.GetSpline().radial;
  record.linear_coefficients_ = spline.GetSpline().linear;
  return record;
}

TEST(StoredThinPlateSplines, AreRefusedWhereTheirPartsDoNotMatch) {
  ExpectRefused<SurrogateTPS, StoredTPS>(
      Record, Plain(),
      {
          {"radial", [](auto& r) { r.radial_coefficients_ = Vector::Ones(39); }},
          {"no radial", [](auto& r) { r.radial_coefficients_.resize(0); }},
          {"linear", [](auto& r) { r.linear_coefficients_ = Vector::Ones(2); }},
          {"no reduced points", [](auto& r) { r.base.points_trans_reduced_.resize(0, 0); }},
          {"reduced rows", [](auto& r) { r.base.points_trans_reduced_ = Matrix::Ones(39, 2); }},
          {"reduced columns", [](auto& r) { r.base.points_trans_reduced_ = Matrix::Ones(40, 3); }},
          {"consistent without the sample",
           [](auto& r) {
             r.base.points_trans_reduced_ = Matrix::Ones(39, 2);
             r.radial_coefficients_ = Vector::Ones(39);
           }},
          {"values", [](auto& r) { r.base.values_ = Vector::Ones(39); }},
          {"selection", [](auto& r) { r.settings_.selection_ = Selection(3, 3); }},
          {"fewer selected", [](auto& r) { r.settings_.selection_ = Selection(2, 1); }},
          {"inputs",
           [](auto& r) {
             r.settings_.base.ninputs_ = 3;
             r.settings_.selection_ = Selection(3, 3);
           }},
          {"negative smoothing", [](auto& r) { r.settings_.smoothing_ = -1.0; }},
          {"NaN smoothing", [](auto& r) { r.settings_.smoothing_ = std::numeric_limits<double>::quiet_NaN(); }},
          {"columns of the scaling", [](auto& r) { r.base.trans_coord_->Build(RandomPoints(4, 3, 1)); }},
          {"nothing at all", [](auto& r) { r.base = {}, r.radial_coefficients_.resize(0); }},
      });
}

}  // namespace
}  // namespace kestrel::math::metamodel
