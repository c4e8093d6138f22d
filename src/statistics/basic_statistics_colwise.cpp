#include "statistics/basic_statistics_colwise.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "statistics/basic_statistics.h"
#include "statistics/parabola_basis.h"
#include "support/error_report.h"

namespace kestrel::math::statistics {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// For each column j the value of measure(j) as entry j.
template <class Measure>
Vector PerColumn(const MatrixIn& m, Measure measure) {
  Vector result(m.cols());
  for (Index j = 0; j < m.cols(); ++j) result(j) = measure(j);
  return result;
}

bool Flag(const std::vector<bool>& flags, Index j) { return flags.at(static_cast<std::size_t>(j)); }

// The bases of all columns side by side, so that the correlations of all pairs come from matrix products.
struct ColumnBases {
  explicit ColumnBases(const MatrixIn& m) : deviations(m.rows(), m.cols()), line(deviations), curve(deviations) {
    for (Index j = 0; j < m.cols(); ++j) {
      const ParabolaBasis basis = BuildParabolaBasis(m.col(j));
      deviations.col(j) = UnitDeviations(m.col(j));
      line.col(j) = basis.line;
      curve.col(j) = basis.curve;
    }
  }

  Matrix deviations;
  Matrix line;
  Matrix curve;
};

// What columns and response have in common: the response paired with as many rows as both have, which differ from the
// given ones only after a report that did not raise.
Index CommonRows(const MatrixIn& m, const VectorIn& y) {
  if (m.size() == 0) error::Report(L"Empty design matrix");
  if (m.rows() != y.size()) error::Report(L"Sizes of design table and response vector not consistent");
  return std::min(m.rows(), y.size());
}

bool CheckMoments(const MatrixIn& m, const VectorIn& means, const VectorIn& sigmas, Index i, Index j) {
  const auto within = [&](Index column) { return column >= 0 && column < m.cols(); };
  const bool has_data = m.size() > 0;
  const bool means_fit = means.size() == m.cols();
  const bool sigmas_fit = sigmas.size() == m.cols();
  const bool indices_fit = within(i) && within(j);
  if (!has_data) error::Report(L"Empty design matrix");
  if (!means_fit) error::Report(L"Sizes of input matrix and mean-vector not consistent");
  if (!sigmas_fit) error::Report(L"Sizes of input matrix and sigma-vector not consistent");
  if (!indices_fit) error::Report(L"Indices and sizes of input matrix not consistent");
  return has_data && means_fit && sigmas_fit && indices_fit;
}

std::uint64_t CountLevels(const VectorIn& column) {
  constexpr double kConstantTolerance = 1e-12;
  constexpr double kSmallestGap = 1e-10;
  const Range range = RangeOf(column);
  if (IsNegligible(range, kConstantTolerance)) return 1;
  Vector sorted = 0.5 * RemoveNan(column);  // halved, because the range of huge values of both signs is no number
  std::sort(sorted.begin(), sorted.end());
  const Index gaps = sorted.size() - 1;
  const double half_range = 0.5 * range.highest - 0.5 * range.lowest;
  return 1 + static_cast<std::uint64_t>(
                 ((sorted.tail(gaps) - sorted.head(gaps)).array() / half_range > kSmallestGap).count());
}

}  // namespace

std::vector<bool> ContainsNanColwise(const MatrixIn& m) {
  std::vector<bool> flags;
  for (Index j = 0; j < m.cols(); ++j) flags.push_back(ContainsNan(m.col(j)));
  return flags;
}

Vector MeanColwise(const MatrixIn& m) { return MeanColwise(m, ContainsNanColwise(m)); }

Vector MeanColwise(const MatrixIn& m, const std::vector<bool>& nan_flags) {
  return PerColumn(m, [&](Index j) { return Mean(m.col(j), Flag(nan_flags, j)); });
}

Vector SigmaColwise(const MatrixIn& m, const VectorIn& means) { return SigmaColwise(m, means, ContainsNanColwise(m)); }

Vector SigmaColwise(const MatrixIn& m, const VectorIn& means, const std::vector<bool>& nan_flags) {
  if (means.size() != m.cols()) error::Report(L"Sizes of input matrix and mean-vector not consistent");
  return PerColumn(m, [&](Index j) { return j < means.size() ? Sigma(m.col(j), means(j), Flag(nan_flags, j)) : kNaN; });
}

Matrix calc_rankOrderColwise(const MatrixIn& m) {
  Matrix ranks(m.rows(), m.cols());
  for (Index j = 0; j < m.cols(); ++j) ranks.col(j) = calc_rankOrder(m.col(j));
  return ranks;
}

double CalcCorrelationSimple(const MatrixIn& m, const VectorIn& means, const VectorIn& sigmas, Index i, Index j) {
  if (!CheckMoments(m, means, sigmas, i, j)) return kNaN;
  if (m.rows() == 1 || isConst(m.col(i)) || isConst(m.col(j))) return 0.0;
  const Vector x = (m.col(i).array() - means(i)) / sigmas(i);
  const Vector y = (m.col(j).array() - means(j)) / sigmas(j);
  const double r = x.dot(y) / static_cast<double>(m.rows() - 1);
  return std::isnan(r) ? -1.0 : LimitLinear(r);
}

