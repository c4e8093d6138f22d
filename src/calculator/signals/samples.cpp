#include "calculator/signals/samples.h"

#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <limits>
#include <string>

#include "calculator/functions/arguments.h"
#include "calculator/functions/calculator_exceptions.h"

namespace kestrel::calculator {
namespace {

using math::Index;

/// Differences and squares of abscissae stay finite.
constexpr double kLargestAbscissa = 1e150;

/// The data matrix, channels x samples, as samples x columns.
math::Matrix ToColumns(const Value::MatrixType& data, bool is_complex) {
  const auto channels = static_cast<Index>(data.size1());
  math::Matrix columns(static_cast<Index>(data.size2()), is_complex ? 2 * channels : channels);
  auto cell = data.data().begin();
  for (Index channel = 0; channel < channels; ++channel) {
    for (Index sample = 0; sample < columns.rows(); ++sample, ++cell) {
      columns(sample, channel) = cell->real();
      if (is_complex) columns(sample, channels + channel) = cell->imag();
    }
  }
  return columns;
}

Samples FromTimeline(const Value& value) {
  Samples samples;
  samples.kind = value.GetKind();
  samples.is_complex = value.IsComplex();
  samples.values = ToColumns(value.GetMatrix(), samples.is_complex);
  const Value::VectorType& timeline = value.GetTimeline();
  samples.abscissae = math::Vector::NullaryExpr(static_cast<Index>(timeline.size()),
                                                [&](Index i) { return timeline(static_cast<std::size_t>(i)).real(); });
  return samples;
}

Samples FromEntries(const Value& value) {
  Samples samples;
  samples.kind = Value::XYDATA;
  samples.is_complex = value.IsComplex();
  Value::MatrixType row(1, value.size());
  for (std::size_t i = 0; i < value.size(); ++i) {
    row(0, i) = value.GetKind() == Value::SCALAR ? value.GetScalar() : value.at(i);
  }
  samples.values = ToColumns(row, samples.is_complex);
  samples.abscissae = math::Vector::LinSpaced(samples.values.rows(), 0.0, static_cast<double>(row.size2()) - 1.0);
  return samples;
}

bool Descends(const math::Vector& abscissae) {
  for (Index i = 1; i < abscissae.size(); ++i) {
    if (abscissae(i) < abscissae(i - 1)) return true;
  }
  return false;
}

void RequireUsable(const Samples& samples, std::size_t index, Index least) {
  if (samples.size() < least) {
    RefuseArgument(index, L"At least " + std::to_wstring(least) + (least == 1 ? L" sample is" : L" samples are") +
                              L" needed, " + std::to_wstring(samples.size()) + L" are there.");
  }
  if (samples.values.cols() == 0) RefuseArgument(index, L"It has no channel.");
  if (!(samples.abscissae.array().abs() <= kLargestAbscissa).all()) {
    RefuseArgument(index, L"The timeline is not finite.");
  }
  if (samples.kind == Value::SIGNAL && Descends(samples.abscissae)) {
    RefuseArgument(index, L"The timeline of a signal must ascend.");
  }
  if (!samples.values.allFinite()) RefuseArgument(index, L"A sample is not finite.");
}

void RequireFiniteResult(const math::MatrixIn& numbers) {
  if (!numbers.allFinite()) throw CCalculatorException(L"The result is too large for a number.");
}

}  // namespace

bool HasTimeline(const Value& value) { return value.GetKind() == Value::SIGNAL || value.GetKind() == Value::XYDATA; }

Samples GetSamples(const Arguments& arguments, std::size_t index, Index least) {
  const Value& value = GetValue(arguments, index);
  if (!HasTimeline(value)) RefuseArgument(index, L"A signal or x-y data is expected.");
  Samples samples = FromTimeline(value);
  RequireUsable(samples, index, least);
  return samples;
}

Samples GetSamplesOrVector(const Arguments& arguments, std::size_t index) {
  const Value& value = GetValue(arguments, index);
  if (value.GetKind() != Value::VECTOR && value.GetKind() != Value::SCALAR) return GetSamples(arguments, index);
  Samples samples = FromEntries(value);
  RequireUsable(samples, index, 1);
  return samples;
}

Value ToValue(const Samples& samples) {
  RequireFiniteResult(samples.abscissae);
  RequireFiniteResult(samples.values);
  const auto size = static_cast<std::size_t>(samples.size());
  const Index channels = samples.is_complex ? samples.values.cols() / 2 : samples.values.cols();
  Value::VectorType timeline(size);
  std::copy(samples.abscissae.begin(), samples.abscissae.end(), timeline.begin());
  Value::MatrixType data(static_cast<std::size_t>(channels), size);
  auto cell = data.data().begin();
  for (Index channel = 0; channel < channels; ++channel) {
    for (Index sample = 0; sample < samples.size(); ++sample, ++cell) {
      *cell = {samples.values(sample, channel), samples.is_complex ? samples.values(sample, channels + channel) : 0.0};
    }
  }
  return {timeline, data, samples.kind};
}

Value ToChannelValue(const math::Vector& columns, bool is_complex) {
  RequireFiniteResult(columns);
  const Index channels = is_complex ? columns.size() / 2 : columns.size();
  Value::VectorType values(static_cast<std::size_t>(channels));
  for (Index channel = 0; channel < channels; ++channel) {
    values(static_cast<std::size_t>(channel)) = {columns(channel), is_complex ? columns(channels + channel) : 0.0};
  }
  return channels == 1 ? Value(values(0)) : Value(values);
}

bool IsAscending(const math::Vector& abscissae) {
  for (Index i = 1; i < abscissae.size(); ++i) {
    if (abscissae(i) <= abscissae(i - 1)) return false;
  }
  return true;
}

bool IsUniform(const math::Vector& abscissae) {
  const double step = MeanStep(abscissae);
  // What abscissae of this size cannot resolve is not held against them.
  const double rounding = 4.0 * std::numeric_limits<double>::epsilon() * abscissae.cwiseAbs().maxCoeff();
  for (Index i = 1; i < abscissae.size(); ++i) {
    const double here = abscissae(i) - abscissae(i - 1);
    if (!(here > 0.0 && std::abs(here - step) <= 1e-6 * step + rounding)) return false;
  }
  return true;
}

void RequireAscending(const Samples& samples, std::size_t index) {
  if (IsAscending(samples.abscissae)) return;
  RefuseArgument(index, L"The abscissae must ascend, each larger than the one before.");
}

double RequireUniform(const math::Vector& abscissae, std::size_t index) {
  if (!IsUniform(abscissae)) RefuseArgument(index, L"The sampling must be uniform.");
  return MeanStep(abscissae);
}

double MeanStep(const math::Vector& abscissae) {
  if (abscissae.size() < 2) return 0.0;
  return (abscissae.maxCoeff() - abscissae.minCoeff()) / static_cast<double>(abscissae.size() - 1);
}

}  // namespace kestrel::calculator
