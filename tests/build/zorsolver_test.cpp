#include "build/zorsolver.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <limits>

#include "build/samples.h"
#include "support/exceptions.h"
#include "support/matrix_compare.h"
#include "surrogates/linear_regression.h"

namespace kestrel::zor {
namespace {

using algorithm::datatypes::AlgorithmInfo;
using algorithm::datatypes::LYRA;
using algorithm::datatypes::SurrogateInfo;
using algorithm::datatypes::ZORInformation;
using enums::eExtrapolationTypes;
using math::Matrix;
using math::Vector;
using math::metamodel::LinearRegression;
using testing::MatrixNear;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kExact = 1e-9;
constexpr bool kThrowing = true;

/// Two quadratic responses of two inputs, sampled in [0, 1] x [0, 4] with exact bounds.
struct Record {
  Record() {
    points = testing::RandomPoints(20, 2, 3, 0.0, 1.0);
    points.col(1) *= 4.0;
    points.row(0) << 0.0, 4.0;
    points.row(1) << 1.0, 0.0;
    information.parameter_names_ = {L"a", L"b"};
    for (const std::wstring name : {L"first", L"second"}) Add(name, name == L"first" ? 1.0 : -1.0);
  }

  void Add(const std::wstring& name, double sign) {
    math::metamodel::LinearRegressionSettings quadratic(2);
    quadratic.SetOrder(2);
    const auto regression = std::make_shared<LinearRegression>(points, sign * testing::Quadratic(points));
    regression->Initialize(quadratic);
    information.surrogate_infos_.AddSurrogateInfo(SurrogateInfo(name, regression, {}));
    information.cv_indexes_[name] = {};
  }

  LYRA Make() const {
    Matrix responses(20, 2);
    responses << testing::Quadratic(points), -testing::Quadratic(points);
    const testing::SampleTable samples{{L"a", L"b"}, {L"first", L"second"}, points, responses};
    LYRA lyra;
    lyra.SetDesignContainer(samples.Designs());
    lyra.SetParameterManager(testing::ParametersOf(lyra.GetDesignContainer()));
    lyra.SetAlgorithmInfo(boost::make_shared<AlgorithmInfo>(AlgorithmInfo::eKind::kMetamodel));
    lyra.GetAlgorithmInfo()->SetDetailedInfo(boost::make_shared<ZORInformation>(information));
    return lyra;
  }

