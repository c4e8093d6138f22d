#include "surrogates/surrogate2_base.h"

#include <gtest/gtest.h>

#include <cmath>

#include "statistics/distances.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "surrogates/linear_regression.h"
#include "surrogates/sample_data.h"
#include "surrogates/surrogate_appraisal_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::MatrixNear;
using testing::Noise;
using testing::RandomPoints;

LinearRegression BuiltLine(const Matrix& points, const Vector& values) {
  LinearRegression regression(points, values);
  EXPECT_TRUE(regression.Build());
  return regression;
}

/// Columns 0 to 3 at one query point by plain loops.
Vector PlainErrors(const Matrix& scaled, const Vector& query, const Vector& values, const Vector& residuals) {
  const Vector d2 = (scaled.rowwise() - query.transpose()).rowwise().squaredNorm();
  Vector sorted = d2;
  std::sort(sorted.data(), sorted.data() + sorted.size());
  const Index k = std::min<Index>(50, sorted.size()) - 1;
  double sum = 0, squares = 0, mean = 0, absolute = 0;
  for (Index i = 0; i < d2.size(); ++i) {
    const double w = std::exp(std::log(0.001) * d2[i] / sorted[k]);
    sum += w;
    squares += w * residuals[i] * residuals[i];
    mean += w * residuals[i];
    absolute += w * std::abs(residuals[i]);
  }
  const double total = (values.array() - values.mean()).square().sum();
  const double m = squares / sum;
  const double local = std::max(0.0, 1.0 - m * static_cast<double>(values.size()) / total);
  return (Vector(4) << local, std::sqrt(m), mean / sum, absolute / sum).finished();
}

TEST(SurrogateErrors, AgreeWithPlainLoops) {
  const Matrix points = RandomPoints(70, 2, 1, 0.0, 10.0);
  const Vector values = points.col(0) + Noise(70, 1.0, 2);
  LinearRegression regression = BuiltLine(points, values);
  ASSERT_TRUE(regression.BuildErrors());
  const Matrix query = RandomPoints(3, 2, 3, -2.0, 12.0);
  const Matrix errors = regression.ApproximateErrors(query);

  const Eigen::RowVectorXd low = points.colwise().minCoeff();
  const Eigen::RowVectorXd range = points.colwise().maxCoeff() - low;
  const auto scale = [&](const Matrix& m) { return Matrix((m.rowwise() - low).array().rowwise() / range.array()); };
  const Matrix scaled = scale(points);
  const Vector residuals = values - regression.ApproximateLeaveOneOut();
  for (Index q = 0; q < query.rows(); ++q) {
    const Vector expected = PlainErrors(scaled, scale(query).row(q).transpose(), values, residuals);
    EXPECT_TRUE(MatrixNear(errors.row(q).head(4).transpose(), expected, 1e-10));
  }
  const double radius = statistics::CalcRadii(scaled, 5).mean();
  EXPECT_TRUE(
      MatrixNear(errors.col(4), statistics::CalcDensity(scale(query), scaled, Selection(2).set(), radius), 1e-10));
}

TEST(SurrogateErrors, OfConstantAndOfExactModelsAreNone) {
  const Matrix points = RandomPoints(20, 2, 1);
  const Matrix none = (Matrix(1, 4) << 1, 0, 0, 0).finished();
  for (const Vector& values : {Vector(Vector::Constant(20, 4.0)), Vector(points.col(0) - points.col(1))}) {
    LinearRegression regression = BuiltLine(points, values);
    EXPECT_THROW(regression.ApproximateErrors(points), utils::runtime_error);
    ASSERT_TRUE(regression.BuildErrors());
    EXPECT_TRUE(MatrixNear(regression.ApproximateErrors(points.topRows(1)).leftCols(4), none, 0.0));
  }
}

