#include <gtest/gtest.h>

#include <functional>

#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "support/stored.h"
#include "surrogates/moving_least_squares.h"
#include "surrogates/sample_data.h"
#include "surrogates/stored_records.h"
#include "surrogates/surrogate_registration.h"

namespace kestrel::math::metamodel {

/// The stored layout of moving least squares, open to any content, in any class version.
struct StoredMovingSettings {
  StoredSettingsBase<2> base;
  std::uint64_t order_ = 1;
  Selection main_term_selection_ = Selection(2, 3);
  std::int32_t kernel_type_ = 101;
  Vector kernel_parameter_ = Vector::Ones(1);
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("SurrogateSettingsBase", base) & BOOST_SERIALIZATION_NVP(order_);
    archive& BOOST_SERIALIZATION_NVP(main_term_selection_) & BOOST_SERIALIZATION_NVP(kernel_type_);
    archive& BOOST_SERIALIZATION_NVP(kernel_parameter_);
  }
};

template <unsigned kVersion>
struct StoredMovingLeastSquares {
  StoredBase<6> base;
  Matrix coefficient_matrix_;
  StoredMovingSettings settings_;
  Vector values_trans_;
  template <class Archive>
  void serialize(Archive& archive, unsigned) {
    archive& boost::serialization::make_nvp("SurrogateBase", base) & BOOST_SERIALIZATION_NVP(coefficient_matrix_);
    archive& BOOST_SERIALIZATION_NVP(settings_) & BOOST_SERIALIZATION_NVP(values_trans_);
  }
};

}  // namespace kestrel::math::metamodel

