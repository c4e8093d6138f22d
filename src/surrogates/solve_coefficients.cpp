#include "surrogates/solve_coefficients.h"

#include <Eigen/LU>
#include <algorithm>
#include <limits>

#include "statistics/basic_statistics.h"
#include "surrogates/grouped_rows.h"

namespace kestrel::math::metamodel {
namespace {

using Groups = std::vector<std::uint64_t>;

/// A and b of the normal equations, or a part of them.
struct NormalSums {
  Matrix normal;  ///< lower triangle of P' W P
  Vector right;   ///< P' W y

  NormalSums& operator+=(const NormalSums& other) {
    normal += other.normal;
    right += other.right;
    return *this;
  }
};

NormalSums ZeroSums(Index m) { return {Matrix::Zero(m, m), Vector::Zero(m)}; }

/// The part of each group. @param basis  the rows of P in the order of `grouped`.
std::vector<NormalSums> SumsOfGroups(const MatrixIn& basis, const GroupedRows& grouped, const VectorIn& values,
                                     const VectorIn& weights) {
  const Vector sorted_values = values(grouped.rows);
  const Vector sorted_weights = weights.size() > 0 ? Vector(weights(grouped.rows)) : Vector();
  std::vector<NormalSums> parts;
  for (std::size_t g = 0; g + 1 < grouped.begin.size(); ++g) {
    const Index first = grouped.begin[g];
    const Index count = grouped.Count(g);
    const auto group_basis = basis.middleRows(first, count);
    const VectorIn group_weights =
        sorted_weights.size() > 0 ? VectorIn(sorted_weights.segment(first, count)) : VectorIn(sorted_weights);
    parts.push_back({NormalMatrix(group_basis, group_weights),
                     RightHandSides(group_basis, sorted_values.segment(first, count), group_weights)});
  }
  return parts;
}

/// Entry g is the sum of the parts behind part g.
std::vector<NormalSums> SumsBehind(const std::vector<NormalSums>& parts) {
  std::vector<NormalSums> behind(parts.size(), ZeroSums(parts.front().right.size()));
  for (std::size_t g = parts.size() - 1; g > 0; --g) {
    behind[g - 1] = behind[g];
    behind[g - 1] += parts[g];
  }
  return behind;
}

}  // namespace

Matrix NormalMatrix(const MatrixIn& P, const VectorIn& weights) {
  Matrix normal = Matrix::Zero(P.cols(), P.cols());
  if (weights.size() == 0) {
    normal.selfadjointView<Eigen::Lower>().rankUpdate(P.transpose());
  } else {
    const Matrix weighted = weights.asDiagonal() * P;
    normal.triangularView<Eigen::Lower>() = weighted.transpose() * P;
  }
  return normal;
}

Matrix RightHandSides(const MatrixIn& P, const MatrixIn& values, const VectorIn& weights) {
  if (weights.size() == 0) return P.transpose() * values;
  return P.transpose() * (weights.asDiagonal() * values);
}

Vector SolveCoefficients(const MatrixIn& P, const VectorIn& values, const VectorIn& weights) {
  if (statistics::isConst(values)) {
    Vector coefficients = Vector::Zero(P.cols());
    if (coefficients.size() > 0) coefficients[0] = statistics::Mean(values);
    return coefficients;
  }
  return NormalEquations(P, weights).Solve(RightHandSides(P, values, weights));
}

NormalEquations::NormalEquations(const MatrixIn& P, const VectorIn& weights)
    : normal_(NormalMatrix(P, weights)), factor_(normal_) {}

Matrix NormalEquations::Solve(const MatrixIn& right_hand_sides) const { return factor_.solve(right_hand_sides); }

bool NormalEquations::HasFullRank() const {
  // For a positive definite A the full-pivot search ends on the diagonal, and no pivot falls below 1 / |A^-1|. So a
  // condition estimate far from the threshold settles the question without a second factorisation.
  constexpr double kClearlyRegular = 1e-10;
  const bool every_pivot_counts = factor_.vectorD().minCoeff() > std::numeric_limits<double>::min();
  if (every_pivot_counts && factor_.rcond() > kClearlyRegular) return true;
  const Matrix full = normal_.selfadjointView<Eigen::Lower>();
  return Eigen::FullPivLU<Matrix>(full).rank() == full.cols();
}

Vector NormalEquations::Leverages(const MatrixIn& P, const VectorIn& weights) const {
  const Matrix solved = factor_.solve(P.transpose());  // m x N, column i is A^-1 p_i
  Vector leverages = P.cwiseProduct(solved.transpose()).rowwise().sum();
  if (weights.size() > 0) leverages.array() *= weights.array();
  return leverages;
}

Vector CrossValidate(const MatrixIn& P, const VectorIn& values, const VectorIn& weights, const Groups& subsets) {
  if (statistics::isConst(values)) return Vector::Constant(values.size(), statistics::Mean(values));
  const GroupedRows grouped = GroupRows(subsets);
  const Matrix basis = P(grouped.rows, Eigen::all);
  const std::vector<NormalSums> parts = SumsOfGroups(basis, grouped, values, weights);
  std::vector<NormalSums> others = SumsBehind(parts);

  Vector predictions(values.size());
  NormalSums before = ZeroSums(P.cols());
  for (std::size_t g = 0; g < parts.size(); ++g) {
    others[g] += before;
    before += parts[g];
    const Vector coefficients = Eigen::LDLT<Eigen::Ref<Matrix>>(others[g].normal).solve(others[g].right);
    const Vector group_predictions = basis.middleRows(grouped.begin[g], grouped.Count(g)) * coefficients;
    for (Index i = 0; i < group_predictions.size(); ++i) {
      predictions[grouped.rows[static_cast<std::size_t>(grouped.begin[g] + i)]] = group_predictions[i];
    }
  }
  return predictions;
}

}  // namespace kestrel::math::metamodel
