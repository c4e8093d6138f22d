#ifndef ZOR_API_H
#define ZOR_API_H

/**
 * @file zor_api.h
 * The interface of libzor_api: metamodels of sampled designs.
 *
 * A design is one row of input values with the output values that a simulation or a test gave for them. From a table of
 * designs `zor_build` finds a metamodel of every output; the other calls evaluate and describe the models.
 *
 *     zor_handle_t handle = NULL;
 *     zor_create(&handle);
 *     zor_set_input_count(handle, 2);
 *     zor_set_output_count(handle, 1);
 *     if (zor_build(handle, samples, designs) != zor_success) puts(zor_get_last_error(handle));
 *     zor_solve(handle, points, predictions, point_count);
 *     zor_release(handle);
 *
 * Return values. A function that returns uint32_t returns a code of `zor_error_code`. Three rules hold everywhere and
 * are not repeated below:
 *  - `zor_success` is returned if all went well, and the last error is then empty;
 *  - a null handle is answered with `zor_invalid_handle`, without any other effect;
 *  - a failure inside the library (memory included) is answered with `zor_calculation_error`; `zor_get_last_error` has
 *    its text. A null pointer for a buffer that has to be read or written is such a failure.
 *
 * Buffers. All numbers are double. A table is a flat array, row by row, one row per design; the caller owns it, and it
 * is not kept after the call. "designs x inputs" stands for one row per design and one column per input. A buffer that
 * a function writes must have room for the stated number of values; it is not touched if the call fails.
 *
 * Texts are UTF-8 and zero-terminated unless stated otherwise.
 *
 * The built model. A handle is built after `zor_build` or `zor_build_split` returned `zor_success`. A call that "drops
 * the built model" makes the handle not built, whatever it returns later on; calls that need a model then return
 * `zor_not_built`. Functions that do not say so leave the model alone.
 *
 * Threads. Separate handles may be used on separate threads at will. The calls on one handle are to be serialised by
 * the caller. A build uses threads of its own, which have ended when it returns.
 */

#include <stddef.h> /* NOLINT(modernize-deprecated-headers): C reads this, too */
#include <stdint.h> /* NOLINT(modernize-deprecated-headers) */

#define ZOR_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/** One problem with its settings and, once built, its models. */
typedef struct ZOR* zor_handle_t;

/** What the functions return. `zor_get_error_description` has a text for each. */
typedef enum zor_error_code {
  zor_success = 0,
  zor_invalid_handle = 1,
  zor_calculation_error = 2,     /**< the work failed; the last error has the text */
  zor_settings_check_failed = 3, /**< a build refused the options; the last error has the texts */
  zor_custom_not_enabled = 4,
  zor_unknown_input_enum = 41,  /**< a value that is none of those listed; the last error has the text */
  zor_unknown_return_enum = 42, /**< the same for a value to be returned */
  zor_size_mismatch = 43,
  zor_result_index_out_of_range = 44,
  zor_index_out_of_range = 45,
  zor_invalid_name = 46, /**< the last error has the name */
  zor_not_implemented = 1000,
  zor_internal_error = 1001,
  zor_handle_init_failed = 1002,
  zor_not_built = 1003,
  zor_max_error = 16383 /**< never returned; fixes the width of the enumeration */
} zor_error_code;

/** The values of a flag. */
typedef enum zor_bool { zor_false = 0, zor_true = 1 } zor_bool;

/** How the prognosis of a candidate model is tested. */
typedef enum zor_testing_type {
  zor_cross_validation = 0, /**< on groups of designs that are left out in turn */
  zor_leave_one_out = 1     /**< on single designs that are left out in turn */
} zor_testing_type;

/** The kind of model chosen for an output. */
typedef enum zor_model_type {
  zor_model_none = 0, /**< no model, or one of another kind */
  zor_model_polynomial = 1,
  zor_model_mls = 2, /**< moving least squares */
  zor_model_kriging = 3
} zor_model_type;

