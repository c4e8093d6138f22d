#include "test_functions.h"

#include <array>
#include <cmath>

// Formulas and ranges are those of the publications named at each function.

namespace accuracy {
namespace {

constexpr double kPi = 3.14159265358979323846;

double Square(double x) { return x * x; }

std::vector<Range> Equal(std::size_t count, double low, double high) { return std::vector<Range>(count, {low, high}); }

/// Dixon and Szego, Towards Global Optimization 2, 1978.
double Branin(const double* x) {
  return Square(x[1] - 5.1 / (4.0 * kPi * kPi) * x[0] * x[0] + 5.0 / kPi * x[0] - 6.0) +
         10.0 * (1.0 - 1.0 / (8.0 * kPi)) * std::cos(x[0]) + 10.0;
}

/// Ishigami and Homma, Proc. ISUMA, 1990, with a = 7, b = 0.1.
double Ishigami(const double* x) {
  return std::sin(x[0]) * (1.0 + 0.1 * std::pow(x[2], 4)) + 7.0 * Square(std::sin(x[1]));
}

/// Friedman, Multivariate Adaptive Regression Splines, Annals of Statistics 19, 1991: five of ten inputs matter.
double Friedman(const double* x) {
  return 10.0 * std::sin(kPi * x[0] * x[1]) + 20.0 * Square(x[2] - 0.5) + 10.0 * x[3] + 5.0 * x[4];
}

/// Midpoint voltage of a push-pull circuit without transformer. Ben-Ari and Steinberg, Quality Engineering 19, 2007.
double OtlCircuit(const double* x) {
  const double Rb1 = x[0], Rb2 = x[1], Rf = x[2], Rc1 = x[3], Rc2 = x[4], beta = x[5];
  const double Vb1 = 12.0 * Rb2 / (Rb1 + Rb2);
  const double gain = beta * (Rc2 + 9.0);
  return ((Vb1 + 0.74) * gain + 11.35 * Rf + 0.74 * Rf * gain / Rc1) / (gain + Rf);
}

/// Cycle time of a piston in a cylinder. Kenett and Zacks, Modern Industrial Statistics, 1998.
double Piston(const double* x) {
  const double M = x[0], S = x[1], V0 = x[2], k = x[3], P0 = x[4], Ta = x[5], T0 = x[6];
  const double A = P0 * S + 19.62 * M - k * V0 / S;
  const double gas = P0 * V0 / T0 * Ta;
  const double V = S / (2.0 * k) * (std::sqrt(A * A + 4.0 * k * gas) - A);
  return 2.0 * kPi * std::sqrt(M / (k + S * S * gas / (V * V)));
}

/// Flow of water through a borehole. Harper and Gupta, 1983; Morris, Mitchell and Ylvisaker, Technometrics 35, 1993.
double Borehole(const double* x) {
  const double rw = x[0], r = x[1], Tu = x[2], Hu = x[3], Tl = x[4], Hl = x[5], L = x[6], Kw = x[7];
  const double log_radii = std::log(r / rw);
  return 2.0 * kPi * Tu * (Hu - Hl) / (log_radii * (1.0 + Tu / Tl) + 2.0 * L * Tu / (rw * rw * Kw));
}

/// Weight of the wing of a light aircraft. Forrester, Sobester and Keane, Engineering Design via Surrogate Modelling,
/// 2008.
double WingWeight(const double* x) {
  const double Sw = x[0], Wfw = x[1], A = x[2], sweep = x[3] * kPi / 180.0, q = x[4], taper = x[5], tc = x[6],
               Nz = x[7], Wdg = x[8], Wp = x[9];
  return 0.036 * std::pow(Sw, 0.758) * std::pow(Wfw, 0.0035) * std::pow(A / Square(std::cos(sweep)), 0.6) *
             std::pow(q, 0.006) * std::pow(taper, 0.04) * std::pow(100.0 * tc / std::cos(sweep), -0.3) *
             std::pow(Nz * Wdg, 0.49) +
         Sw * Wp;
}

/// Hartmann's function of six inputs. Dixon and Szego, Towards Global Optimization 2, 1978.
double Hartmann6(const double* x) {
  constexpr std::array<double, 4> c = {1.0, 1.2, 3.0, 3.2};
  constexpr std::array<std::array<double, 6>, 4> a = {{{10.0, 3.0, 17.0, 3.5, 1.7, 8.0},
                                                       {0.05, 10.0, 17.0, 0.1, 8.0, 14.0},
                                                       {3.0, 3.5, 1.7, 10.0, 17.0, 8.0},
                                                       {17.0, 8.0, 0.05, 10.0, 0.1, 14.0}}};
  constexpr std::array<std::array<double, 6>, 4> p = {{{0.1312, 0.1696, 0.5569, 0.0124, 0.8283, 0.5886},
                                                       {0.2329, 0.4135, 0.8307, 0.3736, 0.1004, 0.9991},
                                                       {0.2348, 0.1451, 0.3522, 0.2883, 0.3047, 0.6650},
                                                       {0.4047, 0.8828, 0.8732, 0.5743, 0.1091, 0.0381}}};
  double sum = 0.0;
  for (std::size_t i = 0; i < 4; ++i) {
    double exponent = 0.0;
    for (std::size_t j = 0; j < 6; ++j) exponent += a[i][j] * Square(x[j] - p[i][j]);
    sum -= c[i] * std::exp(-exponent);
  }
  return sum;
}

/// Welch, Buck, Sacks, Wynn, Mitchell and Morris, Technometrics 34, 1992: two of 20 inputs without effect, most of the
/// others with a small one. Inputs are counted from 1 there.
double Welch20(const double* x) {
  constexpr std::array<double, 20> linear = {0.0,   0.05, 0.08, 0.0,   1.0,  -0.03, 0.03,  0.0,   -0.09, -0.01,
                                             -0.07, 0.0,  0.0,  -0.04, 0.06, 0.0,   -0.01, -0.03, -5.0,  0.0};
  double sum =
      5.0 * x[11] / (1.0 + x[0]) + 5.0 * Square(x[3] - x[19]) + 40.0 * std::pow(x[18], 3) + 0.25 * Square(x[12]);
  for (std::size_t j = 0; j < linear.size(); ++j) sum += linear[j] * x[j];
  return sum;
}

}  // namespace

const std::vector<TestFunction>& TestFunctions() {
  static const std::vector<TestFunction> functions = {
      {"Branin", {{-5.0, 10.0}, {0.0, 15.0}}, &Branin},
      {"Ishigami", Equal(3, -kPi, kPi), &Ishigami},
      {"Friedman", Equal(10, 0.0, 1.0), &Friedman},
      {"OTL circuit", {{50.0, 150.0}, {25.0, 70.0}, {0.5, 3.0}, {1.2, 2.5}, {0.25, 1.2}, {50.0, 300.0}}, &OtlCircuit},
      {"piston",
       {{30.0, 60.0},
        {0.005, 0.020},
        {0.002, 0.010},
        {1000.0, 5000.0},
        {90000.0, 110000.0},
        {290.0, 296.0},
        {340.0, 360.0}},
       &Piston},
      {"borehole",
       {{0.05, 0.15},
        {100.0, 50000.0},
        {63070.0, 115600.0},
        {990.0, 1110.0},
        {63.1, 116.0},
        {700.0, 820.0},
        {1120.0, 1680.0},
        {9855.0, 12045.0}},
       &Borehole},
      {"wing weight",
       {{150.0, 200.0},
        {220.0, 300.0},
        {6.0, 10.0},
        {-10.0, 10.0},
        {16.0, 45.0},
        {0.5, 1.0},
        {0.08, 0.18},
        {2.5, 6.0},
        {1700.0, 2500.0},
        {0.025, 0.08}},
       &WingWeight},
      {"Hartmann 6", Equal(6, 0.0, 1.0), &Hartmann6},
      {"Welch 20", Equal(20, -0.5, 0.5), &Welch20},
  };
  return functions;
}

}  // namespace accuracy
