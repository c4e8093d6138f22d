#include "selection/input_dependence.h"

#include <algorithm>

#include "statistics/basic_statistics.h"
#include "statistics/basic_statistics_colwise.h"
#include "statistics/transform/transform_minmax.h"
#include "surrogates/coefficient_matrix.h"
#include "surrogates/solve_coefficients.h"

namespace kestrel::math::metamodel {
namespace {

Matrix ScaledToUnitRange(const Matrix& inputs) {
  transform::TransMinMax scale;
  scale.Build(inputs);
  return scale.ScaleForward(inputs);
}

}  // namespace

InputDependence::InputDependence(const Matrix& inputs, double high_limit)
    : inputs_(inputs),
      high_limit_(high_limit),
      points_(ScaledToUnitRange(inputs)),
      squared_correlations_(statistics::CalcLinCCMatrixColwise(inputs).cwiseAbs2()) {}

double InputDependence::ExplainedBy(const Selection& selection, Index input) {
  const double largest = LargestSquaredCorrelation(selection, input);
  if (largest > high_limit_) return largest;
  if (regressed_ != selection) Regress(selection);
  return r2_(input);
}

double InputDependence::LargestSquaredCorrelation(const Selection& selection, Index input) const {
  double largest = 0.0;
  for (auto k = selection.find_first(); k != Selection::npos; k = selection.find_next(k)) {
    largest = std::max(largest, squared_correlations_(input, static_cast<Index>(k)));
  }
  return largest;
}

// Column by column, so that equal inputs get the same number to the last bit and the first of them can be preferred.
void InputDependence::Regress(const Selection& selection) {
  const Matrix P = BuildCoefficientMatrix(points_, selection, Selection());
  const NormalEquations equations(P, Vector());
  r2_.resize(inputs_.cols());
  for (Index j = 0; j < inputs_.cols(); ++j) {
    const Vector column = inputs_.col(j);
    const Vector coefficients = equations.Solve(RightHandSides(P, column, Vector()));
    r2_(j) = statistics::R2(column, P * coefficients);
  }
  regressed_ = selection;
}

}  // namespace kestrel::math::metamodel
