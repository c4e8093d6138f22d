#pragma once

#include <Eigen/Cholesky>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "support/linear_algebra.h"
#include "surrogates/grouped_rows.h"

/// Local least squares: at each query point a fit of the same basis to the same values, with weights of its own.
///
/// With the basis P (N x k) and the values Z (N x r, one column per right-hand side) at the support points, the
/// coefficients of query q solve (P' W_q P) c_q = P' W_q Z. Entry (a, b) of all these matrices is one product,
/// sum_i (p_a o p_b)_i w_iq, so that a block of queries costs one matrix product with k (k + 1) / 2 + k r columns
/// instead of a rank update for each.
namespace kestrel::math::metamodel {

/// Weights up to this do not count as those of neighbours.
inline constexpr double kNegligibleWeight = 1e-5;

class LocalFits {
 public:
  /// @param basis, values   N x k and N x r matrices that outlive the object.
  /// @param min_neighbours  a query with fewer weights above 1e-5 has no fit: its prediction is NaN.
  /// @param num_queries     how many there will be in all; it bounds the block.
  LocalFits(const MatrixIn& basis, const MatrixIn& values, std::uint64_t min_neighbours, Index num_queries);

  /// Queries of a block at most: few enough that a block takes milliseconds and stays in the cache.
  Index BlockSize() const { return sums_.cols(); }

  /// Starts a block. @param weights  N x B, column q belongs to query q. B is at most `BlockSize`.
  void Form(const MatrixIn& weights);
  /// Adds the support points first .. first + rows(weights) - 1 to the fits of the queries from `first_query` on.
  /// @param weights  one row per support point, one column per query.
  void Add(Index first, const MatrixIn& weights, Index first_query);
  /// Predictions p_q . c_q of all queries of the block, B x r. @param query_basis  B x k, the basis at the queries.
  void Predict(const MatrixIn& query_basis, Eigen::Ref<Matrix> predictions);

 private:
  Index NumTerms() const { return basis_.cols(); }
  Index NumValues() const { return values_.cols(); }
  VectorIn Column(Index c) const { return c < NumTerms() ? basis_.col(c) : values_.col(c - NumTerms()); }
  void AddProducts(Index first, const MatrixIn& weights, Eigen::Ref<Matrix> sums);
  void AddPanels(Index first, const MatrixIn& weights, Eigen::Ref<Matrix> sums);
  void AddRankUpdate(Index first, const VectorIn& weights, Eigen::Ref<Vector> sums);
  void Solve(Index query);

  MatrixIn basis_;
  MatrixIn values_;
  Index min_neighbours_;
  std::vector<std::pair<Index, Index>> pairs_;     ///< of columns of [P Z], in the order of the rows of `sums_`
  std::vector<std::pair<bool, double>> constant_;  ///< per value column: all values are one, and which
  Matrix panel_;                                   ///< products of pairs of columns, for a block of rows
  Matrix weighted_;                                ///< w_i p_i, for a single query
  Matrix sums_;                                    ///< one column per query: lower triangle of P'WP, then P'WZ
  std::vector<bool> enough_;                       ///< per query
  Matrix normal_;
  Matrix coefficients_;
  Eigen::LDLT<Matrix> factor_;
};

/// Local fits at the support points themselves: with all points, and without those of the point's own group.
class GroupedLocalFits {
 public:
  /// Fills the weights of a block of queries, N x B; rows and queries are in the order of the groups.
  using WeightsOfBlock = std::function<void(Index first_query, Eigen::Ref<Matrix> weights)>;

  GroupedLocalFits(const GroupedLocalFits&) = delete;  // `fits_` looks into the matrices beside it
  GroupedLocalFits& operator=(const GroupedLocalFits&) = delete;

  /// Basis, values and `grouped` as in `LocalFits`, in the order of the sample; predictions are in that order as well.
  GroupedLocalFits(const MatrixIn& basis, const MatrixIn& values, std::uint64_t min_neighbours, GroupedRows grouped);

  /// Fits without the own group, which `GetCrossValidation` then returns, N x r. @param check  called before each
  /// block; it may throw.
  void CrossValidate(const WeightsOfBlock& weights, const std::function<void()>& check);
  /// The same, and the fits with all points, which `GetFit` then returns; NaN where the former are. They are the former
  /// plus the own group: taking the own group out of the sum over all would cancel, because the own weights are the
  /// largest.
  void FitAndCrossValidate(const WeightsOfBlock& weights, const std::function<void()>& check);
  const Matrix& GetCrossValidation() const { return cross_validation_; }
  const Matrix& GetFit() const { return fit_; }

 private:
  void Evaluate(const WeightsOfBlock& weights, const std::function<void()>& check, bool with_fit);
  void AddOwnGroups(Index first, Index count);
  void WritePredictions(Index first, Index count, Matrix& predictions);

  GroupedRows grouped_;
  std::vector<std::size_t> group_of_;  ///< of each row in the order of the groups
  Matrix basis_;                       ///< in the order of the groups
  Matrix values_;                      ///< likewise
  LocalFits fits_;
  Matrix weights_;  ///< N x B
  Matrix others_;   ///< the same without the own groups
  Matrix block_;    ///< predictions of a block
  Matrix fit_;
  Matrix cross_validation_;
};

}  // namespace kestrel::math::metamodel
