#pragma once

#include <cstdint>
#include <vector>

#include "statistics/random.h"
#include "support/linear_algebra.h"

namespace kestrel::math::doe {

/// Kinds of point sets, numbered as their words in the list of kinds of designs of experiments (`EDOE::TypeMap`) from
/// the second word on; the first one, the design points of a caller, is nothing to be made.
enum class eClassicType : int {
  kCenterPoint = 0,
  kFullFactorial = 1,
  kAxialPoints = 2,
  kStarPoints = 3,
  kKoshal = 4,
  kCentralComposite = 5,
  kMixedTerms = 6,
  kLatinHypercube = 7,            ///< a random place in each cell
  kLatinHypercubeMidpoint = 8,    ///< the centre of each cell
  kLatinHypercubeOrthogonal = 9,  ///< the centres, with column correlations driven close to 0
  kSobolSequence = 10,
  kPlainMonteCarlo = 11,
  kDOptimalCustomizable = 12,
  kDOptimalLinear = 13,
  kDOptimalQuadraticNoMixed = 14,
  kDOptimalQuadratic = 15,
  kKoshalLinear = 16,
  kKoshalQuadratic = 17,
  kFeketePoints = 18,
  kBoxBehnken = 19,
  kLatinHypercubeSpaceFilling = 20,  ///< the centres, with points that keep away from each other
  kFullCombinatorial = 21,
  kLatinHypercubeAdvanced = 22  ///< as the orthogonal one, then improved by exchanges
};

/// What some kinds of point sets need beside the numbers of inputs and points.
struct PointSetOptions {
  /// Full factorial: levels of each input. Koshal: the order of the model and one.
  std::uint64_t levels = 2;
  /// Full combinatorial: levels of each input.
  std::vector<std::uint64_t> levels_per_input;
  /// Customizable D-optimal: the exponent of each input in each term of the model, terms x inputs.
  IndexMatrix exponents;
};

/// Design of experiments: point sets with entries in [-1, 1], one row per point, one column per input.
class DOE {
 public:
  explicit DOE(random::Generator& generator) : generator_(generator) {}

  /// A point set of a type. Sampled, D-optimal and Fekete points have num_samples rows; the others have the number of
  /// points that follows from the inputs, and num_samples is 0 or this number. Equal states of the generator give equal
  /// sets.
  ///
  /// Raises utils::logic_error for an unknown type, no inputs, too few points and sets that are too large, before
  /// memory is taken for them.
  Matrix BuildClassic(eClassicType type, std::uint64_t num_inputs, std::uint64_t num_samples,
                      const PointSetOptions& options = {});

 private:
  random::Generator& generator_;
};

}  // namespace kestrel::math::doe
