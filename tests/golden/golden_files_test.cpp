#include "golden/golden_files.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "datatypes/results/optimization_information.h"
#include "datatypes/results/reliability_information.h"
#include "datatypes/results/zor_information.h"
#include "golden/monitoring_files.h"
#include "golden/plain_walk.h"
#include "golden/read_golden.h"
#include "persistence/database/lyra_file.h"
#include "zor_api.h"

// The golden files as they were committed: today's library writes the same bytes and reads what was put in.

namespace kestrel::testing {
namespace {

using algorithm::LYRAFile;
using algorithm::datatypes::AlgorithmInfo;
using algorithm::datatypes::CHierachicalId;
using algorithm::datatypes::Design;
using algorithm::datatypes::LYRA;
using OptimizationInformation = AlgorithmInfo::OptimizationInformation;
using ReliabilityInformation = AlgorithmInfo::ReliabilityInformation;

/// Takes the JSON header off a monitoring file, without what tells of the library's version, the time and the user.
Json::Value TakeHeader(std::string& bytes) {
  const auto length = static_cast<unsigned char>(bytes.at(8)) + 256U * static_cast<unsigned char>(bytes.at(9));
  Json::Value header;
  std::istringstream text(bytes.substr(12, length));
  text >> header;
  bytes.erase(8, 4 + length);
  header["version"]["quillMark"] = Json::Value();
  header["datetime"] = Json::Value();
  header["user"] = Json::Value();
  return header;
}

/// Fitted numbers may differ by rounding from one processor to another: those of a stored model that are near are taken
/// over from the other one.
void TakeNearNumbers(std::string& bytes, const std::string& from) {
  constexpr double kTolerance = 1e-9;
  const std::vector<PlainValue> ours = WalkStoredModel(bytes);
  const std::vector<PlainValue> theirs = WalkStoredModel(from);
  for (std::size_t i = 0; i < std::min(ours.size(), theirs.size()); ++i) {
    if (!ours[i].is_real || !theirs[i].is_real || !(std::abs(ours[i].real - theirs[i].real) < kTolerance)) continue;
    bytes.replace(ours[i].end - sizeof(double), sizeof(double), from, theirs[i].end - sizeof(double), sizeof(double));
  }
}

TEST(GoldenFiles, AreWrittenWithTheSameBytes) {
  for (GoldenFile& file : MakeGoldenFiles()) {
    std::string golden = Committed(file.name);
    const bool is_database = file.name.find(".lyra") != std::string::npos;
    if (is_database) {
      EXPECT_EQ(TakeHeader(file.bytes), TakeHeader(golden)) << file.name;
    }
    std::string written = WithoutStamps(file.bytes);
    golden = WithoutStamps(golden);
    if (!is_database) TakeNearNumbers(written, golden);
    EXPECT_TRUE(written == golden) << file.name << ": if the change is meant, run write_golden";
  }
}

struct Release {
  void operator()(zor_handle_t handle) const { zor_release(handle); }
};
using Handle = std::unique_ptr<ZOR, Release>;

Handle ReadModel(const std::string& name) {
  zor_handle_t handle = nullptr;
  EXPECT_EQ(zor_read_db_file(&handle, CommittedPath(name).c_str()), zor_success);
  return Handle(handle);
}

TEST(GoldenFiles, OfABuiltModelPredicts) {
  const Handle model = ReadModel("stored_model/built.zor");
  ASSERT_TRUE(model);
  const double point[] = {3.5, 0.5};
  double predicted[2] = {};
  ASSERT_EQ(zor_solve(model.get(), point, predicted, 1), zor_success) << zor_get_last_error(model.get());
  EXPECT_NEAR(predicted[0], 7.5, 1e-12);
  EXPECT_NEAR(predicted[1], 1.75, 1e-12);
  double bounds[4] = {};
  ASSERT_EQ(zor_get_input_bounds(model.get(), bounds), zor_success);
  EXPECT_EQ(bounds[2], 0.0);
  EXPECT_EQ(bounds[3], 4.0);
}

TEST(GoldenFiles, OfAHandleThatIsNotBuiltKeepsItsSettings) {
  const Handle model = ReadModel("stored_model/not_built.zor");
  ASSERT_TRUE(model);
  double max_coi = 0.0;
  const char* name = nullptr;
  EXPECT_EQ(zor_get_max_coi(model.get(), &max_coi), zor_success);
  EXPECT_EQ(zor_get_output_name(model.get(), 1, &name), zor_success);
  EXPECT_EQ(max_coi, 0.25);
  EXPECT_STREQ(name, "weight");
  EXPECT_EQ(zor_get_cop_per_output(model.get(), 0, &max_coi), zor_not_built);
}

template <class Information>
const Information& DetailsOf(const LYRA& lyra) {
  return dynamic_cast<const Information&>(*lyra.GetAlgorithmInfo()->GetDetailedInfo());
}

LYRA ReadLyra(const std::string& name) {
  LYRA lyra;
  LYRAFile::FailureInfo failure;
  EXPECT_TRUE(LYRAFile(CommittedPath("monitoring_file/" + name)).Read(lyra, failure)) << failure.details;
  return lyra;
}

struct LyraCase {
  const char* name;
  LYRA (*make)();
};

// What stands beside the details is the same in all files.
TEST(GoldenFiles, OfDatabasesHoldWhatWasPutIn) {
  for (const LyraCase& c :
       {LyraCase{"metamodel.lyra", MakeMetamodelLyra}, LyraCase{"systems.lyra", MakeSystemsLyra},
        LyraCase{"optimization.lyra", MakeOptimizationLyra}, LyraCase{"reliability.lyra", MakeReliabilityLyra}}) {
    SCOPED_TRACE(c.name);
    const LYRA expected = c.make();
    const LYRA read = ReadLyra(c.name);
    EXPECT_EQ(read.GetParameterManager(), expected.GetParameterManager());
    EXPECT_EQ(read.GetDesignContainer().GetDesigns(), expected.GetDesignContainer().GetDesigns());
    EXPECT_EQ(read.GetReferenceDesign(), expected.GetReferenceDesign());
    EXPECT_EQ(read.GetNominalDesign(), expected.GetNominalDesign());
    EXPECT_EQ(read.GetValidatedBestDesigns().GetDesigns(), expected.GetValidatedBestDesigns().GetDesigns());
    EXPECT_EQ(read.GetApproxDesignContainer().GetDesigns(), expected.GetApproxDesignContainer().GetDesigns());
    EXPECT_EQ(read.GetCriteria(), expected.GetCriteria());
    EXPECT_EQ(read.GetDeactivatedDesigns(), expected.GetDeactivatedDesigns());
    EXPECT_EQ(read.GetMetaData().at(L"project"), "bridge");
    const Design& first = read.GetDesignContainer()[0];
    EXPECT_EQ(first.GetResponses()[L"text"], CDesignEntry(L"Größe \U0001D54F"));
    EXPECT_EQ(first.GetIteration(), CHierachicalId(2) / 3);
    EXPECT_EQ(first.GetStatus().begin()->GetMessage().back(), L"second line");
    for (const LYRA::eAttachment kind : {LYRA::eAttachment::kImage, LYRA::eAttachment::kProcess}) {
      EXPECT_EQ(read.GetAttachedPaths(kind), expected.GetAttachedPaths(kind));
    }
    const AlgorithmInfo& info = *read.GetAlgorithmInfo();
    EXPECT_EQ(info.GetSamplingType(), enums::DOE::SOBOL_SEQUENCE);
    EXPECT_EQ(info.GetDesignGroups(), expected.GetAlgorithmInfo()->GetDesignGroups());
    EXPECT_EQ(info.GetSignals(), expected.GetAlgorithmInfo()->GetSignals());
  }
}

TEST(GoldenFiles, OfDatabasesHoldTheDetailsOfTheirKind) {
  const LYRA metamodel = ReadLyra("metamodel.lyra");
  const auto& zor = DetailsOf<algorithm::datatypes::ZORInformation>(metamodel);
  EXPECT_EQ(zor.zor_settings_.GetParameterImportance().at(L"a"), 2u);
  EXPECT_EQ(zor.best_models_->GetResults().at(L"r").at(0).measures.predError, 0.0625);
  const auto& surrogate = *zor.GetSurrogateInfos().GetInfos().at(0).GetSurrogate();
  EXPECT_EQ(surrogate.GetNumberPoints(), 4) << "the samples come from the designs";
  EXPECT_NEAR(surrogate.Approximate(math::Matrix{{0.5, 0.25}})(0), 1.75, 1e-12);

  const LYRA systems = ReadLyra("systems.lyra");
  const auto& plain = DetailsOf<AlgorithmInfo::SystemsInformation>(systems);
  EXPECT_EQ(plain.design_sets_map_.at(L"step"), plain.additional_designs_.at(0)->design_sets_.at(L"step"));
  EXPECT_EQ(plain.index_id_map_.at(7), CHierachicalId(1) / 1);

  const LYRA optimization = ReadLyra("optimization.lyra");
  const auto& best = DetailsOf<OptimizationInformation>(optimization);
  const auto& step =
      dynamic_cast<const OptimizationInformation::OptimizationDesignSet&>(*best.design_sets_map_.at(L"step"));
  EXPECT_EQ(step.lower_upper_bounds_map_.at(L"a"), std::make_pair(-1.0, 1.0));
  EXPECT_EQ(best.best_design_ids_.at(0), CHierachicalId(1) / 2);

  const LYRA reliability = ReadLyra("reliability.lyra");
  const auto& failure = DetailsOf<ReliabilityInformation>(reliability);
  EXPECT_EQ(failure.reli_design_set_infos_.at(L"step")->error_loo_, 0.375);
  EXPECT_EQ(failure.reli_iteration_infos_.at(1).at(L"beta"), 3.0);
  EXPECT_TRUE(failure.is_form_converged_);
}

}  // namespace
}  // namespace kestrel::testing
