#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/design_entry.h"
#include "persistence/archive/persistent.h"
#include "support/log.h"

namespace kestrel::math {

/// True for equal numbers, infinities among them, and for |a - b| <= tolerance; a NaN is near nothing. Absolute: the
/// options it compares are of the order of 1.
bool nearTo(double a, double b, double tolerance);

}  // namespace kestrel::math

namespace kestrel::math::metamodel {

/// The correlation levels that settings may demand, and the limits that any other filter walks at most, however small
/// its step.
constexpr std::uint64_t kMaxFilterSteps = 10000;

namespace TestingType {
/// How the prognosis of a candidate is tested.
enum eTestingType : std::int32_t { kCrossValidation = 0, kLeaveOneOut = 1 };
}  // namespace TestingType

using NameValueMap = std::map<std::wstring, CDesignEntry>;

/// Which model classes may compete for a response, how they are transformed and tested.
class MetamodelSettings {
 public:
  virtual ~MetamodelSettings() = default;

  virtual std::unique_ptr<MetamodelSettings> Clone() const;
  /// All fields equal, doubles by `nearTo` within 2.220446049250313e-16.
  virtual bool IsSimilar(const MetamodelSettings& other) const;
  virtual bool operator==(const MetamodelSettings& other) const;

  /// Visits the name in files, the member and the class version that brought it, in stored order.
  template <class Visit>
  static void ForEachField(Visit visit);

  /// Writes "No model selected." as an error to the log unless a model class may compete; true if nothing was written.
  /// With `error::replace_exception_by_assert` set the message goes to the wide standard error stream instead.
  bool CheckSettings(utils::log::LogBase& log) const;
  /// A built-in class may compete, or a surrogate of `custom_` whose value is true.
  bool AnyModelSelected() const;

  void SetUsePolynomials(bool use) { use_polynomials_ = use; }
  void SetMaxOrderPolynomial(std::uint64_t order) { max_order_polynomial_ = order; }
  void SetCoeffFactorPolynomial(double factor) { coeff_factor_poly_ = factor; }
  void SetUseMLS(bool use) { use_MLS_ = use; }
  void SetMaxOrderMLS(std::uint64_t order) { max_order_MLS_ = order; }
  void SetCoeffFactorMLS(double factor) { coeff_factor_mls_ = factor; }
  void SetUseKriging(bool use) { use_Kriging_ = use; }
  void SetUseKrigingAnisotropicKernel(bool use) { use_anisotropic_Kriging_ = use; }
  void SetCoeffFactorKriging(double factor) { coeff_factor_kriging_ = factor; }
  void SetUseBoxCox(bool use) { use_boxcox_ = use; }
  void SetUseInterpolation(bool use) { use_interpolation_ = use; }
  void SetTestingType(TestingType::eTestingType type) { testing_type_ = type; }
  void SetUseLimits(bool use) { use_limits_ = use; }
  void SetLimits(std::pair<double, double> limits) { limits_ = limits; }

  bool use_boxcox_ = true;
  bool use_interpolation_ = false;
  bool use_polynomials_ = true;
  std::uint64_t max_order_polynomial_ = 2;
  bool use_MLS_ = true;
  std::uint64_t max_order_MLS_ = 2;
  bool use_anisotropic_MLS_ = false;
  bool use_Kriging_ = true;
  bool use_anisotropic_Kriging_ = false;
  bool use_ASCMO_ = false;
  TestingType::eTestingType testing_type_ = TestingType::kCrossValidation;
  double coeff_factor_poly_ = 2.0;     ///< samples demanded per polynomial coefficient
  double coeff_factor_mls_ = 8.0;      ///< samples demanded per coefficient of moving least squares
  double coeff_factor_kriging_ = 8.0;  ///< samples demanded per input of Kriging
  double coeff_factor_ASCMO_ = 8.0;
  std::map<std::wstring, bool> custom_;  ///< surrogates from outside the library that may compete
  bool use_limits_ = false;
  std::pair<double, double> limits_{-std::numeric_limits<double>::infinity(),
                                    std::numeric_limits<double>::infinity()};  ///< of the predictions
  std::map<std::wstring, NameValueMap> custom_settings_;  ///< settings of each surrogate from outside the library
  NameValueMap qmk_variables_;                            ///< variables handed to these surrogates

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

/// Adds the filters that build the subspaces and the tolerances that decide between candidates.
class ZORSettings : public MetamodelSettings {
 public:
  ZORSettings() = default;
  explicit ZORSettings(std::uint64_t num_inputs) : info_important_(num_inputs, 1) {}

  std::unique_ptr<MetamodelSettings> Clone() const override;
  bool IsSimilar(const MetamodelSettings& other) const override;
  bool operator==(const MetamodelSettings& other) const override;

  /// This class's own fields, as in the base.
  template <class Visit>
  static void ForEachField(Visit visit);

  /// Restores the defaults of this class's own fields but for `info_important_`.
  void SetDefaults();

  /// The base check, then the ranges; every fault is written in the way of the base. True if nothing was written. A NaN
  /// lies outside every range.
  bool CheckSettings(utils::log::LogBase& log) const;

