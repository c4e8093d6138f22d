#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "support/linear_algebra.h"

namespace kestrel::algorithm::optimizer {

using math::Index;
using math::Matrix;
using math::MatrixIn;
using math::Vector;
using math::VectorIn;

enum class eDiffType : std::int32_t { kForward = 0, kBackward = 1, kCentral = 2, kFourthOrder = 3 };

/// Gradients from the responses of extra designs. Each input x_i is moved by a few multiples of its step h_i, and the
/// derivative is that of the polynomial through x itself and these points: exact in the points as they are in floating
/// point. In exact arithmetic and away from the bounds that gives
///
///   forward       (f(x + h) - f(x)) / h                                       error O(h)
///   backward      (f(x) - f(x - h)) / h                                       O(h)
///   central       (f(x + h) - f(x - h)) / (2 h)                               O(h^2)
///   fourth order  (f(x - 2h) - 8 f(x - h) + 8 f(x + h) - f(x + 2h)) / (12 h)  O(h^4)
///
/// Where a point would leave the bounds the set of points moves inward as a whole, so that number and order stay; where
/// the bounds are too close for that the step shrinks. n inputs, R responses, k extra designs per input.
class Differences {
 public:
  virtual ~Differences() = default;
  virtual std::unique_ptr<Differences> Clone() const = 0;

  /// The design itself and then the extra designs: (1 + k n) x n.
  Matrix ProvideDesignsForFunctionAndGradient(const VectorIn& design, const VectorIn& steps) const;
  /// The extra designs only, those of input 0 first: (k n) x n.
  Matrix ProvideDesignsForGradient(const VectorIn& design, const VectorIn& steps) const;

  /// n x R, column r the gradient of response r. @param responses  (1 + k n) x R, one row per design.
  Matrix ProvideGradientFromFnGDesigns(const MatrixIn& designs, const MatrixIn& responses) const;
  /// The same with design and its R values apart from the k n extra designs.
  Matrix ProvideGradientFromGDesigns(const VectorIn& design, const VectorIn& values, const MatrixIn& designs,
                                     const MatrixIn& responses) const;

  /// True if a design was evaluated so close to where it was asked for that the differences hold: within 1e-6 of the
  /// step in each input, or of its own last digits.
  bool IsDesignVectorSufficientlyAccurate(const VectorIn& obtained, const VectorIn& expected,
                                          const VectorIn& steps) const;

  Index GetNumberFnGDesigns() const { return 1 + GetNumberGDesigns(); }
  Index GetNumberGDesigns() const { return static_cast<Index>(offsets_.size()) * lower_.size(); }

 protected:
  /// @param offsets  the multiples of the step, ascending, without 0.  @param lower, upper  bounds of the n inputs.
  Differences(std::vector<int> offsets, const VectorIn& lower, const VectorIn& upper);
  Differences(const Differences&) = default;
  Differences& operator=(const Differences&) = default;

 private:
  /// The distances from x_i of the extra points of input i, within the bounds.
  Vector Distances(Index input, double centre, double step) const;

  std::vector<int> offsets_;
  Vector lower_;
  Vector upper_;
};

class ForwardDifferences : public Differences {
 public:
  ForwardDifferences(const VectorIn& lower, const VectorIn& upper) : Differences({1}, lower, upper) {}
  std::unique_ptr<Differences> Clone() const override { return std::make_unique<ForwardDifferences>(*this); }
};

class BackwardDifferences : public Differences {
 public:
  BackwardDifferences(const VectorIn& lower, const VectorIn& upper) : Differences({-1}, lower, upper) {}
  std::unique_ptr<Differences> Clone() const override { return std::make_unique<BackwardDifferences>(*this); }
};

class CentralDifferences : public Differences {
 public:
  CentralDifferences(const VectorIn& lower, const VectorIn& upper) : Differences({-1, 1}, lower, upper) {}
  std::unique_ptr<Differences> Clone() const override { return std::make_unique<CentralDifferences>(*this); }
};

class FourthOrderDifferences : public Differences {
 public:
  FourthOrderDifferences(const VectorIn& lower, const VectorIn& upper) : Differences({-2, -1, 1, 2}, lower, upper) {}
  std::unique_ptr<Differences> Clone() const override { return std::make_unique<FourthOrderDifferences>(*this); }
};

/// Raises utils::logic_error for an unknown kind.
std::unique_ptr<Differences> MakeDifferences(eDiffType type, const VectorIn& lower, const VectorIn& upper);

}  // namespace kestrel::algorithm::optimizer
