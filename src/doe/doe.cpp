#include "doe/doe.h"

#include <optional>

#include "doe/axis_points.h"
#include "doe/box_behnken.h"
#include "doe/correlation_swaps.h"
#include "doe/d_optimal.h"
#include "doe/factorial_points.h"
#include "doe/fekete_points.h"
#include "doe/koshal_points.h"
#include "doe/latin_hypercube.h"
#include "doe/model_terms.h"
#include "doe/point_set.h"
#include "doe/sampled_points.h"
#include "doe/space_filling.h"

namespace kestrel::math::doe {
namespace {

// The sets whose number of points follows from the inputs; none for any other type.
std::optional<Matrix> BuildFixed(eClassicType type, std::uint64_t num_inputs, const PointSetOptions& options) {
  switch (type) {
    case eClassicType::kCenterPoint: return CentrePoints(1, num_inputs);
    case eClassicType::kFullFactorial: return FullFactorial(num_inputs, options.levels);
    case eClassicType::kAxialPoints: return AxialPoints(num_inputs);
    case eClassicType::kStarPoints: return StarPoints(num_inputs);
    case eClassicType::kKoshal:
      Require(options.levels >= 2, L"A Koshal design needs at least two levels.");
      return KoshalPoints(num_inputs, options.levels - 1);
    case eClassicType::kKoshalLinear: return KoshalPoints(num_inputs, 1);
    case eClassicType::kKoshalQuadratic: return KoshalPoints(num_inputs, 2);
    case eClassicType::kCentralComposite: return CentralComposite(num_inputs);
    case eClassicType::kMixedTerms: return MixedTermPoints(num_inputs);
    case eClassicType::kBoxBehnken: return BoxBehnken(num_inputs);
    case eClassicType::kFullCombinatorial:
      Require(options.levels_per_input.size() == num_inputs,
              L"A full combinatorial design needs the number of levels of each input.");
      return FullCombinatorial(options.levels_per_input);
    default: return std::nullopt;
  }
}

std::optional<Matrix> BuildLatinHypercube(eClassicType type, std::uint64_t num_inputs, std::uint64_t num_samples,
                                          random::Generator& generator) {
  const auto centres = [&] {
    RequireSize(num_samples, num_inputs);
    return RandomLatinHypercube(static_cast<Index>(num_samples), static_cast<Index>(num_inputs), generator);
  };
  switch (type) {
    case eClassicType::kLatinHypercube: return ScatterInCells(centres(), generator);
    case eClassicType::kLatinHypercubeMidpoint: return centres();
    case eClassicType::kLatinHypercubeOrthogonal: return ReduceCorrelations(centres());
    case eClassicType::kLatinHypercubeAdvanced: return SwapForCorrelations(ReduceCorrelations(centres()), generator);
    case eClassicType::kLatinHypercubeSpaceFilling:
      return SpaceFillingLatinHypercube(num_samples, num_inputs, generator);
    default: return std::nullopt;
  }
}

std::optional<Matrix> BuildDOptimal(eClassicType type, std::uint64_t num_inputs, std::uint64_t num_samples,
                                    const IndexMatrix& exponents, random::Generator& generator) {
  switch (type) {
    case eClassicType::kDOptimalLinear: return DOptimal(LinearTerms(num_inputs), num_samples, generator);
    case eClassicType::kDOptimalQuadraticNoMixed:
      return DOptimal(QuadraticTerms(num_inputs, false), num_samples, generator);
    case eClassicType::kDOptimalQuadratic: return DOptimal(QuadraticTerms(num_inputs, true), num_samples, generator);
    case eClassicType::kDOptimalCustomizable:
      Require(static_cast<std::uint64_t>(exponents.cols()) == num_inputs,
              L"The terms of a customizable D-optimal design need an exponent of each input.");
      return DOptimal(exponents, num_samples, generator);
    default: return std::nullopt;
  }
}

}  // namespace

Matrix DOE::BuildClassic(eClassicType type, std::uint64_t num_inputs, std::uint64_t num_samples,
                         const PointSetOptions& options) {
  Require(num_inputs > 0, L"A point set needs at least one input.");
  if (std::optional<Matrix> points = BuildFixed(type, num_inputs, options)) {
    Require(num_samples == 0 || num_samples == static_cast<std::uint64_t>(points->rows()),
            L"This point set has " + std::to_wstring(points->rows()) + L" points, not " + std::to_wstring(num_samples) +
                L".");
    return *std::move(points);
  }
  if (auto points = BuildLatinHypercube(type, num_inputs, num_samples, generator_)) return *std::move(points);
  if (auto points = BuildDOptimal(type, num_inputs, num_samples, options.exponents, generator_)) {
    return *std::move(points);
  }
  switch (type) {
    case eClassicType::kSobolSequence: return SobolSequence(num_samples, num_inputs);
    case eClassicType::kPlainMonteCarlo: return PlainMonteCarlo(num_samples, num_inputs, generator_);
    case eClassicType::kFeketePoints: return FeketePoints(num_samples, num_inputs, generator_);
    default: Require(false, L"Unknown type of point set."); return Matrix();
  }
}

}  // namespace kestrel::math::doe
