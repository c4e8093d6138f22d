#include "golden/plain_walk.h"

// The classes of a stored model, one function each: name, version, tracking, and its fields in stored order.

namespace kestrel::testing {
namespace {

using Class = PlainWalk::Class;
using Field = PlainWalk::Field;

constexpr bool kTracked = true;
constexpr bool kUntracked = false;

const Field kUnsigned = PlainWalk::Unsigned();
const Field kSigned = PlainWalk::Signed();
const Field kBool = PlainWalk::Bool();
const Field kReal = PlainWalk::Real();
const Field kText = PlainWalk::Text();
const Field kReals = PlainWalk::Numbers("doubles", kReal);
const Field kUnsigneds = PlainWalk::Numbers("64-bit numbers", kUnsigned);
const Field kShortUnsigneds = PlainWalk::Numbers("32-bit numbers", kUnsigned);
const Field kMatrix = PlainWalk::Matrix("matrix");
const Field kVector = PlainWalk::Matrix("vector");
const Field kTexts = PlainWalk::List("vector of texts", kText);
const Field kWideTexts = PlainWalk::List("vector of wide texts", kText);
const Field kRealPair = PlainWalk::Pair("pair of doubles", kReal, kReal);
const Field kRealPairs = PlainWalk::List("vector of pairs of doubles", kRealPair);
const Field kRealsByName = PlainWalk::Map("doubles by name", kText, kReal);
const Field kBoolsByName = PlainWalk::Map("bools by name", kText, kBool);
const Field kTextsByName = PlainWalk::Map("texts by name", kText, kText);
const Field kUnsignedsByName = PlainWalk::Map("64-bit numbers by name", kText, kUnsigned);

Field Bits() { return PlainWalk::Object({"bits", 0, kUntracked, {{"m_num_bits", kUnsigned}, {"m_bits", kUnsigneds}}}); }

/// A cell of none of the types that stand in blocks of their own.
Field Entry() {
  const Field nothing = PlainWalk::Object({"nothing", 0, kUntracked, {}});
  const Field data = PlainWalk::Variant("content of a cell", {nothing, kReal, kSigned, kText, kBool});
  return PlainWalk::Object({"kestrel::design_entry_type", 5, kTracked, {{"data_", data}}});
}

Field Sequence(const std::string& of, const Field& value) {
  const Field pairs = PlainWalk::List("list of named " + of, PlainWalk::Pair("named " + of, kText, value));
  return PlainWalk::Object({"sequence of " + of, 0, kUntracked, {{"header_", kUnsigned}, {"seq_", pairs}}});
}

Field EntriesByName() { return PlainWalk::Map("cells by name", kText, Entry()); }

Field MetamodelSettings() {
  return PlainWalk::Object({"MetamodelSettings",
                            4,
                            kUntracked,
                            {{"use_boxcox_", kBool},
                             {"use_interpolation_", kBool},
                             {"use_polynomials_", kBool},
                             {"max_order_polynomial_", kUnsigned},
                             {"use_MLS_", kBool},
                             {"max_order_MLS_", kUnsigned},
                             {"use_anisotropic_MLS_", kBool},
                             {"use_Kriging_", kBool},
                             {"use_anisotropic_Kriging_", kBool},
                             {"use_ASCMO_", kBool},
                             {"testing_type_", kSigned},
                             {"coeff_factor_poly_", kReal},
                             {"coeff_factor_mls_", kReal},
                             {"coeff_factor_kriging_", kReal},
                             {"coeff_factor_ASCMO_", kReal},
                             {"custom_", kBoolsByName},
                             {"use_limits_", kBool},
                             {"limits_", kRealPair},
                             {"custom_settings_", PlainWalk::Map("settings by name", kText, EntriesByName())},
                             {"qmk_variables_", EntriesByName()}}});
}

Field ZorSettings() {
  return PlainWalk::Object({"ZORSettings",
                            2,
                            kUntracked,
                            {{"MetamodelSettings", MetamodelSettings()},
                             {"info_important_", kUnsigneds},
                             {"use_significance_filter_", kBool},
                             {"min_significance_", kReal},
                             {"step_significance_", kReal},
                             {"use_spearman_", kBool},
                             {"use_coi_filter_", kBool},
                             {"max_CoI_", kReal},
                             {"step_CoI_", kReal},
                             {"use_adj_cod_", kBool},
                             {"use_cod_filter_", kBool},
                             {"max_CoD_", kReal},
                             {"step_CoD_", kReal},
                             {"use_corr_filter_", kBool},
                             {"num_corr_steps_", kUnsigned},
                             {"toleranceCoP_model_", kReal},
                             {"toleranceCoP_variables_", kReal},
                             {"use_input_corr_filter_", kBool},
                             {"corr_input_check_", kReal},
                             {"min_input_corr_", kReal},
                             {"max_input_corr_", kReal},
                             {"use_adj_cop_", kBool},
                             {"use_uniform_resample_", kBool}}});
}

Field Transformation() {
  const Field base =
      PlainWalk::Object({"kestrel::math::transform::Transform", 0, kUntracked, {{"need_build_", kBool}}});
  const Class min_max{"kestrel::math::transform::TransMinMax",
                      0,
                      kTracked,
                      {{"Transform", base},
                       {"min_scaled_", kReal},
                       {"max_scaled_", kReal},
                       {"scaling_", kVector},
                       {"offset_forward_", kVector},
                       {"offset_backward_", kVector}}};
  return PlainWalk::Shared("Transform", PlainWalk::Pointer({min_max}));
}

Field SurrogateBase() {
  return PlainWalk::Object({"kestrel::math::metamodel::SurrogateBase",
                            6,
                            kTracked,
                            {{"points_", kMatrix},
                             {"values_", kVector},
                             {"points_trans_reduced_", kMatrix},
                             {"residuals_", kVector},
                             {"subsets_", kUnsigneds},
                             {"need_build_", kBool},
                             {"trans_coord_", Transformation()},
                             {"trans_value_", Transformation()},
                             {"weights_", kVector},
                             {"trans_limit_", Transformation()},
                             {"single_cops_", kMatrix},
                             {"points_radii_mean_", kReal}}});
}

Field SurrogateSettingsBase() {
  return PlainWalk::Object({"kestrel::math::metamodel::SurrogateSettingsBase",
                            2,
                            kTracked,
                            {{"ninputs_", kUnsigned},
                             {"coord_transform_", kSigned},
                             {"coord_transform_parameter_", kReals},
                             {"value_transform_", kSigned},
                             {"value_transform_parameter_", kReals},
                             {"handle_failed_", kSigned},
                             {"state_", kSigned},
                             {"limit_transform_", kSigned},
                             {"limit_transform_parameter_", kReals},
                             {"input_names_", kWideTexts}}});
}

Class RegressionSettings() {
  return {"kestrel::math::metamodel::LinearRegressionSettings",
          0,
          kTracked,
          {{"SurrogateSettingsBase", SurrogateSettingsBase()},
           {"order_", kUnsigned},
           {"main_term_selection_", Bits()},
           {"interaction_selection_", Bits()}}};
}

Class MovingLeastSquaresSettings() {
  return {"kestrel::math::metamodel::MovingLeastSquaresSettings",
          0,
          kTracked,
          {{"SurrogateSettingsBase", SurrogateSettingsBase()},
           {"order_", kUnsigned},
           {"main_term_selection_", Bits()},
           {"kernel_type_", kSigned},
           {"kernel_parameter_", kVector}}};
}

Class OrdinaryKrigingSettings() {
  return {"kestrel::math::metamodel::OrdinaryKrigingSettings",
          0,
          kTracked,
          {{"SurrogateSettingsBase", SurrogateSettingsBase()},
           {"nugget_", kReal},
           {"use_likelihood_", kBool},
           {"kernel_type_", kSigned},
           {"kernel_parameter_", kVector},
           {"selection_", Bits()}}};
}

/// The settings of a model of any class, behind a pointer.
Field SettingsPointer() {
  return PlainWalk::Pointer({RegressionSettings(), MovingLeastSquaresSettings(), OrdinaryKrigingSettings()});
}

Field Surrogate() {
  const Class regression{"kestrel::math::metamodel::LinearRegression",
                         1,
                         kTracked,
                         {{"SurrogateBase", SurrogateBase()},
                          {"coefficients_", kVector},
                          {"settings_", PlainWalk::Object(RegressionSettings())}}};
  const Class moving_least_squares{"kestrel::math::metamodel::MovingLeastSquares",
                                   3,
                                   kTracked,
                                   {{"SurrogateBase", SurrogateBase()},
                                    {"coefficient_matrix_", kMatrix},
                                    {"settings_", PlainWalk::Object(MovingLeastSquaresSettings())},
                                    {"values_trans_", kVector}}};
  const Class kriging{"kestrel::math::metamodel::OrdinaryKriging",
                      2,
                      kTracked,
                      {{"SurrogateBase", SurrogateBase()},
                       {"mean_", kReal},
                       {"sigma2_", kReal},
                       {"kernel_weights_", kVector},
                       {"settings_", PlainWalk::Object(OrdinaryKrigingSettings())},
                       {"values_trans_", kVector}}};
  return PlainWalk::Shared("SurrogateBase", PlainWalk::Pointer({regression, moving_least_squares, kriging}));
}

Field Id() {
  return PlainWalk::List("id", kUnsigned);  // of the same layout as a list
}

Field Ids() { return PlainWalk::List("vector of ids", Id()); }

Field RandomProperties() {
  return PlainWalk::Object({"RandomProperties",
                            4,
                            kUntracked,
                            {{"type_", kSigned},
                             {"kind_", kSigned},
                             {"params_", kReals},
                             {"moments_", kReals},
                             {"has_set_cov_", kBool},
                             {"cov_", kReal},
                             {"validated_", kBool}}});
}

Field DeterministicProperties() {
  return PlainWalk::Object({"DeterministicProperties",
                            1,
                            kUntracked,
                            {{"ordered_flag_", kBool},
                             {"domain_flag_", kSigned},
                             {"lower_bound_", Entry()},
                             {"upper_bound_", Entry()},
                             {"discrete_states_", PlainWalk::List("vector of cells", Entry(), 5)},
                             {"lower_bound_relative_", kReal},
                             {"upper_bound_relative_", kReal}}});
}

Field Parameter() {
  const Field property = PlainWalk::Pair("named range", kText, DeterministicProperties());
  return PlainWalk::Object({"Parameter",
                            7,
                            kUntracked,
                            {{"name_", kText},
                             {"active_", kBool},
                             {"const_", kBool},
                             {"rprop_", RandomProperties()},
                             {"dprops_", PlainWalk::List("list of named ranges", property)},
                             {"reference_value_", Entry()},
                             {"mutable_map_", PlainWalk::Map("bools by member", kSigned, kBool)},
                             {"dependency_expression_", kText},
                             {"id_", Id()},
                             {"modifiable_", kBool},
                             {"unit_", kText},
                             {"removable_", kBool},
                             {"origin_", kText}}});
}

Field ParameterManager() {
  const Field index = PlainWalk::Object({"TriangularIndex", 0, kUntracked, {{"first_", kText}, {"second_", kText}}});
  const Field correlations = PlainWalk::Map("correlations", index, kReal);
  return PlainWalk::Object(
      {"ParameterManager",
       1,
       kUntracked,
       {{"parameters_", PlainWalk::List("list of parameters", Parameter(), 7)},
        {"coherences_", PlainWalk::Object({"CorrelationMatrix", 0, kUntracked, {{"correlations_", correlations}}})}}});
}

Field Criterion() {
  const Field description = PlainWalk::Object(
      {"CriterionDescription", 0, kUntracked, {{"type_", kSigned}, {"lhs_", kText}, {"rhs_", kText}}});
  const Field value = PlainWalk::Object(
      {"CriterionValue",
       0,
       kUntracked,
       {{"value_", Entry()}, {"lhs_value_", Entry()}, {"rhs_value_", Entry()}, {"needeval_", kBool}}});
  return PlainWalk::Object(
      {"Criterion", 3, kUntracked, {{"CriterionDescription", description}, {"CriterionValue", value}}});
}

Field RunInfos() {
  const Field info = PlainWalk::Object({"RunInfoMeta",
                                        1,
                                        kUntracked,
                                        {{"run_info_", kSigned},
                                         {"actor_name_", kText},
                                         {"response_name_", kText},
                                         {"message_", PlainWalk::List("list of wide texts", kText)}}});
  return PlainWalk::Object(
      {"RunInfoContainer", 1, kUntracked, {{"run_infos_", PlainWalk::List("list of run infos", info, 1)}}});
}

Field Design() {
  return PlainWalk::Object({"Design",
                            6,
                            kTracked,
                            {{"parameters_", Sequence("cells", Entry())},
                             {"responses_", Sequence("cells", Entry())},
                             {"status_", RunInfos()},
                             {"runstate_", kSigned},
                             {"duplicates_", Id()},
                             {"activation_state_", kSigned},
                             {"criteria_", Sequence("criteria", Criterion())},
                             {"isapproximated_", kBool},
                             {"id_", Id()},
                             {"iteration_", Id()},
                             {"workflow_id_", kSigned},
                             {"type_", kSigned},
                             {"algo_iteration_", kUnsigned}}});
}

Field DesignManager() {
  const Field stats = PlainWalk::Object(
      {"DesignManager::Stats",
       0,
       kUntracked,
       {{"total_", kUnsigned}, {"succeeded_", kUnsigned}, {"failed_", kUnsigned}, {"pending_", kUnsigned}}});
  return PlainWalk::Object({"DesignManager",
                            2,
                            kUntracked,
                            {{"designs_", PlainWalk::List("vector of designs", Design(), 6)}, {"stats_", stats}}});
}

Field SubspaceResultContainer() {
  const Field result = PlainWalk::Object({"kestrel::math::metamodel::SubspaceResults",
                                          0,
                                          kTracked,
                                          {{"model_type", kSigned},
                                           {"settings", SettingsPointer()},
                                           {"CoD", kReal},
                                           {"CoDadj", kReal},
                                           {"CoP", kReal},
                                           {"CoPadj", kReal},
                                           {"CoDtest", kReal},
                                           {"predError", kReal},
                                           {"singleCoPs", kMatrix}}});
  const Field results = PlainWalk::Map("results by name", kText, PlainWalk::List("vector of results", result));
  const Class container{"kestrel::math::metamodel::SubspaceResultContainer", 0, kTracked, {{"results_", results}}};
  return PlainWalk::Shared("SubspaceResultContainer", PlainWalk::PointerToConcrete({container}));
}

Field AppraisalData() {
  return PlainWalk::Object({"AppraisalData",
                            1,
                            kTracked,
                            {{"cop_", kReal},
                             {"cod_", kReal},
                             {"codadj_", kReal},
                             {"single_cop_", kVector},
                             {"first_order_indices_", kVector}}});
}

Field SurrogateInfos() {
  const Field info = PlainWalk::Object({"SurrogateInfo",
                                        4,
                                        kTracked,
                                        {{"response_name_", kText},
                                         {"response_index_", kUnsigned},
                                         {"is_response_scalar_", kBool},
                                         {"surrogate_", Surrogate()},
                                         {"appraisal_data_", AppraisalData()},
                                         {"num_vars_", kUnsigned},
                                         {"subspace_", kUnsigneds},
                                         {"parameter_name_lookup_map_", kUnsignedsByName},
                                         {"testing_type_", kSigned},
                                         {"used_hids_", Ids()}}});
  return PlainWalk::Object(
      {"SurrogateInfoContainer", 0, kUntracked, {{"infos_", PlainWalk::List("vector of surrogate infos", info, 4)}}});
}

Field ZorData() {
  return PlainWalk::Object({"kestrel::zor::ZORData",
                            4,
                            kTracked,
                            {{"parameters_", Sequence("cells", Entry())},
                             {"responses_", Sequence("cells", Entry())},
                             {"responses_boundaries_", PlainWalk::Map("pairs of doubles by name", kText, kRealPair)},
                             {"parameter_importance_", kUnsignedsByName},
                             {"responses_usage_", kBoolsByName},
                             {"responses_zorability_", kBoolsByName}}});
}

Field AutomaticSettings() {
  return PlainWalk::Object({"kestrel::zor::ZORAutomaticSettings",
                            2,
                            kTracked,
                            {{"model_complexity_", kSigned},
                             {"variables_reduction_", kSigned},
                             {"num_parallel_", kUnsigned},
                             {"write_cv_values_", kBool},
                             {"cv_values_suffix_", kText}}});
}

Field AdvancedSettings() {
  const Field custom = PlainWalk::Shared("SurrogateSettingsBase", SettingsPointer());
  return PlainWalk::Object({"kestrel::zor::ZORAdvancedSettings",
                            2,
                            kTracked,
                            {{"num_parallel_", kUnsigned},
                             {"use_incomplete_", kBool},
                             {"adapt_bounds_", kBool},
                             {"adapt_bounds_safety_factor_", kReal},
                             {"pzor_settings_", ZorSettings()},
                             {"custom_surrogates_", PlainWalk::List("list of custom settings", custom, 1)},
                             {"log_in_project_log_", kBool},
                             {"log_in_file_", kBool},
                             {"log_file_path_", kText},
                             {"write_function_string_", kBool},
                             {"write_cv_values_", kBool},
                             {"cv_values_suffix_", kText},
                             {"zor_custom_id_settings_container_", kTextsByName},
                             {"zor_custom_id_usage_container_", kBoolsByName},
                             {"export_fmu_", kBool}}});
}

Field ClassicSettings() {
  return PlainWalk::Object({"kestrel::zor::ZORClassicSettings",
                            0,
                            kTracked,
                            {{"delta_cop_", kReal},
                             {"signi_filter_", kBool},
                             {"corr_filter_", kBool},
                             {"coi_filter_", kBool},
                             {"min_signi_quantil_", kReal},
                             {"corr_steps_", kUnsigned},
                             {"max_coi_", kReal},
                             {"spearman_", kBool},
                             {"adjusted_", kBool},
                             {"cross_validation_", kBool},
                             {"splitting_ratio_", kReal},
                             {"polynom_", kBool},
                             {"cmls_", kBool},
                             {"imls_", kBool},
                             {"adapt_bounds_", kBool}}});
}

Field CombinedSettings() {
  return PlainWalk::Object({"kestrel::zor::ZORCombinedSettings",
                            2,
                            kTracked,
                            {{"settings_type_", kSigned},
                             {"data_", ZorData()},
                             {"show_pp_", kBool},
                             {"automatic_settings_", AutomaticSettings()},
                             {"advanced_settings_", AdvancedSettings()},
                             {"default_parameter_bounds_adjustment_min_", kReal},
                             {"default_parameter_bounds_adjustment_max_", kReal},
                             {"limits_", kRealPair},
                             {"classic_settings_", ClassicSettings()}}});
}

Field DetailedInformation() {
  const Class base{"kestrel::algorithm::datatypes::AlgorithmInfo::DetailedInformationBase",
                   1,
                   kTracked,
                   {{"sampling_type_", kSigned}}};
  const Class zor{"kestrel::algorithm::datatypes::AlgorithmInfo::ZORInformation",
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
  return PlainWalk::Shared("DetailedInformationBase", PlainWalk::PointerToConcrete({base, zor}));
}

/// Without signals.
Field AlgorithmInformation() {
  const Class info{"kestrel::algorithm::datatypes::AlgorithmInfo",
                   7,
                   kTracked,
                   {{"algo_type_", kSigned},
                    {"design_group_map_", PlainWalk::Map("ids by name", kText, Ids())},
                    {"additional_data_", kTextsByName},
                    {"signal_info_container_", PlainWalk::Map("signals by name", kText, nullptr)},
                    {"signal_info_names_", kWideTexts},
                    {"detailed_info_", DetailedInformation()}}};
  return PlainWalk::Shared("AlgorithmInfo", PlainWalk::PointerToConcrete({info}));
}

/// Without attached paths.
Field Lyra() {
  const Field paths = PlainWalk::Map("attached paths", nullptr, nullptr);
  return PlainWalk::Object({"LYRA",
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
                             {"criteria_", Sequence("criteria", Criterion())}}});
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
           {"zorsolver_", PlainWalk::Object({"kestrel::zor::ZORSolver", 0, kTracked, {{"lyra_", Lyra()}}})},
           {"built_", kBool}}};
}

}  // namespace

std::vector<PlainValue> WalkStoredModel(std::string bytes) { return PlainWalk::WalkPointer(std::move(bytes), Zor()); }

}  // namespace kestrel::testing
