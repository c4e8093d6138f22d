#include "doe/fekete_points.h"

#include <algorithm>
#include <array>
#include <boost/random/normal_distribution.hpp>
#include <cmath>

#include "doe/point_set.h"

namespace kestrel::math::doe {
namespace {

constexpr std::uint64_t kMaxPoints = 4096;  // an evaluation of the energy visits all pairs
constexpr double kMaxWork = 1e9;            // multiplications in all: some seconds
constexpr int kMaxSteps = 2000;
constexpr double kSmallForce = 1e-9;      // relative to the radial force, (N - 1) / 2
constexpr double kLeastDistance = 1e-30;  // squared; keeps coinciding points finite

// Everything here is transposed, n x N: a point is a column.
Matrix RandomOnSphere(Index num_points, Index num_inputs, random::Generator& generator) {
  Matrix points(num_inputs, num_points);
  boost::random::normal_distribution<double> normal;
  for (double& entry : points.reshaped()) entry = normal(generator);
  points.colwise().normalize();
  return points;
}

struct Energy {
  double value;
  Matrix force;  // minus its gradient along the sphere, n x N
};

// force_i = sum_j (x_i - x_j) / |x_i - x_j|^2 without its part along x_i.
Energy Evaluate(const Matrix& points) {
  Energy energy{0.0, Matrix(points.rows(), points.cols())};
  for (Index i = 0; i < points.cols(); ++i) {
    const auto point = points.col(i);
    Vector squares = (points.colwise() - point).colwise().squaredNorm().transpose().cwiseMax(kLeastDistance);
    squares(i) = 1.0;  // no energy and, as x_i - x_i is 0, no force
    energy.value -= 0.25 * squares.array().log().sum();
    const Vector weights = squares.cwiseInverse();
    const Vector force = weights.sum() * point - points * weights;
    energy.force.col(i) = force - force.dot(point) * point;
  }
  return energy;
}

// The points after a step along the force, on the sphere again.
Matrix Moved(const Matrix& points, const Matrix& force, double step) {
  Matrix moved = points + step * force;
  moved.colwise().normalize();
  return moved;
}

// |s's| / |s'y| for the last change s of the points and y of the force.
double BarzilaiBorwein(const Matrix& change, const Matrix& force_change, double fallback) {
  const double curvature = std::abs(change.cwiseProduct(force_change).sum());
  return curvature > 0.0 ? change.squaredNorm() / curvature : fallback;
}

// Gradient steps that may raise the energy, though not above the highest of the last few values: that keeps the long
// steps which make the method fast (Raydan 1997).
Matrix Relax(Matrix points) {
  const auto count = static_cast<double>(points.cols());
  const double first_step = 1.0 / (count * count);  // below 1 / curvature, also for points in a plane
  const int max_steps = static_cast<int>(
      std::clamp(kMaxWork / (count * count * static_cast<double>(points.rows())), 1.0, 1.0 * kMaxSteps));
  double step = first_step;
  Energy energy = Evaluate(points);
  std::array<double, 10> recent;  // values, the newest over the oldest
  recent.fill(energy.value);
  for (int i = 0; i < max_steps && energy.force.cwiseAbs().maxCoeff() > kSmallForce * count; ++i) {
    Matrix next = Moved(points, energy.force, step);
    Energy next_energy = Evaluate(next);
    const double highest = *std::max_element(recent.begin(), recent.end());
    if (next_energy.value > highest + 1e-13 * std::abs(highest)) {
      step *= 0.25;
      continue;
    }
    step = BarzilaiBorwein(next - points, next_energy.force - energy.force, first_step);
    points = std::move(next);
    energy = std::move(next_energy);
    recent[static_cast<std::size_t>(i) % recent.size()] = energy.value;
  }
  return points;
}

}  // namespace

Matrix FeketePoints(std::uint64_t num_points, std::uint64_t num_inputs, random::Generator& generator) {
  RequireSize(num_points, num_inputs);
  Require(num_points >= 2 && num_points <= kMaxPoints, L"Fekete points number from 2 to " +
                                                           std::to_wstring(kMaxPoints) + L", not " +
                                                           std::to_wstring(num_points) + L".");
  Require(num_inputs > 1 || num_points == 2, L"A single input has two Fekete points only.");
  if (num_inputs == 1) return Vector{{-1.0, 1.0}};
  return Relax(RandomOnSphere(static_cast<Index>(num_points), static_cast<Index>(num_inputs), generator)).transpose();
}

}  // namespace kestrel::math::doe