/** The part an input plays in the search. */
typedef enum zor_importance {
  zor_unimportant = 0, /**< left out of every model */
  zor_selectable = 1,  /**< used where the filters find it useful */
  zor_mandatory = 2    /**< in every candidate model */
} zor_importance;

/* ------------------------------------------------------------------------------------------------------------------
 * Handle, errors, version
 * --------------------------------------------------------------------------------------------------------------- */

/**
 * Makes a handle without a model, with no inputs and outputs and with the default options. It is the caller's until
 * `zor_release`.
 * @param handle  receives the handle; untouched on failure.
 * @return zor_handle_init_failed if it cannot be made; zor_invalid_handle for a null pointer.
 */
ZOR_API uint32_t zor_create(zor_handle_t* handle);

/** Destroys a handle with all it owns, the texts handed out by it included. A null handle is ignored. */
ZOR_API void zor_release(zor_handle_t handle);

/**
 * The text that the latest call of the current thread on this handle left behind; empty after a success, for a null
 * handle, and after the codes that have no text of their own (43, 44, 45). Reading does not reset it.
 * @return a text that the handle owns; valid until the thread's next call on this handle.
 */
ZOR_API const char* zor_get_last_error(zor_handle_t handle);

/** The static text of a code of `zor_error_code`; a null pointer for every other number. */
ZOR_API const char* zor_get_error_description(uint32_t code);

/** Reserved. Ignores its arguments. @return always zor_not_implemented, for a null handle too. */
ZOR_API uint32_t zor_set_error_callback(zor_handle_t handle, ...);

/** The static version text, "major.minor.patch", a tag, and the build number in parentheses. */
ZOR_API const char* zor_get_version_str(void);

/**
 * A static text for reports of faults: the processors that the loaded library was compiled for, "x86-64" or
 * "x86-64-v3" (those with AVX2 and FMA), the compiler, and the versions of Eigen and Boost, separated by ", ".
 */
ZOR_API const char* zor_get_build_str(void);

/** Frees a buffer that the library allocated for the caller. A null pointer is ignored. */
ZOR_API void zor_release_buf(void* buffer);

/* ------------------------------------------------------------------------------------------------------------------
 * Description of the problem
 * --------------------------------------------------------------------------------------------------------------- */

/** Sets the number of inputs. A build needs at least one. Drops the built model. */
ZOR_API uint32_t zor_set_input_count(zor_handle_t handle, uint32_t count);
/** The number of inputs; 0 for a new handle. */
ZOR_API uint32_t zor_get_input_count(zor_handle_t handle, uint32_t* count);

/** Sets the number of outputs. A build needs at least one. Drops the built model. */
ZOR_API uint32_t zor_set_output_count(zor_handle_t handle, uint32_t count);
/** The number of outputs; 0 for a new handle. */
ZOR_API uint32_t zor_get_output_count(zor_handle_t handle, uint32_t* count);

/**
 * Replaces the names of the inputs; a count of 0 removes them. Drops the built model. A build needs no names, or one
 * for each input, all different. Without names `zor_get_input_bounds` knows no bounds.
 *
 * A name is a letter or `_`, then letters, digits, `_`, `'` or `.`. Not allowed are `if` in any case and, in capitals
 * as here, SPLINE, LINEAR, CONSTANT, MIRROR, REVERSE_MIRROR, TANGENTIAL, FORWARD, BACKWARD, UNIFORM, NORMAL, LOGNORMAL,
 * TRIANGLE, CAUCHY, EXPONENTIAL, LOWPASS, HIGHPASS, BANDPASS, BANDSTOP, PI, TRUE, FALSE, QUAD, ZERO.
 * @param names  `count` texts.
 * @return zor_invalid_name at the first name that is not valid; the names before it are then stored.
 */