  void SetImportantInfo(std::vector<std::uint64_t> info) { info_important_ = std::move(info); }
  void SetUseSignificanceFilter(bool use) { use_significance_filter_ = use; }
  void SetMinSignificance(double value) { min_significance_ = value; }
  void SetUseSpearman(bool use) { use_spearman_ = use; }
  void SetUseCoIFilter(bool use) { use_coi_filter_ = use; }
  void SetMaxCoI(double value) { max_CoI_ = value; }
  void SetStepCoI(double value) { step_CoI_ = value; }
  void SetUseAdjustedCoD(bool use) { use_adj_cod_ = use; }
  void SetUseCoDFilter(bool use) { use_cod_filter_ = use; }
  void SetMaxCoD(double value) { max_CoD_ = value; }
  void SetStepCoD(double value) { step_CoD_ = value; }
  void SetUseCorrelationFilter(bool use) { use_corr_filter_ = use; }
  void SetNumCorrSteps(std::uint64_t count) { num_corr_steps_ = count; }
  void SetToleranceCOPModel(double value) { toleranceCoP_model_ = value; }
  void SetToleranceCOPVariables(double value) { toleranceCoP_variables_ = value; }
  void SetUseInputCorrelationFilter(bool use) { use_input_corr_filter_ = use; }
  void SetCorrInputCheck(double value) { corr_input_check_ = value; }
  void SetMinInputCorr(double value) { min_input_corr_ = value; }
  void SetMaxInputCorr(double value) { max_input_corr_ = value; }
  void SetUseAdjustedCoP(bool use) { use_adj_cop_ = use; }

  std::vector<std::uint64_t> info_important_;  ///< per input: 0 left out, 1 may be filtered, 2 in every subspace
  bool use_significance_filter_ = true;
  double min_significance_ = 0.95;
  double step_significance_ = 0.01;
  bool use_spearman_ = false;
  bool use_coi_filter_ = true;
  double max_CoI_ = 0.05;
  double step_CoI_ = 0.01;
  bool use_adj_cod_ = true;
  bool use_cod_filter_ = true;
  double max_CoD_ = 0.05;
  double step_CoD_ = 0.01;
  bool use_corr_filter_ = true;
  std::uint64_t num_corr_steps_ = 10;
  double toleranceCoP_model_ = 0.01;
  double toleranceCoP_variables_ = 0.01;
  bool use_input_corr_filter_ = false;
  double corr_input_check_ = 0.5;
  double min_input_corr_ = 0.3;
  double max_input_corr_ = 0.7;
  bool use_adj_cop_ = false;
  bool use_uniform_resample_ = false;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
};

template <class Visit>
void MetamodelSettings::ForEachField(Visit visit) {
  using Self = MetamodelSettings;
  visit("use_boxcox_", &Self::use_boxcox_, 0u);
  visit("use_interpolation_", &Self::use_interpolation_, 0u);
  visit("use_polynomials_", &Self::use_polynomials_, 0u);
  visit("max_order_polynomial_", &Self::max_order_polynomial_, 0u);
  visit("use_MLS_", &Self::use_MLS_, 0u);
  visit("max_order_MLS_", &Self::max_order_MLS_, 0u);
  visit("use_anisotropic_MLS_", &Self::use_anisotropic_MLS_, 0u);
  visit("use_Kriging_", &Self::use_Kriging_, 0u);
  visit("use_anisotropic_Kriging_", &Self::use_anisotropic_Kriging_, 0u);
  visit("use_ASCMO_", &Self::use_ASCMO_, 0u);
  visit("testing_type_", &Self::testing_type_, 0u);
  visit("coeff_factor_poly_", &Self::coeff_factor_poly_, 1u);
  visit("coeff_factor_mls_", &Self::coeff_factor_mls_, 1u);
  visit("coeff_factor_kriging_", &Self::coeff_factor_kriging_, 1u);
  visit("coeff_factor_ASCMO_", &Self::coeff_factor_ASCMO_, 1u);
  visit("custom_", &Self::custom_, 2u);
  visit("use_limits_", &Self::use_limits_, 3u);
  visit("limits_", &Self::limits_, 3u);
  visit("custom_settings_", &Self::custom_settings_, 4u);
  visit("qmk_variables_", &Self::qmk_variables_, 4u);
}

template <class Visit>
void ZORSettings::ForEachField(Visit visit) {
  using Self = ZORSettings;
  visit("info_important_", &Self::info_important_, 0u);
  visit("use_significance_filter_", &Self::use_significance_filter_, 0u);
  visit("min_significance_", &Self::min_significance_, 0u);
  visit("step_significance_", &Self::step_significance_, 0u);
  visit("use_spearman_", &Self::use_spearman_, 0u);
  visit("use_coi_filter_", &Self::use_coi_filter_, 0u);
  visit("max_CoI_", &Self::max_CoI_, 0u);
  visit("step_CoI_", &Self::step_CoI_, 0u);
  visit("use_adj_cod_", &Self::use_adj_cod_, 0u);
  visit("use_cod_filter_", &Self::use_cod_filter_, 0u);
  visit("max_CoD_", &Self::max_CoD_, 0u);
  visit("step_CoD_", &Self::step_CoD_, 0u);
  visit("use_corr_filter_", &Self::use_corr_filter_, 0u);
  visit("num_corr_steps_", &Self::num_corr_steps_, 0u);
  visit("toleranceCoP_model_", &Self::toleranceCoP_model_, 0u);
  visit("toleranceCoP_variables_", &Self::toleranceCoP_variables_, 0u);
  visit("use_input_corr_filter_", &Self::use_input_corr_filter_, 1u);
  visit("corr_input_check_", &Self::corr_input_check_, 1u);
  visit("min_input_corr_", &Self::min_input_corr_, 1u);
  visit("max_input_corr_", &Self::max_input_corr_, 1u);
  visit("use_adj_cop_", &Self::use_adj_cop_, 1u);
  visit("use_uniform_resample_", &Self::use_uniform_resample_, 2u);
}

}  // namespace kestrel::math::metamodel

BOOST_CLASS_VERSION(kestrel::math::metamodel::MetamodelSettings, 4)
BOOST_CLASS_VERSION(kestrel::math::metamodel::ZORSettings, 2)
