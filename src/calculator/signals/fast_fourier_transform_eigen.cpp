#include <algorithm>
#include <cstdint>
#include <unsupported/Eigen/FFT>
#include <vector>

#include "calculator/functions/arguments.h"
#include "calculator/signals/fast_fourier_transform.h"
#include "support/linear_algebra.h"

namespace kestrel::calculator::fourier {
namespace {

using Numbers = std::vector<Complex>;

constexpr double kPi = 3.14159265358979323846;

/// A prime factor p of the length costs n p operations; from here on the convolution below is cheaper.
constexpr std::size_t kLargestFactor = 64;

std::size_t LargestPrimeFactor(std::size_t n) {
  std::size_t largest = 1;
  for (std::size_t p = 2; p * p <= n; ++p) {
    for (; n % p == 0; n /= p) largest = p;
  }
  return n > 1 ? std::max(largest, n) : largest;
}

bool IsFactored(std::size_t n) { return LargestPrimeFactor(n) <= kLargestFactor; }

using Fft = Eigen::FFT<double>;

Fft MakeFft() { return Fft(Eigen::default_fft_impl<double>(), Fft::HalfSpectrum); }

/// The plans (roots of unity and factors) of the last length are kept, since many transforms often have one length; but
/// not if they are long.
constexpr std::size_t kLongestKept = std::size_t{1} << 20;

Fft& KeptPlans(std::size_t n) {
  thread_local Fft fft = MakeFft();
  thread_local std::size_t last = 0;
  if (n != last) fft.impl().clear();
  last = n;
  return fft;
}

template <class Work>
void WithPlans(std::size_t n, Work work) {
  if (n <= kLongestKept) return work(KeptPlans(n));
  Fft fft = MakeFft();
  work(fft);
}

/// The least length from `least` on without prime factors above 5.
std::size_t ConvenientLength(std::size_t least) {
  while (LargestPrimeFactor(least) > 5) ++least;
  return least;
}

/// exp(-pi i j^2 / n); the square is reduced to the period 2n in whole numbers, which keeps the angle exact.
Complex Chirp(std::size_t j, std::size_t n) {
  const std::uint64_t square = static_cast<std::uint64_t>(j) * j % (2 * n);
  return std::polar(1.0, -kPi * static_cast<double>(square) / static_cast<double>(n));
}

/// Bluestein's algorithm: with 2 j k = j^2 + k^2 - (k - j)^2 the transform of any length is a convolution,
///   X_k = w_k sum_j (x_j w_j) conj(w_(k-j)),   w_j = exp(-pi i j^2 / n),
/// and that is done by transforms of a convenient length from 2n - 1 on.
void ForwardByConvolution(const Complex* source, Complex* target, std::size_t n) {
  const std::size_t length = ConvenientLength(2 * n - 1);
  RequireEntries(length);
  Numbers chirped(length);
  Numbers kernel(length);
  for (std::size_t j = 0; j < n; ++j) {
    const Complex w = Chirp(j, n);
    chirped[j] = source[j] * w;
    kernel[j] = std::conj(w);
    if (j > 0) kernel[length - j] = kernel[j];
  }
  Numbers spectrum(length);
  Numbers kernel_spectrum(length);
  Forward(chirped.data(), spectrum.data(), length);
  Forward(kernel.data(), kernel_spectrum.data(), length);
  for (std::size_t k = 0; k < length; ++k) spectrum[k] *= kernel_spectrum[k];
  Inverse(spectrum.data(), chirped.data(), length);
  for (std::size_t k = 0; k < n; ++k) target[k] = chirped[k] * std::conj(kernel[k]);
}

/// The transform of one number, for which Eigen's crashes.
template <class Number>
void Copy(const Number* source, Complex* target) {
  *target = *source;
}

}  // namespace

void Forward(const Complex* source, Complex* target, std::size_t n) {
  if (n == 1) return Copy(source, target);
  if (!IsFactored(n)) return ForwardByConvolution(source, target, n);
  WithPlans(n, [&](Fft& fft) { fft.fwd(target, source, static_cast<math::Index>(n)); });
}

void ForwardReal(const double* source, Complex* target, std::size_t n) {
  if (n == 1) return Copy(source, target);
  if (IsFactored(n)) {
    WithPlans(n, [&](Fft& fft) { fft.fwd(target, source, static_cast<math::Index>(n)); });
    return;
  }
  const Numbers numbers(source, source + n);
  Numbers spectrum(n);
  ForwardByConvolution(numbers.data(), spectrum.data(), n);
  std::copy_n(spectrum.begin(), n / 2 + 1, target);
}

void Inverse(const Complex* source, Complex* target, std::size_t n) {
  if (n == 1) return Copy(source, target);
  if (IsFactored(n)) {
    WithPlans(n, [&](Fft& fft) { fft.inv(target, source, static_cast<math::Index>(n)); });
    return;
  }
  // The inverse is the conjugate of the forward transform of the conjugate, over n.
  Numbers conjugate(n);
  std::transform(source, source + n, conjugate.begin(), [](const Complex& x) { return std::conj(x); });
  ForwardByConvolution(conjugate.data(), target, n);
  std::transform(target, target + n, target, [n](const Complex& x) { return std::conj(x) / static_cast<double>(n); });
}

}  // namespace kestrel::calculator::fourier
