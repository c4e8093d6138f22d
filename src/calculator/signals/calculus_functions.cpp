#include <algorithm>

#include "calculator/functions/arguments.h"
#include "calculator/signals/function_groups.h"
#include "calculator/signals/option_arguments.h"
#include "calculator/signals/samples.h"

namespace kestrel::calculator {
namespace {

using math::Index;

/// Slopes of the lines between neighbours: row i belongs to the samples i and i + 1.
math::Matrix Slopes(const Samples& samples) {
  const Index lines = samples.size() - 1;
  const math::Vector steps = samples.abscissae.tail(lines) - samples.abscissae.head(lines);
  const math::Matrix rises = samples.values.bottomRows(lines) - samples.values.topRows(lines);
  return rises.array().colwise() / steps.array();
}

/// Derivatives at the samples of the parabolas through each sample and its two neighbours; the outermost parabolas
/// serve the ends. With h_i = x_(i+1) - x_i and the slope m_i of that line,
///   y'(x_i) = (m_(i-1) h_i + m_i h_(i-1)) / (h_(i-1) + h_i),   y'(x_0) = m_0 + (m_0 - m_1) h_0 / (h_0 + h_1).
math::Matrix CentralDerivatives(const math::Vector& x, const math::Matrix& slopes) {
  const Index last = x.size() - 1;
  math::Matrix derivatives(x.size(), slopes.cols());
  for (Index i = 1; i < last; ++i) {
    const double share = (x(i) - x(i - 1)) / (x(i + 1) - x(i - 1));
    derivatives.row(i) = (1.0 - share) * slopes.row(i - 1) + share * slopes.row(i);
  }
  derivatives.row(0) = slopes.row(0);
  derivatives.row(last) = slopes.row(last - 1);
  if (last > 1) {
    derivatives.row(0) += (slopes.row(0) - slopes.row(1)) * ((x(1) - x(0)) / (x(2) - x(0)));
    derivatives.row(last) +=
        (slopes.row(last - 1) - slopes.row(last - 2)) * ((x(last) - x(last - 1)) / (x(last) - x(last - 2)));
  }
  return derivatives;
}

Value Derive(const Arguments& arguments, FunctionContext& /*context*/) {
  Samples samples = GetSamples(arguments, 0, 2);
  RequireAscending(samples, 0);
  const EOption kind = GetOptionOr(arguments, 1, {kNoOption, EOption::FORWARD, EOption::BACKWARD}, kNoOption);
  const math::Matrix slopes = Slopes(samples);
  const Index lines = slopes.rows();
  if (kind == kNoOption) {
    samples.values = CentralDerivatives(samples.abscissae, slopes);
  } else if (kind == EOption::FORWARD) {
    samples.values.topRows(lines) = slopes;
    samples.values.row(lines) = slopes.row(lines - 1);
  } else {
    samples.values.bottomRows(lines) = slopes;
    samples.values.row(0) = slopes.row(0);
  }
  return ToValue(samples);
}

Value Integrate(const Arguments& arguments, FunctionContext& /*context*/) {
  Samples samples = GetSamples(arguments, 0);
  const double start = GetRealOr(arguments, 1, 0.0);
  const math::Vector& x = samples.abscissae;
  for (Index column = 0; column < samples.values.cols(); ++column) {
    auto y = samples.values.col(column);
    const bool is_real_part = !samples.is_complex || column < samples.values.cols() / 2;
    double integral = is_real_part ? start : 0.0;
    double before = y(0);  // halves are added: the sum could overflow where the area does not
    y(0) = integral;
    for (Index i = 1; i < y.size(); ++i) {
      integral += (x(i) - x(i - 1)) * (0.5 * before + 0.5 * y(i));
      before = y(i);
      y(i) = integral;
    }
  }
  return ToValue(samples);
}

/// The integrals of the lines between neighbours, as far as they lie between two abscissae.
math::Vector AreasWithin(const Samples& samples, double from, double to) {
  const math::Vector& x = samples.abscissae;
  math::Vector areas = math::Vector::Zero(samples.values.cols());
  for (Index i = 0; i + 1 < x.size(); ++i) {
    const double a = std::max(from, x(i));
    const double b = std::min(to, x(i + 1));
    if (!(b > a)) continue;
    const double middle = (0.5 * (a + b) - x(i)) / (x(i + 1) - x(i));
    areas += (b - a) * ((1.0 - middle) * samples.values.row(i) + middle * samples.values.row(i + 1)).transpose();
  }
  return areas;
}

math::Vector Areas(const Samples& samples) {
  const Index lines = samples.size() - 1;
  const math::Vector steps = samples.abscissae.tail(lines) - samples.abscissae.head(lines);
  return 0.5 * samples.values.topRows(lines).transpose() * steps +
         0.5 * samples.values.bottomRows(lines).transpose() * steps;
}

Value Area(const Arguments& arguments, FunctionContext& /*context*/) {
  const Samples samples = GetSamples(arguments, 0);
  if (arguments.size() == 1) return ToChannelValue(Areas(samples), samples.is_complex);
  if (arguments.size() == 2) RefuseArgument(2, L"It is missing.");
  const double from = GetReal(arguments, 1);
  const double to = GetReal(arguments, 2);
  if (!(from <= to)) RefuseArgument(2, L"The end of the range must not lie before its start.");
  const math::Vector& x = samples.abscissae;
  if (!std::is_sorted(x.begin(), x.end())) RefuseArgument(0, L"For a part of the area the abscissae must ascend.");
  if (to < x(0) || from > x(x.size() - 1)) RefuseArgument(0, L"The signal does not reach into the range.");
  return ToChannelValue(AreasWithin(samples, from, to), samples.is_complex);
}

}  // namespace

void AppendCalculus(FunctionTable& table) {
  const CCalculatorArgumentInfoObject signal = {L"s", L"Signal or x-y data."};
  const std::vector<FunctionRow> rows = {
      {L"derive",
       L"The derivative of each channel, at the same abscissae, which must ascend strictly. FORWARD takes the line to "
       L"the next sample (the last sample: from the one before), BACKWARD the line from the sample before (the first "
       L"sample: to the next), neither of them the parabola through the sample and both neighbours.",
       {signal, {L"kind", L"FORWARD, BACKWARD or 0. Default 0, central.", true}},
       L"derive(s)\nderive(s, FORWARD)\nderive(s, BACKWARD)",
       &Derive},
      {L"integrate",
       L"The integral of each channel from the first sample up to each sample by the trapezoidal rule. The abscissae "
       L"of x-y data may run back, and the area counts as negative there.",
       {signal, {L"start", L"Value at the first sample. Default 0.", true}},
       L"integrate(s, start)",
       &Integrate},
      {L"area",
       L"The area under each channel by the trapezoidal rule, a number for one channel, a vector for several. With a "
       L"range, the part of the signal in it, with lines between the samples; the signal ends where its samples end.",
       {signal, {L"from", L"First abscissa.", true}, {L"to", L"Last abscissa.", true}},
       L"area(s)\narea(s, from, to)",
       &Area},
  };
  AppendRows(table, rows);
}

}  // namespace kestrel::calculator
