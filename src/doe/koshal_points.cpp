#include "doe/koshal_points.h"

#include "doe/point_set.h"

namespace kestrel::math::doe {
namespace {

using Levels = Eigen::Matrix<std::uint64_t, 1, Eigen::Dynamic>;

// C(n + d, d), saturated: the product of (n + i) / i, whole after each step.
std::uint64_t NumberOfPoints(std::uint64_t num_inputs, std::uint64_t order) {
  std::uint64_t count = 1;
  for (std::uint64_t i = 1; i <= order && count <= kMaxEntries; ++i) count = count * (num_inputs + i) / i;
  return count;
}

// Level k of 0, 1, -1, 1 - 1/h, -1 + 1/h, ... with h levels on either side.
double KoshalLevel(std::uint64_t k, std::uint64_t order) {
  if (k == 0) return 0.0;
  const auto on_one_side = static_cast<double>((order + 1) / 2);
  const double size = (on_one_side - static_cast<double>((k - 1) / 2)) / on_one_side;
  return k % 2 == 1 ? size : -size;
}

// The next way to write the same sum: one unit goes from the first part above 0 to the next part, the rest of it to
// the front (Nijenhuis and Wilf, "Combinatorial Algorithms", NEXCOM). False behind the last way.
bool NextOfSum(Levels& parts) {
  Index first = 0;
  while (first < parts.size() && parts(first) == 0) ++first;
  if (first + 1 >= parts.size()) return false;
  const std::uint64_t rest = parts(first) - 1;
  parts(first) = 0;
  parts(0) = rest;
  ++parts(first + 1);
  return true;
}

}  // namespace

Matrix KoshalPoints(std::uint64_t num_inputs, std::uint64_t order) {
  Require(order >= 1, L"A Koshal design needs an order of at least 1.");
  RequireSize(1, num_inputs);
  Matrix points = CentrePoints(NumberOfPoints(num_inputs, order), num_inputs);
  Index row = 0;
  for (std::uint64_t sum = 0; sum <= order; ++sum) {
    Levels parts = Levels::Zero(points.cols());
    parts(0) = sum;
    do {
      points.row(row++) = parts.unaryExpr([&](std::uint64_t k) { return KoshalLevel(k, order); });
    } while (NextOfSum(parts));
  }
  return points;
}

}  // namespace kestrel::math::doe
