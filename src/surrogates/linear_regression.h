#pragma once

#include <optional>

#include "surrogates/linear_regression_settings.h"
#include "surrogates/solve_coefficients.h"
#include "surrogates/surrogate2_base.h"

namespace kestrel::math::metamodel {

/// Polynomial regression by weighted least squares on a basis chosen term by term, optionally on values transformed by
/// Box and Cox.
///
/// One object serves many candidates on the same sample: after `Initialize` with other settings only what depends on
/// them is computed anew; basis and factorisation stay while the term set stays.
class LinearRegression final : public SurrogateBase {
 public:
  LinearRegression(const MatrixIn& points, const VectorIn& values, const VectorIn& weights = Vector());

  /// False if there are more coefficients than samples.
  bool Build() override;
  /// True if there are at least as many samples as coefficients and the normal matrix has full rank.
  bool CheckBeforeBuild() override;
  bool CheckAfterBuild() const override;
  using SurrogateBase::Approximate;
  Vector Approximate(const MatrixIn& points) const override;
  Vector Approximate() const override;
  /// Closed form z - e / (1 - h) with the leverages h, on the scale of the fit. A leverage of 1 gives infinity or NaN.
  Vector ApproximateLeaveOneOut() const override;
  using SurrogateBase::ApproximateCrossValidation;
  /// A refit per subset; the closed form of `ApproximateLeaveOneOut` for an empty vector.
  Vector ApproximateCrossValidation(const Subsets& subsets) const override;
  using SurrogateBase::BuildOptimal;
  bool BuildOptimal(const Subsets& subsets) override;
  /// Fits with the best of 42 Box-Cox transformations: all exponents 1/t of a table, on the values scaled to
  /// [0.1, 10.1] and on the values mirrored, by the least root mean squared difference in units of the response.
  virtual bool BuildOptimalBoxCox();

  using SurrogateBase::Name;
  std::wstring Name(bool short_name) const override;
  std::wstring Str() const override;
  Selection GetVariableSelection() const override { return settings_.GetVariableSelection(); }
  std::uint64_t GetNumberCoefficients() const override { return settings_.GetNumberCoefficients(); }
  /// The polynomial as a text in the inputs' original units; names given, else those of the settings, else X1, X2, ...
  std::wstring GetFunctionStr(const std::vector<std::wstring>& input_names) const override;
  const LinearRegressionSettings& GetSettingsBase() const override { return settings_; }
  bool operator==(const SurrogateBase& other) const override;
  std::unique_ptr<SurrogateBase> Clone() const override;

  const Vector& GetCoefficients() const { return coefficients_; }

 protected:
  void InitializeImpl(const SurrogateSettingsBase& settings) override;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  LinearRegression() : LinearRegression(Matrix(), Vector()) {}  ///< to be read from a file

  /// The fields of class version 0: the basis at the support points and, instead of the settings, what they hold.
  template <class Archive>
  void LoadVersion0(Archive& archive);
  void RestoreSettings(LinearRegressionSettings settings);
  void RestoreDerivedData() override;

  bool HasEnoughPoints() const;
  void DropBasis();
  /// Makes `coefficient_matrix_` unless it stands for the coordinates and terms in force.
  void PrepareBasis();
  /// The same for the factorised normal equations.
  const NormalEquations& PrepareNormalEquations();
  /// Runs `work` on the basis at the support points: what the fit has left, or, in a model that was read, one made for
  /// this call. Reading makes none, because it can be far larger than the file.
  template <class Work>
  Vector OnBasis(Work&& work) const;
  /// Solves for the coefficients, writes the parameters of the transformations to the settings, marks as built.
  void SolveAndFinish();
  /// Fits on values transformed with the given exponent and range.
  bool BuildBoxCox(const std::vector<double>& parameters);
  void RequireBuilt(const wchar_t* message) const;

  Vector coefficients_;        ///< in basis order
  Matrix coefficient_matrix_;  ///< the basis at the support points, N x m; empty until needed
  std::optional<NormalEquations> normal_equations_;
  LinearRegressionSettings settings_;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::LinearRegression, "kestrel::math::metamodel::LinearRegression")
BOOST_CLASS_VERSION(kestrel::math::metamodel::LinearRegression, 1)
BOOST_CLASS_TRACKING(kestrel::math::metamodel::LinearRegression, boost::serialization::track_always)
