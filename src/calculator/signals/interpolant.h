#pragma once

#include "calculator/functions/option_words.h"
#include "calculator/signals/samples.h"
#include "support/linear_algebra.h"

namespace kestrel::calculator {

/// A curve through samples, a polynomial from each sample to the next:
///
///   ZERO    the value of the sample before,
///   LINEAR  the line,
///   QUAD    the mean of the two parabolas through both samples and the one before or the one behind them,
///   SPLINE  the cubic spline without a knot at the second and at the last but one sample.
///
/// So lines, parabolas and cubics come back as they are from LINEAR, QUAD and SPLINE. Where samples are missing for a
/// kind, the polynomial through those that are there takes its place.
class Interpolant {
 public:
  /// @param abscissae  x, at least one, strictly ascending.   @param values  samples x columns, a curve per column.
  Interpolant(math::Vector abscissae, math::Matrix values, EOption kind);

  double front() const { return x_(0); }
  double back() const { return x_(x_.size() - 1); }
  math::Index columns() const { return y_.cols(); }

  /// The number of the piece that an abscissa from front() to back() lies on.
  math::Index FindPiece(double x) const;
  /// The value of a column there.
  double Evaluate(math::Index piece, math::Index column, double x) const;
  double FrontValue(math::Index column) const { return y_(0, column); }
  double BackValue(math::Index column) const { return y_(y_.rows() - 1, column); }
  /// The slopes inwards of the two ends.
  double FrontSlope(math::Index column) const;
  double BackSlope(math::Index column) const;

 private:
  /// y_i + c1 t + c2 t^2 + c3 t^3 with t = x - x_i.
  struct Cubic {
    double c1 = 0.0;
    double c2 = 0.0;
    double c3 = 0.0;
  };
  Cubic Piece(math::Index piece, math::Index column) const;
  Cubic Parabola(math::Index piece, math::Index column) const;
  Cubic SplinePiece(math::Index piece, math::Index column) const;
  double Step(math::Index piece) const { return x_(piece + 1) - x_(piece); }
  double Slope(math::Index piece, math::Index column) const;

  math::Vector x_;
  math::Matrix y_;
  EOption kind_;
  math::Matrix spline_slopes_;  ///< y' at the samples, of a spline
};

/// The values of x-y data as a function of x when its abscissae do not ascend strictly: what the polygon through the
/// samples, run through in their order, has at its first arrival at x. Strictly ascending; a jump lies between two
/// neighbouring doubles.
Samples FirstArrivals(const Samples& samples);

}  // namespace kestrel::calculator
