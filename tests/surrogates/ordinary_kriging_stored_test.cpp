#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "support/raised_text.h"
#include "support/read_to_the_end.h"
#include "surrogates/kernels/kernel_constant_influence.h"
#include "surrogates/kriging_samples.h"
#include "surrogates/stored_models.h"

namespace kestrel::math::metamodel {

/// The stored layout of Kriging models and their settings, open to any content, in any class version.
struct StoredKrigingSettings {
  StoredSettingsBase<2> base;
  double nugget_ = 1e-3;
  bool use_likelihood_ = true;
  std::int32_t kernel_type_ = 101;
  Vector kernel_parameter_ = Vector::Constant(1, 0.8);
  Selection selection_ = Selection(2, 0b11);
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("SurrogateSettingsBase", base);
    archive& BOOST_SERIALIZATION_NVP(nugget_) & BOOST_SERIALIZATION_NVP(use_likelihood_);
    archive& BOOST_SERIALIZATION_NVP(kernel_type_) & BOOST_SERIALIZATION_NVP(kernel_parameter_);
    archive& BOOST_SERIALIZATION_NVP(selection_);
  }
};

template <unsigned kVersion>
struct StoredKriging {
  StoredBase<kVersion == 2 ? 6 : 1> base;
  std::shared_ptr<KernelBase> kernel_ = CreateKernel(Kernel::kConstInflIsoExp, Vector::Constant(1, 0.8));
  double mean_ = 0.0, sigma2_ = 0.0, nugget_ = 1e-3;
  Vector kernel_weights_, values_trans_;
  Matrix points_trans_reduced_;
  StoredKrigingSettings settings_;
  template <class Archive>
  void serialize(Archive& archive, unsigned version) {
    archive& boost::serialization::make_nvp("SurrogateBase", base);
    if (version == 0) archive& BOOST_SERIALIZATION_NVP(kernel_);
    archive& BOOST_SERIALIZATION_NVP(mean_) & BOOST_SERIALIZATION_NVP(sigma2_);
    archive& BOOST_SERIALIZATION_NVP(kernel_weights_);
    if (version > 0) archive& BOOST_SERIALIZATION_NVP(settings_);
    if (version < 2) archive& BOOST_SERIALIZATION_NVP(points_trans_reduced_);
    archive& BOOST_SERIALIZATION_NVP(values_trans_);
    if (version == 0) archive& BOOST_SERIALIZATION_NVP(nugget_);
  }
};

}  // namespace kestrel::math::metamodel

namespace boost::serialization {

template <unsigned kVersion>
struct version<kestrel::math::metamodel::StoredKriging<kVersion>> : mpl::int_<kVersion> {};

}  // namespace boost::serialization

