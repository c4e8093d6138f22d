#pragma once

#include <complex>
#include <optional>
#include <vector>

namespace kestrel::calculator {

/// A pair of conjugate poles of an analog filter, or one real pole, with the pair of conjugate zeros beside it; without
/// `zero` the zeros are at infinity.
struct PolePair {
  std::complex<double> pole;                 ///< in the left half-plane, imaginary part at least 0, 0 if it is alone
  std::optional<std::complex<double>> zero;  ///< on the imaginary axis, not of a real pole
};

/// An analog low pass with the cut-off frequency 1 rad/s.
struct Prototype {
  std::vector<PolePair> pairs;
  double gain = 1.0;  ///< |H| at the frequency 0
};

/// Orders that designs are offered for.
inline constexpr int kMaximalFilterOrder = 20;

/// |H|^2 = 1 / (1 + w^(2n)): half the power at the cut-off.
Prototype ButterworthPrototype(int order);

/// |H|^2 = 1 / (1 + e^2 T_n(w)^2), 1 + e^2 the ripple as a ratio of powers: in the pass band |H| varies between 1 and
/// the ripple, which it has at the cut-off.   @param ripple  in dB, above 0.
Prototype ChebyshevOnePrototype(int order, double ripple);

/// |H|^2 = 1 / (1 + 1 / (e^2 T_n(1/w)^2)), 1 + 1/e^2 the attenuation as a ratio of powers: falls from 1 at 0 without
/// ripple, and stays at or below the attenuation from the cut-off on.   @param attenuation  in dB, above 0.
Prototype ChebyshevTwoPrototype(int order, double attenuation);

/// Thomson's filter of maximally flat group delay, H = B_n(0) / B_n(s) with the reverse Bessel polynomial B_n, in a
/// scale of s with half the power at the cut-off.
Prototype BesselPrototype(int order);

}  // namespace kestrel::calculator
