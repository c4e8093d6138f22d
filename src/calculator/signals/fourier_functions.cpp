#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <utility>
#include <vector>

#include "calculator/functions/arguments.h"
#include "calculator/functions/calculator_exceptions.h"
#include "calculator/signals/fast_fourier_transform.h"
#include "calculator/signals/function_groups.h"
#include "calculator/signals/samples.h"

namespace kestrel::calculator {
namespace {

using fourier::Complex;
using math::Index;

/// What is transformed: the entries of a vector, or row by row those of a matrix or of the channels of a signal.
struct Rows {
  Complex* entries = nullptr;
  std::size_t count = 0;
  std::size_t length = 0;

  std::size_t size() const { return count * length; }
};

Rows RowsOf(Value& value) {
  if (value.GetKind() == Value::VECTOR) {
    Value::VectorType& vector = value.VectorRef();
    return {&*vector.data().begin(), 1, vector.size()};
  }
  Value::MatrixType& matrix = HasTimeline(value) ? value.SignalMatrixRef() : value.MatrixRef();
  return {&*matrix.data().begin(), matrix.size1(), matrix.size2()};
}

bool AreFinite(const Rows& rows) {
  return std::all_of(rows.entries, rows.entries + rows.size(),
                     [](const Complex& x) { return std::isfinite(x.real()) && std::isfinite(x.imag()); });
}

/// A copy of the argument to be transformed in place, not empty and finite.
Value GetTransformable(const Arguments& arguments, bool only_matrix) {
  const Value& value = GetValue(arguments, 0);
  const bool is_vector_like = value.GetKind() == Value::VECTOR || HasTimeline(value);
  if (only_matrix ? value.GetKind() != Value::MATRIX : value.GetKind() != Value::MATRIX && !is_vector_like) {
    RefuseArgument(0,
                   only_matrix ? L"A matrix is expected." : L"A vector, a matrix, a signal or x-y data is expected.");
  }
  if (value.size() == 0) RefuseArgument(0, L"It is empty.");
  Value copy = value;
  if (!AreFinite(RowsOf(copy))) RefuseArgument(0, L"An entry is not finite.");
  return copy;
}

/// Transforms rows of one length in place, by way of a copy that is reused from row to row.
class Transformer {
 public:
  explicit Transformer(std::size_t length) : complex_(length), real_(length) {}

  void ForwardReal(Complex* row) {
    const std::size_t n = real_.size();
    std::transform(row, row + n, real_.begin(), [](const Complex& x) { return x.real(); });
    fourier::ForwardReal(real_.data(), row, n);
    row[0].imag(0.0);
    if (n % 2 == 0) row[n / 2].imag(0.0);
    for (std::size_t k = n / 2 + 1; k < n; ++k) row[k] = std::conj(row[n - k]);
  }

  void Forward(Complex* row) {
    std::copy_n(row, complex_.size(), complex_.begin());
    fourier::Forward(complex_.data(), row, complex_.size());
  }

  void Inverse(Complex* row) {
    std::copy_n(row, complex_.size(), complex_.begin());
    fourier::Inverse(complex_.data(), row, complex_.size());
  }

