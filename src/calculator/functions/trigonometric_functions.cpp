#include <boost/math/constants/constants.hpp>
#include <cmath>
#include <complex>

#include "calculator/functions/arguments.h"
#include "calculator/functions/entrywise.h"
#include "calculator/functions/function_groups.h"

namespace kestrel::calculator {
namespace {

constexpr double kRadiansPerDegree = boost::math::constants::degree<double>();

// Negated, so that a NaN stays on the real side.
bool IsWithinOne(double x) { return !(std::abs(x) > 1.0); }
bool IsAtLeastOne(double x) { return !(x < 1.0); }

Value Sin(const Arguments& arguments, FunctionContext&) {
  return MapEverywhere(arguments, [](const auto& x) { return std::sin(x); });
}
Value Cos(const Arguments& arguments, FunctionContext&) {
  return MapEverywhere(arguments, [](const auto& x) { return std::cos(x); });
}
Value Tan(const Arguments& arguments, FunctionContext&) {
  return MapEverywhere(arguments, [](const auto& x) { return std::tan(x); });
}
Value Asin(const Arguments& arguments, FunctionContext&) {
  return MapWhere(arguments, IsWithinOne, [](const auto& x) { return std::asin(x); });
}
Value Acos(const Arguments& arguments, FunctionContext&) {
  return MapWhere(arguments, IsWithinOne, [](const auto& x) { return std::acos(x); });
}
Value Atan(const Arguments& arguments, FunctionContext&) {
  return MapEverywhere(arguments, [](const auto& x) { return std::atan(x); });
}
Value Sinh(const Arguments& arguments, FunctionContext&) {
  return MapEverywhere(arguments, [](const auto& x) { return std::sinh(x); });
}
Value Cosh(const Arguments& arguments, FunctionContext&) {
  return MapEverywhere(arguments, [](const auto& x) { return std::cosh(x); });
}
Value Tanh(const Arguments& arguments, FunctionContext&) {
  return MapEverywhere(arguments, [](const auto& x) { return std::tanh(x); });
}
Value Asinh(const Arguments& arguments, FunctionContext&) {
  return MapEverywhere(arguments, [](const auto& x) { return std::asinh(x); });
}
Value Acosh(const Arguments& arguments, FunctionContext&) {
  return MapWhere(arguments, IsAtLeastOne, [](const auto& x) { return std::acosh(x); });
}
Value Atanh(const Arguments& arguments, FunctionContext&) {
  return MapWhere(arguments, IsWithinOne, [](const auto& x) { return std::atanh(x); });
}

Value DegreesToRadians(const Arguments& arguments, FunctionContext&) {
  return MapEntries(arguments, 0, [](const Complex& x) { return x * kRadiansPerDegree; });
}
Value RadiansToDegrees(const Arguments& arguments, FunctionContext&) {
  return MapEntries(arguments, 0, [](const Complex& x) { return x / kRadiansPerDegree; });
}

/// The angle of a complex number, or of the arrow to a point [x, y].
Value AngleOf(const Arguments& arguments) {
  const Numbers numbers(arguments, 0);
  if (numbers.IsScalar()) return {Angle(*numbers.begin()), 0.0};
  if (numbers.Kind() != Value::VECTOR || numbers.Size() != 2) {
    RefuseArgument(0, L"A complex number or a vector [x, y] is expected.");
  }
  const Complex* const point = numbers.RequireReal().begin();
  return {std::atan2(point[1].real(), point[0].real()), 0.0};
}

Value Atan2(const Arguments& arguments, FunctionContext&) {
  if (arguments.size() == 1) return AngleOf(arguments);
  Numbers(arguments, 0).RequireReal();
  Numbers(arguments, 1).RequireReal();
  return MapPairs(GetValue(arguments, 0), GetValue(arguments, 1), 1,
                  [](const Complex& y, const Complex& x) { return std::atan2(y.real(), x.real()); });
}

}  // namespace

void AppendTrigonometricFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject angle{L"x", L"Angles in radians, of any kind with numbers."};
  const CCalculatorArgumentInfoObject x{L"x", L"Numbers of any kind."};
  const CCalculatorArgumentInfoObject y{L"y", L"The ordinates, or a complex number, or a vector [x, y]."};
  const CCalculatorArgumentInfoObject abscissa{L"x", L"The abscissae.", true};
  AppendRows(
      table,
      {
          {L"sin", L"Sine of each entry.", {angle}, L"sin(x)", &Sin},
          {L"cos", L"Cosine of each entry.", {angle}, L"cos(x)", &Cos},
          {L"tan", L"Tangent of each entry.", {angle}, L"tan(x)", &Tan},
          {L"asin", L"Inverse sine of each entry in radians, complex outside of -1 to 1.", {x}, L"asin(x)", &Asin},
          {L"acos", L"Inverse cosine of each entry in radians, complex outside of -1 to 1.", {x}, L"acos(x)", &Acos},
          {L"atan", L"Inverse tangent of each entry in radians.", {x}, L"atan(x)", &Atan},
          {L"atan2",
           L"Angle in radians, from -pi to pi, between the positive x-axis and the point (x, y), entry by entry. With "
           L"one argument the angle of a complex number or of the point of a vector [x, y].",
           {y, abscissa},
           L"atan2(y, x)\natan2(z)\natan2([x, y])",
           &Atan2},
          {L"sinh", L"Hyperbolic sine of each entry.", {x}, L"sinh(x)", &Sinh},
          {L"cosh", L"Hyperbolic cosine of each entry.", {x}, L"cosh(x)", &Cosh},
          {L"tanh", L"Hyperbolic tangent of each entry.", {x}, L"tanh(x)", &Tanh},
          {L"asinh", L"Inverse hyperbolic sine of each entry.", {x}, L"asinh(x)", &Asinh},
          {L"acosh", L"Inverse hyperbolic cosine of each entry, complex below 1.", {x}, L"acosh(x)", &Acosh},
          {L"atanh",
           L"Inverse hyperbolic tangent of each entry, complex outside of -1 to 1.",
           {x},
           L"atanh(x)",
           &Atanh},
          {L"deg2rad", L"Degrees to radians, entry by entry.", {x}, L"deg2rad(x)", &DegreesToRadians},
          {L"rad2deg", L"Radians to degrees, entry by entry.", {x}, L"rad2deg(x)", &RadiansToDegrees},
      });
}

}  // namespace kestrel::calculator
