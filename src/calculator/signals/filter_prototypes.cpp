#include "calculator/signals/filter_prototypes.h"

#include <algorithm>
#include <cmath>

namespace kestrel::calculator {
namespace {

using Complex = std::complex<double>;

constexpr double kPi = 3.14159265358979323846;

/// Angles t_k = (2k - 1) pi / (2n) of the poles above the real axis, and pi/2 for the one on it.
std::vector<double> PoleAngles(int order) {
  std::vector<double> angles;
  for (int k = 1; 2 * k <= order + 1; ++k) angles.push_back((2.0 * k - 1.0) * kPi / (2.0 * order));
  return angles;
}

bool IsMiddle(int order, std::size_t index) { return order % 2 == 1 && index == static_cast<std::size_t>(order / 2); }

/// Poles -sinh(m) sin(t) + i cosh(m) cos(t) of 1 + e^2 T_n^2 on an ellipse, m = asinh(1/e) / n.
Prototype PolesOnEllipse(int order, double e) {
  const double m = std::asinh(1.0 / e) / order;
  const std::vector<double> angles = PoleAngles(order);
  Prototype prototype;
  for (std::size_t k = 0; k < angles.size(); ++k) {
    const double imaginary = IsMiddle(order, k) ? 0.0 : std::cosh(m) * std::cos(angles[k]);
    prototype.pairs.push_back({{-std::sinh(m) * std::sin(angles[k]), imaginary}, {}});
  }
  return prototype;
}

/// 10^(decibel/10) - 1.
double PowerRatioLessOne(double decibel) { return std::expm1(decibel / 10.0 * std::log(10.0)); }

/// The roots of high order are a hundred million times as sensitive as the rounding of their polynomial.
using LongComplex = std::complex<long double>;

struct ValueAndDerivative {
  LongComplex value;
  LongComplex derivative;
};

/// The reverse Bessel polynomial by  B_n = (2n - 1) B_(n-1) + s^2 B_(n-2),  divided by B_n(0) = (2n - 1) B_(n-1)(0):
///   b_n = b_(n-1) + s^2 b_(n-2) / ((2n - 1) (2n - 3)),   b_0 = 1,   b_1 = 1 + s.
ValueAndDerivative ReverseBessel(int order, const LongComplex& s) {
  ValueAndDerivative before = {1.0L, 0.0L};
  ValueAndDerivative now = {1.0L + s, 1.0L};
  for (int n = 2; n <= order; ++n) {
    const LongComplex factor = s / static_cast<long double>((2 * n - 1) * (2 * n - 3));
    const ValueAndDerivative next = {now.value + factor * s * before.value,
                                     now.derivative + factor * (2.0L * before.value + s * before.derivative)};
    before = now;
    now = next;
  }
  return now;
}

/// All roots at once by the iteration of Aberth and Ehrlich: Newton's step, repelled by the other roots. The start is
/// a circle of about the size of the roots, turned so that no point is on the real axis or conjugate to another.
std::vector<LongComplex> RootsOfReverseBessel(int order) {
  std::vector<LongComplex> roots;
  const long double turn = 2.0L * kPi / order;
  for (int k = 0; k < order; ++k) roots.push_back(std::polar(0.8L * order + 0.5L, turn * k + 0.4L));
  constexpr int kIterations = 200;
  long double largest_step = 1.0L;
  for (int iteration = 0; iteration < kIterations && largest_step > 1e-16L; ++iteration) {
    largest_step = 0.0L;
    for (std::size_t k = 0; k < roots.size(); ++k) {
      const ValueAndDerivative b = ReverseBessel(order, roots[k]);
      LongComplex repulsion = 0.0L;
      for (std::size_t j = 0; j < roots.size(); ++j) {
        if (j != k) repulsion += 1.0L / (roots[k] - roots[j]);
      }
      const LongComplex step = b.value / (b.derivative - b.value * repulsion);
      roots[k] -= step;
      largest_step = std::max(largest_step, std::abs(step) / std::abs(roots[k]));
    }
  }
  return roots;
}

/// The frequency at which |b_n(i w)|^2, which grows with w, is 2.
double HalfPowerFrequency(int order) {
  double low = 0.0;
  double high = 2.0 * order;
  for (int bisection = 0; bisection < 100; ++bisection) {
    const double middle = 0.5 * (low + high);
    (std::norm(ReverseBessel(order, {0.0L, middle}).value) < 2.0L ? low : high) = middle;
  }
  return high;
}

}  // namespace

Prototype ButterworthPrototype(int order) {
  const std::vector<double> angles = PoleAngles(order);
  Prototype prototype;
  for (std::size_t k = 0; k < angles.size(); ++k) {
    prototype.pairs.push_back({{-std::sin(angles[k]), IsMiddle(order, k) ? 0.0 : std::cos(angles[k])}, {}});
  }
  return prototype;
}

Prototype ChebyshevOnePrototype(int order, double ripple) {
  Prototype prototype = PolesOnEllipse(order, std::sqrt(PowerRatioLessOne(ripple)));
  if (order % 2 == 0) prototype.gain = std::pow(10.0, -ripple / 20.0);  // T_n(0) is 0 or, of even order, 1
  return prototype;
}

Prototype ChebyshevTwoPrototype(int order, double attenuation) {
  Prototype prototype = PolesOnEllipse(order, 1.0 / std::sqrt(PowerRatioLessOne(attenuation)));
  const std::vector<double> angles = PoleAngles(order);
  for (std::size_t k = 0; k < angles.size(); ++k) {
    PolePair& pair = prototype.pairs[k];
    pair.pole = std::conj(1.0 / pair.pole);  // the conjugate stays above the real axis
    if (!IsMiddle(order, k)) pair.zero = Complex(0.0, 1.0 / std::cos(angles[k]));
  }
  return prototype;
}

Prototype BesselPrototype(int order) {
  const double scale = 1.0 / HalfPowerFrequency(order);
  Prototype prototype;
  for (const LongComplex& long_root : RootsOfReverseBessel(order)) {
    const Complex root(static_cast<double>(long_root.real()), static_cast<double>(long_root.imag()));
    const bool is_real = std::abs(root.imag()) < 1e-6 * std::abs(root);
    if (is_real) prototype.pairs.push_back({{root.real() * scale, 0.0}, {}});
    if (!is_real && root.imag() > 0.0) prototype.pairs.push_back({root * scale, {}});
  }
  return prototype;
}

}  // namespace kestrel::calculator
