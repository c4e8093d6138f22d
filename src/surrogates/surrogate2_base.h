#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/linear_algebra.h"
#include "support/log.h"
#include "support/stop_helper.h"
#include "surrogates/surrogate2_settings_base.h"

namespace kestrel::math::metamodel {

/// One subset number per sample, or empty: each sample is its own subset (leave one out).
using Subsets = std::vector<std::uint64_t>;

/// The parent of every metamodel of one response. It owns the sample, the three optional transformations, the
/// cross-validation plumbing, the error estimates and the finite-difference gradients.
///
/// N samples of n inputs: points are N x n, one row per sample, in original coordinates; values have length N, in the
/// units of the response. Order of use: construct, `Initialize`, `Build` or `BuildOptimal`, then the rest. Calls that
/// are const may run at the same time on several threads.
class SurrogateBase {
 public:
  virtual ~SurrogateBase() = default;

  /// Fits the model; false, without a message, if the sample does not allow it. A model that is built stays.
  virtual bool Build() = 0;
  virtual bool CheckBeforeBuild() = 0;
  virtual bool CheckAfterBuild() const = 0;
  /// Predictions in units of the response, one per row of `points` (q x n).
  virtual Vector Approximate(const MatrixIn& points) const = 0;
  virtual Vector Approximate() const;
  /// Predictions at the samples by models that did not see them. The forms without an argument need the sample:
  /// std::logic_error "Surrogate: support point data is missing".
  virtual Vector ApproximateLeaveOneOut() const;
  virtual Vector ApproximateCrossValidation() const;
  virtual Vector ApproximateCrossValidation(const Subsets& subsets) const = 0;
  /// Fits with the best free parameters (exponent, radius, ...).
  virtual bool BuildOptimal(const Subsets& subsets) = 0;
  virtual std::wstring Name(bool short_name) const = 0;
  virtual std::wstring Str() const;
  virtual Selection GetVariableSelection() const = 0;
  virtual std::uint64_t GetNumberCoefficients() const = 0;
  virtual std::wstring GetFunctionStr(const std::vector<std::wstring>& input_names) const;
  virtual const SurrogateSettingsBase& GetSettingsBase() const = 0;
  virtual bool IsAvailable(utils::log::LogBase&) const { return true; }
  virtual void Finalize() {}
  virtual void UpdateSettings(const std::wstring& /*key*/, const std::wstring& /*value*/) {}
  /// Equal samples, transformations, residuals and settings; a NaN equals a NaN at the same place.
  virtual bool operator==(const SurrogateBase& other) const;
  virtual std::unique_ptr<SurrogateBase> Clone() const = 0;
  virtual void SetLog(std::shared_ptr<utils::log::LogBase> log);

  /// Takes over settings: checks them, makes the transformations, drops all results. A refusal raises
  /// utils::runtime_error.
  void Initialize(const SurrogateSettingsBase& settings);

  /// `BuildOptimal` with the stored subsets.
  bool BuildOptimal();

  /// Prepares `ApproximateErrors`: the mean radius and the cross-validation residuals, unless they stand already.
  /// Raises std::logic_error "Surrogate::BuildErrors - need build first".
  bool BuildErrors();
  bool BuildErrors(const Subsets& subsets);

  /// Central differences with the step 1e-4 x range of the input; q x n, 0 for inputs that the model does not use,
  /// NaN for a used input that is constant in the sample.
  Matrix ApproximateGradients(const MatrixIn& points) const;

  /// Local errors at the rows of `points` (q x n): q x 5 with the local coefficient of determination, the local root
  /// mean squared error, the weighted means of the residuals and of their absolute values, and the point density.
  Matrix ApproximateErrors(const MatrixIn& points) const;

  /// Stores one subset number per sample and drops the residuals. A length other than 0 or N is reported.
  void SetSubsets(Subsets subsets);
  void SetSingleCoPs(Matrix single_cops) { single_cops_ = std::move(single_cops); }
  void SetStopHelper(std::shared_ptr<utils::StopHelper> helper) { stop_helper_ = std::move(helper); }

  std::wstring Name() const { return Name(false); }
  const Vector& GetWeights() const { return weights_; }
  const Vector& GetResponseValues() const { return values_; }
  const Matrix& GetSupportPoints() const { return points_; }
  const Subsets& GetSubsets() const { return subsets_; }
  const Matrix& GetSingleCoPs() const { return single_cops_; }
  const transform::Transform* GetTransValue() const { return trans_value_.get(); }
  /// Columns of the support points; while these are cleared, the number of inputs of the settings.
  Index GetNumberInputs() const;
  Index GetNumberPoints() const { return points_.rows(); }

  void InitializeValueTransformation(eTransformation type, const std::vector<double>& parameters);
  void InitializeLimitTransformation(eTransformation type, const std::vector<double>& parameters);

