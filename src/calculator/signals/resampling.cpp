#include "calculator/signals/resampling.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "calculator/functions/arguments.h"
#include "calculator/signals/interpolant.h"

namespace kestrel::calculator {
namespace {

using math::Index;

/// Uniform timelines have at most so many times the samples of what they stand for.
constexpr Index kMaximalRefinement = 10;

double SmallestStep(const math::Vector& ascending) {
  double smallest = std::numeric_limits<double>::infinity();
  for (Index i = 1; i < ascending.size(); ++i) {
    const double step = ascending(i) - ascending(i - 1);
    if (step > 0.0) smallest = std::min(smallest, step);
  }
  return smallest;
}

/// The count of samples at about this step; a count that is whole up to rounding is that count.
Index CountAt(double range, double step, Index samples) {
  const double steps = std::ceil(range / step * (1.0 - 1e-6));
  const double most = static_cast<double>(kMaximalRefinement) * static_cast<double>(samples);
  return static_cast<Index>(std::min(steps + 1.0, most));
}

}  // namespace

Samples ResampledUniformly(const Samples& samples, std::size_t index) {
  const math::Vector& x = samples.abscissae;
  if (!std::is_sorted(x.begin(), x.end())) RefuseArgument(index, L"The abscissae must ascend.");
  const double range = x(x.size() - 1) - x(0);
  if (!(range > 0.0)) RefuseArgument(index, L"The abscissae are all the same.");
  if (IsUniform(x)) return samples;
  const Index count = CountAt(range, SmallestStep(x), x.size());
  RequireEntries(static_cast<std::size_t>(count), static_cast<std::size_t>(samples.values.cols()));
  const math::Vector uniform = math::Vector::LinSpaced(count, x(0), x(x.size() - 1));
  const Samples curve = IsAscending(x) ? samples : FirstArrivals(samples);
  return {uniform, InterpolatedLines(curve.abscissae, curve.values, uniform), samples.is_complex, samples.kind};
}

math::Matrix InterpolatedLines(const math::Vector& from, const math::Matrix& values, const math::Vector& to) {
  const Interpolant curve(from, values, EOption::LINEAR);
  math::Matrix interpolated(to.size(), values.cols());
  for (Index i = 0; i < to.size(); ++i) {
    const double x = std::clamp(to(i), curve.front(), curve.back());
    const Index piece = curve.FindPiece(x);
    for (Index column = 0; column < values.cols(); ++column) {
      interpolated(i, column) = curve.Evaluate(piece, column, x);
    }
  }
  return interpolated;
}

}  // namespace kestrel::calculator
