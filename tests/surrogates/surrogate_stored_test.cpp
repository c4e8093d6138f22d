#include <gtest/gtest.h>

#include <utility>

#include "statistics/distances.h"
#include "support/read_to_the_end.h"
#include "surrogates/kernels/kernel_constant_influence.h"
#include "surrogates/kernels/kernel_nodal_influence.h"
#include "surrogates/linear_regression.h"
#include "surrogates/stored_models.h"
#include "surrogates/surrogate_appraisal_data.h"

namespace kestrel::math::metamodel {

/// The stored layout of regressions, open to any content, in any class version.
template <unsigned kVersion>
struct StoredSettings {
  StoredSettingsBase<kVersion> base;
  std::uint64_t order_ = 1;
  Selection main_term_selection_ = Selection(2, 3), interaction_selection_;
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("SurrogateSettingsBase", base) & BOOST_SERIALIZATION_NVP(order_);
    archive& BOOST_SERIALIZATION_NVP(main_term_selection_) & BOOST_SERIALIZATION_NVP(interaction_selection_);
  }
};

template <unsigned kVersion, unsigned kBaseVersion = kVersion == 0 ? 0 : 6>
struct StoredRegression {
  StoredBase<kBaseVersion> base;
  Vector coefficients_;
  Matrix coefficient_matrix_;
  StoredSettings<2> settings_;
  template <class Archive>
  void serialize(Archive& archive, unsigned version) {
    archive& boost::serialization::make_nvp("SurrogateBase", base) & BOOST_SERIALIZATION_NVP(coefficients_);
    if (version >= 1) {
      archive& BOOST_SERIALIZATION_NVP(settings_);
    } else {
      archive& BOOST_SERIALIZATION_NVP(coefficient_matrix_);
      archive& boost::serialization::make_nvp("order_", settings_.order_);
      archive& boost::serialization::make_nvp("main_term_selection_", settings_.main_term_selection_);
      archive& boost::serialization::make_nvp("interaction_selection_", settings_.interaction_selection_);
      archive& boost::serialization::make_nvp("weights_", base.weights_);
    }
  }
};

struct StoredKernel {
  struct Base {
    Vector parameters_;
    template <class Archive>
    void serialize(Archive& archive, unsigned) {
      archive& BOOST_SERIALIZATION_NVP(parameters_);
    }
  };
  struct Middle {
    Base base;
    template <class Archive>
    void serialize(Archive& archive, unsigned) {
      archive& boost::serialization::make_nvp("KernelBase", base);
    }
  };
  Middle base;
  Vector helper_term_ = -Vector::Ones(2);
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("KernelConstInfl", base) & BOOST_SERIALIZATION_NVP(helper_term_);
  }
};

}  // namespace kestrel::math::metamodel

namespace boost::serialization {

template <unsigned kVersion, unsigned kBaseVersion>
struct version<kestrel::math::metamodel::StoredRegression<kVersion, kBaseVersion>> : mpl::int_<kVersion> {};

}  // namespace boost::serialization

