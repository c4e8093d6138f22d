#include "surrogates/local_fits.h"

#include <algorithm>
#include <limits>

#include "statistics/basic_statistics.h"

namespace kestrel::math::metamodel {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Support points and products per panel: it stays in the second-level cache, and so does a block of weights.
constexpr Index kPanelRows = 256;
constexpr Index kPanelColumns = 64;

/// Products of a block of queries, at most: a tenth of a second at the slowest, because a stop is heeded between
/// blocks.
constexpr Index kBlockProducts = 200'000'000;
constexpr Index kMaxQueries = 64;

/// Up to so many queries at many points are cheaper one by one: a panel pays when many queries read it.
constexpr Index kFewQueries = 3;
constexpr Index kManyPoints = 16;

Index QueriesPerBlock(Index num_points, Index num_products, Index num_queries) {
  const Index per_query = std::max<Index>(1, num_points * num_products);
  return std::clamp<Index>(kBlockProducts / per_query, 1, std::clamp<Index>(num_queries, 1, kMaxQueries));
}

}  // namespace

LocalFits::LocalFits(const MatrixIn& basis, const MatrixIn& values, std::uint64_t min_neighbours, Index num_queries)
    : basis_(basis),
      values_(values),
      min_neighbours_(static_cast<Index>(min_neighbours)),
      normal_(Matrix::Zero(basis.cols(), basis.cols())),
      coefficients_(basis.cols(), values.cols()),
      factor_(basis.cols()) {
  for (Index a = 0; a < NumTerms(); ++a) {
    for (Index b = a; b < NumTerms(); ++b) pairs_.emplace_back(a, b);
  }
  for (Index c = 0; c < NumValues(); ++c) {
    for (Index a = 0; a < NumTerms(); ++a) pairs_.emplace_back(a, NumTerms() + c);
    constant_.emplace_back(statistics::isConst(values.col(c)), statistics::Mean(values.col(c)));
  }
  const auto num_products = static_cast<Index>(pairs_.size());
  sums_.resize(num_products, QueriesPerBlock(basis.rows(), num_products, num_queries));
  enough_.resize(static_cast<std::size_t>(BlockSize()));
  if (BlockSize() > kFewQueries)
    panel_.resize(std::min(kPanelRows, basis.rows()), std::min(kPanelColumns, num_products));
}

void LocalFits::Form(const MatrixIn& weights) {
  auto sums = sums_.leftCols(weights.cols());
  sums.setZero();
  AddProducts(0, weights, sums);
  for (Index q = 0; q < weights.cols(); ++q) {
    enough_[static_cast<std::size_t>(q)] =
        min_neighbours_ == 0 || (weights.col(q).array() > kNegligibleWeight).count() >= min_neighbours_;
  }
}

void LocalFits::Add(Index first, const MatrixIn& weights, Index first_query) {
  AddProducts(first, weights, sums_.middleCols(first_query, weights.cols()));
}

void LocalFits::AddProducts(Index first, const MatrixIn& weights, Eigen::Ref<Matrix> sums) {
  const bool one_by_one = weights.cols() <= kFewQueries && (weights.rows() >= kManyPoints || panel_.size() == 0);
  if (!one_by_one) return AddPanels(first, weights, sums);
  for (Index q = 0; q < weights.cols(); ++q) AddRankUpdate(first, weights.col(q), sums.col(q));
}

void LocalFits::AddPanels(Index first, const MatrixIn& weights, Eigen::Ref<Matrix> sums) {
  const auto num_products = static_cast<Index>(pairs_.size());
  for (Index row = 0; row < weights.rows(); row += kPanelRows) {
    const Index rows = std::min(kPanelRows, weights.rows() - row);
    for (Index product = 0; product < num_products; product += kPanelColumns) {
      const Index count = std::min(kPanelColumns, num_products - product);
      for (Index c = 0; c < count; ++c) {
        const auto [a, b] = pairs_[static_cast<std::size_t>(product + c)];
        panel_.col(c).head(rows) =
            Column(a).segment(first + row, rows).cwiseProduct(Column(b).segment(first + row, rows));
      }
      sums.middleRows(product, count).noalias() +=
          panel_.topLeftCorner(rows, count).transpose() * weights.middleRows(row, rows);
    }
  }
}

void LocalFits::AddRankUpdate(Index first, const VectorIn& weights, Eigen::Ref<Vector> sums) {
  const Index rows = weights.size();
  const auto basis = basis_.middleRows(first, rows);
  weighted_.noalias() = weights.asDiagonal() * basis;
  normal_.triangularView<Eigen::Lower>() = weighted_.transpose() * basis;
  Index begin = 0;
  for (Index a = 0; a < NumTerms(); ++a) {
    sums.segment(begin, NumTerms() - a) += normal_.col(a).tail(NumTerms() - a);
    begin += NumTerms() - a;
  }
  for (Index c = 0; c < NumValues(); ++c) {
    sums.segment(begin, NumTerms()).noalias() += weighted_.transpose() * values_.col(c).segment(first, rows);
    begin += NumTerms();
  }
}

