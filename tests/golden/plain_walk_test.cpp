#include "golden/plain_walk.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "golden/read_golden.h"

// Stored models read a second time, without the serialization engine: what stands in them is what the format says.

namespace kestrel::testing {
namespace {

using Values = std::map<std::string, std::string>;

Values Walk(const std::string& name) {
  Values values;
  for (const PlainValue& value : WalkStoredModel(Committed("stored_model/" + name))) {
    EXPECT_TRUE(values.emplace(value.path, value.text).second) << value.path << " stands there twice";
  }
  return values;
}

const std::string kLyra = "zorsolver_/lyra_/";
const std::string kDesigns = kLyra + "design_container_/designs_/";
const std::string kZor = kLyra + "algorithm_info_/px/detailed_info_/px/";
const std::string kModel = "surrogate_per_output_/1/item/px/";

TEST(PlainWalk, FindsInABuiltModelWhatWasPutIn) {
  const Values values = Walk("built.zor");
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
  for (const auto& [path, text] : expected) {
    const auto found = values.find(path);
    ASSERT_NE(found, values.end()) << path;
    EXPECT_EQ(found->second, text) << path;
  }
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

}  // namespace
}  // namespace kestrel::testing