  Matrix points;
  ZORInformation information;
};

ZORSolver MakeSolver() {
  ZORSolver solver(true);
  solver.InitializeSolver(Record().Make(), {});
  return solver;
}

Matrix Point(double a, double b) {
  Matrix point(1, 2);
  point << a, b;
  return point;
}

template <class Work>
std::string FailureOf(Work&& work) {
  try {
    work();
    return "none";
  } catch (const utils::runtime_error& error) {
    return error.what();
  }
}

TEST(Solver, EvaluatesAllResponsesInTheirOrder) {
  Matrix points = testing::RandomPoints(5, 2, 4, 0.0, 1.0);
  const Matrix values = MakeSolver().ApproximateDesigns(points, false, kThrowing);
  Matrix expected(5, 2);
  expected << testing::Quadratic(points), -testing::Quadratic(points);
  EXPECT_TRUE(MatrixNear(values, expected, kExact));
}

struct BoundsCase {
  double a;
  double b;
  eExtrapolationTypes type;
  const char* text;  ///< "none" where the point is inside
};

TEST(Solver, TestsTheBoundsOfTheType) {
  constexpr auto kFree = eExtrapolationTypes::kFree;
  constexpr auto kParameters = eExtrapolationTypes::kParameterBounds;
  constexpr auto kSampling = eExtrapolationTypes::kSamplingBounds;
  const BoundsCase cases[] = {
      {0.0, 4.0, kSampling, "none"},
      {1.0, 0.0, kSampling, "none"},
      {1.01, 2.0, kSampling, "Value 1.01 of Parameter a violates bounds: [0, 1]"},
      {0.5, -1e-12, kSampling, "Value -1e-12 of Parameter b violates bounds: [0, 4]"},
      {-2.0, 9.0, kSampling, "Value -2 of Parameter a violates bounds: [0, 1]"},
      {0.5, kNan, kSampling, "Value nan of Parameter b violates bounds: [0, 4]"},
      {-2.0, 9.0, kFree, "none"},
      {kNan, 9.0, kFree, "none"},
      {1.05, 4.4, kParameters, "none"},
      {1.11, 0.0, kParameters, "Value 1.11 of Parameter a violates bounds: [-0.1, 1.1]"},
      {0.0, 0.0, static_cast<eExtrapolationTypes>(3), "Extrapolation type is not defined."},
      {0.0, 0.0, static_cast<eExtrapolationTypes>(-1), "Extrapolation type is not defined."},
  };
  const ZORSolver solver = MakeSolver();
  for (const BoundsCase& c : cases) {
    const Matrix point = Point(c.a, c.b);
    EXPECT_EQ(FailureOf([&] { solver.ApproximateDesigns(point, c.type, kThrowing); }), c.text);
    EXPECT_EQ(FailureOf([&] { solver.ApproximateGradientsPerResponse(point, L"first", c.type, kThrowing); }), c.text);
    EXPECT_EQ(FailureOf([&] { solver.ApproximateErrorsPerResponse(point, L"first", c.type, kThrowing); }), c.text);
  }
}

TEST(Solver, ReportsTheFirstBreachOfTheFirstRow) {
  Matrix points(3, 2);
  points << 0.5, 0.5, 0.5, 7.0, 3.0, 0.5;
  const ZORSolver solver = MakeSolver();
  EXPECT_EQ(FailureOf([&] { solver.ApproximateDesigns(points, false, kThrowing); }),
            "Value 7 of Parameter b violates bounds: [0, 4]");
}

TEST(Solver, LogsABreachWhereItDoesNotThrow) {
  const ZORSolver solver = MakeSolver();
  EXPECT_EQ(solver.ApproximateDesigns(Point(2.0, 0.0), false, !kThrowing).size(), 0);
  const auto& entries = solver.GetLog().GetEntries();
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].second, L"Value 2 of Parameter a violates bounds: [0, 1]");
  EXPECT_EQ(
      solver.ApproximateErrorsPerResponse(Point(2.0, 0.0), L"first", eExtrapolationTypes::kSamplingBounds, !kThrowing)
          .size(),
      0);
}

TEST(Solver, RefusesAnotherNumberOfColumns) {
  const ZORSolver solver = MakeSolver();
  EXPECT_EQ(solver.ApproximateDesigns(Matrix::Zero(2, 3), true, kThrowing).size(), 0);
  EXPECT_EQ(solver
                .ApproximateGradientsPerResponse(Matrix::Zero(2, 1), L"first", eExtrapolationTypes::kSamplingBounds,
                                                 kThrowing)
                .size(),
            0);
  ASSERT_EQ(solver.GetLog().GetEntries().size(), 2u);
  EXPECT_EQ(solver.GetLog().GetEntries()[0].second, L"2 input columns expected.");
}

TEST(Solver, DropsItsMessagesIfNobodyWantsThem) {
  ZORSolver solver(false);
  solver.InitializeSolver(Record().Make(), {});
  solver.ApproximateDesigns(Point(2.0, 0.0), false, !kThrowing);
  EXPECT_TRUE(solver.GetLog().GetEntries().empty());
}

TEST(Solver, EvaluatesNoPoints) {
  const ZORSolver solver = MakeSolver();
  const Matrix none(0, 2);
  const Matrix values = solver.ApproximateDesigns(none, false, kThrowing);
  EXPECT_EQ(values.rows(), 0);
  EXPECT_EQ(values.cols(), 2);
  EXPECT_EQ(solver.ApproximateErrorsPerResponse(none, L"first", eExtrapolationTypes::kSamplingBounds, kThrowing).rows(),
            0);
}

TEST(Solver, NeedsUsableModels) {
  const Matrix point = Point(0.5, 0.5);
  const auto evaluate = [&](const ZORSolver& solver, const std::wstring& name) {
    return FailureOf(
        [&] { solver.ApproximateGradientsPerResponse(point, name, eExtrapolationTypes::kFree, kThrowing); });
  };
  const ZORSolver solver = MakeSolver();
  EXPECT_EQ(evaluate(solver, L"third"), "Evaluation impossible. No metamodel initialized.");
  EXPECT_EQ(FailureOf([&] { ZORSolver(true).ApproximateDesigns(point, true, kThrowing); }),
            "Approximation impossible due to missing meta models.");

  Record without_model;
  without_model.information.surrogate_infos_.AddSurrogateInfo(SurrogateInfo(L"third", nullptr, {}));
  ZORSolver incomplete(true);
  incomplete.InitializeSolver(without_model.Make(), {});
  EXPECT_EQ(evaluate(incomplete, L"third"), "Evaluation impossible. No metamodel initialized.");
  EXPECT_EQ(evaluate(incomplete, L"first"), "none");
}

