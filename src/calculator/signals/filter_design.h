#pragma once

#include <vector>

#include "calculator/functions/option_words.h"
#include "calculator/signals/filter_prototypes.h"

namespace kestrel::calculator {

/// y_i = b0 x_i + b1 x_(i-1) + b2 x_(i-2) - a1 y_(i-1) - a2 y_(i-2).
struct Section {
  double b0 = 1.0;
  double b1 = 0.0;
  double b2 = 0.0;
  double a1 = 0.0;
  double a2 = 0.0;
};

/// Sections in series.
using Cascade = std::vector<Section>;

/// LOWPASS, HIGHPASS, BANDPASS or BANDSTOP with its cut-off frequencies, as shares of the sampling frequency from
/// kLeastFrequency to 0.5 - kLeastFrequency; `high` is that of the bands alone, at least kLeastFrequency above `low`.
struct PassBand {
  EOption kind = EOption::LOWPASS;
  double low = 0.0;
  double high = 0.0;
};

/// Beyond, the coefficients of a section no longer tell its poles from 1 or -1 in double precision.
inline constexpr double kLeastFrequency = 1e-5;

/// The digital filter that has at the frequency f (a share of the sampling frequency) the response that the prototype,
/// transformed to the pass band, has at the angular frequency tan(pi f): the bilinear transform s = (z - 1) / (z + 1),
/// with the cut-off frequencies prewarped by the same formula. Bands have twice the poles of the prototype.
///
/// Each section has the gain 1 where the prototype has its gain at 0: at the frequency 0 (LOWPASS and BANDSTOP), at
/// half the sampling frequency (HIGHPASS) or in the middle of the band (BANDPASS). The first carries the prototype's
/// gain.
Cascade DesignFilter(const Prototype& prototype, const PassBand& band);

/// The low pass of channel frequency class `cfc` of SAE J211, to be run forward and backward.
/// @param seconds  the sampling step; 2.0775 cfc seconds is to be below 0.5.
Cascade DesignChannelClass(double cfc, double seconds);

}  // namespace kestrel::calculator
