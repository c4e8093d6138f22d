#include "selection/sobol_indices.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "selection/search_samples.h"
#include "support/matrix_compare.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::statistics {
namespace {

using metamodel::Selection;
using testing::Inputs;
using testing::MatrixNear;
using testing::RandomPoints;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kSamplingError = 0.04;  // four standard deviations of an index from 10000 samples
constexpr std::uint64_t kSamples = 10000;

using Function = std::function<double(const Eigen::RowVectorXd&)>;

/// A function in the place of a fitted model.
class FunctionSurrogate final : public metamodel::SurrogateBase {
 public:
  FunctionSurrogate(const MatrixIn& points, Selection selection, Function function)
      : SurrogateBase(points, Vector::Zero(points.rows())),
        selection_(std::move(selection)),
        function_(std::move(function)) {}

  Vector Approximate(const MatrixIn& points) const override {
    Vector values(points.rows());
    for (Index i = 0; i < points.rows(); ++i) values(i) = function_(points.row(i));
    return values;
  }
  Selection GetVariableSelection() const override { return selection_; }
  bool Build() override { return true; }
  bool BuildOptimal(const metamodel::Subsets&) override { return true; }
  bool CheckBeforeBuild() override { return true; }
  bool CheckAfterBuild() const override { return true; }
  Vector ApproximateCrossValidation(const metamodel::Subsets&) const override { return Approximate(points_); }
  std::wstring Name(bool) const override { return L"function"; }
  std::uint64_t GetNumberCoefficients() const override { return 0; }
  const metamodel::SurrogateSettingsBase& GetSettingsBase() const override { return settings_; }
  std::unique_ptr<SurrogateBase> Clone() const override { return std::make_unique<FunctionSurrogate>(*this); }

 protected:
  void InitializeImpl(const metamodel::SurrogateSettingsBase&) override {}

