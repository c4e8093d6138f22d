#include "golden/detail_records.h"

#include "surrogates/linear_regression.h"

namespace kestrel::testing {
namespace {

using namespace std::string_literals;
using algorithm::datatypes::AlgorithmInfo;
using algorithm::datatypes::CHierachicalId;
using algorithm::datatypes::SignalInfo;
using algorithm::datatypes::SurrogateInfo;
using math::metamodel::LinearRegression;
using math::metamodel::SubspaceResultContainer;
using math::metamodel::SubspaceResults;
using SystemsInformation = AlgorithmInfo::SystemsInformation;
using OptimizationInformation = AlgorithmInfo::OptimizationInformation;
using ReliabilityInformation = AlgorithmInfo::ReliabilityInformation;

const CHierachicalId kFirst = CHierachicalId(1) / 1;
const CHierachicalId kSecond = CHierachicalId(1) / 2;

/// r = 1 + 2 a - b at the corners of the unit square.
std::shared_ptr<LinearRegression> MakeRegression() {
  math::Matrix points(4, 2);
  points << 0, 0, 1, 0, 0, 1, 1, 1;
  auto regression = std::make_shared<LinearRegression>(points, math::Vector{{1.0, 3.0, 0.0, 2.0}});
  regression->Build();
  return regression;
}

SubspaceResults MakeResult(const LinearRegression& regression) {
  SubspaceResults result(math::metamodel::ModelType::kPolynomial, regression.GetSettingsBase(),
                         {1.0, 0.75, 0.5, 0.25, 0.125, 0.0625});
  result.singleCoPs = math::Matrix{{0.5, 0.75}, {0.25, 0.5}};
  return result;
}

SurrogateInfo MakeSurrogate() {
  const auto regression = MakeRegression();
  SurrogateInfo info(L"r", regression, MakeResult(*regression), {L"a", L"b"});
  info.SetTestingType(math::metamodel::TestingType::kLeaveOneOut);
  info.SetUsedHIds({kFirst, kSecond});
  return info;
}

std::shared_ptr<SubspaceResultContainer> MakeResults() {
  auto results = std::make_shared<SubspaceResultContainer>();
  results->AddSubspaceResult(L"r", MakeResult(*MakeRegression()));
  return results;
}

zor::ZORCombinedSettings MakeCombinedSettings() {
  zor::ZORData data;
  data.SetParameters({L"a"s, L"b"s});
  data.SetResponses({L"r"s});
  data.SetResponsesBoundaries({{L"r", {-8.0, 8.0}}});
  data.SetResponsesZORability({{L"r", true}});
  data.UpdateParameterImportance({{L"a", 2}});
  data.UpdateResponsesUsage({{L"r", true}});
  zor::ZORAutomaticSettings automatic;
  automatic.model_complexity_ = 3;
  zor::ZORAdvancedSettings advanced;
  advanced.num_parallel_ = 2;
  advanced.pzor_settings_.info_important_ = {2, 1};
  advanced.pzor_settings_.custom_[L"plugin"] = true;
  advanced.pzor_settings_.custom_settings_[L"plugin"][L"depth"] = 3;
  advanced.pzor_settings_.qmk_variables_[L"folder"] = L"models";
  advanced.custom_surrogates_.push_back(
      std::make_shared<math::metamodel::LinearRegressionSettings>(MakeRegression()->GetSettingsBase()));
  advanced.zor_custom_id_settings_container_[L"plugin"] = L"depth=3";
  advanced.zor_custom_id_usage_container_[L"plugin"] = true;
  zor::ZORCombinedSettings settings(zor::eSettingsType::kAdvanced, data, true, automatic, advanced);
  settings.SetLimits({-16.0, 16.0});
  return settings;
}

void FillDesignSet(SystemsInformation::DesignSet& set) {
  set.identifier_ = L"step";
  set.design_ids_ = {kFirst, kSecond};
  set.design_specifications_[L"kind"] = L"start";
  set.history_names_ = {L"course"};
  set.surrogate_infos_.AddSurrogateInfo(MakeSurrogate());
  set.history_map_[L"course"] = {1.0, 0.5};
}

/// `set` stands twice, which is stored once.
void FillSystems(SystemsInformation& information, const std::shared_ptr<SystemsInformation::DesignSet>& set) {
  FillDesignSet(*set);
  information.index_id_map_[7] = kFirst;
  information.design_set_position_map_[L"step"] = 1;
  information.prefered_design_set_ = L"step";
  auto additional = std::make_shared<SystemsInformation::AdditionalDesignContainer>();
  additional->identifier_ = L"additional";
  additional->designs_ = {kSecond};
  additional->similar_to_system_designs_[kSecond] = kFirst;
  additional->design_sets_[L"step"] = set;
  additional->design_set_position_map_[L"step"] = 2;
  information.additional_designs_ = {additional};
  information.design_sets_map_[L"step"] = set;
}

std::shared_ptr<ReliabilityInformation::ReliabilityDesignSet> MakeReliabilitySet() {
  auto set = std::make_shared<ReliabilityInformation::ReliabilityDesignSet>();
  set->probability_of_failure_ = 0.125;
  set->standard_deviation_error_ = 0.5;
  set->reliability_index_ = 3.0;
  set->num_total_dir_ = 12;
  set->num_done_dir_ = 7;
  set->arsm_approx_errors_ = {0.5, 0.25};
  set->input_importance_values_[L"a"] = 0.75;
  return set;
}

std::shared_ptr<ReliabilityInformation::ReliabilityDesignSetInfo> MakeReliabilitySetInfo() {
  auto info = std::make_shared<ReliabilityInformation::ReliabilityDesignSetInfo>();
  info->safe_domain_designs_ = {kFirst};
  info->unsafe_domain_designs_ = {kSecond};
  info->failed_strings_ = {L"limit"};
  info->unsuccessful_designs_ = {CHierachicalId(3)};
  info->total_designs_ = {kFirst, kSecond, CHierachicalId(3)};
  info->most_probable_failure_point_id_ = kSecond;
  info->probability_of_failure_ = 0.125;
  info->standard_deviation_error_ = 0.25;
  info->reliability_index_ = 1.5;
  info->probability_of_failure_form_ = 0.0625;
  info->reliability_index_form_ = 1.75;
  info->method_name_ = L"directional sampling";
  info->error_r2_ = 0.875;
  info->error_loo_ = 0.375;
  info->arsm_ds_map_[L"step"] = {kSecond};
  return info;
}

}  // namespace

SignalInfo MakeSignalRecord() {
  SignalInfo signal;
  signal.x_data_ = {0.0, 0.5, 1.0};
  signal.channel_info_names_ = {L"force"};
  SignalInfo::ChannelInfo& channel = signal.channel_info_map_[L"force"];
  channel.data_info_names_ = {L"z"};
  channel.data_info_map_[L"z"].data_part_names_ = {L"part"};
  channel.data_info_map_[L"z"].data_part_map_[L"part"] = L"file";
  return signal;
}

Details MakeZorRecord() {
  auto information = boost::make_shared<AlgorithmInfo::ZORInformation>();
  information->cv_indexes_[L"r"] = {0, 1, 0, 1};
  information->response_to_cv_mapping_[L"r"] = L"r_cv";
  for (const wchar_t* const name : {L"a", L"b"}) {
    information->parameter_manager_.AddParameter(algorithm::datatypes::Parameter(name));
  }
  information->surrogate_infos_.AddSurrogateInfo(MakeSurrogate());
  information->was_deterministic_sampling_ = true;
  information->zor_settings_ = MakeCombinedSettings();
  information->parameter_names_ = {L"a", L"b"};
  information->sampling_limits_ = {{0.0, 1.0}, {0.0, 1.0}};
  information->defined_limits_ = {{-1.0, 2.0}, {0.0, 1.0}};
  information->distribution_settings_ = {L"normal", L"none"};
  information->calculated_models_ = MakeResults();
  information->best_models_ = MakeResults();
  information->function_strings_[L"r"] = L"1 + 2 a - b";
  information->relative_freq_of_importance_[L"a"] = 0.25;
  information->custom_zor_logs_[L"plugin"] = L"done";
  return information;
}

Details MakeSystemsRecord() {
  auto information = boost::make_shared<SystemsInformation>();
  FillSystems(*information, std::make_shared<SystemsInformation::DesignSet>());
  return information;
}

Details MakeOptimizationRecord() {
  auto information = boost::make_shared<OptimizationInformation>();
  auto set = std::make_shared<OptimizationInformation::OptimizationDesignSet>();
  set->lower_upper_bounds_map_[L"a"] = {-1.0, 1.0};
  FillSystems(*information, set);
  information->best_design_ids_ = {kSecond};
  return information;
}

Details MakeReliabilityRecord() {
  auto information = boost::make_shared<ReliabilityInformation>();
  FillSystems(*information, MakeReliabilitySet());
  information->reli_total_infos_[L"beta"] = 3.0;
  information->stndrd_reli_infos_[L"beta"] = 2.5;
  information->reli_iteration_infos_ = {{{L"beta", 1.5}}, {{L"beta", 3.0}}};
  information->design_iteration_map_[1] = {kFirst, kSecond};
  information->reli_design_set_infos_[L"step"] = MakeReliabilitySetInfo();
  information->design_type_map_[L"1.1"] = 2;
  information->reli_method_name_ = L"directional sampling";
  information->is_converged_ = true;
  information->is_form_converged_ = true;
  return information;
}

}  // namespace kestrel::testing
