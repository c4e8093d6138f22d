#include "golden/plain_walk.h"

#include <cstring>

#include "golden/plain_classes.h"

// The classes of what a run leaves, one function each: name, version, tracking, and its fields in stored order.

namespace kestrel::testing {
namespace {

using Class = PlainWalk::Class;
using Field = PlainWalk::Field;

Field SignalInfos() {
  const Field data = PlainWalk::Object(
      {"DataInfo", 1, kTracked, {{"data_part_map_", kTextsByName}, {"data_part_names_", kWideTexts}}});
  const Field channel = PlainWalk::Object(
      {"ChannelInfo",
       1,
       kTracked,
       {{"data_info_map_", PlainWalk::Map("signal data by name", kText, data)}, {"data_info_names_", kWideTexts}}});
  const Field signal =
      PlainWalk::Object({"SignalInfo",
                         1,
                         kTracked,
                         {{"x_data_", kReals},
                          {"channel_info_map_", PlainWalk::Map("signal channels by name", kText, channel)},
                          {"channel_info_names_", kWideTexts}}});
  return PlainWalk::Map("signals by name", kText, signal);
}

const std::string kDetails = "kestrel::algorithm::datatypes::AlgorithmInfo::";
const std::string kSystems = kDetails + "SystemsInformation";
const std::string kOptimization = kDetails + "OptimizationInformation";
const std::string kReliability = kDetails + "ReliabilityInformation";

const Field kHistory = PlainWalk::Map("series by name", kText, kReals);

/// Sets of designs by name, each of any of the three kinds.
Field DesignSets() {
  const Class set{kSystems + "::DesignSet",
                  4,
                  kTracked,
                  {{"identifier_", kText},
                   {"design_ids_", Ids()},
                   {"design_specifications_", kTextsByName},
                   {"history_names_", kWideTexts},
                   {"surrogate_infos_", SurrogateInfos()},
                   {"history_map_", kHistory}}};
  const Class optimization{kOptimization + "::OptimizationDesignSet",
                           0,
                           kTracked,
                           {{"DesignSet", PlainWalk::Object(set)},
                            {"lower_upper_bounds_map_", PlainWalk::Map("pairs of doubles by name", kText, kRealPair)}}};
  const Class reliability{kReliability + "::ReliabilityDesignSet",
                          1,
                          kTracked,
                          {{"DesignSet", PlainWalk::Object(set)},
                           {"probability_of_failure_", kReal},
                           {"standard_deviation_error_", kReal},
                           {"reliability_index_", kReal},
                           {"num_total_dir_", kUnsigned},
                           {"num_done_dir_", kUnsigned},
                           {"arsm_approx_errors_", kReals},
                           {"input_importance_values_", kRealsByName}}};
  return PlainWalk::Map("design sets by name", kText,
                        PlainWalk::Shared("DesignSet", PlainWalk::PointerToConcrete({set, optimization, reliability})));
}

Class SystemsInformation(const Class& base) {
  const Class additional{kSystems + "::AdditionalDesignContainer",
                         1,
                         kTracked,
                         {{"identifier_", kText},
                          {"designs_", Ids()},
                          {"similar_to_system_designs_", PlainWalk::Map("ids by id", Id(), Id())},
                          {"design_sets_", DesignSets()},
                          {"design_set_position_map_", kUnsignedsByName}}};
  const Field pointer = PlainWalk::Shared("AdditionalDesignContainer", PlainWalk::PointerToConcrete({additional}));
  return {kSystems,
          6,
          kTracked,
          {{"DetailedInformationBase", PlainWalk::Object(base)},
           {"index_id_map_", PlainWalk::Map("ids by number", kUnsigned, Id())},
           {"design_set_position_map_", kUnsignedsByName},
           {"prefered_design_set_", kText},
           {"additional_designs_", PlainWalk::List("vector of additional designs", pointer, 1)},
           {"design_sets_map_", DesignSets()}}};
}

Class OptimizationInformation(const Class& systems) {
  return {
      kOptimization, 1, kTracked, {{"SystemsInformation", PlainWalk::Object(systems)}, {"best_design_ids_", Ids()}}};
}

Class ReliabilityInformation(const Class& systems) {
  const Class info{kReliability + "::ReliabilityDesignSetInfo",
                   6,
                   kTracked,
                   {{"safe_domain_designs_", Ids()},
                    {"unsafe_domain_designs_", Ids()},
                    {"failed_strings_", kWideTexts},
                    {"unsuccessful_designs_", Ids()},
                    {"total_designs_", Ids()},
                    {"most_probable_failure_point_id_", Id()},
                    {"probability_of_failure_", kReal},
                    {"standard_deviation_error_", kReal},
                    {"reliability_index_", kReal},
                    {"probability_of_failure_form_", kReal},
                    {"reliability_index_form_", kReal},
                    {"method_name_", kText},
                    {"error_r2_", kReal},
                    {"error_loo_", kReal},
                    {"arsm_ds_map_", PlainWalk::Map("ids by name", kText, Ids())},
                    {"has_valid_data_", kBool}}};
  const Field pointer = PlainWalk::Shared("ReliabilityDesignSetInfo", PlainWalk::PointerToConcrete({info}));
  return {kReliability,
          6,
          kTracked,
          {{"SystemsInformation", PlainWalk::Object(systems)},
           {"reli_total_infos_", kRealsByName},
           {"stndrd_reli_infos_", kRealsByName},
           {"reli_iteration_infos_", PlainWalk::List("vector of doubles by name", kRealsByName)},
           {"design_iteration_map_", PlainWalk::Map("vectors of ids by number", kUnsigned, Ids())},
           {"reli_design_set_infos_", PlainWalk::Map("reliability results by name", kText, pointer)},
           {"design_type_map_", PlainWalk::Map("32-bit numbers by name", kText, kSigned)},
           {"reli_method_name_", kText},
           {"is_converged_", kBool},
           {"is_form_converged_", kBool}}};
}

Field DetailedInformation() {
  const Class base{kDetails + "DetailedInformationBase", 1, kTracked, {{"sampling_type_", kSigned}}};
  const Class zor{kDetails + "ZORInformation",
                  9,
                  kTracked,
                  {{"DetailedInformationBase", PlainWalk::Object(base)},
                   {"cv_indexes_", PlainWalk::Map("subsets by name", kText, kUnsigneds)},
                   {"response_to_cv_mapping_", kTextsByName},
                   {"parameter_manager_", ParameterManager()},
                   {"surrogate_infos_", SurrogateInfos()},
                   {"was_deterministic_sampling_", kBool},
                   {"zor_settings_", CombinedSettings()},
                   {"parameter_names_", kWideTexts},
                   {"sampling_limits_", kRealPairs},
                   {"defined_limits_", kRealPairs},
                   {"distribution_settings_", kWideTexts},
                   {"calculated_models_", SubspaceResultContainer()},
                   {"best_models_", SubspaceResultContainer()},
                   {"function_strings_", kTextsByName},
                   {"relative_freq_of_importance_", kRealsByName},
                   {"custom_zor_logs_", kTextsByName}}};
  const Class systems = SystemsInformation(base);
  return PlainWalk::Shared("DetailedInformationBase",
                           PlainWalk::PointerToConcrete({base, zor, systems, OptimizationInformation(systems),
                                                         ReliabilityInformation(systems)}));
}

Field AlgorithmInformation() {
  const Class info{"kestrel::algorithm::datatypes::AlgorithmInfo",
                   7,
                   kTracked,
                   {{"algo_type_", kSigned},
                    {"design_group_map_", PlainWalk::Map("ids by name", kText, Ids())},
                    {"additional_data_", kTextsByName},
                    {"signal_info_container_", SignalInfos()},
                    {"signal_info_names_", kWideTexts},
                    {"detailed_info_", DetailedInformation()}}};
  return PlainWalk::Shared("AlgorithmInfo", PlainWalk::PointerToConcrete({info}));
}

Class Lyra() {
  constexpr std::size_t kUuidSize = 16;
  const Field path = PlainWalk::Object({"LYRAAttachedPath",
                                        2,
                                        kTracked,
                                        {{"path_", kText},
                                         {"title_", kText},
                                         {"isPathFix_", kBool},
                                         {"arguments_", kText},
                                         {"autoInsertPlaceholders_", kBool}}});
  const Field paths = PlainWalk::Map("attached paths", PlainWalk::Raw(kUuidSize), path);
  return {"LYRA",
          14,
          kTracked,
          {{"parameter_manager_", ParameterManager()},
           {"design_container_", DesignManager()},
           {"reference_design_", Design()},
           {"algorithm_info_", AlgorithmInformation()},
           {"meta_data_", PlainWalk::Map("meta data", kText, kText)},
           {"validated_best_designs_", DesignManager()},
           {"approx_design_container_", DesignManager()},
           {"nominal_design_", Design()},
           {"image_path_map_", paths},
           {"process_path_map_", paths},
           {"criteria_", Sequence("criteria", Criterion())}}};
}

Class Zor() {
  return {"ZOR",
          2,
          kTracked,
          {{"number_parallel_outputs_", kUnsigned},
           {"settings_", ZorSettings()},
           {"num_inputs_", kUnsigned},
           {"num_outputs_", kUnsigned},
           {"input_names_", kTexts},
           {"output_names_", kTexts},
           {"cop_per_output_", kReals},
           {"single_cops_per_output_", PlainWalk::List("vector of doubles", kReals)},
           {"model_per_output_", PlainWalk::List("vector of model types", kSigned)},
           {"cv_indexes_per_output_", PlainWalk::List("vector of 32-bit numbers", kShortUnsigneds)},
           {"surrogate_per_output_", PlainWalk::List("vector of surrogates", Surrogate(), 1)},
           {"zorsolver_",
            PlainWalk::Object({"kestrel::zor::ZORSolver", 0, kTracked, {{"lyra_", PlainWalk::Object(Lyra())}}})},
           {"built_", kBool}}};
}

}  // namespace

std::vector<PlainValue> WalkStoredModel(std::string bytes) { return PlainWalk::WalkPointer(std::move(bytes), Zor()); }

std::vector<PlainValue> WalkMonitoringFile(std::string bytes) {
  // Magic, file version and the length of the header, four bytes each, and the header.
  std::uint32_t header_length = 0;
  std::memcpy(&header_length, bytes.data() + 8, sizeof(header_length));
  return PlainWalk::WalkObject(std::move(bytes), 12 + header_length, Lyra());
}

}  // namespace kestrel::testing
