#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/log.h"

namespace kestrel::math::metamodel {

namespace TestingType {
/// How the prognosis of a candidate is tested.
enum eTestingType : std::int32_t { kCrossValidation = 0, kLeaveOneOut = 1 };
}  // namespace TestingType

/// Which model classes may compete for a response, how they are transformed and tested.
class MetamodelSettings {
 public:
  virtual ~MetamodelSettings() = default;

  virtual std::unique_ptr<MetamodelSettings> Clone() const;
  /// All fields equal, doubles within 2.220446049250313e-16.
  virtual bool IsSimilar(const MetamodelSettings& other) const;
  virtual bool operator==(const MetamodelSettings& other) const;

  /// Writes "No model selected." to the log unless a model class may compete; true if nothing was written.
  bool CheckSettings(utils::log::LogBase& log) const;
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
};

/// Adds the filters that build the subspaces and the tolerances that decide between candidates.
class ZORSettings : public MetamodelSettings {
 public:
  ZORSettings() = default;
  explicit ZORSettings(std::uint64_t num_inputs) : info_important_(num_inputs, 1) {}

  std::unique_ptr<MetamodelSettings> Clone() const override;
  bool IsSimilar(const MetamodelSettings& other) const override;
  bool operator==(const MetamodelSettings& other) const override;

  /// Restores the defaults of this class's own fields but for `info_important_`.
  void SetDefaults();

  /// The base check, then the ranges; every fault is written to the log. True if nothing was written.
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
};

}  // namespace kestrel::math::metamodel
