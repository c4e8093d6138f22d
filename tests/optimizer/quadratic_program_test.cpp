#include "optimizer/quadratic_program.h"

#include <gtest/gtest.h>

#include <Eigen/LU>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "optimizer/merit_function.h"
#include "optimizer/step_program.h"
#include "support/matrix_compare.h"

namespace kestrel::algorithm::optimizer {
namespace {

using kestrel::testing::MatrixNear;

/// The data that a QuadraticProgram refers to.
struct ProgramData {
  Matrix matrix;
  Vector gradient;
  Matrix normals;
  Vector offsets;
  Index num_equalities = 0;
  Vector lower;
  Vector upper;

  QuadraticProgram View() const {
    return {matrix, gradient, true, gradient, normals, offsets, num_equalities, lower, upper};
  }
};

ProgramData RandomProgram(std::mt19937& generator) {
  std::normal_distribution<double> normal;
  const auto random = [&] { return normal(generator); };
  const auto n = 1 + static_cast<Index>(generator() % 3);
  const auto m = static_cast<Index>(generator() % 4);
  ProgramData data;
  const Matrix root = Matrix::NullaryExpr(n, n, random);
  data.matrix = root * root.transpose() + 0.05 * Matrix::Identity(n, n);
  data.gradient = 3.0 * Vector::NullaryExpr(n, random);
  data.normals = Matrix::NullaryExpr(m, n, random);
  data.offsets = Vector::NullaryExpr(m, random);
  data.num_equalities = m > 0 ? static_cast<Index>(generator() % 2) : 0;
  data.lower = Vector::Constant(n, -1.0);
  data.upper = Vector::Constant(n, 1.5);
  return data;
}

/// All constraints as rows a, b of a d + b >= 0; the equalities first.
void StackConstraints(const ProgramData& data, Matrix& rows, Vector& offsets) {
  const Index n = data.gradient.size();
  const Index m = data.offsets.size();
  rows.resize(m + 2 * n, n);
  offsets.resize(m + 2 * n);
  rows << data.normals, Matrix::Identity(n, n), -Matrix::Identity(n, n);
  offsets << data.offsets, -data.lower, data.upper;
}

/// The lowest objective over the stationary points of every choice of active constraints; infinity if none is feasible.
double SolveByEnumeration(const ProgramData& data) {
  Matrix rows;
  Vector offsets;
  StackConstraints(data, rows, offsets);
  const Index n = data.gradient.size();
  double lowest = std::numeric_limits<double>::infinity();
  for (unsigned choice = 0; choice < 1U << rows.rows(); ++choice) {
    std::vector<Index> active;
    for (Index k = 0; k < rows.rows(); ++k) {
      if (k < data.num_equalities || (choice >> k & 1U) != 0) active.push_back(k);
    }
    const auto q = static_cast<Index>(active.size());
    if (q > n) continue;
    Matrix system = Matrix::Zero(n + q, n + q);
    Vector right(n + q);
    system.topLeftCorner(n, n) = data.matrix;
    right.head(n) = -data.gradient;
    for (Index i = 0; i < q; ++i) {
      const Index k = active[static_cast<std::size_t>(i)];
      system.row(n + i).head(n) = rows.row(k);
      system.col(n + i).head(n) = rows.row(k).transpose();
      right(n + i) = -offsets(k);
    }
    const Eigen::FullPivLU<Matrix> factor(system);
    if (!factor.isInvertible()) continue;
    const Vector d = factor.solve(right).head(n);
    const Vector slack = rows * d + offsets;
    const bool feasible = slack.minCoeff() > -1e-9 && slack.head(data.num_equalities).cwiseAbs().sum() < 1e-9;
    if (feasible) lowest = std::min(lowest, 0.5 * d.dot(data.matrix * d) + data.gradient.dot(d));
  }
  return lowest;
}

TEST(QuadraticProgram, AgreesWithEnumerationOfActiveSets) {
  std::mt19937 generator(1);
  int inconsistent = 0;
  for (int repetition = 0; repetition < 300; ++repetition) {
    SCOPED_TRACE(repetition);
    const ProgramData data = RandomProgram(generator);
    const double expected = SolveByEnumeration(data);
    const ProgramSolution solution = ql_(data.View(), 0.0);
    if (std::isinf(expected)) {
      ++inconsistent;
      EXPECT_EQ(solution.result, eProgramResult::kInconsistent);
      continue;
    }
    ASSERT_EQ(solution.result, eProgramResult::kSolved);
    const Vector& d = solution.step;
    EXPECT_NEAR(0.5 * d.dot(data.matrix * d) + data.gradient.dot(d), expected, 1e-9 * (1.0 + std::abs(expected)));

    Matrix rows;
    Vector offsets;
    StackConstraints(data, rows, offsets);
    const Vector slack = rows * d + offsets;
    EXPECT_TRUE(MatrixNear(data.matrix * d + data.gradient, rows.transpose() * solution.multipliers, 1e-8));
    EXPECT_GE(solution.multipliers.tail(offsets.size() - data.num_equalities).minCoeff(), 0.0);
    EXPECT_LT(solution.multipliers.cwiseProduct(slack).cwiseAbs().maxCoeff(), 1e-8);
    EXPECT_GT(slack.minCoeff(), -1e-9);
  }
  EXPECT_GT(inconsistent, 10);  // both outcomes were met
  EXPECT_LT(inconsistent, 200);
}

TEST(QuadraticProgram, FactorisedMatrixGivesTheSameStep) {
  std::mt19937 generator(2);
  for (int repetition = 0; repetition < 20; ++repetition) {
    ProgramData data = RandomProgram(generator);
    const ProgramSolution full = ql_(data.View(), 0.0);
    const Index n = data.gradient.size();
    Matrix factor(n, n);
    Vector diagonal(n);
    ASSERT_TRUE(ldl001_(data.matrix, factor, diagonal));
    const Matrix lower = factor.triangularView<Eigen::UnitLower>();
    EXPECT_TRUE(MatrixNear(lower * diagonal.asDiagonal() * lower.transpose(), data.matrix, 1e-12));
    QuadraticProgram program = data.View();
    const ProgramSolution factorised = ql_({factor, diagonal, false, program.gradient, program.normals, program.offsets,
                                            program.num_equalities, program.lower, program.upper},
                                           0.0);
    ASSERT_EQ(factorised.result, full.result);
    if (full.result != eProgramResult::kSolved) continue;
    EXPECT_TRUE(MatrixNear(factorised.step, full.step, 1e-10));
  }
}

ProgramData PlainProgram(Index n, Index m) {
  ProgramData data;
  data.matrix = Matrix::Identity(n, n);
  data.gradient = Vector::Zero(n);
  data.normals = Matrix::Zero(m, n);
  data.offsets = Vector::Zero(m);
  data.lower = Vector::Constant(n, -10.0);
  data.upper = Vector::Constant(n, 10.0);
  return data;
}

TEST(QuadraticProgram, EqualityThatFollowsFromAnotherIsHarmless) {
  ProgramData data = PlainProgram(2, 2);
  data.num_equalities = 2;
  data.normals << 1.0, 1.0, 2.0, 2.0;
  data.offsets << -1.0, -2.0;
  const ProgramSolution solution = ql_(data.View(), 0.0);
  ASSERT_EQ(solution.result, eProgramResult::kSolved);
  EXPECT_TRUE(MatrixNear(solution.step, Vector::Constant(2, 0.5), 1e-12));
  data.offsets << -1.0, 2.0;
  EXPECT_EQ(ql_(data.View(), 0.0).result, eProgramResult::kInconsistent);
}

/// A gradient of 1e17 puts the free minimum so far away that the step back loses all digits of the active constraints.
TEST(QuadraticProgram, MeetsActiveConstraintsFromFarAway) {
  ProgramData data = PlainProgram(2, 1);
  data.gradient << 1e17, 3e16;
  data.normals << 1.0, 2.0;
  data.offsets << 4.0;
  const ProgramSolution solution = ql_(data.View(), 0.0);
  ASSERT_EQ(solution.result, eProgramResult::kSolved);
  EXPECT_TRUE(MatrixNear(solution.step, (Vector(2) << -10.0, 3.0).finished(), 1e-12));
  EXPECT_NEAR(solution.multipliers(0), 1.5e16, 1e3);
}

TEST(QuadraticProgram, ToleranceSaysWhichViolationsCount) {
  ProgramData data = PlainProgram(1, 1);
  data.gradient << -0.95;
  data.normals << 1.0;
  data.offsets << -1.0;
  EXPECT_NEAR(ql_(data.View(), 0.0).step(0), 1.0, 1e-12);
  EXPECT_EQ(ql_(data.View(), 0.1).step(0), 0.95);
  data.normals << 0.0;  // -1 >= 0
  EXPECT_EQ(ql_(data.View(), 0.0).result, eProgramResult::kInconsistent);
}

TEST(QuadraticProgram, RefusesMatrixThatIsNotPositiveDefinite) {
  ProgramData data = PlainProgram(2, 0);
  data.matrix << 1.0, 0.0, 0.0, 1e-34;  // nor safely so
  EXPECT_EQ(ql_(data.View(), 0.0).result, eProgramResult::kNotSolved);
  data.matrix << 1.0, 2.0, 2.0, 1.0;
  EXPECT_EQ(ql_(data.View(), 0.0).result, eProgramResult::kNotSolved);
  data.matrix(0, 0) = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(ql_(data.View(), 0.0).result, eProgramResult::kNotSolved);
}

TEST(StepProgram, LeadsTowardsConstraintsThatContradictEachOther) {
  ProgramData data = PlainProgram(1, 2);  // d >= 1 within |d| <= 0.5: half of the way can be gone
  data.normals << 1.0, 0.0;
  data.offsets << -1.0, 2.0;
  data.lower << -0.5;
  data.upper << 0.5;
  const StepSolution solution = SolveForStep(data.View(), 0.0);
  ASSERT_EQ(solution.result, eProgramResult::kSolved);
  EXPECT_NEAR(solution.step(0), 0.5, 1e-6);
  EXPECT_NEAR(solution.relaxation, 0.5, 1e-6);
  EXPECT_EQ(solution.multipliers.size(), 4);
}

TEST(MeritFunction, SlopeIsThatOfTheValue) {
  const Vector constraints = (Vector(4) << 0.7, -0.4, 0.2, 3.0).finished();  // the last is not counted: c > v / r
  const Vector multipliers = (Vector(4) << -1.5, 0.8, 2.0, 0.5).finished();
  const Vector penalties = (Vector(4) << 2.0, 5.0, 1.0, 3.0).finished();
  const Vector constraint_slopes = (Vector(4) << 0.3, -1.1, 0.9, 0.4).finished();
  const Vector direction = (Vector(4) << 0.2, -0.6, 1.3, -0.7).finished();
  const auto merit = [&](double a) {
    const Vector c = constraints + a * constraint_slopes;
    const Vector v = multipliers + a * direction;
    return merit1_({1.0 + 4.0 * a, c, v}, penalties, 1);
  };
  const double h = 1e-5;
  EXPECT_NEAR(MeritSlope({1.0, constraints, multipliers}, penalties, 1, 4.0, constraint_slopes, direction),
              (merit(h) - merit(-h)) / (2.0 * h), 1e-8);
  const Vector exact = Vector::Zero(4);
  const Vector positive = multipliers.cwiseAbs();
  EXPECT_EQ(merit1_({7.0, exact, positive}, penalties, 1), 7.0);  // on the constraints it is the objective
}

}  // namespace
}  // namespace kestrel::algorithm::optimizer
