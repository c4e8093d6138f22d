#include "doe/latin_hypercube.h"

#include <algorithm>
#include <boost/random/uniform_real_distribution.hpp>
#include <utility>
#include <vector>

namespace kestrel::math::doe {
namespace {

// Correlations settle near 1 / N, where taking them out moves no entry past its neighbour any more. A sweep that does
// not lower the sum of squares by this factor is the last.
constexpr int kMaxSweeps = 10;
constexpr double kWorthwhile = 0.9;

// The entry of rank c among N, as an odd multiple of 1 / N: columns have a mean of exactly 0.
double CellCentre(double c, Index num_samples) {
  const auto n = static_cast<double>(num_samples);
  return (2.0 * c + 1.0 - n) / n;
}

// The cell centres in the order of the given scores; equal scores keep their order.
Vector RankedCentres(const Vector& scores) {
  std::vector<std::pair<double, Index>> order;
  order.reserve(static_cast<std::size_t>(scores.size()));
  for (Index i = 0; i < scores.size(); ++i) order.emplace_back(scores(i), i);
  std::sort(order.begin(), order.end());
  Vector centres(scores.size());
  for (std::size_t rank = 0; rank < order.size(); ++rank) {
    centres(order[rank].second) = CellCentre(static_cast<double>(rank), scores.size());
  }
  return centres;
}

// Sum of the squared correlations between different columns, which all have mean 0 and the same norm.
double CorrelationSum(const Matrix& points) {
  const Matrix products = points.transpose() * points / points.col(0).squaredNorm();
  return products.squaredNorm() - products.diagonal().squaredNorm();
}

// Takes the columns `first` to `first + count - 1` out of column j and ranks what is left.
void TakeOut(Matrix& points, Index j, Index first, Index count) {
  if (count == 0) return;
  const MatrixIn others = points.middleCols(first, count);
  const Vector coefficients = others.transpose() * points.col(j) / points.col(j).squaredNorm();
  points.col(j) = RankedCentres(points.col(j) - others * coefficients);
}

void Sweep(Matrix& points) {
  const Index n = points.cols();
  for (Index j = 1; j < n; ++j) TakeOut(points, j, 0, j);
  for (Index j = n - 2; j >= 0; --j) TakeOut(points, j, j + 1, n - 1 - j);
}

}  // namespace

Matrix RandomLatinHypercube(Index num_samples, Index num_inputs, random::Generator& generator) {
  Matrix points(num_samples, num_inputs);
  for (Index j = 0; j < num_inputs; ++j) {
    const IndexVector cells = random::RandomPermutation(static_cast<std::uint64_t>(num_samples), generator);
    points.col(j) = cells.unaryExpr([&](std::uint64_t c) { return CellCentre(static_cast<double>(c), num_samples); });
  }
  return points;
}

Matrix ScatterInCells(Matrix points, random::Generator& generator) {
  const double half_cell = 1.0 / static_cast<double>(points.rows());
  const boost::random::uniform_real_distribution<double> place(-half_cell, half_cell);
  for (double& entry : points.reshaped()) entry += place(generator);
  return points;
}

Matrix ReduceCorrelations(Matrix points) {
  if (points.rows() < 3 || points.cols() < 2) return points;
  Matrix best = points;
  double smallest = CorrelationSum(best);
  for (int sweep = 0; sweep < kMaxSweeps; ++sweep) {
    Sweep(points);
    const double sum = CorrelationSum(points);
    const bool worthwhile = sum < kWorthwhile * smallest;
    if (sum < smallest) {
      smallest = sum;
      best = points;
    }
    if (!worthwhile) break;
  }
  return best;
}

}  // namespace kestrel::math::doe