ZOR_API uint32_t zor_set_input_names(zor_handle_t handle, const char* const* names, uint32_t count);
/** The number of stored names of inputs. */
ZOR_API uint32_t zor_get_input_name_count(zor_handle_t handle, uint32_t* count);
/**
 * One name, counted from 0.
 * @param name  receives a text that the handle owns; valid until the names are set anew.
 * @return zor_index_out_of_range at or beyond the number of stored names.
 */
ZOR_API uint32_t zor_get_input_name(zor_handle_t handle, uint32_t index, const char** name);

/**
 * As `zor_set_input_names`, for the outputs. The calls "per output" that evaluate a model (gradients, errors, density)
 * count the outputs by their names: without names they answer every index with zor_result_index_out_of_range.
 */
ZOR_API uint32_t zor_set_output_names(zor_handle_t handle, const char* const* names, uint32_t count);
/** The number of stored names of outputs. */
ZOR_API uint32_t zor_get_output_name_count(zor_handle_t handle, uint32_t* count);
/** As `zor_get_input_name`, for the outputs. */
ZOR_API uint32_t zor_get_output_name(zor_handle_t handle, uint32_t index, const char** name);

/**
 * Sets what part each input plays. Drops the built model. A vector whose length is not the number of inputs at the
 * build has no effect there.
 * @param importance  one value of `zor_importance` per input, as many as `zor_set_input_count` said.
 * @return zor_unknown_input_enum for a value of 3 or more; the stored values then stay.
 */
ZOR_API uint32_t zor_set_info_important(zor_handle_t handle, const uint32_t* importance);
/** Writes the values last set, one per input of that time; nothing if none were set. */
ZOR_API uint32_t zor_get_info_important(zor_handle_t handle, uint32_t* importance);

/**
 * Sets on how many outputs a build works at once; 0, the value of a new handle, stands for one per hardware thread.
 * The models do not depend on it. Keeps the built model.
 */
ZOR_API uint32_t zor_set_outputs_in_parallel_count(zor_handle_t handle, uint32_t count);
/** The value last set. */
ZOR_API uint32_t zor_get_outputs_in_parallel_count(zor_handle_t handle, uint32_t* count);

/**
 * Switches a class of models by its name: "polynomials", "mls", "kriging" or "anisotropic_kriging", as the options
 * `use_...` below do. Drops the built model, also where it refuses.
 * @param use  zor_true or zor_false.
 * @return zor_custom_not_enabled for any other name, zor_unknown_input_enum for a value of 2 or more.
 */
ZOR_API uint32_t zor_set_use_model_type(zor_handle_t handle, const char* name, uint32_t use);
/** Reports the same switch. @return zor_custom_not_enabled for any other name. */
ZOR_API uint32_t zor_get_use_model_type(zor_handle_t handle, const char* name, uint32_t* use);

/* ------------------------------------------------------------------------------------------------------------------
 * Options
 *
 * Every option has a setter and a getter. A setter drops the built model, even if the value does not change. A flag is
 * zor_true or zor_false; any other value is refused with zor_unknown_input_enum, and then the built model and the
 * stored value stay. Numbers are stored as they are; a value that is out of its range is refused by the build, with
 * zor_settings_check_failed. The default, which a new handle has, stands in brackets.
 * --------------------------------------------------------------------------------------------------------------- */

/**
 * How candidates are tested, a value of `zor_testing_type` [zor_cross_validation].
 * @return zor_unknown_input_enum for a value of 2 or more, the model and the stored value stay; the getter
 * zor_unknown_return_enum if the stored value is none of the two.
 */
