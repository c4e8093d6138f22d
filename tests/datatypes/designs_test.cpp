#include "datatypes/design_manager.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "datatypes/proxy_design_manager.h"
#include "support/exceptions.h"

namespace kestrel::algorithm::datatypes {
namespace {

using eStatsAction = DesignManager::eStatsAction;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

CHierachicalId Id(std::uint64_t value) { return CHierachicalId(value); }

Design MakeDesign(CHierachicalId id, CDesignEntry response = 1.0) {
  Design design(std::move(id));
  CDesignEntrySequence parameters;
  parameters.Add(L"x", 1.0);
  design.SetParameters(parameters);
  design.AddResponse(L"y", std::move(response));
  design.SetRunStatus(eRunState::kDone);
  return design;
}

Criterion MakeCriterion(CDesignEntry value) {
  Criterion criterion(enums::CriterionType::LIMIT_STATE_LESS, L"y", L"2");
  criterion.SetValues(value, value, 2.0, false);
  return criterion;
}

void AddCriterion(Design& design, const std::wstring& name, CDesignEntry value) {
  CriterionSequence criteria = design.GetCriteria();
  criteria.Add(name, MakeCriterion(std::move(value)));
  design.SetCriteria(std::move(criteria));
}

template <class Action>
std::wstring RefusalOf(Action action) {
  try {
    action();
  } catch (const utils::logic_error& error) {
    return error.What();
  }
  return L"";
}

/// How many designs are succeeded, failed and pending.
using Counts = std::vector<std::uint64_t>;

Counts CountsOf(const DesignManager& manager) {
  const DesignManager::Stats stats = manager.GetStats();
  EXPECT_EQ(stats.total_, manager.size());
  return {stats.succeeded_, stats.failed_, stats.pending_};
}

struct StatusCase {
  std::string name;
  enum Outcome { kNone, kSucceeded, kFailed, kIncomplete } outcome;
  std::function<void(Design&)> change;  // of a done design with a good parameter and a good response
};

class DesignStatus : public testing::TestWithParam<StatusCase> {};

TEST_P(DesignStatus, IsInOneClass) {
  Design design = MakeDesign(Id(1));
  GetParam().change(design);
  EXPECT_EQ(design.IsSucceeded(), GetParam().outcome == StatusCase::kSucceeded);
  EXPECT_EQ(design.IsFailed(), GetParam().outcome == StatusCase::kFailed);
  EXPECT_EQ(design.IsIncomplete(), GetParam().outcome == StatusCase::kIncomplete);

  design.SetRunStatus(eRunState::kRunning);
  EXPECT_FALSE(design.IsSucceeded() || design.IsFailed() || design.IsIncomplete());
}

void AddFailure(Design& design) { design.AddStatus(RunInfoMeta(eRunInfo::kFailed, L"solver")); }

INSTANTIATE_TEST_SUITE_P(
    , DesignStatus,
    testing::Values(
        StatusCase{"Untouched", StatusCase::kSucceeded, [](Design&) {}},
        StatusCase{"HarmlessMessage", StatusCase::kSucceeded, [](Design& d) { d.AddStatus(RunInfoMeta()); }},
        StatusCase{"NaNParameter", StatusCase::kFailed,
                   [](Design& d) {
                     CDesignEntrySequence parameters;
                     parameters.Add(L"x", kNaN);
                     d.SetParameters(parameters);
                   }},
        StatusCase{"UninitializedResponse", StatusCase::kIncomplete, [](Design& d) { d.OverrideResponse(L"y", {}); }},
        StatusCase{"InfiniteResponse", StatusCase::kIncomplete,
                   [](Design& d) { d.OverrideResponse(L"y", -kInfinity); }},
        StatusCase{"FailureWithGoodResponse", StatusCase::kIncomplete, AddFailure},
        StatusCase{"FailureWithBadResponses", StatusCase::kFailed,
                   [](Design& d) {
                     AddFailure(d);
                     d.OverrideResponse(L"y", kNaN);
                   }},
        StatusCase{"FailureWithOneGoodResponse", StatusCase::kIncomplete,
                   [](Design& d) {
                     AddFailure(d);
                     d.OverrideResponse(L"y", kNaN);
                     d.AddResponse(L"z", 1.0);
                   }},
        StatusCase{"FailureWithNothing", StatusCase::kFailed,
                   [](Design& d) {
                     d.ClearResponses();
                     d.SetRunStatus(eRunState::kDone);
                     AddFailure(d);
                   }},
        StatusCase{"FailureWithBadResponsesAndGoodCriterion", StatusCase::kIncomplete,
                   [](Design& d) {
                     AddFailure(d);
                     d.OverrideResponse(L"y", kNaN);
                     AddCriterion(d, L"c", 1.0);
                   }},
        StatusCase{"GoodCriterion", StatusCase::kSucceeded, [](Design& d) { AddCriterion(d, L"c", 1.0); }},
        StatusCase{"FailedCriterion", StatusCase::kIncomplete, [](Design& d) { AddCriterion(d, L"c", kNaN); }}),
    [](const auto& tested) { return tested.param.name; });

TEST(Design, KeepsItsNumberOfValues) {
  Design design(2, 1, Id(1));
  const CDesignEntrySequence three = Design(3, 3, Id(2)).GetParameters();
  EXPECT_EQ(RefusalOf([&] { design.SetParameters(three); }), L"SetParameters: Wrong dimension of parameters (3 / 2).");
  EXPECT_EQ(RefusalOf([&] { design.SetResponses(three); }), L"SetResponses: Wrong dimension of responses (3 / 1).");
  EXPECT_EQ(design.GetNumParameters(), 2u);

  design.SetParametersUnsafe(three);
  EXPECT_EQ(design.GetNumParameters(), 3u);
  Design empty;
  EXPECT_TRUE(empty.IsEmpty());
  empty.SetParameters(three);
  EXPECT_FALSE(empty.IsEmpty());
}

TEST(Design, AddsAResponseOnce) {
  Design design = MakeDesign(Id(1));
  EXPECT_EQ(RefusalOf([&] { design.AddResponse(L"y", 2.0); }), L"Response \"y\" already exists.");
  EXPECT_EQ(design.GetResponses()[L"y"], CDesignEntry(1.0));
}

TEST(Design, ClearsResponsesTogetherWithTheRun) {
  Design design = MakeDesign(Id(1));
  AddFailure(design);
  design.ClearResponses();
  EXPECT_EQ(design.GetNumResponses(), 0u);
  EXPECT_TRUE(design.GetStatus().empty());
  EXPECT_TRUE(design.NeedsReevaluation());
}

TEST(Design, KnowsUnsafeLimitStatesUntilTheirValuesAreReset) {
  Design design = MakeDesign(Id(1));
  AddCriterion(design, L"safe", 1.0);
  EXPECT_FALSE(design.HasUnsafeLimitState());
  AddCriterion(design, L"unsafe", 3.0);
  EXPECT_TRUE(design.HasUnsafeLimitState());
  design.ResetCriteriaValues();
  EXPECT_FALSE(design.HasUnsafeLimitState());
  EXPECT_EQ(design.GetCriteria().size(), 2u);
}

TEST(Design, AlignsItsParametersWithThoseOfAnother) {
  Design a(2, 0, Id(1));
  const Design b(3, 0, Id(2));
  a.AddMissingParameters(b);
  EXPECT_EQ(a.GetParameters(), b.GetParameters());
  a.RemoveUnusedParameters(Design(1, 0, Id(3)));
  EXPECT_EQ(a.GetNumParameters(), 1u);
  EXPECT_TRUE(a.GetParameters().Contains(L"p0"));
}

TEST(Design, EqualityLeavesOutTheRunStateAndTheIterations) {
  const Design design = MakeDesign(Id(1));
  Design same = design;
  same.SetRunStatus(eRunState::kRunning);
  same.SetIteration(Id(4));
  same.SetAlgorithmIteration(4);
  EXPECT_EQ(same, design);

  const std::vector<std::function<void(Design&)>> changes = {
      [](Design& d) { d.SetId(Id(2)); },
      [](Design& d) { d.SetActivationState(eActivationStatus::kInactive); },
      [](Design& d) { d.SetApproximated(true); },
      [](Design& d) { d.AddStatus(RunInfoMeta()); },
      [](Design& d) { d.OverrideResponse(L"y", 2.0); },
      [](Design& d) { AddCriterion(d, L"c", 1.0); },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    Design other = design;
    changes[i](other);
    EXPECT_NE(other, design) << i;
  }
}

DesignManager MakeManager() {
  DesignManager manager;
  manager.push_back(MakeDesign(Id(1)));
  manager.push_back(MakeDesign(Id(1) / 5, kNaN));
  manager.push_back(MakeDesign(Id(3)));
  manager[2].SetDesignType(Design::eType(7));
  Design pending = MakeDesign(Id(2));
  pending.SetRunStatus(eRunState::kRunning);
  manager.push_back(std::move(pending));
  return manager;
}

TEST(DesignManager, FindsDesignsByIdAndByLeaf) {
  const DesignManager manager = MakeManager();
  EXPECT_TRUE(manager.HasDesign(Id(1) / 5));
  EXPECT_FALSE(manager.HasDesign(Id(5)));
  EXPECT_TRUE(manager.HasDesign(Id(5), true));
  EXPECT_EQ(&manager.GetDesign(Id(9) / 5, true), &manager[1]);
  EXPECT_EQ(manager.GetDesign(Id(5), std::nothrow), nullptr);
  EXPECT_EQ(RefusalOf([&] { manager.GetDesign(Id(5)); }), L"No such design");
}

TEST(DesignManager, CountsWhatComesChangesAndGoes) {
  DesignManager manager = MakeManager();
  EXPECT_EQ(CountsOf(manager), (Counts{2, 1, 1}));

  manager.UpdateDesign(MakeDesign(Id(2)));
  EXPECT_EQ(CountsOf(manager), (Counts{3, 1, 0}));
  manager.UpdateDesign(Id(2), MakeDesign(Id(20), kNaN));
  EXPECT_EQ(CountsOf(manager), (Counts{2, 2, 0}));
  EXPECT_FALSE(manager.HasDesign(Id(2)));
  EXPECT_EQ(&manager.GetDesign(Id(20)), &manager[3]);
  manager.UpdateDesign(MakeDesign(Id(5)), true);
  EXPECT_EQ(&manager.GetDesign(Id(5)), &manager[1]);
  EXPECT_EQ(CountsOf(manager), (Counts{3, 1, 0}));

  EXPECT_TRUE(manager.RemoveDesign(Id(1)));
  EXPECT_FALSE(manager.RemoveDesign(Id(1)));
  EXPECT_EQ(CountsOf(manager), (Counts{2, 1, 0}));
  EXPECT_EQ(&manager.GetDesign(Id(3)), &manager[1]);

  EXPECT_EQ(manager.GetDesignsByType(Design::eType(7)).size(), 1u);
  manager.RemoveDesignsByType(Design::eType(7));
  EXPECT_FALSE(manager.HasDesign(Id(3)));
  EXPECT_EQ(CountsOf(manager), (Counts{1, 1, 0}));

  manager.SetDesignsDone(false);
  EXPECT_EQ(CountsOf(manager), (Counts{0, 0, 2}));
  manager.clear();
  EXPECT_EQ(CountsOf(manager), (Counts{0, 0, 0}));
  EXPECT_FALSE(manager.HasDesign(Id(5)));
}

TEST(DesignManager, ShiftsTheClassOfADesign) {
  DesignManager manager = MakeManager();
  manager.UpdateStats(eStatsAction::kReplace, &manager[0]);
  EXPECT_EQ(CountsOf(manager), (Counts{2, 1, 1}));
  manager.UpdateStats(eStatsAction::kUpdateToSucceeded, &manager[3]);
  EXPECT_EQ(CountsOf(manager), (Counts{3, 1, 0}));
  manager.UpdateStats(eStatsAction::kUpdateToOther, &manager[0]);
  EXPECT_EQ(CountsOf(manager), (Counts{2, 2, 0}));
  manager.UpdateStats(eStatsAction::kRecount);
  EXPECT_EQ(CountsOf(manager), (Counts{2, 1, 1}));
}

TEST(DesignManager, KnowsTheLargestIdAfterEveryInsertion) {
  DesignManager manager;
  EXPECT_EQ(manager.GetLargestId(), nullptr);
  for (const CHierachicalId& id : {Id(2), Id(1) / 9, Id(2) / 0, Id(10), Id(3)}) {
    manager.push_back(Design(id));
    const CHierachicalId expected = manager.size() < 3 ? Id(2) : manager.size() == 3 ? Id(2) / 0 : Id(10);
    EXPECT_EQ(*manager.GetLargestId(), expected);
  }
}

TEST(DesignManager, ToleratesARepeatedId) {
  DesignManager manager = MakeManager();
  EXPECT_TRUE(DesignManager::HasUniqueIds(manager));
  manager.push_back(MakeDesign(Id(1), 8.0));
  EXPECT_FALSE(DesignManager::HasUniqueIds(manager));
  EXPECT_EQ(&manager.GetDesign(Id(1)), &manager[0]);
  EXPECT_TRUE(manager.RemoveDesign(Id(1)));
  EXPECT_EQ(manager.GetDesign(Id(1)).GetResponses()[L"y"], CDesignEntry(8.0));
}

TEST(DesignManager, UnitesTheEntriesOfAllDesigns) {
  DesignManager manager;
  manager.push_back(MakeDesign(Id(1), CDesignEntry()));
  manager.push_back(MakeDesign(Id(2), 4.0));
  manager[1].AddResponse(L"z", L"text");
  AddCriterion(manager[1], L"c", 1.0);
  manager.push_back(MakeDesign(Id(3), 5.0));

  const Design dummy = DesignManager::GetCompleteDummyDesign(manager);
  EXPECT_EQ(dummy.GetNumParameters(), 1u);
  EXPECT_EQ(dummy.GetNumResponses(), 2u);
  EXPECT_EQ(dummy.GetResponses()[L"y"], CDesignEntry(4.0));
  EXPECT_EQ(dummy.GetCriteria().size(), 1u);
}

TEST(DesignManager, RefusesToUniteWhatDoesNotFit) {
  using Variant = CDesignEntry::VariantType;
  const auto union_of = [](const CDesignEntry& first, const CDesignEntry& second, bool strict) {
    DesignManager manager;
    manager.push_back(MakeDesign(Id(1), first));
    manager.push_back(MakeDesign(Id(2), second));
    DesignManager::GetCompleteDummyResponses(manager, strict);
  };
  EXPECT_EQ(RefusalOf([&] { union_of(1.0, L"text", true); }),
            L"Found response with same name but incompatible data type.");
  EXPECT_EQ(RefusalOf([&] { union_of(Variant(1.0, 0.0), Variant(true), true); }),
            L"Found response with same name but different variant type.");
  EXPECT_EQ(RefusalOf([&] { union_of(1.0, L"text", false); }), L"");

  const auto criteria_of = [](const Criterion& first, const Criterion& second) {
    DesignManager manager;
    for (const Criterion& criterion : {first, second}) {
      CriterionSequence criteria;
      criteria.Add(L"c", criterion);
      manager.push_back(Design(Id(manager.size())));
      manager[manager.size() - 1].SetCriteria(criteria);
    }
    DesignManager::GetCompleteDummyCriteria(manager);
  };
  EXPECT_EQ(RefusalOf([&] { criteria_of(MakeCriterion(1.0), Criterion()); }),
            L"Found criterion with same name but different criterion type.");
  EXPECT_EQ(RefusalOf([&] { criteria_of(MakeCriterion(1.0), MakeCriterion(L"text")); }),
            L"Found criterion with same name but incompatible data type.");
  EXPECT_EQ(RefusalOf([&] { criteria_of(MakeCriterion(Variant(1.0, 0.0)), MakeCriterion(Variant(true))); }),
            L"Found criterion with same name but different variant type.");
}

TEST(ProxyDesignManager, ShowsTheDesignsThatPassTheFilter) {
  const DesignManager manager = MakeManager();
  const ProxyDesignManager succeeded(manager, [](const Design& design) { return design.IsSucceeded(); });
  std::vector<const Design*> shown;
  for (const Design& design : succeeded) shown.push_back(&design);
  EXPECT_EQ(shown, (std::vector<const Design*>{&manager[0], &manager[2]}));
  EXPECT_TRUE(ProxyDesignManager(manager, [](const Design&) { return false; }).empty());
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
