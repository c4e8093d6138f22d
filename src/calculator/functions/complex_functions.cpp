#include <cmath>
#include <complex>

#include "calculator/functions/arguments.h"
#include "calculator/functions/function_groups.h"
#include "calculator/functions/numbers.h"

namespace kestrel::calculator {
namespace {

Value Cplx(const Arguments& arguments, FunctionContext&) {
  Numbers(arguments, 0).RequireReal();
  Numbers(arguments, 1).RequireReal();
  return MapPairs(GetValue(arguments, 0), GetValue(arguments, 1), 1,
                  [](const Complex& x, const Complex& y) { return Complex(x.real(), y.real()); });
}

Value Conj(const Arguments& arguments, FunctionContext&) {
  return MapEntries(arguments, 0, [](const Complex& z) { return Complex(z.real(), 0.0 - z.imag()); });
}
Value Abs(const Arguments& arguments, FunctionContext&) { return MapEntries(arguments, 0, &Modulus); }
Value Arg(const Arguments& arguments, FunctionContext&) { return MapEntries(arguments, 0, &Angle); }
Value Real(const Arguments& arguments, FunctionContext&) {
  return MapEntries(arguments, 0, [](const Complex& z) { return z.real(); });
}
Value Imag(const Arguments& arguments, FunctionContext&) {
  return MapEntries(arguments, 0, [](const Complex& z) { return z.imag(); });
}

/// Points of the plane by two coordinates each, one column per point.
struct Points {
  Eigen::Matrix2Xd coordinates;
  bool is_single = false;  ///< given as numbers, not as vectors
};

Points PairCoordinates(const Arguments& arguments) {
  const Numbers first(arguments, 0);
  const Numbers second(arguments, 1);
  if (first.Kind() > Value::VECTOR) RefuseArgument(0, L"A number or a vector is expected.");
  if (second.Kind() > Value::VECTOR || second.Size() != first.Size()) {
    RefuseArgument(1, L"A number or a vector with as many entries as the first argument is expected.");
  }
  Points points{Eigen::Matrix2Xd(2, first.RequireReal().Cells().cols()), first.IsScalar() && second.IsScalar()};
  points.coordinates.row(0) = first.Cells().real();
  points.coordinates.row(1) = second.RequireReal().Cells().real();
  return points;
}

/// Two numbers, two vectors of one length, a vector of two entries, or a matrix with two rows.
Points ReadPoints(const Arguments& arguments) {
  if (arguments.size() == 2) return PairCoordinates(arguments);
  const Numbers pairs(arguments, 0);
  if (pairs.Kind() == Value::VECTOR && pairs.Size() == 2) {
    return {pairs.RequireReal().Cells().real().transpose(), true};
  }
  if (pairs.Kind() == Value::MATRIX && pairs.Rows() == 2) return {pairs.RequireReal().Cells().real(), false};
  RefuseArgument(0, L"A vector of two entries or a matrix with two rows is expected.");
}

/// (angle, radius) in the place of (x, y).
void TurnPolar(Points& points) {
  for (auto point : points.coordinates.colwise()) {
    const double x = point(0);
    const double y = point(1);
    point << std::atan2(y, x), std::hypot(x, y);
  }
}

void TurnCartesian(Points& points) {
  for (auto point : points.coordinates.colwise()) {
    const double angle = point(0);
    const double radius = point(1);
    point << radius * std::cos(angle), radius * std::sin(angle);
  }
}

Value ToValue(const Points& points) {
  return points.is_single ? ToVector(points.coordinates.col(0)) : ToMatrix(points.coordinates);
}

Value CartesianToPolar(const Arguments& arguments, FunctionContext&) {
  if (arguments.size() == 1 && Numbers(arguments, 0).IsScalar()) {
    const Complex z = *Numbers(arguments, 0).begin();
    return ToVector(Eigen::Vector2d(Angle(z), Modulus(z)));
  }
  Points points = ReadPoints(arguments);
  TurnPolar(points);
  return ToValue(points);
}

Value PolarToCartesian(const Arguments& arguments, FunctionContext&) {
  Points points = ReadPoints(arguments);
  TurnCartesian(points);
  return ToValue(points);
}

}  // namespace

void AppendComplexFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject z{L"z", L"Numbers of any kind."};
  const CCalculatorArgumentInfoObject re{L"re", L"Real numbers of any kind."};
  const CCalculatorArgumentInfoObject im{L"im", L"A real number, or real numbers of the shape of re."};
  const CCalculatorArgumentInfoObject x{L"x", L"The abscissa, or [x, y], or a matrix with the rows x and y."};
  const CCalculatorArgumentInfoObject y{L"y", L"The ordinate.", true};
  const CCalculatorArgumentInfoObject phi{L"phi", L"The angle in radians, or [phi, r], or a matrix with these rows."};
  const CCalculatorArgumentInfoObject r{L"r", L"The radius.", true};
  AppendRows(table,
             {
                 {L"cplx", L"re + i im, entry by entry.", {re, im}, L"cplx(re, im)", &Cplx},
                 {L"conj", L"Complex conjugate of each entry.", {z}, L"conj(z)", &Conj},
                 {L"abs", L"Absolute value of each entry.", {z}, L"abs(z)", &Abs},
                 {L"arg", L"Angle of each entry in radians, from -pi to pi.", {z}, L"arg(z)", &Arg},
                 {L"real", L"Real part of each entry.", {z}, L"real(z)", &Real},
                 {L"imag", L"Imaginary part of each entry.", {z}, L"imag(z)", &Imag},
                 {L"cart2pol",
                  L"Cartesian to polar coordinates: the vector [phi, r] of one point or of a complex number, a "
                  L"matrix with the rows phi and r of several points. Angles are in radians, from -pi to pi.",
                  {x, y},
                  L"cart2pol(x, y)\ncart2pol([x, y])\ncart2pol(z)",
                  &CartesianToPolar},
                 {L"pol2cart",
                  L"Polar to Cartesian coordinates: the vector [x, y] of one point, a matrix with the rows x and y "
                  L"of several points.",
                  {phi, r},
                  L"pol2cart(phi, r)\npol2cart([phi, r])",
                  &PolarToCartesian},
             });
}

}  // namespace kestrel::calculator