Matrix CalcLinCCMatrixColwise(const MatrixIn& m) {
  const Index n = m.cols();
  if (n > 0 && m.rows() == 0) error::Report(L"Empty data vector");
  Matrix correlations = Matrix::Constant(n, n, kNaN);
  correlations.diagonal().setOnes();
  if (m.size() == 0) return correlations;
  Matrix deviations(m.rows(), n);
  for (Index j = 0; j < n; ++j) deviations.col(j) = UnitDeviations(m.col(j));
  Matrix products = Matrix::Zero(n, n);
  products.selfadjointView<Eigen::Lower>().rankUpdate(deviations.transpose());
  const std::vector<bool> nan_flags = ContainsNanColwise(m);
  for (Index j = 0; j < n; ++j) {
    for (Index i = j + 1; i < n; ++i) {
      const bool has_nan = Flag(nan_flags, i) || Flag(nan_flags, j);
      correlations(i, j) = has_nan ? CalcLinCC(m.col(i), m.col(j), true, true) : LimitLinear(products(i, j));
      correlations(j, i) = correlations(i, j);
    }
  }
  return correlations;
}

Matrix CalcQuadCCMatrixColwise(const MatrixIn& m) {
  const Index n = m.cols();
  if (n > 0 && m.rows() == 0) error::Report(L"Empty data vector");
  if (m.size() == 0) return Matrix::Constant(n, n, kNaN);
  const ColumnBases bases(m);
  const Matrix along_line = bases.line.transpose() * bases.deviations;
  const Matrix along_curve = bases.curve.transpose() * bases.deviations;
  const std::vector<bool> nan_flags = ContainsNanColwise(m);
  Matrix correlations(n, n);
  for (Index j = 0; j < n; ++j) {
    for (Index i = 0; i < n; ++i) {
      const bool has_nan = Flag(nan_flags, i) || Flag(nan_flags, j);
      correlations(i, j) = has_nan ? CalcQuadCC(m.col(i), m.col(j), true, true)
                                   : QuadraticCorrelation(along_line(i, j), along_curve(i, j));
    }
  }
  return correlations;
}

Vector getLinRespCorrelationColwise(const MatrixIn& m, const VectorIn& y) {
  const Index rows = CommonRows(m, y);
  if (rows == 0) return Vector::Constant(m.cols(), kNaN);
  const VectorIn response = y.head(rows);
  const bool response_has_nan = ContainsNan(response);
  const Vector deviations = UnitDeviations(response);
  return PerColumn(m, [&](Index j) {
    const VectorIn column = m.col(j).head(rows);
    const bool has_nan = response_has_nan || ContainsNan(column);
    return has_nan ? CalcLinCC(column, response, true, true) : LimitLinear(UnitDeviations(column).dot(deviations));
  });
}

Matrix getQuadRespCorrelationColwise(const MatrixIn& m, const VectorIn& y) {
  const Index rows = CommonRows(m, y);
  Matrix correlations = Matrix::Constant(2, m.cols(), kNaN);
  if (rows == 0) return correlations;
  const VectorIn response = y.head(rows);
  const bool response_has_nan = ContainsNan(response);
  const ParabolaBasis of_response = BuildParabolaBasis(response);
  const Vector deviations = UnitDeviations(response);
  for (Index j = 0; j < m.cols(); ++j) {
    const VectorIn column = m.col(j).head(rows);
    if (response_has_nan || ContainsNan(column)) {
      correlations.col(j) << CalcQuadCC(column, response, true, true), CalcQuadCC(response, column, true, true);
      continue;
    }
    const ParabolaBasis of_column = BuildParabolaBasis(column);
    const Vector column_deviations = UnitDeviations(column);
    correlations.col(j) << QuadraticCorrelation(of_column.line.dot(deviations), of_column.curve.dot(deviations)),
        QuadraticCorrelation(of_response.line.dot(column_deviations), of_response.curve.dot(column_deviations));
  }
  return correlations;
}

Matrix Correlation(const MatrixIn& m) { return CalcLinCCMatrixColwise(m); }

IndexVector CalculateNumDiscreteValues(const MatrixIn& m) {
  IndexVector counts(m.cols());
  for (Index j = 0; j < m.cols(); ++j) counts(j) = CountLevels(m.col(j));
  return counts;
}

Matrix SortMatrixByColumn(const MatrixIn& m, Index j) {
  if (j < 0 || j >= m.cols()) error::Report(L"Indices and sizes of input matrix not consistent");
  std::vector<Index> order(static_cast<std::size_t>(m.rows()));
  std::iota(order.begin(), order.end(), Index{0});
  if (j >= 0 && j < m.cols()) {
    // NaN comes first, as in rank order; equal rows keep their order.
    const auto before = [&](Index a, Index b) {
      return m(a, j) < m(b, j) || (std::isnan(m(a, j)) && !std::isnan(m(b, j)));
    };
    std::stable_sort(order.begin(), order.end(), before);
  }
  return m(order, Eigen::all);
}

}  // namespace kestrel::math::statistics
