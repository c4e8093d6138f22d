#include "golden/plain_walk.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "golden/read_golden.h"

// Stored models and databases read a second time, without the serialization engine: what stands in them is what the
// format says.

namespace kestrel::testing {
namespace {

using Values = std::map<std::string, std::string>;

Values ByPath(const std::vector<PlainValue>& list) {
  Values values;
  for (const PlainValue& value : list) {
    EXPECT_TRUE(values.emplace(value.path, value.text).second) << value.path << " stands there twice";
  }
  return values;
}

Values Walk(const std::string& name) { return ByPath(WalkStoredModel(Committed("stored_model/" + name))); }

void ExpectAreFound(const Values& values, const Values& expected) {
  for (const auto& [path, text] : expected) {
    const auto found = values.find(path);
    ASSERT_NE(found, values.end()) << path;
    EXPECT_EQ(found->second, text) << path;
  }
}

const std::string kLyra = "zorsolver_/lyra_/";
const std::string kDesigns = kLyra + "design_container_/designs_/";
const std::string kZor = kLyra + "algorithm_info_/px/detailed_info_/px/";
const std::string kModel = "surrogate_per_output_/1/item/px/";

TEST(PlainWalk, FindsInABuiltModelWhatWasPutIn) {
  const Values expected{
      {"number_parallel_outputs_", "1"},
      {"settings_/MetamodelSettings/use_MLS_", "false"},
      {"settings_/MetamodelSettings/max_order_polynomial_", "1"},
      {"settings_/MetamodelSettings/limits_/second", "inf"},
      {"settings_/max_CoI_", "0.25"},
      {"num_inputs_", "2"},
      {"input_names_/1/item", "b_2"},
      {"output_names_/1/item", "weight"},
      {"model_per_output_/1/item", "1"},
      {"cv_indexes_per_output_/0/item/count", "8"},
      {"cv_indexes_per_output_/1/item/count", "7"},
      {kModel + "SurrogateBase/points_/rows", "7"},
      {kModel + "SurrogateBase/points_/5", "3"},
      {kModel + "SurrogateBase/points_/13", "3"},
      {kModel + "SurrogateBase/values_/1", "1"},
      {kModel + "SurrogateBase/need_build_", "false"},
      {kModel + "SurrogateBase/trans_coord_/px/Transform/need_build_", "false"},
      {kModel + "SurrogateBase/trans_coord_/px/scaling_/0", "0.25"},
      {kModel + "SurrogateBase/trans_value_/px", "null"},
      {kModel + "coefficients_/rows", "3"},
      {kModel + "settings_/order_", "1"},
      {kModel + "settings_/main_term_selection_/m_num_bits", "2"},
      {kModel + "settings_/main_term_selection_/m_bits/0/item", "3"},
      {kLyra + "parameter_manager_/parameters_/1/item/name_", "b_2"},
      {kDesigns + "count", "8"},
      {kDesigns + "4/item/parameters_/seq_/1/item/second/data_/value", "2"},
      {kDesigns + "4/item/responses_/seq_/0/item/second/data_/value", "1"},
      {kDesigns + "7/item/responses_/seq_/1/item/first", "weight"},
      {kDesigns + "7/item/responses_/seq_/1/item/second/data_/value", "nan"},
      {kDesigns + "7/item/id_/0/item", "8"},
      {kDesigns + "7/item/runstate_", "2"},
      {kLyra + "design_container_/stats_/failed_", "1"},
      {kLyra + "algorithm_info_/px/algo_type_", "18"},
      {kZor + "surrogate_infos_/infos_/1/item/response_name_", "weight"},
      {kZor + "surrogate_infos_/infos_/1/item/surrogate_/px/SurrogateBase/points_/rows", "0"},
      {kZor + "surrogate_infos_/infos_/1/item/used_hids_/count", "7"},
      {kZor + "surrogate_infos_/infos_/1/item/parameter_name_lookup_map_/1/item/second", "1"},
      {kZor + "zor_settings_/settings_type_", "2"},
      {kZor + "zor_settings_/data_/responses_/seq_/1/item/first", "weight"},
      {kZor + "zor_settings_/advanced_settings_/pzor_settings_/max_CoI_", "0.25"},
      {kZor + "zor_settings_/advanced_settings_/log_file_path_", "message_log.txt"},
      {kZor + "sampling_limits_/0/item/second", "4"},
      {kZor + "best_models_/px/results_/1/item/first", "weight"},
      {kZor + "best_models_/px/results_/1/item/second/0/item/model_type", "1"},
      {kLyra + "meta_data_/0/item/first", "deactivated_designs"},
      {"built_", "true"},
  };
  ExpectAreFound(Walk("built.zor"), expected);
}

TEST(PlainWalk, FindsInAHandleThatIsNotBuiltItsSettingsAlone) {
  const Values values = Walk("not_built.zor");
  EXPECT_EQ(values.at("settings_/max_CoI_"), "0.25");
  EXPECT_EQ(values.at("output_names_/0/item"), "stress");
  EXPECT_EQ(values.at("cop_per_output_/count"), "0");
  EXPECT_EQ(values.at(kDesigns + "count"), "0");
  EXPECT_EQ(values.at(kLyra + "algorithm_info_/px"), "null");
  EXPECT_EQ(values.at("built_"), "false");
}

const std::string kDetails = "algorithm_info_/px/detailed_info_/px/";
const std::string kSystems = kDetails + "SystemsInformation/";
const std::string kAdditional = "additional_designs_/0/item/px/";
const std::string kFirstSet = kAdditional + "design_sets_/0/item/second/px/";

/// What stands in every database beside the details.
Values CommonValues() {
  const std::string responses = "design_container_/designs_/0/item/responses_/seq_/";
  const std::string signal = "algorithm_info_/px/signal_info_container_/0/item/second/";
  return {
      {"parameter_manager_/parameters_/0/item/rprop_/moments_/1/item", "0.25"},
      {"parameter_manager_/parameters_/1/item/dprops_/0/item/second/discrete_states_/1/item/data_/value", "0.5"},
      {"parameter_manager_/coherences_/correlations_/0/item/first/second_", "b"},
      {"parameter_manager_/coherences_/correlations_/0/item/second", "0.5"},
      {"design_container_/designs_/count", "4"},
      {"design_container_/designs_/0/item/status_/run_infos_/0/item/message_/1/item", "second line"},
      {responses + "3/item/second/data_/value", "Größe \U0001D54F"},
      {responses + "6/item/second/data_/value/scalar_/imag", "-2"},
      {responses + "7/item/second/data_/value/vector_/data/1/item/real", "2.5"},
      {responses + "9/item/second/data_/value/timeline_/data/1/item/real", "1"},
      {responses + "9/item/second/data_/value/matrix_/size2", "2"},
      {responses + "9/item/second/data_/value/matrix_/data/3/item/real", "4"},
      {"reference_design_/id_/1/item", "5"},
      {"algorithm_info_/px/design_group_map_/0/item/second/1/item/1/item", "2"},
      {"algorithm_info_/px/additional_data_/0/item/second", "value"},
      {signal + "channel_info_map_/0/item/second/data_info_map_/0/item/second/data_part_map_/0/item/second", "file"},
      {signal + "channel_info_names_/0/item", "force"},
      {"validated_best_designs_/designs_/0/item/responses_/seq_/0/item/second/data_/value", "2.5"},
      {"approx_design_container_/designs_/0/item/id_/1/item", "8"},
      {"nominal_design_/id_/1/item", "6"},
      {"image_path_map_/0/item/first",
       "\xff\xee\xdd\xcc\xbb\xaa\x99\x88\x77\x66\x55\x44\x33\x22\x11" + std::string(1, '\0')},
      {"image_path_map_/0/item/second/path_", "plot.png"},
      {"process_path_map_/0/item/second/arguments_", "-v"},
      {"criteria_/seq_/0/item/second/CriterionValue/lhs_value_/data_/value", "2"},
  };
}

/// What stands in every database of systems; its design set stands there twice and is stored once.
Values SystemsValues(const std::string& systems, const std::string& set) {
  return {
      {systems + "DetailedInformationBase/sampling_type_", "11"},
      {systems + "index_id_map_/0/item/first", "7"},
      {systems + "design_set_position_map_/0/item/second", "1"},
      {systems + "prefered_design_set_", "step"},
      {systems + kAdditional + "similar_to_system_designs_/0/item/first/1/item", "2"},
      {systems + kAdditional + "design_set_position_map_/0/item/second", "2"},
      {systems + kFirstSet + set + "design_specifications_/0/item/second", "start"},
      {systems + kFirstSet + set + "surrogate_infos_/infos_/0/item/response_name_", "r"},
      {systems + kFirstSet + set + "history_map_/0/item/second/1/item", "0.5"},
      {systems + "design_sets_map_/0/item/first", "step"},
  };
}

struct DatabaseCase {
  const char* name;
  Values expected;  ///< beside the common ones