void LocalFits::Solve(Index query) {
  const auto sums = sums_.col(query);
  Index begin = 0;
  for (Index a = 0; a < NumTerms(); ++a) {
    normal_.col(a).tail(NumTerms() - a) = sums.segment(begin, NumTerms() - a);
    begin += NumTerms() - a;
  }
  coefficients_ = sums.tail(coefficients_.size()).reshaped(NumTerms(), NumValues());
  if (NumTerms() == 1) {
    coefficients_ /= normal_(0, 0);  // the weighted mean; NaN where no point has a weight
  } else {
    factor_.compute(normal_);
    for (auto column : coefficients_.colwise()) column = factor_.solve(column);
  }
}

void LocalFits::Predict(const MatrixIn& query_basis, Eigen::Ref<Matrix> predictions) {
  const bool solve =
      NumTerms() == 1 || !std::all_of(constant_.begin(), constant_.end(), [](auto& c) { return c.first; });
  for (Index q = 0; q < query_basis.rows(); ++q) {
    if (!enough_[static_cast<std::size_t>(q)]) {
      predictions.row(q).setConstant(kNaN);
      continue;
    }
    if (solve) Solve(q);
    for (Index c = 0; c < NumValues(); ++c) {
      const auto& [is_constant, mean] = constant_[static_cast<std::size_t>(c)];
      predictions(q, c) = is_constant && min_neighbours_ > 0 ? mean : coefficients_.col(c).dot(query_basis.row(q));
    }
  }
}

GroupedLocalFits::GroupedLocalFits(const MatrixIn& basis, const MatrixIn& values, std::uint64_t min_neighbours,
                                   GroupedRows grouped)
    : grouped_(std::move(grouped)),
      basis_(basis(grouped_.rows, Eigen::all)),
      values_(values(grouped_.rows, Eigen::all)),
      fits_(basis_, values_, min_neighbours, basis.rows()),
      weights_(basis.rows(), fits_.BlockSize()),
      others_(basis.rows(), fits_.BlockSize()),
      block_(fits_.BlockSize(), values.cols()),
      fit_(basis.rows(), values.cols()),
      cross_validation_(basis.rows(), values.cols()) {
  for (std::size_t g = 0; g < grouped_.NumGroups(); ++g) {
    group_of_.insert(group_of_.end(), static_cast<std::size_t>(grouped_.Count(g)), g);
  }
}

void GroupedLocalFits::CrossValidate(const WeightsOfBlock& weights, const std::function<void()>& check) {
  Evaluate(weights, check, false);
}

void GroupedLocalFits::FitAndCrossValidate(const WeightsOfBlock& weights, const std::function<void()>& check) {
  Evaluate(weights, check, true);
}

void GroupedLocalFits::Evaluate(const WeightsOfBlock& weights, const std::function<void()>& check, bool with_fit) {
  const Index num_points = basis_.rows();
  for (Index first = 0; first < num_points; first += weights_.cols()) {
    check();
    const Index count = std::min(weights_.cols(), num_points - first);
    weights(first, weights_.leftCols(count));
    others_.leftCols(count) = weights_.leftCols(count);
    for (Index q = 0; q < count; ++q) {
      const std::size_t own = group_of_[static_cast<std::size_t>(first + q)];
      others_.col(q).segment(grouped_.begin[own], grouped_.Count(own)).setZero();
    }
    fits_.Form(others_.leftCols(count));
    WritePredictions(first, count, cross_validation_);
    if (!with_fit) continue;
    AddOwnGroups(first, count);
    WritePredictions(first, count, fit_);
  }
}

void GroupedLocalFits::AddOwnGroups(Index first, Index count) {
  for (Index q = 0; q < count;) {
    const std::size_t own = group_of_[static_cast<std::size_t>(first + q)];
    const Index queries = std::min(grouped_.begin[own + 1] - first, count) - q;
    fits_.Add(grouped_.begin[own], weights_.block(grouped_.begin[own], q, grouped_.Count(own), queries), q);
    q += queries;
  }
}

void GroupedLocalFits::WritePredictions(Index first, Index count, Matrix& predictions) {
  fits_.Predict(basis_.middleRows(first, count), block_.topRows(count));
  for (Index q = 0; q < count; ++q) {
    predictions.row(grouped_.rows[static_cast<std::size_t>(first + q)]) = block_.row(q);
  }
}

}  // namespace kestrel::math::metamodel
