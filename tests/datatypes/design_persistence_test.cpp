#include <gtest/gtest.h>

#include <string>

#include "datatypes/design_manager.h"
#include "datatypes/test_archive.h"

namespace kestrel::algorithm::datatypes {
namespace {

CDesignEntrySequence MakeParameters() {
  CDesignEntrySequence parameters(4);
  parameters.Add(L"x", 1.5);
  parameters.Add(L"kind", L"text");
  return parameters;
}

/// A design in which every stored field differs from its default.
Design MakeDesign(CHierachicalId id) {
  Design design(MakeParameters(), std::move(id));
  design.AddResponse(L"y", CDesignEntry::VariantType(2.5, 0.0));
  RunInfoMeta run_info(eRunInfo::kFailed, L"solver", L"y", {L"first line"});
  run_info.AddMessage(L"second line");
  design.AddStatus(run_info);
  design.SetRunStatus(eRunState::kDone);
  design.SetDuplicates(CHierachicalId(3) / 4);
  design.SetActivationState(eActivationStatus::kInactive);
  CriterionSequence criteria;
  criteria.Add(L"c", Criterion(enums::CriterionType::OBJECTIVE_MIN, L"y"));
  design.SetCriteria(criteria);
  design.SetApproximated(true);
  design.SetIteration(CHierachicalId(5));
  design.SetWorkflowId(Design::eAlgorithm::kMetamodel);
  design.SetDesignType(Design::eType(9));
  design.SetAlgorithmIteration(6);
  return design;
}

/// The layout of an older class version of `Design`, filled from a design.
template <unsigned kVersion>
struct OldDesign {
  template <class Archive>
  void serialize(Archive& archive, unsigned int) {
    using boost::serialization::make_nvp;
    CDesignEntrySequence parameters = design.GetParameters();
    CDesignEntrySequence responses = design.GetResponses();
    CVariantSequence old_responses;
    for (const auto& [name, entry] : responses) old_responses.Add(name, entry.GetVariant());
    RunInfoContainer status = design.GetStatus();
    RunInfoMeta old_status = *status.begin();
    eRunState state = design.GetRunStatus();
    CHierachicalId duplicates = design.GetDuplicates();
    eActivationStatus activation = design.GetActivationState();
    CriterionSequence criteria = design.GetCriteria();
    bool approximated = design.IsApproximated();
    CHierachicalId id = design.GetId();
    CHierachicalId iteration = design.GetIteration();
    Design::eAlgorithm algorithm = design.GetWorkflowId();
    Design::eType type = design.GetDesignType();

    archive& make_nvp("parameters_", parameters);
    if (kVersion >= 3) archive& make_nvp("responses_", responses);
    if (kVersion < 3) archive& make_nvp("responses_", old_responses);
    if (kVersion >= 1) archive& make_nvp("status_", status) & make_nvp("runstate_", state);
    if (kVersion < 1) archive& make_nvp("status_", old_status);
    if (kVersion >= 2) archive& make_nvp("duplicates_", duplicates);
    archive& make_nvp("activation_state_", activation) & make_nvp("criteria_", criteria);
    archive& make_nvp("isapproximated_", approximated) & make_nvp("id_", id);
    if (kVersion >= 4) archive& make_nvp("iteration_", iteration);
    if (kVersion >= 5) archive& make_nvp("workflow_id_", algorithm) & make_nvp("type_", type);
  }

  Design design;
};

}  // namespace
}  // namespace kestrel::algorithm::datatypes

namespace boost::serialization {

template <unsigned kVersion>
struct version<kestrel::algorithm::datatypes::OldDesign<kVersion>> {
  using type = mpl::int_<kVersion>;
  using tag = mpl::integral_c_tag;
  static constexpr int value = kVersion;
};

template <unsigned kVersion>
struct tracking_level<kestrel::algorithm::datatypes::OldDesign<kVersion>> {
  using type = mpl::int_<track_always>;
  using tag = mpl::integral_c_tag;
  static constexpr int value = track_always;
};

}  // namespace boost::serialization

