#include <gtest/gtest.h>

#include "surrogates/moving_least_squares.h"
#include "surrogates/stored_models.h"

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
using testing::Store;

/// Order 2, Box-Cox, limits, the radius found.
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
  return surrogate;
}

TEST(StoredMovingLeastSquaresModels, EvaluateToTheSameBits) {
  for (const auto& make : {FullModel, LocalMean}) ExpectStoredToTheBit(make());
  EXPECT_EQ(FirstNameOutOfOrder(
                FullModel(),
                "SurrogateBase points_ points_radii_mean_ coefficient_matrix_ settings_ SurrogateSettingsBase ninputs_ "
                "order_ main_term_selection_ kernel_type_ kernel_parameter_ values_trans_"),
            "");
  MovingLeastSquares cleared = FullModel();
  cleared.ClearSupportsForSerialize();
  EXPECT_THROW(cleared.ApproximateVariableImportanceCV(), std::logic_error);
}

/// A model of order 1 as its file holds it.
template <unsigned kVersion = 3>
StoredMovingLeastSquares<kVersion> Record() {
  StoredMovingLeastSquares<kVersion> record;
  FillSample(record.base);
  record.settings_.base.coord_transform_parameter_ = {0.0, 1.0};
  record.coefficient_matrix_ = Matrix::Ones(40, 3);
  record.coefficient_matrix_.rightCols(2) = record.base.points_trans_reduced_;
  record.values_trans_ = kValues;
  return record;
}

TEST(StoredMovingLeastSquaresModels, AreRefusedWhereTheirPartsDoNotMatch) {
  MovingLeastSquares built(kPoints, kValues);
  MovingLeastSquaresSettings settings(2);
  settings.SetKernelParameter(Vector::Ones(1));
  built.Initialize(settings);
  ASSERT_TRUE(built.Build());
  ExpectRefused<MovingLeastSquares, StoredMovingLeastSquares<3>>(
      Record, built,
      {
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
      });
  EXPECT_THROW(Load(Store(Record<2>()), built), utils::runtime_error);  // an old layout
}

}  // namespace
}  // namespace kestrel::math::metamodel