 private:
  std::vector<Complex> complex_;
  std::vector<double> real_;
};

void ForwardRows(const Rows& rows, bool are_complex) {
  Transformer transformer(rows.length);
  for (std::size_t row = 0; row < rows.count; ++row) {
    Complex* const entries = rows.entries + row * rows.length;
    are_complex ? transformer.Forward(entries) : transformer.ForwardReal(entries);
  }
}

void InverseRows(const Rows& rows) {
  Transformer transformer(rows.length);
  for (std::size_t row = 0; row < rows.count; ++row) transformer.Inverse(rows.entries + row * rows.length);
}

/// True if X(-k) = conj(X(k)) up to rounding, for an index k of one number per axis: the inverse is real. A vector, or
/// rows that are transformed one by one, have one axis.
bool IsConjugateEven(const Rows& rows, bool has_two_axes) {
  double largest = 0.0;
  double difference = 0.0;
  for (std::size_t row = 0; row < rows.count; ++row) {
    const std::size_t mirrored_row = has_two_axes ? (rows.count - row) % rows.count : row;
    for (std::size_t k = 0; k < rows.length; ++k) {
      const Complex& entry = rows.entries[row * rows.length + k];
      const Complex& mirrored = rows.entries[mirrored_row * rows.length + (rows.length - k) % rows.length];
      largest = std::max(largest, std::norm(entry));
      difference = std::max(difference, std::norm(entry - std::conj(mirrored)));
    }
  }
  constexpr double kRounding = 1e-13;
  return difference <= kRounding * kRounding * largest;
}

/// Notes whether the result is complex, after it was found finite.
Value Finished(Value value) {
  const Rows rows = RowsOf(value);
  if (!AreFinite(rows)) throw CCalculatorException(L"The result is too large for a number.");
  value.SetComplex(
      std::any_of(rows.entries, rows.entries + rows.size(), [](const Complex& x) { return x.imag() != 0.0; }));
  return value;
}

void DropImaginaryParts(const Rows& rows) {
  std::for_each(rows.entries, rows.entries + rows.size(), [](Complex& x) { x.imag(0.0); });
}

double GetStep(const Value& value) {
  const Value::VectorType& timeline = value.GetTimeline();
  if (timeline.size() < 2) RefuseArgument(0, L"At least 2 samples are needed.");
  const math::Vector abscissae = math::Vector::NullaryExpr(
      static_cast<Index>(timeline.size()), [&](Index i) { return timeline(static_cast<std::size_t>(i)).real(); });
  if (!abscissae.allFinite()) RefuseArgument(0, L"The timeline is not finite.");
  return RequireUniform(abscissae, 0);
}

void SetTimeline(Value& value, double start, double step) {
  Value::VectorType& timeline = value.SignalVectorRef();
  for (std::size_t i = 0; i < timeline.size(); ++i) timeline(i) = start + step * static_cast<double>(i);
  if (!std::isfinite(timeline(timeline.size() - 1).real()))
    RefuseArgument(0, L"The steps of the timeline are too small.");
}

/// From times to frequencies and back: the product of both steps is 1 over the number of samples.
void ExchangeTimeline(Value& value) {
  if (!HasTimeline(value)) return;
  SetTimeline(value, 0.0, 1.0 / (GetStep(value) * static_cast<double>(value.size2())));
}

Value Fft(const Arguments& arguments, FunctionContext& /*context*/) {
  Value value = GetTransformable(arguments, false);
  ExchangeTimeline(value);
  ForwardRows(RowsOf(value), value.IsComplex());
  return Finished(std::move(value));
}

Value Ifft(const Arguments& arguments, FunctionContext& /*context*/) {
  Value value = GetTransformable(arguments, false);
  if (HasTimeline(value) && std::abs(value.GetTimeline()(0).real()) > 1e-6 * GetStep(value)) {
    RefuseArgument(0, L"A spectrum must begin at the frequency 0; see ifftshift.");
  }
  ExchangeTimeline(value);
  const Rows rows = RowsOf(value);
  const bool is_real = IsConjugateEven(rows, false);
  InverseRows(rows);
  if (is_real) DropImaginaryParts(rows);
  return Finished(std::move(value));
}

/// Transforms along the first axis, by way of the transposed matrix.
template <class TransformRows>
Value WithBothAxes(Value value, TransformRows transform_rows) {
  transform_rows(value);
  value = Value(Value::MatrixType(boost::numeric::ublas::trans(value.GetMatrix())));
  transform_rows(value);
  return Value(Value::MatrixType(boost::numeric::ublas::trans(value.GetMatrix())));
}

Value Fft2d(const Arguments& arguments, FunctionContext& /*context*/) {
  return Finished(WithBothAxes(GetTransformable(arguments, true),
                               [](Value& value) { ForwardRows(RowsOf(value), value.IsComplex()); }));
}

Value Ifft2d(const Arguments& arguments, FunctionContext& /*context*/) {
  Value value = GetTransformable(arguments, true);
  const bool is_real = IsConjugateEven(RowsOf(value), true);
  value = WithBothAxes(std::move(value), [](Value& v) { InverseRows(RowsOf(v)); });
  if (is_real) DropImaginaryParts(RowsOf(value));
  return Finished(std::move(value));
}

/// Rotates each row, and the rows of a matrix, so that entry `half`(length) comes first.
template <class Half>
void Rotate(Value& value, Half half) {
  const Rows rows = RowsOf(value);
  for (std::size_t row = 0; row < rows.count; ++row) {
    Complex* const entries = rows.entries + row * rows.length;
    std::rotate(entries, entries + half(rows.length), entries + rows.length);
  }
  if (value.GetKind() != Value::MATRIX) return;
  std::rotate(rows.entries, rows.entries + half(rows.count) * rows.length, rows.entries + rows.size());
}

/// Moves the timeline by half of its steps, down for a `direction` of -1 and up for 1.
void MoveTimeline(Value& value, double direction) {
  if (!HasTimeline(value) || value.size2() < 2) return;
  const double step = GetStep(value);
  const auto half = static_cast<double>(value.size2() / 2);
  double start = value.GetTimeline()(0).real() + direction * half * step;
  if (std::abs(start) < kSameAbscissa * step) start = 0.0;
  SetTimeline(value, start, step);
}

Value FftShift(const Arguments& arguments, FunctionContext& /*context*/) {
  Value value = GetTransformable(arguments, false);
  Rotate(value, [](std::size_t length) { return length - length / 2; });
  MoveTimeline(value, -1.0);
  return value;
}

Value IfftShift(const Arguments& arguments, FunctionContext& /*context*/) {
  Value value = GetTransformable(arguments, false);
  Rotate(value, [](std::size_t length) { return length / 2; });
  MoveTimeline(value, 1.0);
  return value;
}

}  // namespace

void AppendFourier(FunctionTable& table) {
  const CCalculatorArgumentInfoObject any = {L"x", L"A vector, a matrix, a signal or x-y data."};
  const CCalculatorArgumentInfoObject matrix = {L"x", L"A matrix."};
  const std::vector<FunctionRow> rows = {
      {L"fft",
       L"The discrete Fourier transform of a vector, of each row of a matrix, or of each channel of a signal: entry k "
       L"is the sum of x_j exp(-2 pi i j k / n), without a factor. For a signal, which must be sampled uniformly with "
       L"the step h, the timeline of the result are the frequencies k / (n h) for k = 0 ... n - 1.",
       {any},
       L"fft(x)",
       &Fft},
      {L"fftshift",
       L"A spectrum with the frequency 0 in the middle, at place n / 2 rounded down: the upper half goes in front, its "
       L"frequencies counting as negative. For a matrix along rows and columns.",
       {any},
       L"fftshift(x)",
       &FftShift},
      {L"ifft",
       L"The inverse of fft: the sums of X_k exp(2 pi i j k / n), over n. The timeline of a signal begins at 0. A "
       L"spectrum with X_(n-k) = conj(X_k), up to 1e-13 of its largest entry, gives real values.",
       {any},
       L"ifft(x)",
       &Ifft},
      {L"ifftshift", L"The inverse of fftshift.", {any}, L"ifftshift(x)", &IfftShift},
      {L"fft2d",
       L"The discrete Fourier transform of a matrix along its rows and its columns, without a factor.",
       {matrix},
       L"fft2d(x)",
       &Fft2d},
      {L"ifft2d",
       L"The inverse of fft2d, real where the spectrum is that of a real matrix up to rounding.",
       {matrix},
       L"ifft2d(x)",
       &Ifft2d},
  };
  AppendRows(table, rows);
}

}  // namespace kestrel::calculator
