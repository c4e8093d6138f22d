#include "calculator/signals/filter_signals.h"

#include <sstream>

#include "calculator/functions/arguments.h"
#include "calculator/signals/resampling.h"

namespace kestrel::calculator {

Samples FilteredSamples(const Arguments& arguments, FilterMaker maker, ESampling sampling) {
  Samples samples = GetSamples(arguments, 0, 2);
  const math::Vector abscissae = samples.abscissae;
  if (sampling == ESampling::ANY) samples = ResampledUniformly(samples, 0);
  const ColumnFilter filter = maker(arguments, RequireUniform(samples.abscissae, 0));
  for (math::Index column = 0; column < samples.values.cols(); ++column) filter(samples.values.col(column));
  if (samples.size() != abscissae.size() || samples.abscissae != abscissae) {
    samples.values = InterpolatedLines(samples.abscissae, samples.values, abscissae);
    samples.abscissae = abscissae;
  }
  return samples;
}

double GetRealBetween(const Arguments& arguments, std::size_t index, double least, double most) {
  const double number = GetReal(arguments, index);
  if (number >= least && number <= most) return number;
  std::wostringstream text;
  text << L"A number from " << least << L" to " << most << L" is expected.";
  RefuseArgument(index, text.str());
}

}  // namespace kestrel::calculator