ZOR_API uint32_t zor_set_testing_type(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_testing_type(zor_handle_t handle, uint32_t* value);

/** Flag: also try outputs transformed after Box and Cox [zor_true]. */
ZOR_API uint32_t zor_set_use_boxcox(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_boxcox(zor_handle_t handle, uint32_t* value);

/** Flag: allow interpolating models only [zor_false]. */
ZOR_API uint32_t zor_set_use_interpolation(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_interpolation(zor_handle_t handle, uint32_t* value);

/** Flag: polynomial regression competes [zor_true]. */
ZOR_API uint32_t zor_set_use_polynomials(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_polynomials(zor_handle_t handle, uint32_t* value);

/** Highest order of a polynomial [2]. */
ZOR_API uint32_t zor_set_max_order_polynomial(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_max_order_polynomial(zor_handle_t handle, uint32_t* value);

/** Designs demanded per coefficient of a polynomial [2.0]. */
ZOR_API uint32_t zor_set_coeff_factor_poly(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_coeff_factor_poly(zor_handle_t handle, double* value);

/** Flag: moving least squares competes [zor_true]. */
ZOR_API uint32_t zor_set_use_mls(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_mls(zor_handle_t handle, uint32_t* value);

/** Highest order of the basis of moving least squares [2]. */
ZOR_API uint32_t zor_set_max_order_mls(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_max_order_mls(zor_handle_t handle, uint32_t* value);

/** Designs demanded per coefficient of moving least squares [8.0]. */
ZOR_API uint32_t zor_set_coeff_factor_mls(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_coeff_factor_mls(zor_handle_t handle, double* value);

/** Flag: ordinary Kriging competes [zor_true]. */
ZOR_API uint32_t zor_set_use_kriging(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_kriging(zor_handle_t handle, uint32_t* value);

/** Flag: Kriging may have a radius of its own for each input [zor_false]. */
ZOR_API uint32_t zor_set_use_anisotropic_kriging(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_anisotropic_kriging(zor_handle_t handle, uint32_t* value);

/** Designs demanded per input of Kriging [8.0]. */
ZOR_API uint32_t zor_set_coeff_factor_kriging(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_coeff_factor_kriging(zor_handle_t handle, double* value);

/** Flag: filter the inputs by the significance of their correlation with the output [zor_true]. */
ZOR_API uint32_t zor_set_use_significance_filter(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_significance_filter(zor_handle_t handle, uint32_t* value);

/** Least quantile of significance that filter tries, 0 to 1 [0.95]. */
ZOR_API uint32_t zor_set_min_significance(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_min_significance(zor_handle_t handle, double* value);

/** Flag: filter by rank correlation (Spearman) as well [zor_false]. */
ZOR_API uint32_t zor_set_use_spearman(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_spearman(zor_handle_t handle, uint32_t* value);

/** Flag: filter by the coefficient of importance (CoI) of each input [zor_true]. */
ZOR_API uint32_t zor_set_use_coi_filter(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_coi_filter(zor_handle_t handle, uint32_t* value);

/** Highest limit of the CoI that filter tries, 0 to 1 [0.05]. */
ZOR_API uint32_t zor_set_max_coi(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_max_coi(zor_handle_t handle, double* value);

/** Step between the limits of the CoI [0.01]. A step of 0 or below tries none. */
ZOR_API uint32_t zor_set_step_coi(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_step_coi(zor_handle_t handle, double* value);

/** Flag: measure importance by the adjusted coefficient of determination (CoD) [zor_true]. */
ZOR_API uint32_t zor_set_use_adj_cod(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_adj_cod(zor_handle_t handle, uint32_t* value);

/** Flag: filter by the coefficient of determination of each input alone [zor_true]. */
ZOR_API uint32_t zor_set_use_cod_filter(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_cod_filter(zor_handle_t handle, uint32_t* value);

/** Highest limit of the CoD that filter tries [0.05]. */
ZOR_API uint32_t zor_set_max_cod(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_max_cod(zor_handle_t handle, double* value);

/** Step between the limits of the CoD [0.01]. A step of 0 or below tries none. */
ZOR_API uint32_t zor_set_step_cod(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_step_cod(zor_handle_t handle, double* value);

/** Flag: filter by levels of correlation [zor_true]. */
ZOR_API uint32_t zor_set_use_corr_filter(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_corr_filter(zor_handle_t handle, uint32_t* value);

/** Number of levels that filter tries, at most 10000 [10]. */
ZOR_API uint32_t zor_set_corr_steps_count(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_corr_steps_count(zor_handle_t handle, uint32_t* value);

/** Loss of CoP for which a simpler model is preferred to the best one, 0 to 1 [0.01]. */
ZOR_API uint32_t zor_set_tolerance_cop_model(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_tolerance_cop_model(zor_handle_t handle, double* value);

/** Loss of CoP for which a model with fewer inputs is preferred, 0 to 1 [0.01]. */
ZOR_API uint32_t zor_set_tolerance_cop_variables(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_tolerance_cop_variables(zor_handle_t handle, double* value);

/** Flag: look for inputs that are correlated among themselves, and drop those that others explain [zor_false]. */
ZOR_API uint32_t zor_set_use_input_corr_filter(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_input_corr_filter(zor_handle_t handle, uint32_t* value);

/** Correlation of two inputs from which that search runs [0.5]. */
ZOR_API uint32_t zor_set_corr_input_check(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_corr_input_check(zor_handle_t handle, double* value);

/** Lowest level of correlation of that search [0.3]. */
ZOR_API uint32_t zor_set_min_input_corr(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_min_input_corr(zor_handle_t handle, double* value);

/** Highest level of correlation of that search [0.7]. */
ZOR_API uint32_t zor_set_max_input_corr(zor_handle_t handle, double value);
ZOR_API uint32_t zor_get_max_input_corr(zor_handle_t handle, double* value);

/** Flag: rank candidates by a CoP adjusted to their number of parameters [zor_false]. The reported CoP is plain. */
ZOR_API uint32_t zor_set_use_adj_cop(zor_handle_t handle, uint32_t value);
ZOR_API uint32_t zor_get_use_adj_cop(zor_handle_t handle, uint32_t* value);

/* ------------------------------------------------------------------------------------------------------------------
 * Build
 * --------------------------------------------------------------------------------------------------------------- */

/**
 * Finds the best model of every output. Drops the built model once the table is taken in (null pointers and a lack of
 * memory are noticed before): a build that fails later leaves none.
 *
 * Inputs must be finite numbers. A design whose value of an output is NaN or infinite is left out of the model of that
 * output alone. At least two designs are needed. The same calls in the same order give the same models in every
 * process.
 * @param samples  designs x (inputs + outputs), the inputs first.
 * @param designs  number of rows.
 * @return zor_settings_check_failed if an option is out of its range; the last error has one line per fault.
 */
ZOR_API uint32_t zor_build(zor_handle_t handle, const double* samples, uint32_t designs);

/**
 * As `zor_build`, from two tables.
 * @param inputs   designs x inputs.
 * @param outputs  designs x outputs.
 */
ZOR_API uint32_t zor_build_split(zor_handle_t handle, const double* inputs, const double* outputs, uint32_t designs);

/* ------------------------------------------------------------------------------------------------------------------
 * Evaluation
 *
 * All of these need a model, else they return zor_not_built. The plain forms refuse a point outside the bounds of the
 * sampled designs (a value on a bound is inside) with zor_calculation_error and a text that names the input; the forms
 * `..._extrapolate` evaluate it. The calls per output count the outputs from 0 by their stored names:
 * zor_result_index_out_of_range at or beyond their number, zor_calculation_error below 0.
 * --------------------------------------------------------------------------------------------------------------- */

/**
 * Predicts all outputs.
 * @param inputs   designs x inputs.
 * @param outputs  receives designs x outputs, in units of the outputs.
 */
ZOR_API uint32_t zor_solve(zor_handle_t handle, const double* inputs, double* outputs, uint32_t designs);
/** As `zor_solve`, without a test of the bounds. */
ZOR_API uint32_t zor_solve_extrapolate(zor_handle_t handle, const double* inputs, double* outputs, uint32_t designs);

/**
 * Gradient of one output at each point, by central differences with a step of 1e-4 of the range of the input; 0 for an
 * input that the model does not use.
 * @param inputs     designs x inputs.
 * @param gradients  receives designs x inputs, in units of the output per unit of the input.
 */
ZOR_API uint32_t zor_calculate_gradients_per_output(zor_handle_t handle, int32_t output, const double* inputs,
                                                    uint32_t designs, double* gradients);
/** As `zor_calculate_gradients_per_output`, without a test of the bounds. */
ZOR_API uint32_t zor_calculate_gradients_per_output_extrapolate(zor_handle_t handle, int32_t output,
                                                                const double* inputs, uint32_t designs,
                                                                double* gradients);

/**
 * Local quality of the model of one output at each point, from the cross-validation residuals of the designs around it.
 * @param inputs  designs x inputs.
 * @param errors  receives designs x 4: local coefficient of prognosis, local root mean squared error, weighted mean of
 *                the residuals, weighted mean of their absolute values; the last three in units of the output.
 */
ZOR_API uint32_t zor_calculate_errors_per_output(zor_handle_t handle, int32_t output, const double* inputs,
                                                 uint32_t designs, double* errors);
/** As `zor_calculate_errors_per_output`, without a test of the bounds. */
ZOR_API uint32_t zor_calculate_errors_per_output_extrapolate(zor_handle_t handle, int32_t output, const double* inputs,
                                                             uint32_t designs, double* errors);

/**
 * Density of the sampled designs around each point, as the model of one output sees them.
 * @param inputs    designs x inputs.
 * @param density   receives one value per design.
 * @param capacity  room in `density`.
 * @return zor_size_mismatch if `capacity` is 0 or below `designs`; nothing is written then.
 */
ZOR_API uint32_t zor_calculate_density_per_output(zor_handle_t handle, int32_t output, const double* inputs,
                                                  uint32_t designs, double* density, uint32_t capacity);
/** As `zor_calculate_density_per_output`, without a test of the bounds. */
ZOR_API uint32_t zor_calculate_density_per_output_extrapolate(zor_handle_t handle, int32_t output, const double* inputs,
                                                              uint32_t designs, double* density, uint32_t capacity);

/* ------------------------------------------------------------------------------------------------------------------
 * Criteria and expressions
 *
 * A criterion is an expression over the inputs, the outputs and the criteria before it, by their names: an objective,
 * or two sides that are compared. docs/expressions.md has the language. Criteria belong to the model: they are stored
 * with it, and a build drops them. An expression from a file cannot make the library read other files.
 * --------------------------------------------------------------------------------------------------------------- */

/** What a criterion asks for, and what its value is. */
typedef enum zor_criterion_type {
  zor_objective_min = 1,      /**< the left side */
  zor_objective_max = 2,      /**< the left side */
  zor_constraint_less = 3,    /**< left <= right: right - left */
  zor_constraint_greater = 4, /**< left >= right: left - right */
  zor_constraint_equal = 5,   /**< left == right: left - right */
  zor_limit_state_less = 6,   /**< left <= right for a safe design: right - left */
  zor_limit_state_greater = 7 /**< left >= right for a safe design: left - right */
} zor_criterion_type;

/**
 * Adds a criterion behind those that are there.
 * @param name   a name as for inputs, which no input, output or criterion has.
 * @param type   of `zor_criterion_type`.
 * @param left   an expression.
 * @param right  an expression; ignored for an objective, where it may be null.
 * @return zor_not_built without a model; zor_invalid_name; zor_unknown_input_enum for another type;
 *         zor_calculation_error with the place in the text if a side is no expression.
 */
ZOR_API uint32_t zor_add_criterion(zor_handle_t handle, const char* name, uint32_t type, const char* left,
                                   const char* right);
/** Removes all criteria. @return zor_not_built without a model. */
ZOR_API uint32_t zor_clear_criteria(zor_handle_t handle);
/** The number of criteria. @return zor_not_built without a model. */
ZOR_API uint32_t zor_get_criterion_count(zor_handle_t handle, uint32_t* count);
/**
 * The name of a criterion, counted from 0.
 * @param name    receives a new text, not zero-terminated, to be given to `zor_release_buf`.
 * @param length  receives its length in bytes.
 * @return zor_index_out_of_range at or beyond the number of criteria.
 */
ZOR_API uint32_t zor_get_criterion_name(zor_handle_t handle, uint32_t index, char** name, size_t* length);

/**
 * Predicts the values of all criteria. One that has no real number for its value at a point (its expression fails, or
 * gives a vector) is NaN there.
 * @param inputs  designs x inputs.
 * @param values  receives designs x criteria.
 */
ZOR_API uint32_t zor_solve_criteria(zor_handle_t handle, const double* inputs, double* values, uint32_t designs);
/** As `zor_solve_criteria`, without a test of the bounds. */
ZOR_API uint32_t zor_solve_criteria_extrapolate(zor_handle_t handle, const double* inputs, double* values,
                                                uint32_t designs);

/**
 * Evaluates an expression. Needs no model: the handle keeps the last error.
 * @param expression   UTF-8.
 * @param names        `count` names of objects that the expression may use.
 * @param expressions  `count` expressions of these objects.
 * @param text         receives the value as an expression that gives it again; a new text, not zero-terminated, to be
 *                     given to `zor_release_buf`.
 * @param length       receives its length in bytes.
 * @return zor_calculation_error with the reason, and the place in the text where it is no expression.
 */
ZOR_API uint32_t zor_evaluate_expression(zor_handle_t handle, const char* expression, const char* const* names,
                                         const char* const* expressions, uint32_t count, char** text, size_t* length);

/**
 * What the functions of expressions do: per function its forms, what it gives and its arguments, in lines.
 * @param text    receives a new text, not zero-terminated, to be given to `zor_release_buf`.
 * @param length  receives its length in bytes.
 */
ZOR_API uint32_t zor_describe_functions(zor_handle_t handle, char** text, size_t* length);

/* ------------------------------------------------------------------------------------------------------------------
 * Results
 *
 * All of these need a model, else they return zor_not_built. They count the outputs from 0 by position, named or not:
 * zor_result_index_out_of_range at or beyond their number, zor_calculation_error below 0.
 * --------------------------------------------------------------------------------------------------------------- */

/**
 * Predictions of one output at its own designs by models that did not see them: with r the sampled values and p these
 * predictions, CoP = 1 - sum (r - p)^2 / sum (r - mean r)^2, not below 0.
 * @param values  receives one value per design that the model was built on: a design whose output was not finite has
 *                none, and the values after it move up.
 */
ZOR_API uint32_t zor_calculate_cv_values_per_output(zor_handle_t handle, int32_t output, double* values);

/** Coefficient of prognosis of the model of one output, 0 to 1. @param cop  receives one value. */
ZOR_API uint32_t zor_get_cop_per_output(zor_handle_t handle, int32_t output, double* cop);

/**
 * Share of each input in the CoP of one output: CoP times the total-effect Sobol index of the input.
 * @param cops  receives one value per input; NaN for an input that the model does not use.
 */
ZOR_API uint32_t zor_get_single_cop_per_output(zor_handle_t handle, int32_t output, double* cops);

/** Kind of the model of one output. @param type  receives a value of `zor_model_type`. */
ZOR_API uint32_t zor_get_model_per_output(zor_handle_t handle, int32_t output, uint32_t* type);

/**
 * Description of the model of one output. `output` must not be negative here.
 * @param text    receives a new buffer, not zero-terminated, to be freed with `zor_release_buf`.
 * @param length  receives the number of bytes in it.
 */
ZOR_API uint32_t zor_get_model_str_per_output(zor_handle_t handle, int32_t output, char** text, size_t* length);

/**
 * Cross-validation group of each design of one output, counted from 0.
 * @param indexes  receives one value per design that the model was built on, as in
 *                 `zor_calculate_cv_values_per_output`; nothing if single designs were left out in turn.
 */
ZOR_API uint32_t zor_get_cv_indexes_per_output(zor_handle_t handle, int32_t output, uint32_t* indexes);

/**
 * Smallest and largest sampled value of each input.
 * @param bounds  receives inputs x 2, lower and upper bound; NaN for the inputs if they have no names.
 */
ZOR_API uint32_t zor_get_input_bounds(zor_handle_t handle, double* bounds);

/**
 * Report of the build: the sampling, the models with their quality, how often each input is used. Kept with the built
 * model, but not stored with it: a model that was read has an empty report.
 * @param text    receives a new buffer, not zero-terminated, to be freed with `zor_release_buf`.
 * @param length  receives the number of bytes in it.
 */
ZOR_API uint32_t zor_get_report(zor_handle_t handle, char** text, size_t* length);

/* ------------------------------------------------------------------------------------------------------------------
 * Files
 *
 * A stored model is the whole handle: settings, counts, names and, if it is built, its models with the designs. What is
 * read back answers every call with the same bits. A monitoring file (extension .lyra) is the record of a build for
 * other programs: a header in JSON, then designs, parameters and models. Paths are UTF-8.
 * --------------------------------------------------------------------------------------------------------------- */

/** Stores the handle, built or not, in a file; an earlier file is replaced. */
ZOR_API uint32_t zor_write_db_file(zor_handle_t handle, const char* path);

/**
 * Stores the handle in memory.
 * @param buffer  receives a new buffer, to be freed with `zor_release_buf`.
 * @param size    receives the number of bytes in it.
 */
ZOR_API uint32_t zor_write_db_buf(zor_handle_t handle, void** buffer, size_t* size);

/**
 * Makes a handle from a file that `zor_write_db_file` wrote.
 * @param handle  receives the new handle. What it held is not released; it must be NULL or a handle, whose last error
 *                then has the text of a failure. Untouched if the call fails.
 * @return zor_handle_init_failed if the file is missing, is no stored model, or its parts contradict each other.
 */
ZOR_API uint32_t zor_read_db_file(zor_handle_t* handle, const char* path);

/** As `zor_read_db_file`, from memory of `size` bytes. */
ZOR_API uint32_t zor_read_db_buf(zor_handle_t* handle, const void* buffer, size_t size);

/** Writes the record of the build to a monitoring file, and the missing directories of its path. Needs a model. */
ZOR_API uint32_t zor_write_monitoring_file(zor_handle_t handle, const char* path);

/**
 * Describes a monitoring file in JSON: its own header as "header"; "parameters" with name and bounds, "responses",
 * "designs" (total, succeeded, failed, pending) and "models" with response, model and CoP.
 * @param text    receives a new buffer, not zero-terminated, to be freed with `zor_release_buf`: the description, or
 *                the reason why there is none. Nothing is handed out for a null pointer or without memory.
 * @param length  receives the number of bytes in it.
 * @return zor_handle_init_failed if the file is missing or is no monitoring file.
 */
ZOR_API uint32_t zor_describe_monitoring_file(const char* path, char** text, size_t* length);

/* ------------------------------------------------------------------------------------------------------------------
 * Models from outside the library: not enabled in this build
 * --------------------------------------------------------------------------------------------------------------- */

/**
 * Would list the models found, one name a line, in a new buffer to be freed with `zor_release_buf`.
 * @return zor_custom_not_enabled; nothing is written.
 */
ZOR_API uint32_t zor_available_custom_names(char** names, size_t* length);

/**
 * Would set where models are looked for.
 * @param paths     `count` texts.
 * @param log_path  file for messages.
 * @return zor_custom_not_enabled; the last error says so. Keeps the built model.
 */
ZOR_API uint32_t zor_set_paths_for_custom_interface(zor_handle_t handle, const char* const* paths, uint32_t count,
                                                    const char* log_path);

#ifdef __cplusplus
}
#endif

#endif /* ZOR_API_H */
