#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include "datatypes/results/optimization_information.h"
#include "datatypes/results/reliability_information.h"
#include "datatypes/results/zor_information.h"
#include "support/old_record.h"
#include "support/stored.h"

namespace kestrel::algorithm::datatypes {
namespace {

using testing::FieldWriter;
using testing::FirstNameOutOfOrder;
using testing::Load;
using testing::ReadOld;
using testing::Store;
using Details = AlgorithmInfo::DetailedInformationBase;
using DesignSet = AlgorithmInfo::SystemsInformation::DesignSet;
using OptimizationDesignSet = AlgorithmInfo::OptimizationInformation::OptimizationDesignSet;
using ReliabilityDesignSet = AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSet;
using ReliabilityDesignSetInfo = AlgorithmInfo::ReliabilityInformation::ReliabilityDesignSetInfo;
using Numbers = std::map<std::wstring, double>;

const CHierachicalId kId = CHierachicalId(1) / 5;

SignalInfo MakeSignal() {
  SignalInfo signal;
  signal.x_data_ = {0.0, 0.5, 1.0};
  signal.channel_info_names_ = {L"force"};
  SignalInfo::ChannelInfo& channel = signal.channel_info_map_[L"force"];
  channel.data_info_names_ = {L"z", L"a"};
  channel.data_info_map_[L"z"].data_part_map_[L"part"] = L"file";
  channel.data_info_map_[L"a"].data_part_names_ = {L"q", L"p"};
  return signal;
}

template <class Information>
void FillSystems(Information& information) {
  information.SetSamplingType(enums::DOE::SOBOL_SEQUENCE);
  information.index_id_map_[7] = kId;
  information.prefered_design_set_ = L"best";
  auto additional = std::make_shared<AlgorithmInfo::SystemsInformation::AdditionalDesignContainer>();
  additional->similar_to_system_designs_[kId] = CHierachicalId(3);
  additional->design_sets_[L"shared"] = std::make_shared<DesignSet>();
  information.additional_designs_ = {additional};
  information.design_sets_map_ = additional->design_sets_;
  information.design_sets_map_[L"shared"]->history_map_[L"course"] = {1.0, 2.0};
}

boost::shared_ptr<Details> MakeOptimization() {
  auto information = boost::make_shared<AlgorithmInfo::OptimizationInformation>();
  FillSystems(*information);
  information->best_design_ids_ = {kId};
  auto set = std::make_shared<OptimizationDesignSet>();
  set->lower_upper_bounds_map_[L"a"] = {-1.0, 1.0};
  information->design_sets_map_[L"step"] = set;
  return information;
}

boost::shared_ptr<Details> MakeReliability() {
  auto information = boost::make_shared<AlgorithmInfo::ReliabilityInformation>();
  FillSystems(*information);
  information->reli_iteration_infos_ = {Numbers{{L"beta", 3.0}}};
  information->is_converged_ = true;
  auto set = std::make_shared<ReliabilityDesignSet>();
  set->num_total_dir_ = 12;
  information->design_sets_map_[L"step"] = set;
  auto info = std::make_shared<ReliabilityDesignSetInfo>();
  info->most_probable_failure_point_id_ = kId;
  info->arsm_ds_map_[L"x"] = {kId};
  information->reli_design_set_infos_[L"step"] = info;
  return information;
}

boost::shared_ptr<Details> MakeZor() {
  auto information = boost::make_shared<ZORInformation>();
  information->cv_indexes_[L"r"] = {0, 1, 0};
  information->response_to_cv_mapping_[L"r"] = L"r_cv";
  information->parameter_manager_.AddParameter(Parameter(L"a"));
  information->surrogate_infos_.AddSurrogateInfo(SurrogateInfo(L"r", nullptr, {}, {L"a"}));
  information->parameter_names_ = {L"a"};
  information->sampling_limits_ = {{0.0, 1.0}};
  information->defined_limits_ = {{-0.1, 1.1}};
  information->best_models_ = std::make_shared<math::metamodel::SubspaceResultContainer>();
  information->relative_freq_of_importance_[L"a"] = 0.25;
  information->custom_zor_logs_[L"id"] = L"line";
  return information;
}

struct DetailsCase {
  const char* name;
  boost::shared_ptr<Details> (*make)();
};

class AlgorithmInfoDetails : public ::testing::TestWithParam<DetailsCase> {};

// Through the base pointer of an AlgorithmInfo: what was read has the same class and gives the same bytes again.
TEST_P(AlgorithmInfoDetails, ComeBackFromAnArchive) {
  AlgorithmInfo info(AlgorithmInfo::eKind::kMetamodel);
  info.SetDesignGroup(L"start", {kId});
  info.SetSignal(L"s", MakeSignal());
  info.SetDetailedInfo(GetParam().make());
  const std::string bytes = Store(info);
  AlgorithmInfo read;
  Load(bytes, read);
  EXPECT_EQ(Store(read), bytes);
  EXPECT_EQ(typeid(*read.GetDetailedInfo()), typeid(*info.GetDetailedInfo()));
  EXPECT_EQ(read.GetSignals().at(L"s"), MakeSignal());
  EXPECT_EQ(read.GetSamplingType(), info.GetSamplingType());
}

INSTANTIATE_TEST_SUITE_P(EachKind, AlgorithmInfoDetails,
                         ::testing::Values(DetailsCase{"None", [] { return boost::make_shared<Details>(); }},
                                           DetailsCase{"Zor", MakeZor}, DetailsCase{"Optimization", MakeOptimization},
                                           DetailsCase{"Reliability", MakeReliability}),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(ResultRecords, AreStoredUnderTheirNamesInOrder) {
  EXPECT_EQ(FirstNameOutOfOrder(AlgorithmInfo(), {"algo_type_", "design_group_map_", "additional_data_",
                                                  "signal_info_container_", "signal_info_names_", "detailed_info_"}),
            "");
  EXPECT_EQ(FirstNameOutOfOrder(ZORInformation(),
                                {"DetailedInformationBase", "sampling_type_", "cv_indexes_", "response_to_cv_mapping_",
                                 "parameter_manager_", "surrogate_infos_", "was_deterministic_sampling_",
                                 "zor_settings_", "parameter_names_", "sampling_limits_", "defined_limits_",
                                 "distribution_settings_", "calculated_models_", "best_models_", "function_strings_",
                                 "relative_freq_of_importance_", "custom_zor_logs_"}),
            "");
  EXPECT_EQ(FirstNameOutOfOrder(SurrogateInfo(), {"response_name_", "response_index_", "is_response_scalar_",
                                                  "surrogate_", "appraisal_data_", "num_vars_", "subspace_",
                                                  "parameter_name_lookup_map_", "testing_type_", "used_hids_"}),
            "");
  EXPECT_EQ(
      FirstNameOutOfOrder(AlgorithmInfo::OptimizationInformation(),
                          {"SystemsInformation", "DetailedInformationBase", "index_id_map_", "design_set_position_map_",
                           "prefered_design_set_", "additional_designs_", "design_sets_map_", "best_design_ids_"}),
      "");
}

// Limits are looked up by the position of a parameter, columns by its number: what would reach beyond them is refused.
TEST(ResultRecords, RefuseSizesThatDoNotFit) {
  ZORInformation information;
  information.parameter_names_ = {L"a", L"b"};
  information.sampling_limits_ = {{0.0, 1.0}};
  ZORInformation read;
  EXPECT_THROW(Load(Store(information), read), std::runtime_error);

  SurrogateInfo info;
  EXPECT_THROW((ReadOld<SurrogateInfo, 1>(
                   info,
                   [](FieldWriter& field) {
                     const math::metamodel::AppraisalData appraisal;
                     field("response_name_", std::wstring(L"r"));
                     field("response_index_", std::uint64_t{0});
                     field("is_response_scalar_", true);
                     field("surrogate_", std::shared_ptr<math::metamodel::SurrogateBase>());
                     field("appraisal_data_", appraisal);
                     field("num_vars_", std::uint64_t{1});
                     field("subspace_", std::vector<std::uint64_t>{1});
                     field("parameter_name_lookup_map_", std::map<std::wstring, std::uint64_t>{{L"a", 1}});
                   })),
               std::runtime_error);
}

TEST(AlgorithmInfo, KnowsTheMetamodelAlgorithm) {
  AlgorithmInfo info(AlgorithmInfo::eKind::kMetamodel);
  EXPECT_TRUE(info.IsZORInfo());
  info.SetCombinedZORSettings(zor::ZORCombinedSettings(zor::eSettingsType::kAdvanced));
  EXPECT_EQ(info.GetZORInfo()->GetCombinedZORSettings().GetSettingsType(), zor::eSettingsType::kAdvanced);
  AlgorithmInfo other(AlgorithmInfo::eKind::kNone);
  EXPECT_EQ(other.GetZORInfo(), nullptr);
  EXPECT_THROW(other.SetCombinedZORSettings(zor::ZORCombinedSettings()), std::runtime_error);
}

}  // namespace
}  // namespace kestrel::algorithm::datatypes
