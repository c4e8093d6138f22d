#pragma once

#include <optional>

#include "surrogates/kriging_factor.h"
#include "surrogates/ordinary_kriging_settings.h"
#include "surrogates/surrogate2_base.h"

namespace kestrel::math::metamodel {

class KrigingCorrelation;

/// Ordinary Kriging (Matheron 1963; Sacks, Welch, Mitchell and Wynn 1989): an interpolator with a constant unknown mean
/// m and a correlation function given by a kernel, with a nugget g on the diagonal.
///
///   R = K + g I,  K_ab = k(p_a, p_b),     f(x) = m + sum_a w_a k(x, p_a),
///   m = 1'R^-1 z / 1'R^-1 1,  w = R^-1 (z - m 1),  s2 = z'w / N,
///   L = (N ln s2 + ln det R) / 2, the negative log likelihood, with s2 at least 1e-50.
///
/// z are the values on the scale of the fit, p the transformed points of the selected inputs. At a sample the model
/// predicts z - g w: the nugget smooths. R and its factor stay while settings give the same R, so that the build with
/// the settings that a search has found, and the cross validation, find them.
class OrdinaryKriging final : public SurrogateBase {
 public:
  class HyperparameterSearch;  ///< ordinary_kriging_search.h

  OrdinaryKriging(const MatrixIn& points, const VectorIn& values);

  /// False, without a message, if R is not positive definite, and while the kernel has no parameters.
  bool Build() override;
  bool CheckBeforeBuild() override { return true; }
  bool CheckAfterBuild() const override;
  using SurrogateBase::Approximate;
  Vector Approximate(const MatrixIn& points) const override;
  Vector Approximate() const override;
  /// Both estimate the mean anew without the samples left out, from one factor of R. They and those below raise
  /// std::logic_error "can not approximate CV - build first", "subset vector has wrong length", "rebuild of correlation
  /// matrix failed".
  Vector ApproximateLeaveOneOut() const override;
  using SurrogateBase::ApproximateCrossValidation;
  Vector ApproximateCrossValidation(const Subsets& subsets) const override;
  /// The same by a fit for each subset, to check with.
  virtual Vector ApproximateCrossValidationCompare(const Subsets& subsets) const;
  /// For each selected input by how much the squared error of the cross validation grows without it, as a share of the
  /// sum of squares of the values; 0 for other inputs, NaN where no model can be built without it. Length n.
  virtual Vector ApproximateVariableImportanceCV() const { return ApproximateVariableImportanceCV(Subsets()); }
  virtual Vector ApproximateVariableImportanceCV(const Subsets& subsets) const;
  /// dL / dlog10 of the nugget and then of each radius.
  virtual Vector BuildGradient() const;
  using SurrogateBase::BuildOptimal;
  /// Searches nugget and radii, and before them the exponent of a value transformation. False if the points coincide
  /// or no trial gives a positive definite R.
  bool BuildOptimal(const Subsets& subsets) override;
  /// Takes the exponent that suits a quadratic regression; builds if the kernel has its radii.
  virtual bool BuildOptimalBoxCox();

  using SurrogateBase::Name;
  std::wstring Name(bool short_name) const override;
  Selection GetVariableSelection() const override { return settings_.GetVariableSelection(); }
  std::uint64_t GetNumberCoefficients() const override { return settings_.GetNumberCoefficients(); }
  const OrdinaryKrigingSettings& GetSettingsBase() const override { return settings_; }
  /// Gives the memory of R and its factor back; a cross validation to come makes them for itself.
  void Finalize() override { DropFactor(); }
  bool operator==(const SurrogateBase& other) const override;
  std::unique_ptr<SurrogateBase> Clone() const override;

  /// R of points, N x m, by the kernel of the settings, in its lower triangle; false while the kernel has no
  /// parameters. The second from squared distances, N x N, for isotropic kernels.
  bool BuildCorrelationMatrix(const MatrixIn& points, Matrix& R) const;
  bool BuildCorrelationFromDistances(const MatrixIn& distance_matrix, Matrix& R) const;
  /// Mean, weights, variance and likelihood of z, length N; false if R is not positive definite.
  bool BuildLikelihood(const VectorIn& z, const Matrix& R);
  /// Gives the kernel and the settings other radii.
  void KernelParameterChanged(KernelBase& kernel, const VectorIn& parameter);
  void SetNugget(double nugget);

  double GetMean() const { return mean_; }
  double GetSigma2() const { return sigma2_; }
  const Vector& GetKernelWeights() const { return kernel_weights_; }
  /// L of the last build; not stored.
  double GetNegativeLogLikelihood() const { return negative_log_likelihood_; }

 protected:
  void InitializeImpl(const SurrogateSettingsBase& settings) override;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  OrdinaryKriging() : OrdinaryKriging(Matrix(), Vector()) {}  ///< to be read from a file
  /// The settings of a file that has a kernel and a nugget instead.
  void RestoreSettings(const KernelBase* kernel, double nugget);
  /// Refuses stored weights that do not fit the samples, and a built model without radii.
  void RequireConsistent() const;
  void RestoreDerivedData() override { DropFactor(); }

  void DropFactor();
  /// True while R and its factor are those of the settings.
  bool FactorStands() const;
  /// Points and values as the fit takes them.
  void PrepareSample();
  void SolveForWeights(const VectorIn& z);
  KrigingCorrelation MakeCorrelation() const;
  const utils::StopHelper* Stop() const { return stop_helper_.get(); }

  /// Runs `work` on R and its factor: those of the build, or, in a model that was read, some made for this call.
  template <class Work>
  Vector OnFactor(Work&& work) const;
  /// `BuildGradient` with the memory of M, N x N, which a search keeps.
  Vector GradientIn(Matrix& M) const;
  void RequireBuiltForCrossValidation() const;
  void RequireSubsets(const Subsets& subsets) const;

  bool BuildOptimalIsotropic(const Subsets& subsets);
  /// @param best_start_only  one local search, from the best point of the sample, instead of one from each of five.
  bool BuildOptimalAnisotropic(const Subsets& subsets, bool best_start_only);

  /// A variance of the process up to here counts as none.
  static constexpr double kLeastVariance = 1e-50;

  double mean_ = 0.0;
  double sigma2_ = 0.0;
  Vector kernel_weights_;  ///< w, length N
  OrdinaryKrigingSettings settings_;
  Vector values_trans_;  ///< z, length N
  Matrix correlation_;   ///< R, N x N, its lower triangle
  KrigingFactor factor_;
  std::optional<CorrelationKey> factored_;  ///< what R and its factor belong to
  double negative_log_likelihood_ = 0.0;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::OrdinaryKriging, "kestrel::math::metamodel::OrdinaryKriging")
BOOST_CLASS_VERSION(kestrel::math::metamodel::OrdinaryKriging, 2)
BOOST_CLASS_TRACKING(kestrel::math::metamodel::OrdinaryKriging, boost::serialization::track_always)
