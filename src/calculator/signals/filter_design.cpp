#include "calculator/signals/filter_design.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <tuple>
#include <utility>

namespace kestrel::calculator {
namespace {

using Complex = std::complex<double>;
using Roots = std::vector<Complex>;

constexpr double kPi = 3.14159265358979323846;

/// An analog section: one or two poles, closed under conjugation, and as many zeros; those not listed are at infinity.
struct AnalogSection {
  Roots poles;
  Roots zeros;
};

/// The pass band of the analog filter in prewarped angular frequencies.
struct AnalogBand {
  EOption kind;
  double centre;  ///< the cut-off of LOWPASS and HIGHPASS, else the geometric mean of the two
  double width;
};

AnalogBand Prewarped(const PassBand& band) {
  const double low = std::tan(kPi * band.low);
  if (band.kind == EOption::LOWPASS || band.kind == EOption::HIGHPASS) return {band.kind, low, 0.0};
  const double high = std::tan(kPi * band.high);
  return {band.kind, std::sqrt(low * high), high - low};
}

Roots WithConjugate(const Complex& root) { return {root, std::conj(root)}; }

Roots PolesOf(const PolePair& pair) { return pair.pole.imag() == 0.0 ? Roots{pair.pole} : WithConjugate(pair.pole); }

/// Low and high pass: s -> s / centre and s -> centre / s, which takes zeros at infinity to 0.
AnalogSection Shifted(const PolePair& pair, const AnalogBand& band) {
  AnalogSection section = {PolesOf(pair), pair.zero ? WithConjugate(*pair.zero) : Roots{}};
  const bool is_high = band.kind == EOption::HIGHPASS;
  if (is_high && section.zeros.empty()) section.zeros.assign(section.poles.size(), 0.0);
  const auto move = [&](const Complex& root) { return is_high ? band.centre / root : band.centre * root; };
  std::transform(section.poles.begin(), section.poles.end(), section.poles.begin(), move);
  if (!is_high || pair.zero) std::transform(section.zeros.begin(), section.zeros.end(), section.zeros.begin(), move);
  return section;
}

/// The two solutions of  s^2 - 2 half s + centre^2 = 0,  the larger one first; the smaller follows from the product of
/// the two, without cancellation.
std::pair<Complex, Complex> Split(const Complex& half, double centre) {
  const Complex root = std::sqrt((half - centre) * (half + centre));
  const Complex larger = std::norm(half + root) >= std::norm(half - root) ? half + root : half - root;
  return {larger, centre * centre / larger};
}

/// Bands: s -> (s^2 + centre^2) / (width s) for BANDPASS and its reciprocal for BANDSTOP, so that a root r of the
/// prototype becomes the two solutions of s^2 - width r s + centre^2 = 0, with 1/r for r in the second case. Zeros at
/// infinity become 0 and infinity, or +-i centre.
std::vector<AnalogSection> Banded(const PolePair& pair, const AnalogBand& band) {
  const bool is_stop = band.kind == EOption::BANDSTOP;
  const auto split = [&](const Complex& root) {
    return Split(0.5 * band.width * (is_stop ? 1.0 / root : root), band.centre);
  };
  const Roots plain_zeros = is_stop ? WithConjugate({0.0, band.centre}) : Roots{0.0};
  const auto [larger, smaller] = split(pair.pole);
  if (pair.pole.imag() == 0.0) return {{{larger, smaller}, plain_zeros}};
  if (!pair.zero) return {{WithConjugate(larger), plain_zeros}, {WithConjugate(smaller), plain_zeros}};
  const auto [larger_zero, smaller_zero] = split(*pair.zero);
  return {{WithConjugate(larger), WithConjugate(larger_zero)}, {WithConjugate(smaller), WithConjugate(smaller_zero)}};
}

std::vector<AnalogSection> Transformed(const PolePair& pair, const AnalogBand& band) {
  if (band.kind == EOption::LOWPASS || band.kind == EOption::HIGHPASS) return {Shifted(pair, band)};
  return Banded(pair, band);
}

/// Coefficients 1, c1, c2 of the polynomial in 1/z with the digital roots (1 + s) / (1 - s); missing roots are at
/// infinity and become -1.
std::pair<double, double> DigitalCoefficients(const Roots& analog, std::size_t count) {
  Roots digital(count, -1.0);
  std::transform(analog.begin(), analog.end(), digital.begin(), [](const Complex& s) { return (1.0 + s) / (1.0 - s); });
  if (count == 1) return {-digital[0].real(), 0.0};
  return {-(digital[0] + digital[1]).real(), (digital[0] * digital[1]).real()};
}

/// |H| of a section at z = exp(i angle).
double GainAt(const Section& section, double angle) {
  const Complex delay = std::polar(1.0, -angle);
  const Complex numerator = section.b0 + delay * (section.b1 + delay * section.b2);
  return std::abs(numerator / (1.0 + delay * (section.a1 + delay * section.a2)));
}

void Scale(Section& section, double factor) {
  section.b0 *= factor;
  section.b1 *= factor;
  section.b2 *= factor;
}

/// The bilinear transform of a section, with the gain 1 at the reference angle. Its sign stays that of the analog one,
/// whose numerator and denominator are both positive for large s.
Section Digital(const AnalogSection& analog, double reference) {
  Section section;
  std::tie(section.a1, section.a2) = DigitalCoefficients(analog.poles, analog.poles.size());
  std::tie(section.b1, section.b2) = DigitalCoefficients(analog.zeros, analog.poles.size());
  Scale(section, 1.0 / GainAt(section, reference));
  return section;
}

double ReferenceAngle(const AnalogBand& band) {
  if (band.kind == EOption::HIGHPASS) return kPi;
  return band.kind == EOption::BANDPASS ? 2.0 * std::atan(band.centre) : 0.0;
}

}  // namespace

Cascade DesignFilter(const Prototype& prototype, const PassBand& band) {
  const AnalogBand analog_band = Prewarped(band);
  const double reference = ReferenceAngle(analog_band);
  Cascade cascade;
  for (const PolePair& pair : prototype.pairs) {
    for (const AnalogSection& analog : Transformed(pair, analog_band)) cascade.push_back(Digital(analog, reference));
  }
  Scale(cascade.front(), prototype.gain);
  return cascade;
}

/// With w = tan(pi 2.0775 cfc T) and d = 1 + sqrt(2) w + w^2 the standard states
///   a0 = w^2 / d,  a1 = 2 a0,  a2 = a0,  b1 = -2 (w^2 - 1) / d,  b2 = (-1 + sqrt(2) w - w^2) / d
/// for  y_i = a0 x_i + a1 x_(i-1) + a2 x_(i-2) + b1 y_(i-1) + b2 y_(i-2).
Cascade DesignChannelClass(double cfc, double seconds) {
  const double w = std::tan(kPi * 2.0775 * cfc * seconds);
  const double root = std::sqrt(2.0) * w;
  const double d = 1.0 + root + w * w;
  const double a0 = w * w / d;
  return {{a0, 2.0 * a0, a0, 2.0 * (w * w - 1.0) / d, (1.0 - root + w * w) / d}};
}

}  // namespace kestrel::calculator
