#include <cmath>
#include <complex>
#include <type_traits>

#include "calculator/functions/arguments.h"
#include "calculator/functions/entrywise.h"
#include "calculator/functions/function_groups.h"

namespace kestrel::calculator {
namespace {

constexpr double kFirstWithoutFraction = 4503599627370496.0;  // 2^52: every double from here on is a whole number

bool IsNotNegative(double x) { return !(x < 0.0); }  // true for a NaN

Value Exp(const Arguments& arguments, FunctionContext&) {
  return MapEverywhere(arguments, [](const auto& x) { return std::exp(x); });
}
Value Ln(const Arguments& arguments, FunctionContext&) {
  return MapWhere(arguments, IsNotNegative, [](const auto& x) { return std::log(x); });
}
Value Sqrt(const Arguments& arguments, FunctionContext&) {
  return MapWhere(arguments, IsNotNegative, [](const auto& x) { return std::sqrt(x); });
}

/// log2 and log10 are exact for powers of their bases, a quotient of logarithms need not be.
Value Log(const Arguments& arguments, FunctionContext&) {
  const double base = GetRealOr(arguments, 1, 10.0);
  if (!(base > 0.0) || base == 1.0 || std::isinf(base)) {
    RefuseArgument(1, L"The base is to be a positive number other than 1.");
  }
  if (base == 10.0) return MapWhere(arguments, IsNotNegative, [](const auto& x) { return std::log10(x); });
  const double ln_base = std::log(base);
  return MapWhere(arguments, IsNotNegative, [base, ln_base](const auto& x) {
    if constexpr (std::is_same_v<std::decay_t<decltype(x)>, double>) {
      if (base == 2.0) return std::log2(x);
    }
    return std::log(x) / ln_base;
  });
}

Value Sgn(const Arguments& arguments, FunctionContext&) {
  return MapEntries(arguments, 0, [](const Complex& z) -> Complex {
    if (z.imag() != 0.0) return z / std::abs(z);
    const double x = z.real();
    return x > 0.0 ? 1.0 : (x < 0.0 ? -1.0 : x);  // x is 0 or NaN in the end
  });
}

/// The real and the imaginary part for themselves.
template <class Function>
Value MapParts(const Arguments& arguments, Function function) {
  return MapEntries(arguments, 0, [&](const Complex& z) { return Complex(function(z.real()), function(z.imag())); });
}

Value Ceil(const Arguments& arguments, FunctionContext&) {
  return MapParts(arguments, [](double x) { return std::ceil(x); });
}
Value Floor(const Arguments& arguments, FunctionContext&) {
  return MapParts(arguments, [](double x) { return std::floor(x); });
}

Value RoundToDecimals(const Arguments& arguments, long decimals) {
  const double power = std::pow(10.0, static_cast<double>(std::abs(decimals)));
  return MapParts(arguments, [decimals, power](double x) {
    if (decimals < 0) return std::round(x / power) * power;
    const double scaled = x * power;
    return std::abs(scaled) < kFirstWithoutFraction ? std::round(scaled) / power : x;
  });
}

Value Round(const Arguments& arguments, FunctionContext&) {
  constexpr long kMostDecimals = 300;  // 10^300 is still a double
  return RoundToDecimals(arguments, GetIntegerOr(arguments, 1, -kMostDecimals, kMostDecimals, 0));
}

/// x - y floor(x / y) without the rounding of the quotient; x for y = 0.
Complex Modulo(const Complex& dividend, const Complex& divisor) {
  const double x = dividend.real();
  const double y = divisor.real();
  if (y == 0.0) return x;
  const double remainder = std::fmod(x, y);
  const bool other_sign = remainder != 0.0 && (remainder < 0.0) != (y < 0.0);
  return other_sign ? remainder + y : remainder;
}

Value Mod(const Arguments& arguments, FunctionContext&) {
  Numbers(arguments, 0).RequireReal();
  Numbers(arguments, 1).RequireReal();
  return MapPairs(GetValue(arguments, 0), GetValue(arguments, 1), 1, &Modulo);
}

}  // namespace

void AppendElementaryFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject x{L"x", L"Numbers of any kind."};
  const CCalculatorArgumentInfoObject base{L"base", L"A positive number other than 1; 10 if it is missing.", true};
  const CCalculatorArgumentInfoObject decimals{L"decimals", L"Digits after the point, from -300 to 300; 0 if missing.",
                                               true};
  const CCalculatorArgumentInfoObject dividend{L"x", L"Real numbers of any kind."};
  const CCalculatorArgumentInfoObject divisor{L"y", L"A real number, or real numbers of the shape of x."};
  AppendRows(
      table,
      {
          {L"exp", L"e to the power of each entry.", {x}, L"exp(x)", &Exp},
          {L"ln", L"Natural logarithm of each entry, complex below 0.", {x}, L"ln(x)", &Ln},
          {L"log",
           L"Logarithm of each entry to the base 10 or to another one, complex below 0.",
           {x, base},
           L"log(x)\nlog(x, base)",
           &Log},
          {L"sqrt", L"Square root of each entry, complex below 0.", {x}, L"sqrt(x)", &Sqrt},
          {L"sgn", L"Sign of each entry: -1, 0 or 1; of a complex entry z it is z / |z|.", {x}, L"sgn(x)", &Sgn},
          {L"ceil",
           L"The next whole number at or above each entry, for the real and the imaginary part.",
           {x},
           L"ceil(x)",
           &Ceil},
          {L"floor",
           L"The next whole number at or below each entry, for the real and the imaginary part.",
           {x},
           L"floor(x)",
           &Floor},
          {L"round",
           L"Each entry rounded to a number of decimals, halves away from 0, for the real and the imaginary part.",
           {x, decimals},
           L"round(x)\nround(x, decimals)",
           &Round},
          {L"mod",
           L"Modulus x - y floor(x / y), entry by entry. It has the sign of y, where x % y has the sign of x; "
           L"mod(x, 0) is x.",
           {dividend, divisor},
           L"mod(x, y)",
           &Mod},
      });
}

}  // namespace kestrel::calculator