TEST(Solver, RefusesAModelThatIsNotBuiltAnyMore) {
  const ZORSolver solver = MakeSolver();
  solver.GetSurrogateInfos().GetInfos()[0].GetSurrogate()->InitializeValueTransformation(
      math::metamodel::eTransformation::kBoxCox, {});
  EXPECT_EQ(FailureOf([&] { solver.ApproximateDesigns(Point(0.5, 0.5), true, kThrowing); }),
            "Evaluation impossible. Check failed.");
}

TEST(Solver, GivesTheGradientOfEachResponse) {
  const Matrix points = testing::RandomPoints(4, 2, 9, 0.1, 0.9);
  Matrix expected(4, 2);  // of 1 + 2 a - 3 b^2 + a b
  expected.col(0) = 2.0 + points.col(1).array();
  expected.col(1) = points.col(0) - 6.0 * points.col(1);
  const ZORSolver solver = MakeSolver();
  const auto gradients = [&](const wchar_t* name) {
    return solver.ApproximateGradientsPerResponse(points, name, eExtrapolationTypes::kSamplingBounds, kThrowing);
  };
  EXPECT_TRUE(MatrixNear(gradients(L"first"), expected, 1e-7));
  EXPECT_TRUE(MatrixNear(gradients(L"second"), -expected, 1e-7));
}

TEST(Solver, GivesFiveErrorValuesPerPoint) {
  const ZORSolver solver = MakeSolver();
  const Matrix errors = solver.ApproximateErrorsPerResponse(testing::RandomPoints(4, 2, 9, 0.1, 0.9), L"first",
                                                            eExtrapolationTypes::kSamplingBounds, kThrowing);
  ASSERT_EQ(errors.rows(), 4);
  ASSERT_EQ(errors.cols(), 5);
  EXPECT_TRUE(MatrixNear(errors.col(0), Vector::Ones(4), 0.0));  // an exact model
  EXPECT_TRUE((errors.col(4).array() > 0.0).all());
}

TEST(Solver, FillsTheResponsesOfDesigns) {
  const ZORSolver solver = MakeSolver();
  auto designs = solver.GetLYRA().GetDesignContainer();
  for (auto& design : designs) design.OverrideResponse(L"first", 0.0);
  const auto approximated = solver.Approximate(designs, eExtrapolationTypes::kSamplingBounds, kThrowing);
  const auto& sampled = solver.GetLYRA().GetDesignContainer()[7].GetResponses();
  ASSERT_EQ(approximated.size(), 20u);
  EXPECT_NEAR(approximated[7].GetResponses()[L"first"].GetScalar().real(), sampled[L"first"].GetScalar().real(),
              kExact);
  EXPECT_TRUE(approximated[7].IsApproximated());
}

TEST(Solver, ComputesDependentParametersBeforeItEvaluates) {
  LYRA lyra = Record().Make();
  auto parameters = lyra.GetParameterManager();
  parameters.GetParameter(L"b").SetDependencyExpression(L"2 * a + 1");
  lyra.SetParameterManager(parameters);
  algorithm::datatypes::CriterionSequence criteria;
  criteria.Add(L"twice",
               algorithm::datatypes::Criterion(kestrel::enums::CriterionType::OBJECTIVE_MIN, L"first + b", L""));
  lyra.SetCriteria(criteria);
  ZORSolver solver(true);
  solver.InitializeSolver(lyra, {});
  const Matrix values = solver.ApproximateDesigns(Point(0.5, 3.75), false, kThrowing);
  const double expected = testing::Quadratic(Point(0.5, 2.0))(0);
  EXPECT_TRUE(MatrixNear(values, (Matrix(1, 3) << expected, -expected, expected + 2.0).finished(), kExact));
}

TEST(Solver, KeepsABoundedNumberOfMessages) {
  const ZORSolver solver = MakeSolver();
  for (int i = 0; i < 1100; ++i) solver.ApproximateDesigns(Matrix(1, 3), false, kThrowing);
  EXPECT_EQ(solver.GetLog().GetEntries().size(), 1000u);
}

}  // namespace
}  // namespace kestrel::zor
