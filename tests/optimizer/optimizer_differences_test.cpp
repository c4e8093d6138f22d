#include "optimizer/optimizer_differences.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <string>
#include <vector>

#include "support/exceptions.h"
#include "support/matrix_compare.h"

namespace kestrel::algorithm::optimizer {
namespace {

using kestrel::testing::MatrixNear;

/// Two responses of two inputs.
Matrix Responses(const Matrix& designs) {
  Matrix responses(designs.rows(), 2);
  responses.col(0) = (designs.col(0).array() * 2.0).exp() * designs.col(1).array().sin();
  responses.col(1) = designs.col(0).array().cube() + designs.col(1).array().log();
  return responses;
}

/// n x 2, by hand.
Matrix Gradient(const Vector& x) {
  Matrix gradient(2, 2);
  gradient << 2.0 * std::exp(2.0 * x(0)) * std::sin(x(1)), 3.0 * x(0) * x(0), std::exp(2.0 * x(0)) * std::cos(x(1)),
      1.0 / x(1);
  return gradient;
}

struct Kind {
  const char* name;
  eDiffType type;
  Index designs_per_input;
  int order;
};

std::ostream& operator<<(std::ostream& stream, const Kind& kind) { return stream << kind.name; }

class DifferencesOf : public ::testing::TestWithParam<Kind> {
 protected:
  /// Largest error of the gradient at x with the step h, all designs within [lower, upper].
  double ErrorAt(const Vector& x, double h) const {
    const auto differences = MakeDifferences(GetParam().type, lower_, upper_);
    const Matrix designs = differences->ProvideDesignsForFunctionAndGradient(x, Vector::Constant(2, h));
    EXPECT_EQ(designs.rows(), 1 + 2 * GetParam().designs_per_input);
    EXPECT_EQ(designs.rows(), differences->GetNumberFnGDesigns());
    EXPECT_EQ(designs.row(0), x.transpose());
    for (Index row = 0; row < designs.rows(); ++row) {
      EXPECT_TRUE((designs.row(row).transpose().array() >= lower_.array()).all()) << designs.row(row);
      EXPECT_TRUE((designs.row(row).transpose().array() <= upper_.array()).all()) << designs.row(row);
    }
    const Matrix gradient = differences->ProvideGradientFromFnGDesigns(designs, Responses(designs));
    const Matrix apart = differences->ProvideDesignsForGradient(x, Vector::Constant(2, h));
    const Matrix from_apart =
        differences->ProvideGradientFromGDesigns(x, Responses(x.transpose()).transpose(), apart, Responses(apart));
    EXPECT_TRUE(MatrixNear(from_apart, gradient, 1e-8));
    return (gradient - Gradient(x)).cwiseAbs().maxCoeff();
  }

  Vector lower_ = Vector::Constant(2, 0.2);
  Vector upper_ = Vector::Constant(2, 1.7);
};

/// Halving the step divides the error by 2^order: at inner points, at each bound, and one step away from these.
TEST_P(DifferencesOf, KeepTheirOrderEverywhere) {
  constexpr double kStep = 0.005;
  struct Place {
    double base;
    double steps_off;
  };
  for (const Place first : {Place{0.2, 0}, Place{0.2, 1.01}, Place{0.9, 0}, Place{1.7, -1.01}, Place{1.7, 0}}) {
    for (const double second : {0.2, 1.0, 1.7}) {
      SCOPED_TRACE(::testing::Message() << "at (" << first.base << ", " << second << ")");
      const auto error = [&](double h) {
        return ErrorAt((Vector(2) << first.base + first.steps_off * h, second).finished(), h);
      };
      EXPECT_NEAR(std::log2(error(kStep) / error(kStep / 2.0)), GetParam().order, 0.4);
    }
  }
}

TEST_P(DifferencesOf, ShrinkTheStepBetweenCloseBounds) {
  lower_ << 0.5, 0.5;
  upper_ << 0.5001, 0.5;
  const auto differences = MakeDifferences(GetParam().type, lower_, upper_);
  const Vector x = (Vector(2) << 0.50004, 0.5).finished();
  const Matrix designs = differences->ProvideDesignsForFunctionAndGradient(x, Vector::Constant(2, 1.0));
  const Matrix gradient = differences->ProvideGradientFromFnGDesigns(designs, Responses(designs));
  EXPECT_TRUE(MatrixNear(gradient.row(0), Gradient(x).row(0), 1e-3));
  EXPECT_TRUE(MatrixNear(gradient.row(1), Matrix::Zero(1, 2), 0.0));  // no room: no slope
}

INSTANTIATE_TEST_SUITE_P(, DifferencesOf,
                         ::testing::Values(Kind{"Forward", eDiffType::kForward, 1, 1},
                                           Kind{"Backward", eDiffType::kBackward, 1, 1},
                                           Kind{"Central", eDiffType::kCentral, 2, 2},
                                           Kind{"FourthOrder", eDiffType::kFourthOrder, 4, 4}),
                         [](const auto& tested) { return std::string(tested.param.name); });

struct Stencil {
  const char* name;
  eDiffType type;
  double centre;
  std::vector<double> points;
};

/// One input in [0, 10] with the step 1: a step at a bound turns inward.
TEST(Differences, PointsOfEachKind) {
  const Stencil stencils[] = {
      {"forward", eDiffType::kForward, 5, {6}},
      {"forward at the upper bound", eDiffType::kForward, 10, {9}},
      {"backward", eDiffType::kBackward, 5, {4}},
      {"backward at the lower bound", eDiffType::kBackward, 0, {1}},
      {"central", eDiffType::kCentral, 5, {4, 6}},
      {"central at the lower bound", eDiffType::kCentral, 0, {1, 2}},
      {"central at the upper bound", eDiffType::kCentral, 10, {8, 9}},
      {"fourth order", eDiffType::kFourthOrder, 5, {3, 4, 6, 7}},
      {"fourth order near the lower bound", eDiffType::kFourthOrder, 1, {0, 2, 3, 4}},
      {"fourth order at the upper bound", eDiffType::kFourthOrder, 10, {6, 7, 8, 9}},
  };
  for (const Stencil& stencil : stencils) {
    SCOPED_TRACE(stencil.name);
    const auto differences = MakeDifferences(stencil.type, Vector::Zero(1), Vector::Constant(1, 10.0));
    const Matrix points =
        differences->ProvideDesignsForGradient(Vector::Constant(1, stencil.centre), Vector::Constant(1, 1.0));
    EXPECT_TRUE(MatrixNear(
        points, Eigen::Map<const Vector>(stencil.points.data(), static_cast<Index>(stencil.points.size())), 1e-12));
  }
  EXPECT_THROW(MakeDifferences(static_cast<eDiffType>(4), Vector::Zero(1), Vector::Ones(1)), utils::logic_error);
}

TEST(Differences, DesignsEvaluatedElsewhereAreNotAccurate) {
  const ForwardDifferences differences(Vector::Zero(2), Vector::Ones(2));
  const Vector asked = Vector::Constant(2, 0.5);
  const Vector steps = (Vector(2) << 1e-3, 1e-6).finished();
  EXPECT_TRUE(differences.IsDesignVectorSufficientlyAccurate(asked, asked, steps));
  EXPECT_TRUE(differences.IsDesignVectorSufficientlyAccurate(asked + Vector::Unit(2, 0) * 1e-10, asked, steps));
  EXPECT_FALSE(differences.IsDesignVectorSufficientlyAccurate(asked + Vector::Unit(2, 1) * 1e-10, asked, steps));
}

}  // namespace
}  // namespace kestrel::algorithm::optimizer
