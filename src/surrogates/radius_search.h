#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "support/linear_algebra.h"
#include "surrogates/grouped_rows.h"
#include "surrogates/kernels/kernel_base.h"

/// The search for the influence radius of moving least squares.
namespace kestrel::math::metamodel {

/// Distances between the samples, of which all candidates on the same inputs make use.
class SampleDistances {
 public:
  /// @param points  N x n in the coordinates of the model, selected inputs only.  @param subsets  one number per
  /// sample.  @param check  called for each sample; it may throw.
  SampleDistances(const MatrixIn& points, const std::vector<std::uint64_t>& subsets,
                  const std::function<void()>& check);

  bool BelongTo(const MatrixIn& points, const std::vector<std::uint64_t>& subsets) const;

  /// N x N squared distances; rows and columns in the order of the groups.
  const Matrix& GetSquared() const { return squared_; }
  const GroupedRows& GetGroups() const { return grouped_; }
  double GetLargestSquared() const { return largest_squared_; }

  struct Bounds {
    double lowest;
    double highest;
  };
  /// Radii worth trying: from twice the smallest distance of the samples, but not below the largest gap along an input,
  /// up to five times the largest distance.
  Bounds RadiusBounds() const;

  /// The smallest squared distance within which every sample has `count` samples of other groups; infinite if one has
  /// not so many. @param check  called for each sample; it may throw.
  double ReachOf(std::uint64_t count, const std::function<void()>& check) const;

 private:
  Matrix points_;
  std::vector<std::uint64_t> subsets_;
  GroupedRows grouped_;
  Matrix squared_;
  double largest_squared_ = 0.0;
};

/// Predictions at the samples, units of the response.
struct SamplePredictions {
  Vector fit;
  Vector cross_validation;
};

/// The responses as one model fits them, and how its fits are brought back to units of the response.
struct FittedScale {
  Vector values;
  std::function<Vector(Vector)> back;
};

struct BestRadius {
  double radius = 0.0;  ///< 0: no radius gave a value at all samples
  SamplePredictions predictions;
};

/// What a search needs of the model: the basis at the samples (N x k), the weights above 1e-5 that a fit needs (0:
/// any), and the responses (length N).
struct RadiusProblem {
  const SampleDistances& distances;
  Matrix basis;
  std::uint64_t min_neighbours;
  Vector response;
};

/// The best of 21 radii in equal ratios for each scale, by the least 2 SSE(cross validation) - SSE(fit); the smaller
/// one of equal ones. All scales share the weighted normal matrices, and a sample its own for fit and cross validation.
/// @param kernel  isotropic with one parameter; any radius may stand in it afterwards.
/// @param check   called often; it may throw.
std::vector<BestRadius> FindBestRadius(const RadiusProblem& problem, KernelBase& kernel,
                                       const std::vector<FittedScale>& scales, const std::function<void()>& check);

}  // namespace kestrel::math::metamodel
