#include "selection/zor2_check_correlated_inputs.h"

#include <gtest/gtest.h>

#include "selection/search_samples.h"
#include "surrogates/sample_data.h"

namespace kestrel::math::metamodel {
namespace {

using testing::CountLines;
using testing::MakeContext;
using testing::Noise;
using testing::RandomPoints;

IndexVector Importance(std::initializer_list<std::uint64_t> entries) {
  return Eigen::Map<const IndexVector>(entries.begin(), static_cast<Index>(entries.size()));
}

class CheckCorrelatedInputsTest : public ::testing::Test {
 protected:
  // Four independent inputs; the response needs the first.
  CheckCorrelatedInputsTest() : x_(RandomPoints(60, 4, 1, -1.0, 1.0)), y_(x_.col(0) + Noise(60, 0.1, 2)) {}

  IndexVector Check(IndexVector importance = IndexVector::Ones(4)) {
    SearchContext context = MakeContext(x_, y_, log_);
    context.settings = settings_;
    context.importance = std::move(importance);
    return CheckCorrelatedInputs(context);
  }

  Matrix x_;
  Vector y_;
  ZORSettings settings_;
  const testing::WideLog log_ = std::make_shared<utils::log::VectorLog>();
};

TEST_F(CheckCorrelatedInputsTest, KeepsIndependentInputs) {
  EXPECT_EQ(Check(), Importance({1, 1, 1, 1}));
  EXPECT_EQ(CountLines(log_, L"Best stepwise selection "), 1);
  EXPECT_EQ(CountLines(log_, L"numCoeff 2 min_dependence "), 1);
  EXPECT_EQ(CountLines(log_, L"numCoeff "), 3);
}

TEST_F(CheckCorrelatedInputsTest, KeepsTheFirstOfIdenticalInputs) {
  x_.col(2) = x_.col(0);
  EXPECT_EQ(Check(), Importance({1, 1, 0, 1}));
  y_ = x_.col(0) + x_.col(2) + x_.col(3) + Noise(60, 0.1, 2);
  EXPECT_EQ(Check(), Importance({1, 1, 0, 1}));
}

TEST_F(CheckCorrelatedInputsTest, DropsWhatSeveralInputsExplainTogether) {
  x_.col(3) = x_.col(0) + x_.col(1) + x_.col(2);  // correlation with each about 0.58
  EXPECT_EQ(Check(), Importance({1, 1, 1, 0}));
  x_.col(1).setConstant(3.0);  // as anything explains a constant
  EXPECT_EQ(Check(), Importance({1, 0, 1, 0}));
}

TEST_F(CheckCorrelatedInputsTest, AddsTheMostIndependentFirst) {
  x_.col(2) = x_.col(0) + 0.7 * x_.col(2);
  x_.col(3) = x_.col(2) + 0.6 * x_.col(3);
  settings_.SetMaxInputCorr(0.85);
  const IndexVector kept = Check();
  EXPECT_EQ(kept, Importance({1, 1, 0, 1}));  // once input 3, the less dependent one, is in, input 2 is explained
}

TEST_F(CheckCorrelatedInputsTest, LeavesMandatoryAndExcludedInputsAsTheyAre) {
  x_.col(2) = x_.col(0);
  EXPECT_EQ(Check(Importance({1, 0, 2, 1})), Importance({0, 0, 2, 1}));
  EXPECT_EQ(Check(Importance({2, 1, 2, 0})), Importance({2, 1, 2, 0}));
}

TEST_F(CheckCorrelatedInputsTest, EndsForLimitsWithoutSense) {
  for (const double limit : {0.0, -5.0, 5.0, std::numeric_limits<double>::quiet_NaN()}) {
    settings_.SetMaxInputCorr(limit);
    const IndexVector kept = Check(Importance({1, 1, 0, 1}));
    EXPECT_EQ(kept(0), 1U) << limit;
    EXPECT_EQ(kept(2), 0U) << limit;
  }
}

}  // namespace
}  // namespace kestrel::math::metamodel
