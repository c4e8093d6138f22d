#pragma once

#include <complex>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "support/linear_algebra.h"

/// Small problems of nonlinear programming with known optima, most of them of the collection of Hock and Schittkowski
/// (1981), "Test examples for nonlinear programming codes"; their numbers there are in the names.
namespace kestrel::testing {

using Complex = std::complex<double>;
using ComplexVector = std::vector<Complex>;

struct TestProblem {
  std::string name;
  /// The objective and then the constraints, equalities first; inequalities are >= 0.
  std::function<ComplexVector(const ComplexVector&)> functions;
  int equalities;
  int inequalities;
  std::vector<double> lower;
  std::vector<double> upper;
  std::vector<double> start;
  double optimum;
  int max_function_calls;  ///< with exact gradients at accuracy 1e-10
};

struct ProblemValues {
  math::Vector values;     ///< 1 + m
  math::Matrix gradients;  ///< (1 + m) x n
};

/// Values and gradients; the latter by the complex step, exact to the last digits: f'(x) = Im f(x + i h) / h.
inline ProblemValues Evaluate(const TestProblem& problem, const math::Vector& x) {
  constexpr double kStep = 1e-40;
  ComplexVector point(x.data(), x.data() + x.size());
  ProblemValues result;
  result.gradients.resize(1 + problem.equalities + problem.inequalities, x.size());
  result.values.resize(result.gradients.rows());
  for (std::size_t i = 0; i < point.size(); ++i) {
    point[i].imag(kStep);
    const ComplexVector values = problem.functions(point);
    point[i].imag(0.0);
    for (math::Index r = 0; r < result.values.size(); ++r) {
      const Complex value = values[static_cast<std::size_t>(r)];
      result.values(r) = value.real();
      result.gradients(r, static_cast<math::Index>(i)) = value.imag() / kStep;
    }
  }
  return result;
}

inline Complex Square(Complex value) { return value * value; }
inline Complex Cube(Complex value) { return value * value * value; }

inline Complex Rosenbrock(const ComplexVector& x) { return 100.0 * Square(x[1] - Square(x[0])) + Square(1.0 - x[0]); }

inline Complex Colville(const ComplexVector& x) {
  return 100.0 * Square(x[1] - Square(x[0])) + Square(1.0 - x[0]) + 90.0 * Square(x[3] - Square(x[2])) +
         Square(1.0 - x[2]) + 10.1 * (Square(x[1] - 1.0) + Square(x[3] - 1.0)) + 19.8 * (x[1] - 1.0) * (x[3] - 1.0);
}

inline Complex PowellBadlyScaled(const ComplexVector& x) {
  return Square(1e4 * x[0] * x[1] - 1.0) + Square(std::exp(-x[0]) + std::exp(-x[1]) - 1.0001);
}

inline ComplexVector RosenSuzuki(const ComplexVector& x) {
  const Complex a = x[0], b = x[1], c = x[2], d = x[3];
  return {a * a + b * b + 2.0 * c * c + d * d - 5.0 * a - 5.0 * b - 21.0 * c + 7.0 * d,
          8.0 - a * a - b * b - c * c - d * d - a + b - c + d, 10.0 - a * a - 2.0 * b * b - c * c - 2.0 * d * d + a + d,
          5.0 - 2.0 * a * a - b * b - c * c - 2.0 * a + b + d};
}

inline ComplexVector SevenInputs(const ComplexVector& x) {
  return {Square(x[0] - 10.0) + 5.0 * Square(x[1] - 12.0) + Square(Square(x[2])) + 3.0 * Square(x[3] - 11.0) +
              10.0 * Square(Cube(x[4])) + 7.0 * Square(x[5]) + Square(Square(x[6])) - 4.0 * x[5] * x[6] - 10.0 * x[5] -
              8.0 * x[6],
          127.0 - 2.0 * Square(x[0]) - 3.0 * Square(Square(x[1])) - x[2] - 4.0 * Square(x[3]) - 5.0 * x[4],
          282.0 - 7.0 * x[0] - 3.0 * x[1] - 10.0 * Square(x[2]) - x[3] + x[4],
          196.0 - 23.0 * x[0] - Square(x[1]) - 6.0 * Square(x[5]) + 8.0 * x[6],
          -4.0 * Square(x[0]) - Square(x[1]) + 3.0 * x[0] * x[1] - 2.0 * Square(x[2]) - 5.0 * x[5] + 11.0 * x[6]};
}

constexpr double kFar = 1e30;  ///< no bound

inline std::vector<TestProblem> TestProblems() {
  using X = ComplexVector;
  const auto free = [](std::size_t n) { return std::vector<double>(n, -kFar); };
  const auto open = [](std::size_t n) { return std::vector<double>(n, kFar); };
  const auto all = [](std::size_t n, double value) { return std::vector<double>(n, value); };
  // clang-format off
  return {
      {"Rosenbrock_bound_2",
       [](const X& x) { return X{Rosenbrock(x)}; },
       0, 0, {-kFar, 1.5}, open(2), {2, 3}, 0.0504261879, 34},
      {"Sine_valley_5",
       [](const X& x) { return X{std::sin(x[0] + x[1]) + Square(x[0] - x[1]) - 1.5 * x[0] + 2.5 * x[1] + 1.0}; },
       0, 0, {-1.5, -3}, {4, 3}, {0, 0}, -1.9132229549810367, 9},  // -sqrt(3)/2 - pi/3
      {"Colville_38",
       [](const X& x) { return X{Colville(x)}; },
       0, 0, all(4, -10), all(4, 10), {-3, -1, -3, -1}, 0.0, 130},
      {"Product_in_box_45",
       [](const X& x) { return X{2.0 - x[0] * x[1] * x[2] * x[3] * x[4] / 120.0}; },
       0, 0, all(5, 0), {1, 2, 3, 4, 5}, all(5, 2), 1.0, 10},
      {"Powell_badly_scaled",
       [](const X& x) { return X{PowellBadlyScaled(x)}; },
       0, 0, {0, 0}, {1, 10}, {0, 1}, 0.0, 340},
      {"Rosenbrock_cubic_and_line",
       [](const X& x) {
         return X{Rosenbrock(x), x[1] - 1.0 - Cube(x[0] - 1.0), 2.0 - x[0] - x[1]};
       },
       0, 2, {-1.5, -0.5}, {1.5, 2.5}, {1.2, 2}, 0.0, 10},
      {"Parabola_on_curve_6",
       [](const X& x) {
         return X{Square(1.0 - x[0]), 10.0 * (x[1] - Square(x[0]))};
       },
       1, 0, free(2), open(2), {-1.2, 1}, 0.0, 33},
      {"Logarithm_on_oval_7",
       [](const X& x) {
         return X{std::log(1.0 + Square(x[0])) - x[1], Square(1.0 + Square(x[0])) + Square(x[1]) - 4.0};
       },
       1, 0, free(2), open(2), {2, 2}, -1.7320508075688772, 17},  // -sqrt(3)
      {"Circle_above_parabola_11",
       [](const X& x) {
         return X{Square(x[0] - 5.0) + Square(x[1]) - 25.0, x[1] - Square(x[0])};
       },
       0, 1, free(2), open(2), {4.9, 0.1}, -8.498464223, 12},
      {"Quadratic_in_ellipse_12",
       [](const X& x) {
         return X{0.5 * Square(x[0]) + Square(x[1]) - x[0] * x[1] - 7.0 * x[0] - 7.0 * x[1],
                  25.0 - 4.0 * Square(x[0]) - Square(x[1])};
       },
       0, 1, free(2), open(2), {0, 0}, -30.0, 21},
      {"Product_in_ellipsoid_29",
       [](const X& x) {
         return X{-x[0] * x[1] * x[2], 48.0 - Square(x[0]) - 2.0 * Square(x[1]) - 4.0 * Square(x[2])};
       },
       0, 1, free(3), open(3), {1, 1, 1}, -22.627416997969522, 18},  // -16 sqrt(2)
      {"Linear_on_two_surfaces_39",
       [](const X& x) {
         return X{-x[0], x[1] - Cube(x[0]) - Square(x[2]), Square(x[0]) - x[1] - Square(x[3])};
       },
       2, 0, free(4), open(4), {2, 2, 2, 2}, -1.0, 18},
      {"Rosen_Suzuki_43", RosenSuzuki, 0, 3, free(4), open(4), {0, 0, 0, 0}, -44.0, 15},
      {"Quadratic_on_planes_48",
       [](const X& x) {
         return X{Square(x[0] - 1.0) + Square(x[1] - x[2]) + Square(x[3] - x[4]),
                  x[0] + x[1] + x[2] + x[3] + x[4] - 5.0, x[2] - 2.0 * (x[3] + x[4]) + 3.0};
       },
       2, 0, free(5), open(5), {3, 5, -3, 2, -2}, 0.0, 11},
      {"Product_and_sphere_71",
       [](const X& x) {
         return X{x[0] * x[3] * (x[0] + x[1] + x[2]) + x[2],
                  Square(x[0]) + Square(x[1]) + Square(x[2]) + Square(x[3]) - 40.0, x[0] * x[1] * x[2] * x[3] - 25.0};
       },
       1, 1, all(4, 1), all(4, 5), {1, 5, 5, 1}, 17.0140172892, 9},
      {"Quadratic_in_polytope_76",
       [](const X& x) {
         return X{Square(x[0]) + 0.5 * Square(x[1]) + Square(x[2]) + 0.5 * Square(x[3]) - x[0] * x[2] + x[2] * x[3] -
                      x[0] - 3.0 * x[1] + x[2] - x[3],
                  5.0 - x[0] - 2.0 * x[1] - x[2] - x[3], 4.0 - 3.0 * x[0] - x[1] - 2.0 * x[2] + x[3],
                  x[1] + 4.0 * x[2] - 1.5};
       },
       0, 3, all(4, 0), open(4), all(4, 0.5), -103.0 / 22.0, 7},
      {"Seven_inputs_100", SevenInputs, 0, 4, free(7), open(7), {1, 2, 0, 4, 0, 1, 1}, 680.6300573, 20},
  };
  // clang-format on
}

}  // namespace kestrel::testing
