#include "calculator/signals/interpolant.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace kestrel::calculator {
namespace {

using math::Index;

/// Rows of  below_i s_(i-1) + diagonal_i s_i + above_i s_(i+1) = right_i  for the slopes s of a spline.
struct SlopeSystem {
  math::Vector below;
  math::Vector diagonal;
  math::Vector above;
  math::Matrix right;
};

/// The second derivative is continuous at the inner samples, the third at the second and at the last but one. With
/// h_i = x_(i+1) - x_i and m_i the slope of that line the rows are, inside and at the front,
///   h_i s_(i-1) + 2 (h_(i-1) + h_i) s_i + h_(i-1) s_(i+1) = 3 (h_i m_(i-1) + h_(i-1) m_i)
///   h_1 s_0 + d s_1 = ((h_0 + 2 d) h_1 m_0 + h_0^2 m_1) / d,   d = h_0 + h_1.
SlopeSystem AssembleSlopes(const math::Vector& h, const math::Matrix& m) {
  const Index last = h.size();
  SlopeSystem system = {math::Vector::Zero(last + 1), math::Vector(last + 1), math::Vector::Zero(last + 1),
                        math::Matrix(last + 1, m.cols())};
  for (Index i = 1; i < last; ++i) {
    system.below(i) = h(i);
    system.diagonal(i) = 2.0 * (h(i - 1) + h(i));
    system.above(i) = h(i - 1);
    system.right.row(i) = 3.0 * (h(i) * m.row(i - 1) + h(i - 1) * m.row(i));
  }
  const auto end_row = [&](double h0, double h1, const auto& m0, const auto& m1) {
    const double d = h0 + h1;
    return (((h0 / d + 2.0) * h1) * m0 + (h0 / d * h0) * m1).eval();
  };
  system.diagonal(0) = h(1);
  system.above(0) = h(0) + h(1);
  system.right.row(0) = end_row(h(0), h(1), m.row(0), m.row(1));
  system.diagonal(last) = h(last - 2);
  system.below(last) = h(last - 1) + h(last - 2);
  system.right.row(last) = end_row(h(last - 1), h(last - 2), m.row(last - 1), m.row(last - 2));
  return system;
}

/// Elimination without pivoting: after the first row the pivots stay above the entries beside them.
math::Matrix Solve(SlopeSystem system) {
  const Index last = system.diagonal.size() - 1;
  for (Index i = 1; i <= last; ++i) {
    const double factor = system.below(i) / system.diagonal(i - 1);
    system.diagonal(i) -= factor * system.above(i - 1);
    system.right.row(i) -= factor * system.right.row(i - 1);
  }
  system.right.row(last) /= system.diagonal(last);
  for (Index i = last - 1; i >= 0; --i) {
    system.right.row(i) = (system.right.row(i) - system.above(i) * system.right.row(i + 1)) / system.diagonal(i);
  }
  return std::move(system.right);
}

math::Matrix SplineSlopes(const math::Vector& x, const math::Matrix& y) {
  const Index lines = x.size() - 1;
  const math::Vector h = x.tail(lines) - x.head(lines);
  const math::Matrix m = (y.bottomRows(lines) - y.topRows(lines)).array().colwise() / h.array();
  return Solve(AssembleSlopes(h, m));
}

/// A point of the polygon: `fraction` of the way from sample `start` to the next.
struct PolygonPoint {
  double abscissa;
  Index start;
  double fraction;
};

/// The points of first arrival on one side of the first sample: on the right for `side` 1, on the left for -1.
std::vector<PolygonPoint> ArrivalsOn(const math::Vector& x, double side) {
  std::vector<PolygonPoint> points = {{x(0), 0, 0.0}};
  Index record = 0;  // the sample that reached farthest
  for (Index i = 1; i < x.size(); ++i) {
    const double farthest = x(record);
    if (side * (x(i) - farthest) <= 0.0) continue;
    // The polygon was elsewhere since: it comes back over the farthest abscissa with another value.
    const double behind = std::nextafter(farthest, side * std::numeric_limits<double>::infinity());
    if (record != i - 1 && behind != x(i)) {
      points.push_back({behind, i - 1, (farthest - x(i - 1)) / (x(i) - x(i - 1))});
    }
    points.push_back({x(i), i - 1, 1.0});
    record = i;
  }
  return points;
}

}  // namespace