namespace kestrel::algorithm::datatypes {
namespace {

/// Every stored field, where `operator==` leaves some out.
void ExpectSameFields(const Design& actual, const Design& expected) {
  EXPECT_EQ(actual, expected);
  EXPECT_EQ(actual.GetRunStatus(), expected.GetRunStatus());
  EXPECT_EQ(actual.GetDuplicates(), expected.GetDuplicates());
  EXPECT_EQ(actual.GetIteration(), expected.GetIteration());
  EXPECT_EQ(actual.GetWorkflowId(), expected.GetWorkflowId());
  EXPECT_EQ(actual.GetDesignType(), expected.GetDesignType());
  EXPECT_EQ(actual.GetAlgorithmIteration(), expected.GetAlgorithmIteration());
}

template <unsigned kVersion>
Design ReadOld(const Design& design) {
  OldDesign<kVersion> old;
  old.design = design;
  return Read<Design>(Write(old));
}

TEST(DesignPersistence, KeepsEveryField) {
  const Design design = MakeDesign(CHierachicalId(1) / 2);
  const Design read = Read<Design>(Write(design));
  ExpectSameFields(read, design);
  EXPECT_EQ(read.GetParameters().GetHeader(), 4u);
  const RunInfoMeta& run_info = *read.GetStatus().begin();
  EXPECT_EQ(run_info.GetActorName(), L"solver");
  EXPECT_EQ(run_info.GetResponseName(), L"y");
  EXPECT_EQ(run_info.GetMessage(), (std::list<std::wstring>{L"first line", L"second line"}));
}

TEST(DesignPersistence, ReadsOlderVersions) {
  const Design design = MakeDesign(CHierachicalId(1) / 2);
  Design expected = design;
  expected.SetAlgorithmIteration(0);
  ExpectSameFields(ReadOld<5>(design), expected);
  expected.SetWorkflowId(Design::eAlgorithm::kNone);
  expected.SetDesignType(Design::eType::kDefault);
  ExpectSameFields(ReadOld<4>(design), expected);
  expected.SetIteration(CHierachicalId());
  ExpectSameFields(ReadOld<3>(design), expected);
  ExpectSameFields(ReadOld<2>(design), expected);
  expected.SetDuplicates(CHierachicalId());
  ExpectSameFields(ReadOld<1>(design), expected);
  ExpectSameFields(ReadOld<0>(design), expected);
}

TEST(DesignPersistence, DerivesTheRunStateOfVersionZero) {
  const struct {
    int run_info;
    eRunState state;
  } cases[] = {
      {501, eRunState::kNotStarted}, {502, eRunState::kRunning}, {0, eRunState::kDone}, {77, eRunState::kDone}};
  for (const auto& tested : cases) {
    SCOPED_TRACE(tested.run_info);
    Design design = MakeDesign(CHierachicalId(1));
    design.ClearResponses();
    design.AddStatus(RunInfoMeta(eRunInfo(tested.run_info)));
    const Design read = ReadOld<0>(design);
    EXPECT_EQ(read.GetRunStatus(), tested.state);
    ASSERT_EQ(read.GetStatus().size(), 1u);
    EXPECT_EQ(read.GetStatus().begin()->GetRunInfo(), eRunInfo(tested.run_info));
  }
}

TEST(DesignManagerPersistence, RebuildsTheLookupAndTheStatistics) {
  DesignManager manager;
  for (std::uint64_t i = 0; i < 100; ++i) manager.push_back(MakeDesign(CHierachicalId(i / 2) / i));
  manager[7].SetRunStatus(eRunState::kRunning);  // the stored statistics do not know of it
  const std::string bytes = Write(manager);
  DesignManager read = Read<DesignManager>(bytes);
  ASSERT_EQ(read.size(), 100u);
  for (std::size_t i = 0; i < read.size(); ++i) ExpectSameFields(read[i], manager[i]);
  EXPECT_EQ(&read.GetDesign(CHierachicalId(33) / 67), &read[67]);
  manager.UpdateStats(DesignManager::eStatsAction::kRecount);
  EXPECT_EQ(read.GetStats(), manager.GetStats());
  EXPECT_EQ(Write(read).size(), bytes.size());
}

TEST(DesignManagerPersistence, ReadsRepeatedIds) {
  DesignManager manager;
  for (int i = 0; i < 3; ++i) manager.push_back(MakeDesign(CHierachicalId(1)));
  DesignManager read = Read<DesignManager>(Write(manager));
  EXPECT_EQ(read.size(), 3u);
  EXPECT_FALSE(DesignManager::HasUniqueIds(read));
  EXPECT_EQ(&read.GetDesign(CHierachicalId(1)), &read[0]);
}

// What the engine writes for a vector of designs, field by field.
TEST(DesignManagerPersistence, StoresTheDesignsAsAVector) {
  DesignManager manager;
  for (std::uint64_t i = 0; i < 3; ++i) manager.push_back(MakeDesign(CHierachicalId(i)));
  std::ostringstream stream;
  {
    portable_binary_oarchive archive(stream);
    const std::vector<Design>& designs = manager.GetDesigns();
    archive << boost::serialization::make_nvp("designs_", designs);
  }
  // Behind the header of the archive the manager's own preamble: not tracked, version 2.
  const std::string as_vector = stream.str();
  constexpr std::size_t kHeader = 8;
  EXPECT_EQ(Write(manager).substr(kHeader + 4, as_vector.size() - kHeader), as_vector.substr(kHeader));
}

TEST(DesignManagerPersistence, DoesNotTrustTheCount) {
  std::string bytes = Write(DesignManager());
  // Header 8, preamble 4, "designs_" 2, preamble 4, "count" 2.
  constexpr std::size_t kCount = 20;
  bytes.replace(kCount, 2, std::string("\xff\xff\xff\xff\x0f\x00", 6));
  EXPECT_THROW(Read<DesignManager>(bytes), boost::archive::archive_exception);
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