namespace kestrel::math::metamodel {
namespace {

using testing::BuiltKriging;
using testing::FirstNameOutOfOrder;
using testing::KrigingSettings;
using testing::Load;
using testing::MatrixNear;
using testing::Store;
using testing::SubsetsInTurn;

OrdinaryKriging Plain() { return BuiltKriging(kPoints, kValues, KrigingSettings(2, Vector::Constant(1, 0.8), 1e-3)); }

/// With all transformations and one radius per input.
OrdinaryKriging Full() {
  OrdinaryKrigingSettings settings = KrigingSettings(2, (Vector(2) << 0.7, 1.3).finished(), 1e-4);
  settings.SetInputNames({L"width", L"height"});
  settings.SetValueTransformation(eTransformation::kBoxCox);
  settings.SetValueTransformationParameter({0.5, 0.1, 10.1});
  settings.SetLimitTransformation(eTransformation::kLimits);
  settings.SetLimitTransformationParameter({2.5, 4.5});
  OrdinaryKriging kriging = BuiltKriging(kPoints, kValues, settings);
  kriging.SetSingleCoPs(Matrix::Constant(2, 2, 0.25));
  return kriging;
}

OrdinaryKriging Searched() {
  OrdinaryKriging kriging(kPoints, kValues);
  EXPECT_TRUE(kriging.BuildOptimal({}));
  return kriging;
}

TEST(StoredKriging, EvaluatesToTheSameBits) {
  for (const auto& make : {Full, Plain, Searched}) ExpectStoredToTheBit(make());
}

TEST(StoredKriging, KeepsTheNamesAndTheirOrder) {
  EXPECT_EQ(FirstNameOutOfOrder(
                Plain(),
                "SurrogateBase points_radii_mean_ mean_ sigma2_ kernel_weights_ settings_ SurrogateSettingsBase "
                "input_names_ nugget_ use_likelihood_ kernel_type_ kernel_parameter_ selection_ values_trans_"),
            "");
}

/// The plain model as its file holds it.
template <unsigned kVersion>
StoredKriging<kVersion> Record() {
  const OrdinaryKriging plain = Plain();
  StoredKriging<kVersion> record;
  FillSample(record.base);
  record.points_trans_reduced_ = record.base.points_trans_reduced_;
  record.mean_ = plain.GetMean();
  record.sigma2_ = plain.GetSigma2();
  record.kernel_weights_ = plain.GetKernelWeights();
  record.values_trans_ = kValues;
  record.settings_.base.coord_transform_parameter_ = {0.0, 1.0};
  return record;
}

TEST(StoredKriging, IsReadInEveryClassVersion) {
  OrdinaryKriging read((Matrix()), Vector());
  for (const std::string& file : {Store(Record<0>()), Store(Record<1>()), Store(Record<2>())}) {
    testing::ReadToTheEnd(file, read);
    EXPECT_TRUE(MatrixNear(read.Approximate(kQuery), Plain().Approximate(kQuery), 0.0));
    EXPECT_TRUE(MatrixNear(read.ApproximateLeaveOneOut(), Plain().ApproximateLeaveOneOut(), 0.0));
    EXPECT_EQ(read.GetSettingsBase().GetNugget(), 1e-3);
    EXPECT_EQ(read.GetSettingsBase().GetKernelType(), Kernel::kConstInflIsoExp);
    EXPECT_EQ(read.GetSettingsBase().GetCoordTransformation(), eTransformation::kMinMax);
  }
}

TEST(StoredKriging, IsRefusedWhereItsPartsDoNotMatch) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  ExpectRefused<OrdinaryKriging, StoredKriging<2>>(
      Record, Plain(),
      {
          {"too few weights", [](auto& r) { r.kernel_weights_ = Vector::Ones(39); }},
          {"too many weights", [](auto& r) { r.kernel_weights_ = Vector::Ones(41); }},
          {"transformed values", [](auto& r) { r.values_trans_ = Vector::Ones(39); }},
          {"weights and transformed values", [](auto& r) { r.values_trans_ = r.kernel_weights_ = Vector::Ones(41); }},
          {"reduced rows", [](auto& r) { r.base.points_trans_reduced_ = Matrix::Ones(39, 2); }},
          {"reduced columns", [](auto& r) { r.base.points_trans_reduced_ = Matrix::Ones(40, 1); }},
          {"no sample and no reduced points",
           [](auto& r) {
             r.base.points_.resize(0, 0);
             r.base.values_.resize(0);
             r.base.points_trans_reduced_.resize(0, 0);
           }},
          {"selection", [](auto& r) { r.settings_.selection_ = Selection(3, 0b11); }},
          {"selected inputs", [](auto& r) { r.settings_.selection_ = Selection(2, 0b01); }},
          {"kernel type", [](auto& r) { r.settings_.kernel_type_ = 7; }},
          {"no radius", [](auto& r) { r.settings_.kernel_parameter_.resize(0); }},
          {"two radii", [](auto& r) { r.settings_.kernel_parameter_ = Vector::Ones(2); }},
          {"radius of 0", [](auto& r) { r.settings_.kernel_parameter_ = Vector::Zero(1); }},
          {"radius that is no number", [=](auto& r) { r.settings_.kernel_parameter_[0] = nan; }},
          {"one radius for two inputs", [](auto& r) { r.settings_.kernel_type_ = 1; }},
          {"no neighbour",
           [](auto& r) {
             r.settings_.kernel_type_ = 201;
             r.settings_.kernel_parameter_[0] = 0.5;
           }},
          {"nugget", [=](auto& r) { r.settings_.nugget_ = nan; }},
      });
}

TEST(StoredKriging, SaysThatItsCorrelationsCanNotBeRebuilt) {
  auto record = Record<2>();
  record.settings_.nugget_ = -0.5;
  OrdinaryKriging read((Matrix()), Vector());
  Load(Store(record), read);
  for (const std::function<void()>& call : std::initializer_list<std::function<void()>>{
           [&] { read.ApproximateLeaveOneOut(); }, [&] { read.ApproximateCrossValidation(SubsetsInTurn(40, 5)); },
           [&] { read.BuildGradient(); }}) {
    EXPECT_EQ(testing::RaisedText(call), L"rebuild of correlation matrix failed");
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