namespace boost::serialization {

template <unsigned kVersion>
struct version<kestrel::math::metamodel::StoredMovingLeastSquares<kVersion>> : mpl::int_<kVersion> {};

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

const Matrix kPoints = RandomPoints(40, 2, 1);
const Vector kValues = (kPoints.col(0).array().exp() + kPoints.col(1).array()).matrix() + Noise(40, 0.1, 2);
const Matrix kQuery = RandomPoints(80, 2, 3);

Subsets Fifths() {
  Subsets subsets;
  for (std::uint64_t i = 0; i < 40; ++i) subsets.push_back(i % 5);
  return subsets;
}

/// Order 2, Box-Cox, limits, the radius found, error estimates.
MovingLeastSquares FullModel() {
  MovingLeastSquares surrogate(kPoints, kValues);
  MovingLeastSquaresSettings settings(2);
  settings.SetOrder(2);
  settings.SetInputNames({L"width", L"height"});
  settings.SetValueTransformation(eTransformation::kBoxCox);
  settings.SetLimitTransformation(eTransformation::kLimits);
  settings.SetLimitTransformationParameter({-1.0, 5.0});
  surrogate.Initialize(settings);
  EXPECT_TRUE(surrogate.BuildOptimal(Fifths()));
  EXPECT_TRUE(surrogate.BuildErrors(Fifths()));
  return surrogate;
}

/// Order 0 on one input, the kernel of two radii but one.
MovingLeastSquares LocalMean() {
  MovingLeastSquares surrogate(kPoints, kValues);
  MovingLeastSquaresSettings settings(2);
  settings.SetOrder(0);
  settings.SetVariableSelection(Selection(2, 1));
  settings.SetKernelType(Kernel::kConstInflExp);
  settings.SetKernelParameter(Vector::Constant(1, 0.7));
  surrogate.Initialize(settings);
  EXPECT_TRUE(surrogate.Build());
  EXPECT_TRUE(surrogate.BuildErrors());
  return surrogate;
}

void ExpectSameBits(const SurrogateBase& a, const SurrogateBase& b) {
  EXPECT_TRUE(a == b);
  EXPECT_TRUE(MatrixNear(a.Approximate(kQuery), b.Approximate(kQuery), 0.0));
  EXPECT_TRUE(MatrixNear(a.Approximate(), b.Approximate(), 0.0));
  EXPECT_TRUE(MatrixNear(a.ApproximateGradients(kQuery), b.ApproximateGradients(kQuery), 0.0));
  EXPECT_TRUE(MatrixNear(a.ApproximateErrors(kQuery), b.ApproximateErrors(kQuery), 0.0));
  EXPECT_TRUE(MatrixNear(a.ApproximateCrossValidation(Fifths()), b.ApproximateCrossValidation(Fifths()), 0.0));
  EXPECT_EQ(a.Str(), b.Str());
}

TEST(StoredMovingLeastSquaresModels, EvaluateToTheSameBits) {
  surrogate_classes_registration_policy();
  for (const auto& make : {FullModel, LocalMean}) {
    const MovingLeastSquares surrogate = make();
    const auto read = RoundTrip<SurrogateBase>(surrogate);
    ExpectSameBits(*read, surrogate);
    ExpectSameBits(*surrogate.Clone(), surrogate);
  }
  EXPECT_TRUE(
      FirstNameOutOfOrder(FullModel(), {"SurrogateBase", "points_", "points_radii_mean_", "coefficient_matrix_",
                                        "settings_", "SurrogateSettingsBase", "ninputs_", "order_",
                                        "main_term_selection_", "kernel_type_", "kernel_parameter_", "values_trans_"})
          .empty());
}

TEST(StoredMovingLeastSquaresModels, PredictWithoutTheirSample) {
  const MovingLeastSquares surrogate = FullModel();
  const auto cleared = surrogate.Clone();
  cleared->ClearSupportsForSerialize();
  const auto read = RoundTrip<SurrogateBase>(*cleared);
  EXPECT_TRUE(MatrixNear(read->Approximate(kQuery), surrogate.Approximate(kQuery), 0.0));
  const std::function<void(SurrogateBase&)> needs_sample[] = {
      [](auto& s) { s.Approximate(); },
      [](auto& s) { s.ApproximateCrossValidation({}); },
      [](auto& s) { s.ApproximateCrossValidation(Fifths()); },
      [](auto& s) { s.BuildErrors(Fifths()); },
      [](auto& s) { dynamic_cast<MovingLeastSquares&>(s).ApproximateVariableImportanceCV(); },
  };
  for (const auto& call : needs_sample) EXPECT_THROW(call(*read), std::logic_error);
  EXPECT_THROW(read->RestoreSupportsAfterSerialize(kPoints.topRows(39), kValues.head(39)), utils::runtime_error);
  read->RestoreSupportsAfterSerialize(kPoints, kValues);
  ExpectSameBits(*read, surrogate);
}

/// A model of order 1 as its file holds it.
template <unsigned kVersion = 3>
StoredMovingLeastSquares<kVersion> Record() {
  StoredMovingLeastSquares<kVersion> record;
  record.base.points_ = kPoints;
  record.base.values_ = kValues;
  record.base.trans_coord_ = CreateTransformation(eTransformation::kMinMax, {});
  record.base.trans_coord_->Build(kPoints);
  record.base.points_trans_reduced_ = record.base.trans_coord_->ScaleForward(kPoints);
  record.settings_.base.coord_transform_parameter_ = {0.0, 1.0};
  record.coefficient_matrix_ = Matrix::Ones(40, 3);
  record.coefficient_matrix_.rightCols(2) = record.base.points_trans_reduced_;
  record.values_trans_ = kValues;
  return record;
}

TEST(StoredMovingLeastSquaresModels, AreRefusedWhereTheirPartsDoNotMatch) {
  using Spoil = std::function<void(StoredMovingLeastSquares<3>&)>;
  const struct {
    const char* name;
    Spoil spoil;
  } cases[] = {
      {"rows of the basis", [](auto& r) { r.coefficient_matrix_ = Matrix::Ones(39, 3); }},
      {"columns of the basis", [](auto& r) { r.coefficient_matrix_ = Matrix::Ones(40, 2); }},
      {"basis of a local mean", [](auto& r) { r.settings_.order_ = 0; }},
      {"transformed values", [](auto& r) { r.values_trans_ = Vector::Ones(41); }},
      {"values", [](auto& r) { r.base.values_ = Vector::Ones(39); }},
      {"reduced columns", [](auto& r) { r.base.points_trans_reduced_ = Matrix::Ones(40, 1); }},
      {"more coefficients than samples",
       [](auto& r) {
         r.base = StoredBase<6>();
         r.base.trans_coord_ = CreateTransformation(eTransformation::kMinMax, {});
         r.base.trans_coord_->Build(kPoints);
         r.base.points_trans_reduced_ = Matrix::Ones(2, 2);
         r.coefficient_matrix_ = Matrix::Ones(2, 3);
         r.values_trans_ = Vector::Ones(2);
       }},
      {"order", [](auto& r) { r.settings_.order_ = 3; }},
      {"order that overflows", [](auto& r) { r.settings_.order_ = std::uint64_t{1} << 63U; }},
      {"main terms", [](auto& r) { r.settings_.main_term_selection_ = Selection(3, 3); }},
      {"inputs without bits",
       [](auto& r) {
         r.settings_.base.ninputs_ = std::uint64_t{1} << 40U;
         r.settings_.main_term_selection_.clear();
       }},
      {"kernel type", [](auto& r) { r.settings_.kernel_type_ = 103; }},
      {"radius", [](auto& r) { r.settings_.kernel_parameter_ = Vector::Zero(1); }},
      {"number of radii", [](auto& r) { r.settings_.kernel_parameter_ = Vector::Ones(2); }},
      {"radii of fewer inputs", [](auto& r) { r.settings_.kernel_type_ = 1; }},
  };
  MovingLeastSquares read((Matrix()), Vector());
  ASSERT_NO_THROW(Load(Store(Record()), read));
  MovingLeastSquares built(kPoints, kValues);
  MovingLeastSquaresSettings settings(2);
  settings.SetKernelParameter(Vector::Ones(1));
  built.Initialize(settings);
  ASSERT_TRUE(built.Build());
  EXPECT_TRUE(MatrixNear(read.Approximate(kQuery), built.Approximate(kQuery), 0.0));
  for (const auto& c : cases) {
    auto record = Record();
    c.spoil(record);
    EXPECT_ANY_THROW(Load(Store(record), read)) << c.name;
  }
  EXPECT_THROW(Load(Store(Record<2>()), read), utils::runtime_error);  // an old layout
}

}  // namespace
}  // namespace kestrel::math::metamodel