  /// The sample can be kept elsewhere while a surrogate is stored: `ClearSupportsForSerialize` empties points and
  /// values. Without them a model of coefficients alone still approximates at new points; all that touches the sample
  /// raises std::logic_error "Surrogate: support point data is missing" until `RestoreSupportsAfterSerialize` has
  /// brought it back. A sample that does not fit the model is refused with utils::runtime_error, and nothing changes.
  void ClearSupportsForSerialize();
  void RestoreSupportsAfterSerialize(const MatrixIn& points, const VectorIn& values);
  bool HasSupports() const { return points_.rows() > 0 && values_.size() > 0; }

 protected:
  /// Copies the sample; different numbers of points and values are reported.
  SurrogateBase(const MatrixIn& points, const VectorIn& values);
  SurrogateBase(const SurrogateBase& other);
  SurrogateBase& operator=(const SurrogateBase&) = delete;

  virtual void InitializeImpl(const SurrogateSettingsBase& settings) = 0;

  /// Rebuilds what follows from the sample and is not stored; called for a built model with a sample.
  virtual void RestoreDerivedData() {}
  /// To be called by a concrete class behind its last field: refuses with utils::runtime_error what does not belong
  /// together, then `RestoreDerivedData`.
  void FinishLoading();

  /// The support points in the coordinates of the model, N x n: transformed once for a sample and a coordinate
  /// transformation, however many models are built on them.
  const Matrix& TransformSupportPoints();
  /// The values on the scale of the fit; the limit transformation is built but takes no part.
  Vector TransformSupportValues();
  /// Query points in the coordinates of the model.
  Matrix TransformPoints(const MatrixIn& points) const;
  /// From the scale of the fit back to units of the response, within the limits.
  Vector TransformBack(Vector values) const;
  /// The values on the scale of the fit by the transformation as it stands.
  Vector ForwardValues() const;

  /// Takes over the transformations of another model on the same sample, as they stand.
  void TakeTransformations(const SurrogateBase& other);
  /// Puts the parameters of the transformations as they stand into the settings of the model.
  void WriteTransformationParameters(SurrogateSettingsBase& settings) const;
  bool AnyTransformNeedsBuild() const;
  void DropResults();
  /// True while the transformed support points that the last build used are still theirs.
  bool CoordinatesStand() const;
  /// Reports another number of columns than that of the support points; false where the report did not raise.
  bool CheckInputCount(const MatrixIn& points, const wchar_t* what) const;
  void RequireSample() const;

  Matrix points_;
  Vector values_;
  Matrix points_trans_reduced_;  ///< transformed support points, columns of the selected variables only
  Vector residuals_;             ///< values - cross validation; empty until `BuildErrors`
  Subsets subsets_;
  Matrix single_cops_;
  bool need_build_ = true;
  std::shared_ptr<utils::StopHelper> stop_helper_;
  Vector weights_;  ///< optional weights of the samples; empty: all 1
  std::shared_ptr<transform::Transform> trans_coord_;
  std::shared_ptr<transform::Transform> trans_value_;
  std::shared_ptr<transform::Transform> trans_limit_;
  double points_radii_mean_ = 0.0;  ///< mean radius of the error estimate; 0 until `BuildErrors`
  std::shared_ptr<utils::log::LogBase> log_;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);

  /// Refuses residuals, subsets, weights, transformations and selections that do not fit N samples of n inputs.
  void RequireFit(Index num_points, Index num_inputs) const;
  void RestoreFromSample();

  bool HasResiduals() const { return values_.size() > 0 && residuals_.size() == values_.size(); }
  void RequireBuiltForErrors();
  /// Mean radius of the reduced points; 0 without any.
  double CalcMeanRadius() const;
  /// Columns 0 to 3 of `ApproximateErrors`. @param query  transformed and reduced points.  @param total  sum of squares
  /// of the values around their mean.
  void FillLocalErrors(const MatrixIn& query, double total, Matrix& errors) const;

  Matrix points_transformed_;  ///< `points_` by `trans_coord_`; empty until first needed
};

/// What a call returns behind a report that did not raise: NaN.
Matrix NoValues(Index rows, Index columns = 1);

/// The columns of `points` whose bit is set, in ascending order; the matrix as it stands if as many bits are set as it
/// has columns, or if it has none.
Matrix SelectVariablesFromPoints(const MatrixIn& points, const Selection& selection);

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::SurrogateBase, "kestrel::math::metamodel::SurrogateBase")
BOOST_CLASS_VERSION(kestrel::math::metamodel::SurrogateBase, 6)
BOOST_CLASS_TRACKING(kestrel::math::metamodel::SurrogateBase, boost::serialization::track_always)