  friend void PrintTo(const DatabaseCase& of, std::ostream* stream) { *stream << of.name; }
};

class PlainWalkOfDatabases : public ::testing::TestWithParam<DatabaseCase> {};

TEST_P(PlainWalkOfDatabases, FindsWhatWasPutIn) {
  const std::string name = GetParam().name;
  const Values values = ByPath(WalkMonitoringFile(Committed("monitoring_file/" + name + ".lyra")));
  ExpectAreFound(values, CommonValues());
  ExpectAreFound(values, GetParam().expected);
  if (name == "metamodel") return;
  const bool derived = name != "systems";
  const std::string systems = derived ? kSystems : kDetails;
  ExpectAreFound(values, SystemsValues(systems, derived ? "DesignSet/" : ""));
  EXPECT_EQ(values.at(systems + "design_sets_map_/0/item/second/px/").substr(0, 6), "object") << "it is stored twice";
}

INSTANTIATE_TEST_SUITE_P(
    EachKind, PlainWalkOfDatabases,
    ::testing::Values(DatabaseCase{"metamodel",
                                   {{kDetails + "cv_indexes_/0/item/second/1/item", "1"},
                                    {kDetails + "zor_settings_/data_/parameter_importance_/0/item/second", "2"},
                                    {kDetails + "best_models_/px/results_/0/item/second/0/item/predError", "0.0625"},
                                    {kDetails + "function_strings_/0/item/second", "1 + 2 a - b"},
                                    {kDetails + "custom_zor_logs_/0/item/second", "done"}}},
                      DatabaseCase{"systems", {}},
                      DatabaseCase{"optimization",
                                   {{kSystems + kFirstSet + "lower_upper_bounds_map_/0/item/second/first", "-1"},
                                    {kDetails + "best_design_ids_/0/item/1/item", "2"}}},
                      DatabaseCase{"reliability",
                                   {{kSystems + kFirstSet + "num_done_dir_", "7"},
                                    {kSystems + kFirstSet + "input_importance_values_/0/item/second", "0.75"},
                                    {kDetails + "reli_iteration_infos_/1/item/0/item/second", "3"},
                                    {kDetails + "reli_design_set_infos_/0/item/second/px/error_loo_", "0.375"},
                                    {kDetails + "reli_design_set_infos_/0/item/second/px/has_valid_data_", "true"},
                                    {kDetails + "design_type_map_/0/item/second", "2"},
                                    {kDetails + "is_form_converged_", "true"}}}),
    [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace kestrel::testing
