#include "selection/zor2_stepwise_polynomial.h"

#include <gtest/gtest.h>

#include "selection/search_samples.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::Inputs;
using testing::MakeContext;
using testing::Noise;
using testing::RandomPoints;

// Samples uniform in [-1, 1].
Matrix Points(Index count, Index inputs) { return RandomPoints(count, inputs, 1, -1.0, 1.0); }

SearchContext Context(const Matrix& x, const Vector& y) {
  return MakeContext(x, y, std::make_shared<utils::log::VectorLog>());
}

TEST(StepwisePolynomialBottomUp, FindsTheTermsOfTheResponse) {
  const Matrix x = Points(100, 5);
  const Vector y = x.col(1).array() + 1.5 * x.col(3).array().square() + 1.2 * x.col(1).array() * x.col(3).array() +
                   Noise(100, 0.02, 2).array();
  const auto log = std::make_shared<utils::log::VectorLog>();
  const LinearRegressionSettings found = StepwisePolynomialBottomUp(MakeContext(x, y, log));
  EXPECT_EQ(found.GetOrder(), 2U);
  EXPECT_TRUE(found.GetMainTermSelection()[1]);
  EXPECT_TRUE(found.GetMainTermSelection()[5 + 3]);
  EXPECT_EQ(found.GetInteractionSelection(), Inputs(10, {InteractionBit(1, 3, 5)}));
  EXPECT_EQ(found.GetVariableSelection(), Inputs(5, {1, 3}));
  for (const wchar_t* const line : {L"MainTerms:   NumCoeffs ", L"Reduction:   NumCoeffs ", L"Interaction: NumCoeffs "})
    EXPECT_EQ(CountLines(log, line), 1);
}

TEST(StepwisePolynomialBottomUp, DemandsSamplesForEachCoefficient) {
  struct Case {
    Index samples;
    double factor;
    std::uint64_t coefficients;  // a term enters while those before it, the constant among them, have their samples
  };
  for (const Case& c : {Case{4, 2.0, 3}, Case{4, 4.1, 1}, Case{12, 3.0, 5}, Case{12, 3.1, 4}, Case{60, 2.0, 7}}) {
    const Matrix x = Points(c.samples, 6);
    SearchContext context = Context(x, x.rowwise().sum());
    context.settings.SetCoeffFactorPolynomial(c.factor);
    EXPECT_EQ(StepwisePolynomialBottomUp(context).GetNumberCoefficients(), c.coefficients)
        << c.samples << " samples, factor " << c.factor;
  }
}

TEST(StepwisePolynomialBottomUp, KeepsMandatoryInputsAndLeavesOutOthers) {
  const Matrix x = Points(60, 3);
  SearchContext context = Context(x, x.col(0) + x.col(1) + Noise(60, 0.05, 2));
  context.importance << 0, 1, 2;
  const LinearRegressionSettings found = StepwisePolynomialBottomUp(context);
  EXPECT_EQ(found.GetVariableSelection(), Inputs(3, {1, 2}));
  EXPECT_TRUE(found.GetMainTermSelection()[2]);  // its linear term, though the response does not need it
}

TEST(StepwisePolynomialBottomUp, PrefersTheIndependentOfTwoInputs) {
  Matrix x = Points(80, 3);
  x.col(1) = 0.8 * x.col(0) + 0.6 * x.col(1);  // depends on input 0 by about 0.64
  const Vector y = 3.0 * x.col(0) + 1.0 * x.col(1) + 0.5 * x.col(2);
  SearchContext context = Context(x, y);
  context.settings.SetToleranceCOPVariables(0.0);
  context.settings.SetMaxInputCorr(0.7);
  EXPECT_FALSE(StepwisePolynomialBottomUp(context).GetVariableSelection()[1]);
  context.settings.SetMaxInputCorr(0.99);
  context.settings.SetMinInputCorr(0.98);  // then 0.64 counts as independent
  EXPECT_TRUE(StepwisePolynomialBottomUp(context).GetVariableSelection()[1]);
}

TEST(StepwisePolynomialBottomUp, MeasuresInteractionsAgainstTheReducedPolynomial) {
  const Matrix x = Points(200, 3);
  const Vector y = x * Eigen::Vector3d(1.0, 1.0, 0.6) + 0.7 * x.col(0).cwiseProduct(x.col(1));
  SearchContext context = Context(x, y);
  context.settings.SetToleranceCOPVariables(0.25);  // input 2 explains less and goes, the interaction even less
  const LinearRegressionSettings found = StepwisePolynomialBottomUp(context);
  EXPECT_EQ(found.GetVariableSelection(), Inputs(3, {0, 1}));
  EXPECT_EQ(found.GetInteractionSelection(), Inputs(3, {0}));
}

class StepwisePolynomialRemoveTest : public ::testing::Test {
 protected:
  StepwisePolynomialRemoveTest() {
    const Matrix x = Points(60, 4);
    context_ = Context(x, x * Eigen::Vector4d(1.0, 0.05, 0.5, 0.2) + Noise(60, 0.01, 2));
    settings_ = LinearRegressionSettings(4);
    settings_.SetOrder(2);
  }

  Selection LeftBy(double tolerance, bool use_loo = false) const {
    return StepwisePolynomialRemove(context_, settings_, use_loo, tolerance).GetVariableSelection();
  }

  SearchContext context_;
  LinearRegressionSettings settings_;
};

TEST_F(StepwisePolynomialRemoveTest, TakesOutTheLeastImportantFirst) {
  for (const bool use_loo : {false, true}) {
    EXPECT_EQ(LeftBy(0.0, use_loo), Inputs(4, {0, 1, 2, 3}));
    EXPECT_EQ(LeftBy(0.01, use_loo), Inputs(4, {0, 2, 3}));
    EXPECT_EQ(LeftBy(0.1, use_loo), Inputs(4, {0, 2}));
    EXPECT_EQ(LeftBy(0.4, use_loo), Inputs(4, {0}));
    EXPECT_EQ(LeftBy(1.0, use_loo), Inputs(4, {0}));  // the input of the last round stays
  }
}

TEST_F(StepwisePolynomialRemoveTest, TakesOutTheFirstOfEqualInputs) {
  context_.response.setConstant(1.0);  // no input has any importance
  EXPECT_EQ(LeftBy(0.0), Inputs(4, {3}));
}

TEST_F(StepwisePolynomialRemoveTest, TakesOutSelectableInputsOnly) {
  context_.importance << 1, 2, 1, 0;
  EXPECT_EQ(LeftBy(1000.0), Inputs(4, {1, 3}));
}

}  // namespace
}  // namespace kestrel::math::metamodel
