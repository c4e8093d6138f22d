#include "doe/correlation_swaps.h"

#include <algorithm>
#include <boost/random/uniform_int_distribution.hpp>
#include <utility>

namespace kestrel::math::doe {
namespace {

constexpr double kTriesPerEntry = 200.0;
constexpr double kMaxTries = 5e6;

// All columns of a Latin hypercube have the mean 0 and the same norm, so that their products are their correlations but
// for a common factor.
class SwapSearch {
 public:
  explicit SwapSearch(const MatrixIn& points) : points_(points.transpose()), products_(points.transpose() * points) {}

  // Exchanges input j of the points a and b if that lowers the sum of squared products P. The exchange changes
  // P_jk by (x_bj - x_aj) (x_ak - x_bk).
  void Try(Index j, Index a, Index b) {
    change_ = (points_(j, b) - points_(j, a)) * (points_.col(a) - points_.col(b));
    change_(j) = 0.0;
    const double growth = change_.dot(change_ + 2.0 * products_.col(j));
    if (growth >= 0.0) return;
    std::swap(points_(j, a), points_(j, b));
    products_.col(j) += change_;
    products_.row(j) += change_.transpose();
  }

  Matrix Points() const { return points_.transpose(); }

 private:
  Matrix points_;    // n x N, a point is a column
  Matrix products_;  // n x n
  Vector change_;
};

}  // namespace

Matrix SwapForCorrelations(const MatrixIn& points, random::Generator& generator) {
  if (points.rows() < 2 || points.cols() < 2) return points;
  SwapSearch search(points);
  using UniformIndex = boost::random::uniform_int_distribution<Index>;
  const UniformIndex any_input(0, points.cols() - 1);
  const UniformIndex any_point(0, points.rows() - 1);
  const double tries = std::min(kTriesPerEntry * static_cast<double>(points.size()), kMaxTries);
  for (auto left = static_cast<Index>(tries); left > 0; --left) {
    const Index j = any_input(generator);
    const Index a = any_point(generator);
    search.Try(j, a, any_point(generator));
  }
  return search.Points();
}

}  // namespace kestrel::math::doe
