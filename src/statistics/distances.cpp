#include "statistics/distances.h"

#include <algorithm>
#include <boost/dynamic_bitset.hpp>
#include <cmath>
#include <limits>
#include <vector>

#include "statistics/basic_statistics.h"
#include "support/error_report.h"

namespace kestrel::math::statistics {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kCoincident = 1e-12;  // as a share of the largest distance or of the range

// The gaps between sorted neighbours of a column, without its NaN entries.
Vector Gaps(const VectorIn& column) {
  Vector sorted = RemoveNan(column);
  std::sort(sorted.begin(), sorted.end());
  const Index gaps = std::max<Index>(sorted.size() - 1, 0);
  return sorted.tail(gaps) - sorted.head(gaps);
}

Matrix SelectColumns(const MatrixIn& m, const std::vector<Index>& columns) { return m(Eigen::all, columns); }

}  // namespace

void CalcSquaredDistances(const MatrixIn& m, const RowIn& point, Eigen::Ref<Vector> distances) {
  distances.setZero();
  for (Index j = 0; j < m.cols(); ++j) {
    distances.array() += (m.col(j).tail(distances.size()).array() - point(j)).square();
  }
}

Matrix CalcDistanceMatrix(const MatrixIn& m) {
  if (m.size() == 0) error::Report(L"Empty data matrix");
  const Index n = m.rows();
  Matrix distances = Matrix::Zero(n, n);
  for (Index i = 0; i + 1 < n; ++i) {
    CalcSquaredDistances(m, m.row(i), distances.col(i).tail(n - i - 1));
    distances.row(i).tail(n - i - 1) = distances.col(i).tail(n - i - 1).transpose();
  }
  return distances;
}

double CalcMinDistanceFromMatrix(const MatrixIn& d) {
  if (d.size() == 0) return 0.0;
  const double limit = kCoincident * d.maxCoeff<Eigen::PropagateNumbers>();
  double smallest = kInfinity;
  for (Index j = 0; j < d.cols(); ++j) {
    for (Index i = 0; i <= std::min(j, d.rows() - 1); ++i) {
      if (d(i, j) >= limit) smallest = std::min(smallest, d(i, j));
    }
  }
  return smallest;
}

Vector CalcMinDistancesPerDimension(const MatrixIn& m) {
  Vector smallest(m.cols());
  for (Index j = 0; j < m.cols(); ++j) {
    const Vector gaps = Gaps(m.col(j));
    const double limit = kCoincident * gaps.sum();  // the gaps add up to the range
    // The square of the largest double, the value where no gap counts, is infinite.
    smallest(j) =
        gaps.size() == 0 ? kInfinity : (gaps.array() > limit).select(gaps.array().square(), kInfinity).minCoeff();
  }
  return smallest;
}

Vector CalcMaxMinDistancesPerDimension(const MatrixIn& m) {
  Vector largest = Vector::Zero(m.cols());
  for (Index j = 0; j < m.cols(); ++j) {
    const Vector gaps = Gaps(m.col(j));
    if (gaps.size() > 0) largest(j) = std::pow(gaps.maxCoeff(), 2);
  }
  return largest;
}

Vector CalcRadii(const MatrixIn& m, std::uint64_t k) {
  const Index n = m.rows();
  Vector radii = Vector::Zero(n);
  if (n == 0 || m.cols() == 0) return radii;
  const auto rank = static_cast<Index>(std::clamp<std::uint64_t>(k, 1, static_cast<std::uint64_t>(n)) - 1);
  Eigen::ArrayXd distances(n);
  for (Index i = 0; i < n; ++i) {
    CalcSquaredDistances(m, m.row(i), distances.matrix());
    // A row with a NaN is no neighbour of any; the selection below needs a strict order.
    distances = distances.isNaN().select(kInfinity, distances);
    std::nth_element(distances.begin(), distances.begin() + rank, distances.end());
    radii(i) = std::sqrt(distances(rank));
  }
  return radii;
}

Vector CalcDensity(const MatrixIn& points, const MatrixIn& support, const boost::dynamic_bitset<>& selection,
                   double radius) {
  constexpr double kDecay = 0.21714724095162594;
  const auto bits = static_cast<Index>(selection.size());
  if (points.cols() != support.cols() || bits != support.cols()) error::Report(L"Dimensions of inputs not consistent");
  const Index common = std::min({points.cols(), support.cols(), bits});
  std::vector<Index> columns;
  for (Index j = 0; j < common; ++j) {
    if (selection[static_cast<std::size_t>(j)]) columns.push_back(j);
  }
  const auto num_support = static_cast<double>(support.rows());
  if (columns.empty()) return Vector::Constant(points.rows(), num_support);

  const double floor = static_cast<double>(columns.size()) / (num_support * num_support);
  const double factor = -1.0 / (std::max(radius * radius, floor) * kDecay);
  const Matrix selected = SelectColumns(support, columns);
  const Matrix queries = SelectColumns(points, columns);
  Vector density(points.rows());
  Eigen::ArrayXd distances(support.rows());
  for (Index q = 0; q < points.rows(); ++q) {
    CalcSquaredDistances(selected, queries.row(q), distances.matrix());
    density(q) = (distances * factor).exp().sum();
  }
  return density;
}

}  // namespace kestrel::math::statistics
