#include "optimizer/optimizer_differences.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <utility>

#include "support/exceptions.h"

namespace kestrel::algorithm::optimizer {
namespace {

/// Weights w_1 .. w_k, and w_0 of the point itself, for which w_0 f(0) + sum_j w_j f(t_j) is the derivative at 0 of the
/// polynomial of degree k through all (Lagrange):
///
///   w_j = 1 / t_j * prod_{l != j} t_l / (t_l - t_j),   w_0 = -sum_j 1 / t_j.
///
/// Distances of 0 give the weights 0: the bounds leave no room to look at that input.
Vector DerivativeWeights(const Vector& distances, double& own) {
  const Index k = distances.size();
  own = 0.0;
  Vector weights = Vector::Zero(k);
  if ((distances.array() == 0.0).any()) return weights;
  for (Index j = 0; j < k; ++j) {
    own -= 1.0 / distances(j);
    weights(j) = 1.0 / distances(j);
    for (Index l = 0; l < k; ++l) {
      if (l != j) weights(j) *= distances(l) / (distances(l) - distances(j));
    }
  }
  return weights;
}

}  // namespace

Differences::Differences(std::vector<int> offsets, const VectorIn& lower, const VectorIn& upper)
    : offsets_(std::move(offsets)), lower_(lower), upper_(upper) {}

/// The multiples of the step are a run of integers without 0, which is the design itself. The run moves inward until it
/// fits between the bounds; a range of k + 1 steps has room for every position of the design.
Vector Differences::Distances(Index input, double centre, double step) const {
  const auto k = static_cast<Index>(offsets_.size());
  const double below = std::max(0.0, centre - lower_(input));
  const double above = std::max(0.0, upper_(input) - centre);
  const double size = std::min(step, (below + above) / static_cast<double>(k + 1));
  if (!(size > 0.0)) return Vector::Zero(k);
  const int room_below = static_cast<int>(std::min(below / size, 1e3));
  const int room_above = static_cast<int>(std::min(above / size, 1e3));
  const int lowest = std::min(0, offsets_.front());
  const int highest = std::max(0, offsets_.back());
  const int shift = std::min(std::max(0, -room_below - lowest), room_above - highest);
  Vector distances(k);
  for (int multiple = lowest + shift, j = 0; multiple <= highest + shift; ++multiple) {
    if (multiple != 0) distances(j++) = multiple * size;
  }
  return distances;
}

Matrix Differences::ProvideDesignsForGradient(const VectorIn& design, const VectorIn& steps) const {
  const auto k = static_cast<Index>(offsets_.size());
  Matrix designs = design.transpose().replicate(GetNumberGDesigns(), 1);
  for (Index i = 0; i < design.size(); ++i) {
    designs.col(i).segment(k * i, k).array() += Distances(i, design(i), steps(i)).array();
    designs.col(i) = designs.col(i).cwiseMax(lower_(i)).cwiseMin(upper_(i));
  }
  return designs;
}

Matrix Differences::ProvideDesignsForFunctionAndGradient(const VectorIn& design, const VectorIn& steps) const {
  Matrix designs(GetNumberFnGDesigns(), design.size());
  designs << design.transpose(), ProvideDesignsForGradient(design, steps);
  return designs;
}

Matrix Differences::ProvideGradientFromFnGDesigns(const MatrixIn& designs, const MatrixIn& responses) const {
  const Index extra = designs.rows() - 1;
  return ProvideGradientFromGDesigns(designs.row(0).transpose(), responses.row(0).transpose(),
                                     designs.bottomRows(extra), responses.bottomRows(extra));
}

Matrix Differences::ProvideGradientFromGDesigns(const VectorIn& design, const VectorIn& values, const MatrixIn& designs,
                                                const MatrixIn& responses) const {
  const auto k = static_cast<Index>(offsets_.size());
  Matrix gradient(design.size(), values.size());
  for (Index i = 0; i < design.size(); ++i) {
    double own = 0.0;
    const Vector weights = DerivativeWeights(designs.col(i).segment(k * i, k).array() - design(i), own);
    gradient.row(i) = weights.transpose() * responses.middleRows(k * i, k) + own * values.transpose();
  }
  return gradient;
}

bool Differences::IsDesignVectorSufficientlyAccurate(const VectorIn& obtained, const VectorIn& expected,
                                                     const VectorIn& steps) const {
  constexpr double kShareOfStep = 1e-6;
  constexpr double kLastDigits = 4.0 * std::numeric_limits<double>::epsilon();
  return ((obtained - expected).array().abs() <= kShareOfStep * steps.array() + kLastDigits * expected.array().abs())
      .all();
}

std::unique_ptr<Differences> MakeDifferences(eDiffType type, const VectorIn& lower, const VectorIn& upper) {
  switch (type) {
    case eDiffType::kForward: return std::make_unique<ForwardDifferences>(lower, upper);
    case eDiffType::kBackward: return std::make_unique<BackwardDifferences>(lower, upper);
    case eDiffType::kCentral: return std::make_unique<CentralDifferences>(lower, upper);
    case eDiffType::kFourthOrder: return std::make_unique<FourthOrderDifferences>(lower, upper);
  }
  throw utils::logic_error(L"Unknown kind of numerical differences: " +
                           std::to_wstring(static_cast<std::int32_t>(type)));
}

}  // namespace kestrel::algorithm::optimizer
