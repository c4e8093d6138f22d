#pragma once

/// The option words that expressions pass to functions as constants: SPLINE or @SPLINE is the scalar 1, and so on. The
/// order is that of the table of constants; 0 is left free, so that a forgotten argument is not taken for a word.
namespace kestrel::calculator {

enum class EOption : int {
  SPLINE = 1,
  LINEAR,
  QUAD,
  ZERO,
  CONSTANT,
  MIRROR,
  REVERSE_MIRROR,
  TANGENTIAL,
  FORWARD,
  BACKWARD,
  UNIFORM,
  NORMAL,
  LOGNORMAL,
  TRIANGLE,
  CAUCHY,
  EXPONENTIAL,
  LOWPASS,
  HIGHPASS,
  BANDPASS,
  BANDSTOP
};

}  // namespace kestrel::calculator