TEST(SurrogateBase, KeepsResidualsUntilSettingsOrSubsetsChange) {
  const Matrix points = RandomPoints(30, 2, 1);
  const Vector values = Noise(30, 1.0, 2);
  LinearRegression regression = BuiltLine(points, values);
  Subsets subsets;
  for (std::uint64_t i = 0; i < 30; ++i) subsets.push_back(i % 5);
  ASSERT_TRUE(regression.BuildErrors(subsets));
  EXPECT_TRUE(
      MatrixNear(regression.ApproximateCrossValidation(), regression.ApproximateCrossValidation(subsets), 1e-15));
  ASSERT_TRUE(regression.BuildErrors({}));
  EXPECT_TRUE(MatrixNear(regression.ApproximateCrossValidation(), regression.ApproximateLeaveOneOut(), 1e-15));
  regression.SetSubsets(subsets);
  EXPECT_TRUE(MatrixNear(regression.ApproximateCrossValidation(), regression.ApproximateCrossValidation(subsets), 0.0));
  EXPECT_THROW(regression.SetSubsets({0, 1}), utils::runtime_error);
}

TEST(SurrogateBase, GradientsAreNaNOnlyForUsedConstantInputs) {
  Matrix points = RandomPoints(12, 3, 1);
  points.col(1).setConstant(2.0);
  points.col(2).setConstant(5.0);
  LinearRegression regression(points, points.col(0));
  LinearRegressionSettings settings(3);
  settings.SetVariableSelection(Selection(std::string("011")));
  regression.Initialize(settings);
  ASSERT_TRUE(regression.Build());
  const Matrix gradients = regression.ApproximateGradients(points.topRows(1));
  EXPECT_TRUE(std::isnan(gradients(0, 1)));
  EXPECT_EQ(gradients(0, 2), 0.0);
}

TEST(SurrogateBase, SelectsColumnsByCount) {
  const Matrix points = RandomPoints(4, 3, 1);
  EXPECT_TRUE(
      MatrixNear(SelectVariablesFromPoints(points, Selection(std::string("101"))), points(Eigen::all, {0, 2}), 0.0));
  EXPECT_TRUE(MatrixNear(SelectVariablesFromPoints(points, Selection(3).set()), points, 0.0));
  EXPECT_EQ(SelectVariablesFromPoints(points, Selection(3)).cols(), 0);
  EXPECT_EQ(SelectVariablesFromPoints(Matrix(4, 0), Selection()).rows(), 4);
}

TEST(SurrogateBase, RefusesSamplesThatDoNotMatch) {
  EXPECT_THROW(LinearRegression(Matrix::Zero(3, 1), Vector::Zero(2)), utils::runtime_error);
  EXPECT_THROW(CreateTransformation(static_cast<eTransformation>(4), {}), std::logic_error);
  const LinearRegression empty(Matrix(0, 1), Vector(0));
  EXPECT_THROW(empty.SurrogateBase::ApproximateCrossValidation(), std::logic_error);
}

TEST(SurrogateBase, ClonesAreDeep) {
  const Matrix points = RandomPoints(15, 2, 1);
  LinearRegression regression = BuiltLine(points, Noise(15, 1.0, 2));
  const auto clone = regression.Clone();
  EXPECT_TRUE(*clone == regression);
  regression.InitializeValueTransformation(eTransformation::kBoxCox, {});
  EXPECT_FALSE(*clone == regression);
  EXPECT_NO_THROW(clone->Approximate(points));
}

TEST(AppraisalData, IsInvalidUntilSet) {
  AppraisalData data;
  EXPECT_THROW(data.GetCoP(), utils::runtime_error);
  EXPECT_THROW(data.GetSingleCoP(0), utils::runtime_error);
  data.SetSingleCoP(2, 0.5);
  EXPECT_EQ(data.GetSingleCoP(2), 0.5);
  EXPECT_THROW(data.GetSingleCoP(1), utils::runtime_error);
  EXPECT_TRUE(data == AppraisalData(data));
  EXPECT_FALSE(data == AppraisalData());
}

}  // namespace
}  // namespace kestrel::math::metamodel