namespace kestrel::math::metamodel {
namespace {

using testing::FirstNameOutOfOrder;
using testing::Load;
using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;
using testing::RoundTrip;
using testing::Store;

/// A regression of order 2 with the Box-Cox search, limits and weights.
LinearRegression FullRegression() {
  LinearRegression regression(kPoints, kValues, Vector::LinSpaced(40, 0.5, 1.5));
  LinearRegressionSettings settings(2);
  settings.SetOrder(2);
  settings.SetInputNames({L"width", L"height"});
  settings.SetValueTransformation(eTransformation::kBoxCox);
  settings.SetLimitTransformation(eTransformation::kLimits);
  settings.SetLimitTransformationParameter({-1.0, 5.0});
  regression.Initialize(settings);
  EXPECT_TRUE(regression.BuildOptimal({}));
  regression.SetSingleCoPs(Matrix::Constant(2, 2, 0.25));
  return regression;
}

LinearRegression PlainRegression() {
  LinearRegression regression(kPoints, kValues);
  EXPECT_TRUE(regression.Build());
  return regression;
}

LinearRegression MeanOfUntransformedPoints() {
  LinearRegression regression(kPoints, kValues);
  LinearRegressionSettings settings(2);
  settings.SetVariableSelection(Selection(2));
  settings.SetCoordTransformation(eTransformation::kNone);
  regression.Initialize(settings);
  EXPECT_TRUE(regression.Build());
  return regression;
}

TEST(StoredRegressions, EvaluateToTheSameBits) {
  for (const auto& make : {FullRegression, PlainRegression, MeanOfUntransformedPoints}) {
    const LinearRegression regression = make();
    ExpectStoredToTheBit(regression);
    const auto read = RoundTrip<SurrogateBase>(regression);
    EXPECT_TRUE(read->BuildOptimal({}));  // it finds the same
    EXPECT_TRUE(MatrixNear(read->Approximate(kQuery), regression.Approximate(kQuery), 0.0));
  }
  const auto read = RoundTrip<SurrogateBase>(LinearRegression(kPoints, kValues));
  EXPECT_TRUE(read->Build());
  EXPECT_TRUE(MatrixNear(read->Approximate(kQuery), PlainRegression().Approximate(kQuery), 0.0));
}

TEST(StoredRegressions, KeepTheNamesAndTheirOrder) {
  EXPECT_EQ(FirstNameOutOfOrder(
                PlainRegression(),
                "SurrogateBase points_ values_ points_trans_reduced_ residuals_ subsets_ need_build_ trans_coord_ "
                "trans_value_ weights_ trans_limit_ single_cops_ points_radii_mean_ coefficients_ settings_ "
                "SurrogateSettingsBase ninputs_ coord_transform_ coord_transform_parameter_ value_transform_ "
                "value_transform_parameter_ handle_failed_ state_ limit_transform_ limit_transform_parameter_ "
                "input_names_ order_ main_term_selection_ interaction_selection_"),
            "");
}

/// The plain regression as its file holds it.
template <unsigned kVersion, unsigned... kBaseVersion>
StoredRegression<kVersion, kBaseVersion...> Record() {
  StoredRegression<kVersion, kBaseVersion...> record;
  FillSample(record.base);
  record.coefficients_ = PlainRegression().GetCoefficients();
  record.settings_.base.coord_transform_parameter_ = {0.0, 1.0};
  return record;
}

TEST(StoredRegressions, OfClassVersionZeroGetTheirSettings) {
  LinearRegression read((Matrix()), Vector());
  testing::ReadToTheEnd(Store(Record<0>()), read);
  LinearRegression plain = PlainRegression();
  EXPECT_TRUE(read.BuildErrors() && plain.BuildErrors());
  EXPECT_TRUE(MatrixNear(read.Approximate(kQuery), plain.Approximate(kQuery), 0.0));
  EXPECT_TRUE(MatrixNear(read.ApproximateErrors(kQuery), plain.ApproximateErrors(kQuery), 0.0));
  EXPECT_TRUE(MatrixNear(read.ApproximateLeaveOneOut(), plain.ApproximateLeaveOneOut(), 0.0));
  EXPECT_EQ(read.GetSettingsBase().GetNumInputs(), 2u);
  EXPECT_EQ(read.GetSettingsBase().GetCoordTransformation(), eTransformation::kMinMax);
}

/// Reads the file of an old version and one of the present version; what was read must be the same.
template <class Read, class Old, class Present>
void ExpectReadAlike(const Old& old, const Present& present, Read read) {
  Read expected = read;
  testing::ReadToTheEnd(Store(old), read);
  Load(Store(present), expected);
  EXPECT_TRUE(Store(read) == Store(expected));
}

/// A regression with everything that a file may hold beside the fit.
template <unsigned kBaseVersion>
StoredRegression<1, kBaseVersion> FullRecord() {
  auto record = Record<1, kBaseVersion>();
  record.base.residuals_ = Noise(40, 0.5, 7);
  record.base.subsets_ = Fifths();
  record.base.weights_ = Vector::LinSpaced(40, 0.5, 1.5);
  record.base.trans_limit_ = CreateTransformation(eTransformation::kLimits, {2.5, 4.5});
  record.base.trans_limit_->Build(kValues);
  record.base.single_cops_ = Matrix::Constant(2, 2, 0.25);
  record.base.points_radii_mean_ = 0.125;
  return record;
}

template <unsigned kVersion>
void ExpectBaseIsRead() {
  SCOPED_TRACE("version " + std::to_string(kVersion));
  auto present = FullRecord<6>();
  StoredBase<6>& base = present.base;
  if (kVersion < 6) base.points_radii_mean_ = statistics::CalcRadii(base.points_trans_reduced_, 2 * 2 + 1).mean();
  if (kVersion < 5) base.single_cops_.resize(0, 0);
  if (kVersion < 4) base.trans_limit_.reset();
  if (kVersion < 3) base.subsets_.clear();
  if (kVersion < 2) base.residuals_.resize(0), base.points_radii_mean_ = 0.0;  // not needed without errors
  if (kVersion < 1) base.weights_.resize(0);
  ExpectReadAlike(FullRecord<kVersion>(), present, LinearRegression(Matrix(), Vector()));
}

template <unsigned... kVersions>
void ExpectBasesAreRead(std::integer_sequence<unsigned, kVersions...>) {
  (ExpectBaseIsRead<kVersions>(), ...);
}

TEST(StoredSurrogates, OfOldClassVersionsGetTheDefaultsOfWhatTheyLack) {
  ExpectBasesAreRead(std::make_integer_sequence<unsigned, 7>());
}

/// Settings of the base none of which is the default.
template <unsigned kVersion>
StoredSettings<kVersion> FullSettings() {
  StoredSettings<kVersion> settings;
  settings.base.coord_transform_parameter_ = {0.0, 1.0};
  settings.base.value_transform_ = eTransformation::kBoxCox;
  settings.base.value_transform_parameter_ = {0.5, 0.1, 10.1};
  settings.base.handle_failed_ = 3;
  settings.base.state_ = eState::kOptimal;
  settings.base.limit_transform_ = eTransformation::kLimits;
  settings.base.limit_transform_parameter_ = {2.5, 4.5};
  settings.base.input_names_ = {L"width", L"height"};
  return settings;
}

TEST(StoredSettings, OfOldClassVersionsGetTheDefaultsOfWhatTheyLack) {
  LinearRegressionSettings used(3);
  used.SetLimitTransformation(eTransformation::kLimits);
  used.SetLimitTransformationParameter({0.0, 1.0});
  used.SetInputNames({L"a", L"b", L"c"});
  auto present = FullSettings<2>();
  ExpectReadAlike(FullSettings<2>(), present, used);
  present.base.input_names_.clear();
  ExpectReadAlike(FullSettings<1>(), present, used);
  present.base.limit_transform_ = eTransformation::kNone;
  present.base.limit_transform_parameter_.clear();
  ExpectReadAlike(FullSettings<0>(), present, used);
}

TEST(StoredSurrogates, AreRefusedWhereTheirPartsDoNotMatch) {
  ExpectRefused<LinearRegression, StoredRegression<1>>(
      Record, PlainRegression(),
      {
          {"too few coefficients", [](auto& r) { r.coefficients_ = Vector::Ones(2); }},
          {"too many coefficients", [](auto& r) { r.coefficients_ = Vector::Ones(4); }},
          {"values", [](auto& r) { r.base.values_ = Vector::Ones(39); }},
          {"residuals", [](auto& r) { r.base.residuals_ = Vector::Ones(39); }},
          {"subsets",
           [](auto& r) {
             r.base.subsets_ = {0, 1};
           }},
          {"weights", [](auto& r) { r.base.weights_ = Vector::Ones(41); }},
          {"reduced rows", [](auto& r) { r.base.points_trans_reduced_ = Matrix::Ones(39, 2); }},
          {"reduced columns", [](auto& r) { r.base.points_trans_reduced_ = Matrix::Ones(40, 1); }},
          {"columns of the scaling", [](auto& r) { r.base.trans_coord_->Build(RandomPoints(4, 3, 1)); }},
          {"unbuilt scaling",
           [](auto& r) { r.base.trans_coord_ = CreateTransformation(eTransformation::kMinMax, {}); }},
          {"columns of the value scaling",
           [](auto& r) {
             r.base.trans_value_ = CreateTransformation(eTransformation::kMinMax, {});
             r.base.trans_value_->Build(kPoints);
           }},
          {"inputs of the settings",
           [](auto& r) {
             r.settings_.base.ninputs_ = 3;
             r.settings_.main_term_selection_ = Selection(3, 3);
           }},
          {"main terms", [](auto& r) { r.settings_.main_term_selection_ = Selection(3, 3); }},
          {"order", [](auto& r) { r.settings_.order_ = 2; }},
          {"order that overflows",
           [](auto& r) {
             r.settings_.order_ = std::uint64_t{1} << 63U;
             r.settings_.main_term_selection_.clear();
           }},
          {"interactions", [](auto& r) { r.settings_.interaction_selection_ = Selection(2, 0); }},
          {"transformation type", [](auto& r) { r.settings_.base.limit_transform_ = static_cast<eTransformation>(4); }},
          {"state", [](auto& r) { r.settings_.base.state_ = static_cast<eState>(-1); }},
          {"no sample and other inputs",
           [](auto& r) {
             r.base.points_.resize(0, 0);
             r.base.values_.resize(0);
             r.base.trans_coord_->Build(kPoints.leftCols(1));
           }},
      });
}

TEST(StoredKernels, EvaluateToTheSameBits) {
  const Vector one = Vector::Constant(1, 1.75);
  const KernelConstInflExp anisotropic((Vector(2) << 0.5, 2.0).finished());
  const KernelConstInflIsoExp isotropic(one);
  const KernelConstInflIsoReg regularized(one);
  const KernelNodalInflExp nodal(one);
  for (const KernelBase* kernel :
       std::initializer_list<const KernelBase*>{&anisotropic, &isotropic, &regularized, &nodal}) {
    const auto read = RoundTrip<KernelBase>(*kernel);
    const Vector point = kQuery.row(0).transpose();
    EXPECT_TRUE(MatrixNear(read->EvaluatePoint(point, kPoints), kernel->EvaluatePoint(point, kPoints), 0.0));
    EXPECT_TRUE(MatrixNear(read->GetParameters(), kernel->GetParameters(), 0.0));
  }
  EXPECT_EQ(
      FirstNameOutOfOrder(
          regularized, "KernelConstInflIso KernelConstInfl KernelBase parameters_ epsilon_ m_ D_squared_ helper_term_"),
      "");
  EXPECT_THROW(KernelNodalInflExp().EvaluateDistances(one), std::domain_error);
}

TEST(StoredKernels, AreRefusedWithParametersThatNoKernelTakes) {
  for (const Vector& parameters : {Vector(Vector::Zero(2)), Vector(Vector::Ones(3))}) {
    StoredKernel record;
    record.base.base.parameters_ = parameters;
    KernelConstInflExp read;
    EXPECT_ANY_THROW(Load(Store(record), read));
  }
}

TEST(AppraisalData, IsStoredInTheOrderOfItsFields) {
  AppraisalData data;
  data.SetCoP(0.75);
  data.SetSingleCoP(1, 0.5);
  data.SetFirstOrderIndices(Vector::Constant(2, 0.125));
  AppraisalData read;
  Load(Store(data), read);
  EXPECT_TRUE(read == data);
  EXPECT_EQ(FirstNameOutOfOrder(data, "cop_ cod_ codadj_ single_cop_ first_order_indices_"), "");
}

}  // namespace
}  // namespace kestrel::math::metamodel
