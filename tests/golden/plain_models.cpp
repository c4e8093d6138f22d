#include "golden/plain_classes.h"

// The classes of models and settings, one function each: name, version, tracking, and its fields in stored order.

namespace kestrel::testing {

using Class = PlainWalk::Class;
using Field = PlainWalk::Field;

namespace {

Field Bits() { return PlainWalk::Object({"bits", 0, kUntracked, {{"m_num_bits", kUnsigned}, {"m_bits", kUnsigneds}}}); }

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

}  // namespace

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

}  // namespace kestrel::testing