Interpolant::Interpolant(math::Vector abscissae, math::Matrix values, EOption kind)
    : x_(std::move(abscissae)), y_(std::move(values)), kind_(kind) {
  // The spline through three samples is a parabola, through two a line.
  if (kind_ == EOption::SPLINE && x_.size() <= 3) kind_ = EOption::QUAD;
  if (kind_ == EOption::SPLINE) spline_slopes_ = SplineSlopes(x_, y_);
}

Index Interpolant::FindPiece(double x) const {
  const auto behind = std::upper_bound(x_.begin(), x_.end(), x);
  return std::max<Index>(0, behind - x_.begin() - 1);
}

double Interpolant::Evaluate(Index piece, Index column, double x) const {
  if (piece + 1 >= x_.size()) return BackValue(column);
  const double t = x - x_(piece);
  if (t == 0.0) return y_(piece, column);  // also at a jump, whose slope may be infinite
  const Cubic c = Piece(piece, column);
  return y_(piece, column) + t * (c.c1 + t * (c.c2 + t * c.c3));
}

double Interpolant::FrontSlope(Index column) const { return x_.size() < 2 ? 0.0 : Piece(0, column).c1; }

double Interpolant::BackSlope(Index column) const {
  if (x_.size() < 2) return 0.0;
  const Index piece = x_.size() - 2;
  const Cubic c = Piece(piece, column);
  const double h = Step(piece);
  return c.c1 + h * (2.0 * c.c2 + 3.0 * h * c.c3);
}

double Interpolant::Slope(Index piece, Index column) const {
  return (y_(piece + 1, column) - y_(piece, column)) / Step(piece);
}

Interpolant::Cubic Interpolant::Piece(Index piece, Index column) const {
  if (kind_ == EOption::ZERO) return {};
  if (kind_ == EOption::QUAD) return Parabola(piece, column);
  if (kind_ == EOption::SPLINE) return SplinePiece(piece, column);
  return {Slope(piece, column)};
}

/// In Newton's form, y_i + m_i t + c2 t (t - h), where c2 is the second divided difference with the third sample.
Interpolant::Cubic Interpolant::Parabola(Index piece, Index column) const {
  const double slope = Slope(piece, column);
  double sum = 0.0;
  int count = 0;
  if (piece > 0) {
    sum += (slope - Slope(piece - 1, column)) / (x_(piece + 1) - x_(piece - 1));
    ++count;
  }
  if (piece + 2 < x_.size()) {
    sum += (Slope(piece + 1, column) - slope) / (x_(piece + 2) - x_(piece));
    ++count;
  }
  const double curvature = count == 0 ? 0.0 : sum / count;
  return {slope - curvature * Step(piece), curvature};
}

/// Hermite's cubic of two values and two slopes.
Interpolant::Cubic Interpolant::SplinePiece(Index piece, Index column) const {
  const double h = Step(piece);
  const double m = Slope(piece, column);
  const double s0 = spline_slopes_(piece, column);
  const double s1 = spline_slopes_(piece + 1, column);
  return {s0, (3.0 * m - 2.0 * s0 - s1) / h, (s0 + s1 - 2.0 * m) / h / h};
}

Samples FirstArrivals(const Samples& samples) {
  std::vector<PolygonPoint> points = ArrivalsOn(samples.abscissae, -1.0);
  std::reverse(points.begin(), points.end());
  const std::vector<PolygonPoint> right = ArrivalsOn(samples.abscissae, 1.0);
  points.insert(points.end(), right.begin() + 1, right.end());  // both sides begin with the first sample
  const auto size = static_cast<Index>(points.size());
  Samples arrivals = {math::Vector(size), math::Matrix(size, samples.values.cols()), samples.is_complex, samples.kind};
  for (Index i = 0; i < size; ++i) {
    const PolygonPoint& point = points[static_cast<std::size_t>(i)];
    const Index next = std::min(point.start + 1, samples.size() - 1);
    arrivals.abscissae(i) = point.abscissa;
    arrivals.values.row(i) =
        (1.0 - point.fraction) * samples.values.row(point.start) + point.fraction * samples.values.row(next);
  }
  return arrivals;
}

}  // namespace kestrel::calculator
