#pragma once

#include <memory>

#include "surrogates/surrogate2_base.h"
#include "surrogates/surrogate_tps_settings.h"
#include "surrogates/thin_plate_system.h"

namespace kestrel::math::metamodel {

/// A thin plate spline (see thin_plate_system.h) on the scaled, selected inputs: meets the samples, or, with smoothing,
/// passes near them. It reproduces linear responses at any smoothing and keeps to its linear part far from the samples.
class SurrogateTPS final : public SurrogateBase {
 public:
  SurrogateTPS(const MatrixIn& points, const VectorIn& values);

  /// False if the samples do not determine the spline: fewer than selected inputs + 1, all in a hyperplane of the
  /// selected inputs, or several at one place without smoothing.
  bool Build() override;
  /// True if the samples determine the linear part.
  bool CheckBeforeBuild() override;
  bool CheckAfterBuild() const override;
  using SurrogateBase::Approximate;
  Vector Approximate(const MatrixIn& points) const override;
  using SurrogateBase::ApproximateCrossValidation;
  /// Each sample by the spline of the other subsets, from the one factorisation, with the transformations as they
  /// stand. NaN where the others do not determine a spline.
  Vector ApproximateCrossValidation(const Subsets& subsets) const override;
  using SurrogateBase::BuildOptimal;
  /// Fits with the smoothing, none or 1e-8 to 100 by powers of ten, whose cross-validation has the least sum of squared
  /// errors; the least of equals. A Box-Cox exponent is that of a quadratic regression.
  /// Raises std::logic_error "subset vector has wrong length".
  bool BuildOptimal(const Subsets& subsets) override;

  using SurrogateBase::Name;
  std::wstring Name(bool short_name) const override;
  std::wstring Str() const override;
  Selection GetVariableSelection() const override { return settings_.GetVariableSelection(); }
  std::uint64_t GetNumberCoefficients() const override { return settings_.GetNumberCoefficients(); }
  const SurrogateTPSSettings& GetSettingsBase() const override { return settings_; }
  bool operator==(const SurrogateBase& other) const override;
  std::unique_ptr<SurrogateBase> Clone() const override;

  /// The spline in the coordinates of the model.
  const ThinPlate& GetSpline() const { return spline_; }

 protected:
  void InitializeImpl(const SurrogateSettingsBase& settings) override;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  SurrogateTPS() : SurrogateTPS(Matrix(), Vector()) {}  ///< to be read from a file

  /// For the linear part.
  bool HasEnoughPoints() const;
  /// Transforms the sample, makes its equations and returns the values on the scale of the fit.
  Vector Prepare();
  /// Solves the equations; false, and the model is not built, if they have no solution.
  bool Solve(const Vector& values, double smoothing);
  /// Takes the Box-Cox exponent of a quadratic regression on the same sample; of a simpler one where there are too few
  /// samples.
  void FindBoxCox();
  /// The smoothing with the least error of the cross-validation; that of the settings if none has any.
  double FindSmoothing(const Vector& values, const Subsets& subsets);

  ThinPlate spline_;
  std::shared_ptr<ThinPlateSystem> system_;  ///< not stored; copies share it, a build makes its own
  SurrogateTPSSettings settings_;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::SurrogateTPS, "kestrel::math::metamodel::SurrogateTPS")
