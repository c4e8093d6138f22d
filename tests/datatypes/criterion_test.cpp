#include "datatypes/criterion.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "values/variant_builders.h"

namespace kestrel::algorithm::datatypes {
namespace {

using namespace enums::CriterionType;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Criterion, IsViolatedWhereItsComparisonDoesNotHold) {
  struct Case {
    eType type;
    CDesignEntry lhs, rhs;
    bool violated;
  };
  const Case cases[] = {{CONSTRAINT_LESS, 1.0, 2.0, false},    {CONSTRAINT_LESS, 3, 2.0, true},
                        {CONSTRAINT_LESS, 2.0, 2.0, false},    {CONSTRAINT_GREATER, 1.0, 2.0, true},
                        {CONSTRAINT_EQUAL, 1.0, 1.0, false},   {CONSTRAINT_EQUAL, 1.0, 1.1, true},
                        {LIMIT_STATE_LESS, 3.0, 2.0, true},    {LIMIT_STATE_GREATER, 3.0, 2.0, false},
                        {LIMIT_STATE_GREATER, 1.0, 2.0, true}, {LIMIT_STATE_LESS, kNaN, 2.0, false},
                        {LIMIT_STATE_LESS, {}, 2.0, false},    {LIMIT_STATE_LESS, L"3", 2.0, false},
                        {OBJECTIVE_MIN, 3.0, 2.0, false},      {LIMIT_STATE_LESS, math::test::Vector({3}), 2.0, false}};
  for (const Case& c : cases) {
    Criterion criterion(c.type, L"left", L"right");
    criterion.SetValues(1.0, c.lhs, c.rhs, false);
    EXPECT_EQ(criterion.IsViolated(), c.violated) << "case " << &c - cases;
  }
}

TEST(Criterion, HasFailedWithoutAUsableValue) {
  Criterion criterion(LIMIT_STATE_LESS, L"x", L"3");
  EXPECT_TRUE(criterion.IsFailed());
  EXPECT_TRUE(criterion.NeedsEvaluation());
  criterion.SetValue(1.0);
  EXPECT_FALSE(criterion.IsFailed());
  criterion.SetValue(kNaN);
  EXPECT_TRUE(criterion.IsFailed());
  criterion.SetValue(std::numeric_limits<double>::infinity());
  EXPECT_TRUE(criterion.IsFailed());
}

TEST(Criterion, PrintsItsSidesAndTheFlag) {
  Criterion criterion(CONSTRAINT_LESS, L"x+y", L"3");
  criterion.SetValues(2.5, 2.5, 3, false);
  std::wostringstream stream;
  stream << criterion;
  EXPECT_EQ(stream.str(), L"x+y <= 3 value:2.5 needeval:0");
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
