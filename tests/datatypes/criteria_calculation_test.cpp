#include "datatypes/criteria_calculation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "values/variant_builders.h"

namespace kestrel::algorithm::datatypes {
namespace {

using namespace enums::CriterionType;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// a = 3, n = 2, flag = true, text; y = 10, v = [1, 2, 3], lost without a value.
Design MakeDesign() {
  CDesignEntrySequence parameters;
  parameters.Add(L"a", 3.0);
  parameters.Add(L"n", 2);
  parameters.Add(L"flag", true);
  parameters.Add(L"text", L"steel");
  Design design(parameters, {});
  design.AddResponse(L"y", 10.0);
  design.AddResponse(L"v", math::test::Vector({1, 2, 3}));
  design.AddResponse(L"lost", {});
  return design;
}

/// The only criterion of the design, calculated.
Criterion Calculated(const Criterion& criterion) {
  Design design = MakeDesign();
  CriterionSequence criteria;
  criteria.Add(L"c", criterion);
  design.SetCriteria(criteria);
  calculator::Calculator calculator;
  CalculateCriteria(design, calculator);
  return design.GetCriteria()[L"c"];
}

TEST(CalculateCriteria, GivesBothSidesAndTheirMargin) {
  struct Case {
    Criterion criterion;
    CDesignEntry value, lhs, rhs;
    bool violated;
  };
  const Case cases[] = {
      {{OBJECTIVE_MIN, L"y/n + a"}, 8.0, 8.0, {}, false},
      {{OBJECTIVE_MAX, L"a < y"}, true, true, {}, false},
      {{CONSTRAINT_LESS, L"y", L"4*a"}, 2.0, 10.0, 12.0, false},
      {{CONSTRAINT_GREATER, L"y", L"4*a"}, -2.0, 10.0, 12.0, true},
      {{CONSTRAINT_EQUAL, L"y", L"10"}, 0.0, 10.0, 10.0, false},
      {{LIMIT_STATE_LESS, L"sum(v)", L"5"}, -1.0, 6.0, 5.0, true},
      {{LIMIT_STATE_GREATER, L"v[2]", L"flag"}, 2.0, 3.0, true, false},
      {{OBJECTIVE_MIN, L"2*v"}, math::test::Vector({2, 4, 6}), math::test::Vector({2, 4, 6}), {}, false},
      {{OBJECTIVE_MIN, L"lost + 1"}, {}, {}, {}, false},
      {{CONSTRAINT_LESS, L"y", L"1 +"}, {}, {}, {}, false},
  };
  for (const Case& c : cases) {
    const Criterion result = Calculated(c.criterion);
    EXPECT_EQ(result.GetValue(), c.value) << "case " << &c - cases;
    EXPECT_EQ(result.GetLhsValue(), c.lhs) << "case " << &c - cases;
    EXPECT_EQ(result.GetRhsValue(), c.rhs) << "case " << &c - cases;
    EXPECT_EQ(result.IsViolated(), c.violated) << "case " << &c - cases;
    EXPECT_FALSE(result.NeedsEvaluation());
  }
}

TEST(CalculateCriteria, TellsWhatItCouldNotUse) {
  Design design = MakeDesign();
  CriterionSequence criteria;
  criteria.Add(L"cost", Criterion(OBJECTIVE_MIN, L"2*y"));
  criteria.Add(L"margin", Criterion(LIMIT_STATE_GREATER, L"cost", L"lost"));
  design.SetCriteria(criteria);
  calculator::Calculator calculator;
  CalculateCriteria(design, calculator);
  EXPECT_EQ(design.GetCriteria()[L"cost"].GetValue(), CDesignEntry(20.0));
  EXPECT_TRUE(design.GetCriteria()[L"margin"].IsFailed());
  ASSERT_EQ(design.GetStatus().size(), 1U);
  const RunInfoMeta& run_info = *design.GetStatus().begin();
  EXPECT_TRUE(run_info.IsFailed());
  EXPECT_THAT(run_info.GetMessage(), ElementsAre(L"Cannot use object for calculations: text: It is a text.",
                                                 L"Cannot use object for calculations: lost: It has no value.",
                                                 HasSubstr(L"Criterion margin: Object \"lost\" not known.")));
}

TEST(CalculateCriteria, RemembersNothingOfTheDesignBefore) {
  calculator::Calculator calculator;
  CriterionSequence criteria;
  criteria.Add(L"later", Criterion(OBJECTIVE_MIN, L"first"));
  criteria.Add(L"first", Criterion(OBJECTIVE_MIN, L"y"));
  RunInfoMeta run_info;
  CDesignEntrySequence responses;
  responses.Add(L"y", 1.0);
  CalculateCriteria(run_info, {}, responses, criteria, calculator);
  EXPECT_EQ(criteria[L"first"].GetValue(), CDesignEntry(1.0));
  responses[L"y"] = CDesignEntry();
  CalculateCriteria(run_info, {}, responses, criteria, calculator);
  EXPECT_TRUE(criteria[L"later"].IsFailed());
  EXPECT_TRUE(criteria[L"first"].IsFailed());
  EXPECT_EQ(run_info.GetMessage().size(), 3U);
}

TEST(CalculateDependentParameters, FollowTheOthersInTheirOrder) {
  ParameterManager manager;
  const auto add = [&](const wchar_t* name, const wchar_t* expression) {
    Parameter parameter(name, Parameter::eKind::kDependent);
    parameter.SetDependencyExpression(expression);
    manager.AddParameter(parameter);
  };
  add(L"area", L"a^2");
  add(L"n", L"area + 1");
  add(L"wrong", L"1 +");
  Design design = MakeDesign();
  calculator::Calculator calculator;
  CalculateDependentParameters(design, manager, calculator);
  EXPECT_EQ(design.GetParameters()[L"area"], CDesignEntry(9.0));
  EXPECT_EQ(design.GetParameters()[L"n"], CDesignEntry(10.0));
  EXPECT_TRUE(design.GetParameters()[L"wrong"].IsUninitialized());
  EXPECT_EQ(design.GetStatus().size(), 1U);
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