 private:
  Selection selection_;
  Function function_;
  metamodel::LinearRegressionSettings settings_;
};

Matrix Indices(const FunctionSurrogate& surrogate, bool uniform = false, utils::log::LogBase* log = nullptr) {
  random::Generator generator(1);
  return SobolIndices(surrogate, log, kSamples, uniform, generator);
}

/// All pairs of `levels` values from -1 to 1: without any correlation.
Matrix Grid(Index levels) {
  const Vector values = Vector::LinSpaced(levels, -1.0, 1.0);
  Matrix grid(levels * levels, 2);
  for (Index i = 0; i < grid.rows(); ++i) grid.row(i) << values(i / levels), values(i % levels);
  return grid;
}

struct AnalyticCase {
  const char* name;
  Function function;
  Matrix expected;
};

// With means m and variances v of independent inputs: a linear function has the shares a_i^2 v_i / V for both indices;
// x_0 x_1 has V = (m0^2 + v0)(m1^2 + v1) - m0^2 m1^2, first index v0 m1^2 / V and total index v0 (m1^2 + v1) / V.
TEST(SobolIndices, AgreeWithAnalyticValues) {
  const double v = Grid(21).col(0).squaredNorm() / 441.0;
  const double shifted = (1.0 + v) * (1.0 + v) - 1.0;
  const AnalyticCase cases[] = {
      {"linear", [](const auto& x) { return 5.0 + 2.0 * x(0) - x(1); },
       (Matrix(2, 2) << 0.8, 0.8, 0.2, 0.2).finished()},
      {"pure interaction", [](const auto& x) { return x(0) * x(1); }, (Matrix(2, 2) << 0, 1, 0, 1).finished()},
      {"product", [](const auto& x) { return (x(0) + 1.0) * (x(1) + 1.0); },
       (Matrix(2, 2) << v, v * (1.0 + v), v, v * (1.0 + v)).finished() / shifted},
  };
  for (const AnalyticCase& c : cases) {
    const FunctionSurrogate surrogate(Grid(21), Inputs(2, {0, 1}), c.function);
    EXPECT_TRUE(MatrixNear(Indices(surrogate), c.expected, kSamplingError)) << c.name;
  }
}

TEST(SobolIndices, FollowTheSampleOrItsRange) {
  // Most samples of input 0 lie close together, those of input 1 are spread.
  Matrix points = RandomPoints(500, 2, 3, -1.0, 1.0);
  points.col(0) = points.col(0).array().pow(9);
  const FunctionSurrogate sum(points, Inputs(2, {0, 1}), [](const auto& x) { return x(0) + x(1); });
  const double share = points.col(0).squaredNorm() / points.squaredNorm();
  EXPECT_TRUE(MatrixNear(Indices(sum).row(0), Eigen::RowVector2d(share, share), kSamplingError));
  EXPECT_TRUE(MatrixNear(Indices(sum, true), Matrix::Constant(2, 2, 0.5), kSamplingError));
}

TEST(SobolIndices, LetCorrelatedInputsMoveAlong) {
  // Input 2 is correlated with input 0 by r = 0.6; input 1 is independent, input 3 not used.
  Matrix points = RandomPoints(3000, 4, 5, -1.0, 1.0);
  points.col(2) = 0.6 * points.col(0) + 0.8 * points.col(3);
  const FunctionSurrogate surrogate(points, Inputs(4, {0, 1, 2}), [](const auto& x) { return x(1) + x(2); });
  const Matrix expected = (Matrix(4, 2) << 0.18, 0.18, 0.5, 0.5, 0.5, 0.5, kNaN, kNaN).finished();  // r^2 / 2 = 0.18
  EXPECT_TRUE(MatrixNear(Indices(surrogate), expected, kSamplingError));
}

TEST(SobolIndices, AreNaNWithoutVariation) {
  const auto constant = [](const auto&) { return 3.0; };
  const auto nowhere = [](const auto&) { return kNaN; };
  const Matrix none = Matrix::Constant(2, 2, kNaN);
  const Matrix only_second = (Matrix(2, 2) << kNaN, kNaN, 1, 1).finished();
  EXPECT_TRUE(MatrixNear(Indices({Grid(5), Inputs(2, {0, 1}), constant}), none, 0.0));
  EXPECT_TRUE(MatrixNear(Indices({Grid(5), Inputs(2, {0, 1}), nowhere}), none, 0.0));
  EXPECT_TRUE(MatrixNear(Indices({Grid(5), Inputs(2, {}), constant}), none, 0.0));
  EXPECT_TRUE(MatrixNear(Indices({Grid(5), Inputs(2, {1}), constant}), only_second, 0.0));
}

TEST(SobolIndices, LeaveOutPointsWithoutAValue) {
  // The sample has no point with both inputs above 0.5, but the mixed samples do: 1/16 / (15/16)^2 of them, less the
  // pairs that are in the sample.
  Matrix points = Grid(21);
  std::vector<Index> kept;
  for (Index i = 0; i < points.rows(); ++i) {
    if (points.row(i).minCoeff() <= 0.5) kept.push_back(i);
  }
  points = Matrix(points(kept, Eigen::all));
  const FunctionSurrogate surrogate(points, Inputs(2, {0, 1}),
                                    [](const auto& x) { return x.minCoeff() > 0.5 ? kNaN : x(0); });
  utils::log::VectorLog log;
  const Matrix indices = Indices(surrogate, false, &log);
  EXPECT_TRUE(indices.allFinite());
  ASSERT_EQ(log.GetEntries().size(), 2u);
  const std::wstring text = log.GetEntries()[0].second;
  const std::wstring beginning = L"Approximation returned invalid values while calculating single CoP. (Removed ";
  ASSERT_EQ(text.substr(0, beginning.size()), beginning);
  EXPECT_EQ(text.substr(text.find(L" out")), L" out of 10000 samples from calculation.)");
  const double removed = std::stod(text.substr(beginning.size()));
  const double above = 5.0 * 16.0 / static_cast<double>(kept.size());  // share of the sample with one input above 0.5
  EXPECT_NEAR(removed / 10000.0, above * above, 0.01);
}

}  // namespace
}  // namespace kestrel::math::statistics
