#include "surrogates/thin_plate_system.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "statistics/distances.h"
#include "surrogates/dense_operations.h"
#include "surrogates/grouped_rows.h"

namespace kestrel::math::metamodel {
namespace {

/// Query points are evaluated in blocks that stay in the cache with what is made of them.
constexpr Index kBlockRows = 256;

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

/// phi = r^2 log r = s log(s) / 2, an expression on the squared distances s; 0 for s = 0.
auto RadialFunction(const Vector& s) {
  return 0.5 * s.array() * s.array().max(std::numeric_limits<double>::min()).log();
}

/// (1, x_a') in each row.
Matrix LinearBasis(const MatrixIn& points) {
  Matrix basis(points.rows(), points.cols() + 1);
  basis << Vector::Ones(points.rows()), points;
  return basis;
}

/// K, and whether all points differ.
struct RadialMatrix {
  Matrix values;
  bool distinct = true;
};

RadialMatrix BuildRadialMatrix(const MatrixIn& points) {
  const Index count = points.rows();
  RadialMatrix radial{Matrix::Zero(count, count)};
  Vector s;
  for (Index b = 0; b + 1 < count; ++b) {
    const Index below = count - 1 - b;
    s.resize(below);
    statistics::CalcSquaredDistances(points, points.row(b), s);
    radial.distinct = radial.distinct && s.minCoeff() > 0.0;
    radial.values.col(b).tail(below) = RadialFunction(s);
  }
  radial.values.triangularView<Eigen::StrictlyUpper>() = radial.values.transpose();
  return radial;
}

}  // namespace

Vector ThinPlate::Evaluate(const MatrixIn& points, const MatrixIn& query) const {
  Vector values = (query * linear.tail(query.cols())).array() + linear(0);
  Vector s;
  for (Index first = 0; first < query.rows(); first += kBlockRows) {
    const Index count = std::min(kBlockRows, query.rows() - first);
    const Matrix block = query.middleRows(first, count);
    s.resize(count);
    auto sum = values.segment(first, count).array();
    for (Index b = 0; b < points.rows(); ++b) {
      statistics::CalcSquaredDistances(block, points.row(b), s);
      sum += radial(b) * RadialFunction(s);
    }
  }
  return values;
}

ThinPlateSystem::ThinPlateSystem(const MatrixIn& points) {
  const Index terms = points.cols() + 1;
  const Index free = points.rows() - terms;
  if (free < 0 || !points.allFinite()) return;
  tail_.compute(LinearBasis(points));
  solvable_ = tail_.rank() == terms;
  if (!solvable_) return;

  RadialMatrix radial = BuildRadialMatrix(points);
  distinct_ = radial.distinct;
  radial.values.applyOnTheLeft(tail_.householderQ().adjoint());
  radial.values.applyOnTheRight(tail_.householderQ());
  rotated_upper_ = radial.values.topRightCorner(terms, free);
  rotated_ = radial.values.bottomRightCorner(free, free);
}

bool ThinPlateSystem::Factorise(double smoothing) {
  if (!solvable_ || !std::isfinite(smoothing) || smoothing < 0.0) return false;
  if (smoothing == 0.0 && !distinct_) return false;
  Matrix inner = rotated_;
  inner.diagonal().array() += smoothing;
  factor_.compute(inner);
  return factor_.info() == Eigen::Success && factor_.rcond() > kEpsilon;
}

ThinPlate ThinPlateSystem::Solve(const VectorIn& values) const {
  const Index terms = NumTerms();
  const Vector rotated = tail_.householderQ().adjoint() * values;
  Vector radial = Vector::Zero(values.size());
  radial.tail(NumFree()) = factor_.solve(rotated.tail(NumFree()));  // g
  Vector linear = rotated.head(terms) - rotated_upper_ * radial.tail(NumFree());
  tail_.matrixR().topLeftCorner(terms, terms).triangularView<Eigen::Upper>().solveInPlace(linear);
  radial.applyOnTheLeft(tail_.householderQ());
  return {std::move(radial), tail_.colsPermutation() * linear};
}

Vector ThinPlateSystem::CrossValidate(const VectorIn& values, const std::vector<std::uint64_t>& subsets) const {
  // B = L L' and V = L^-1 Q2', so that G = V'V.
  const Index free = NumFree();
  Matrix root = Matrix::Zero(free, values.size());
  root.rightCols(free) = factor_.matrixL();
  InvertLower(root.rightCols(free), nullptr);
  root.applyOnTheRight(tail_.householderQ().adjoint());
  const Vector radial = root.transpose() * (root * values);  // c = G z

  const double singular = static_cast<double>(values.size()) * kEpsilon * root.colwise().squaredNorm().maxCoeff();
  Vector predicted = Vector::Constant(values.size(), std::numeric_limits<double>::quiet_NaN());
  const GroupedRows grouped = GroupRows(subsets);
  for (std::size_t g = 0; g < grouped.NumGroups(); ++g) {
    const std::vector<Index> samples = grouped.Group(g);
    const Matrix columns = root(Eigen::all, samples);
    const Eigen::LDLT<Matrix> block(columns.transpose() * columns);
    if (!(block.vectorD().minCoeff() > singular)) continue;
    predicted(samples) = values(samples) - block.solve(radial(samples));
  }
  return predicted;
}

}  // namespace kestrel::math::metamodel
