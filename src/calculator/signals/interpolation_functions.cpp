#include <algorithm>
#include <cmath>
#include <string>

#include "calculator/functions/arguments.h"
#include "calculator/signals/function_groups.h"
#include "calculator/signals/interpolant.h"
#include "calculator/signals/option_arguments.h"
#include "calculator/signals/resampling.h"
#include "calculator/signals/samples.h"

namespace kestrel::calculator {
namespace {

using math::Index;

/// What follows the curve behind one of its ends.
struct Ends {
  EOption left;
  EOption right;
};

/// An abscissa behind an end, moved back into the range by reflections at both ends.
struct Reflected {
  double x;     ///< within the range
  double turn;  ///< floor of the range lengths between the front and the abscissa
  bool is_odd;  ///< reflected an odd number of times
};

Reflected Reflect(const Interpolant& curve, double x) {
  const double range = curve.back() - curve.front();
  const double turn = std::floor((x - curve.front()) / range);
  const double rest = std::clamp((x - curve.front()) - turn * range, 0.0, range);
  const bool is_odd = std::fmod(turn, 2.0) != 0.0;
  return {is_odd ? curve.back() - rest : curve.front() + rest, turn, is_odd};
}

/// Reflection in a point at each end: the curve repeats after two range lengths, risen by twice its own rise,
///   y(x + 2 k R) = y(x) + 2 k (y_n - y_0),   y(x_n + d) = 2 y_n - y(x_n - d).
double ReflectedInPoints(const Interpolant& curve, Index column, double x) {
  const Reflected reflected = Reflect(curve, x);
  const double value = curve.Evaluate(curve.FindPiece(reflected.x), column, reflected.x);
  const double rise = curve.BackValue(column) - curve.FrontValue(column);
  if (!reflected.is_odd) return value + reflected.turn * rise;
  return 2.0 * curve.BackValue(column) - value + (reflected.turn - 1.0) * rise;
}

double ValueOutside(const Interpolant& curve, Index column, double x, EOption treatment) {
  const bool is_left = x < curve.front();
  const double end = is_left ? curve.front() : curve.back();
  const double value = is_left ? curve.FrontValue(column) : curve.BackValue(column);
  if (treatment == EOption::ZERO) return 0.0;
  if (treatment == EOption::CONSTANT || curve.front() == curve.back()) return value;
  if (treatment == EOption::TANGENTIAL) {
    return value + (x - end) * (is_left ? curve.FrontSlope(column) : curve.BackSlope(column));
  }
  if (treatment == EOption::REVERSE_MIRROR) return ReflectedInPoints(curve, column, x);
  const double mirrored = Reflect(curve, x).x;
  return curve.Evaluate(curve.FindPiece(mirrored), column, mirrored);
}

/// The curve at the abscissae, which are within its range by now where an end has no treatment.
math::Matrix EvaluateAt(const Interpolant& curve, const math::Vector& abscissae, const Ends& ends) {
  math::Matrix values(abscissae.size(), curve.columns());
  for (Index i = 0; i < abscissae.size(); ++i) {
    const double x = abscissae(i);
    const bool is_inside = x >= curve.front() && x <= curve.back();
    const Index piece = is_inside ? curve.FindPiece(x) : 0;
    for (Index column = 0; column < curve.columns(); ++column) {
      values(i, column) = is_inside ? curve.Evaluate(piece, column, x)
                                    : ValueOutside(curve, column, x, x < curve.front() ? ends.left : ends.right);
    }
  }
  return values;
}

/// Where an end has no treatment: abscissae beside it by rounding are moved onto it, others are refused.
math::Vector KeptInRange(math::Vector abscissae, const Samples& samples, const Ends& ends) {
  const double slack = kSameAbscissa * MeanStep(samples.abscissae);
  const double front = samples.abscissae(0);
  const double back = samples.abscissae(samples.size() - 1);
  const auto refuse = [](double x) {
    RefuseArgument(1, L"The abscissa " + std::to_wstring(x) + L" lies outside of the range of the samples.");
  };
  for (double& x : abscissae) {
    if (x < front && ends.left == kNoOption) {
      if (x < front - slack) refuse(x);
      x = front;
    } else if (x > back && ends.right == kNoOption) {
      if (x > back + slack) refuse(x);
      x = back;
    }
  }
  return abscissae;
}

math::Vector GetAbscissae(const Arguments& arguments, const Samples& samples) {
  const std::vector<double> abscissae = GetReals(arguments, 1);
  RequireEntries(abscissae.size(), static_cast<std::size_t>(samples.values.cols()));
  return Eigen::Map<const math::Vector>(abscissae.data(), static_cast<Index>(abscissae.size()));
}

Value InterpolatedAt(const Arguments& arguments, Samples samples) {
  const math::Vector wanted = GetAbscissae(arguments, samples);
  const std::vector<EOption> kinds = {EOption::LINEAR, EOption::QUAD, EOption::SPLINE, EOption::ZERO};
  const std::vector<EOption> treatments = {kNoOption,       EOption::CONSTANT,       EOption::ZERO,
                                           EOption::MIRROR, EOption::REVERSE_MIRROR, EOption::TANGENTIAL};
  const EOption kind = GetOptionOr(arguments, 2, kinds, EOption::LINEAR);
  const Ends ends = {GetOptionOr(arguments, 3, treatments, kNoOption),
                     GetOptionOr(arguments, 4, treatments, kNoOption)};
  if (kind == EOption::LINEAR && !IsAscending(samples.abscissae)) samples = FirstArrivals(samples);
  RequireAscending(samples, 0);
  const math::Vector abscissae = KeptInRange(wanted, samples, ends);
  const Interpolant curve(samples.abscissae, samples.values, kind);
  const bool ascends = std::is_sorted(wanted.begin(), wanted.end());
  return ToValue(
      {wanted, EvaluateAt(curve, abscissae, ends), samples.is_complex, ascends ? samples.kind : Value::XYDATA});
}

Value Interpolate(const Arguments& arguments, FunctionContext& /*context*/) {
  return InterpolatedAt(arguments, GetSamples(arguments, 0));
}

Value InterpolateUniform(const Arguments& arguments, FunctionContext& /*context*/) {
  return InterpolatedAt(arguments, ResampledUniformly(GetSamples(arguments, 0, 2), 0));
}

}  // namespace

void AppendInterpolation(FunctionTable& table) {
  const std::vector<CCalculatorArgumentInfoObject> arguments = {
      {L"s", L"Signal or x-y data."},
      {L"x", L"The abscissae, a vector in any order, or a number."},
      {L"kind", L"LINEAR, QUAD, SPLINE or ZERO. Default LINEAR.", true},
      {L"left", L"Treatment of abscissae before the first sample. Default 0.", true},
      {L"right", L"Treatment of abscissae behind the last sample. Default 0.", true}};
  const std::vector<FunctionRow> rows = {
      {L"interpolate",
       L"The signal at other abscissae; x-y data if these do not ascend. LINEAR draws lines between the samples, QUAD "
       L"the mean of the two parabolas through the neighbours, SPLINE the cubic spline without a knot at the second "
       L"and at the last but one sample, ZERO keeps the sample before. Outside of the range, 0 refuses, CONSTANT keeps "
       L"the value at the end, ZERO is 0, MIRROR reflects the signal in the line at its end, REVERSE_MIRROR in its end "
       L"point, TANGENTIAL goes on straight. The abscissae of the samples must ascend strictly; where they do not, "
       L"LINEAR takes the first place at which the samples, in their order, arrive at the abscissa.",
       arguments, L"interpolate(s, x, kind, left, right)", &Interpolate},
      {L"interpolateABQ",
       L"As interpolate, after the samples were brought, by lines, to a uniform timeline of their smallest step (and "
       L"at most ten times as many samples); the abscissae may repeat, but not descend.",
       arguments, L"interpolateABQ(s, x, kind, left, right)", &InterpolateUniform},
  };
  AppendRows(table, rows);
}

}  // namespace kestrel::calculator
