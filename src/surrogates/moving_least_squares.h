#pragma once

#include <memory>
#include <optional>

#include "surrogates/moving_least_squares_settings.h"
#include "surrogates/radius_search.h"
#include "surrogates/surrogate2_base.h"

namespace kestrel::math::metamodel {

/// Moving least squares: at every query point a polynomial of order 0, 1 or 2 is fitted to the whole sample, each
/// support point weighed by a kernel of its distance (Lancaster and Salkauskas 1981). The model is the transformed
/// sample, the kernel and its radius. Distances and kernel live in the coordinates of the model, on the selected
/// inputs.
///
/// A point with fewer weights above 1e-5 than there are coefficients, and for order 0 one without any weight, is NaN.
/// A kernel without parameters is refused with the kernel's own std::domain_error where it is first needed.
class MovingLeastSquares final : public SurrogateBase {
 public:
  MovingLeastSquares(const MatrixIn& points, const VectorIn& values);
  MovingLeastSquares(const MovingLeastSquares& other) = default;

  /// False if there are more coefficients than samples.
  bool Build() override;
  /// True if there are at least as many samples as coefficients and the unweighted normal matrix has full rank.
  bool CheckBeforeBuild() override;
  bool CheckAfterBuild() const override;
  using SurrogateBase::Approximate;
  Vector Approximate(const MatrixIn& points) const override;
  Vector Approximate() const override;
  using SurrogateBase::ApproximateCrossValidation;
  /// At each sample the local fit without the samples of its subset; std::logic_error "MLS::ApproximateCrossValidation
  /// - need build first" and "subset vector has wrong length".
  Vector ApproximateCrossValidation(const Subsets& subsets) const override;

  using SurrogateBase::BuildOptimal;
  /// Builds with the best of 21 radii between the largest gap and five times the largest distance of the sample: that
  /// of the least 2 SSE(cross validation) - SSE(fit), the cross-validation error and its excess over that of the fit.
  /// False, where the model is built all the same, for kernels other than the isotropic ones and for samples in one
  /// point. Raises the kernel's domain error if no radius gives a value at all samples.
  bool BuildOptimal(const Subsets& subsets) override;
  /// Builds with the value transformation that suits a quadratic regression on the selected inputs best.
  virtual bool BuildOptimalBoxCox();

  /// Per input, how much the sum of squared cross-validation errors rises without it, in shares of the total sum of
  /// squares; 0 for inputs that are not selected. The radius stays.
  virtual Vector ApproximateVariableImportanceCV() const;
  virtual Vector ApproximateVariableImportanceCV(const Subsets& subsets) const;

  /// What the last `BuildOptimal` found on the way at the radius that it chose, for the subsets given to it; null if it
  /// compared no radii or the model has changed since.
  const SamplePredictions* GetSearchPredictions() const;

  /// With `keep`, the N x N distances stay for the next `BuildOptimal` on the same inputs.
  void KeepDistances(bool keep) { keep_distances_ = keep; }
  /// With `expect`, and while distances are kept, `BuildOptimal` with Box-Cox also finds the radius for the values as
  /// they are, for the price of one more right-hand side. `BuildOptimal` of the plain model on otherwise the same
  /// settings behind it then has its answer.
  void ExpectPlainModelNext(bool expect) { expect_plain_model_ = expect; }

  using SurrogateBase::Name;
  std::wstring Name(bool short_name) const override;
  std::wstring Str() const override;
  Selection GetVariableSelection() const override { return settings_.GetVariableSelection(); }
  std::uint64_t GetNumberCoefficients() const override { return settings_.GetNumberCoefficients(); }
  const MovingLeastSquaresSettings& GetSettingsBase() const override { return settings_; }
  bool operator==(const SurrogateBase& other) const override;
  std::unique_ptr<SurrogateBase> Clone() const override;

 protected:
  void InitializeImpl(const SurrogateSettingsBase& settings) override;

 private:
  friend class boost::serialization::access;
  template <class Archive>
  void serialize(Archive& archive, unsigned int version);
  MovingLeastSquares() : MovingLeastSquares(Matrix(), Vector()) {}  ///< to be read from a file
  /// Refuses stored tables that do not fit the transformed support points.
  void RequireTablesFit() const;
  void RestoreDerivedData() override;

  /// What a search for the radius found, and for what.
  struct SearchResult {
    MovingLeastSquaresSettings settings;  ///< without what the search finds
    std::weak_ptr<const SampleDistances> distances;
    Subsets subsets;
    Vector values;
    BestRadius best;
  };

  bool HasEnoughPoints() const;
  /// The kernel of the settings, with its parameters.
  std::unique_ptr<KernelBase> MakeKernel() const;
  /// The basis at points in the coordinates of the model; a column of ones for order 0.
  Matrix BasisAt(const MatrixIn& points) const;
  /// The same at the support points, as the last build has left it.
  Matrix SupportBasis() const;
  /// Weights above 1e-5 that a local fit needs; 0: any.
  std::uint64_t MinNeighbours() const { return settings_.GetOrder() == 0 ? 0 : GetNumberCoefficients(); }
  /// Local fits at `count` points, units of the response. `block_at(first, count)` gives the reduced coordinates and
  /// the basis of some of them.
  template <class BlockAt>
  Vector PredictInBlocks(Index count, BlockAt block_at) const;
  void CheckInterrupted() const { utils::CheckInterrupted(stop_helper_.get()); }

  /// Finds the radius of a built model.
  bool BuildOptimalRadius(const Subsets& subsets);
  void SearchRadius(KernelBase& kernel, const Subsets& subsets);
  /// The settings without what a search finds.
  MovingLeastSquaresSettings SettingsOfSearch() const;
  bool IsOfThisPlainModel(const SearchResult& result) const;
  void SetRadius(KernelBase& kernel, double radius);
  /// The settings of the same model without an input; its radius stays, if it is not that of the input alone.
  MovingLeastSquaresSettings SettingsWithout(Selection::size_type input) const;
  double SumOfSquaredErrors(const Subsets& subsets) const;

  Matrix coefficient_matrix_;  ///< the basis at the support points, N x k; empty for order 0
  MovingLeastSquaresSettings settings_;
  Vector values_trans_;  ///< values on the scale of the fit

  bool expect_plain_model_ = false;
  bool keep_distances_ = false;
  std::optional<SearchResult> search_;       ///< of the model as it stands
  std::optional<SearchResult> plain_model_;  ///< of the next model, if it is the one that was expected
  std::shared_ptr<const SampleDistances> distances_;
};

}  // namespace kestrel::math::metamodel

BOOST_CLASS_EXPORT_KEY2(kestrel::math::metamodel::MovingLeastSquares, "kestrel::math::metamodel::MovingLeastSquares")
BOOST_CLASS_VERSION(kestrel::math::metamodel::MovingLeastSquares, 3)
BOOST_CLASS_TRACKING(kestrel::math::metamodel::MovingLeastSquares, boost::serialization::track_always)
