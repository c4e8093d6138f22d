#include "statistics/basic_statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "statistics/parabola_basis.h"
#include "support/error_report.h"

namespace kestrel::math::statistics {
namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kConstantRange = 2.220446049250313e-13;

// Applies a measure to the entries that count: all, or those that are not NaN.
template <class Measure>
double OverEntries(const VectorIn& values, bool ignore_nan, Measure measure) {
  if (values.size() == 0) error::Report(L"Empty design vector");
  return ignore_nan && ContainsNan(values) ? measure(RemoveNan(values)) : measure(values);
}

// The pairs as a matrix of two columns. After a report that did not raise, x and y are paired as far as both reach.
Matrix DataPairs(const VectorIn& x, const VectorIn& y, bool remove_nan) {
  if (x.size() == 0) error::Report(L"Empty data vector");
  if (x.size() != y.size()) error::Report(L"Sizes of input vectors for linear correlation not consistent");
  const Index n = std::min(x.size(), y.size());
  Matrix pairs(n, 2);
  Index kept = 0;
  for (Index i = 0; i < n; ++i) {
    if (remove_nan && (std::isnan(x(i)) || std::isnan(y(i)))) continue;
    pairs.row(kept++) << x(i), y(i);
  }
  pairs.conservativeResize(kept, Eigen::NoChange);
  return pairs;
}

struct Unexplained {
  double num_pairs;
  double share;  // SSE / SST over the complete pairs, 0 where SST is 0
};

// The quotient of the norms squared: sums of squares of very large or very small values would leave the number range.
Unexplained CalcUnexplained(const VectorIn& y, const VectorIn& y_hat) {
  const Matrix pairs = RemoveNanDataPairs(y, y_hat);
  if (pairs.rows() == 0) return {0.0, kNaN};
  const Vector deviations = pairs.col(0).array() - pairs.col(0).mean();
  const Vector errors = pairs.col(0) - pairs.col(1);
  const double spread = deviations.stableNorm();
  const double ratio = spread == 0.0 ? 0.0 : errors.stableNorm() / spread;
  return {static_cast<double>(pairs.rows()), ratio * ratio};
}

// 1 - share, not below 0; a NaN stays NaN.
double ExplainedShare(double unexplained) { return unexplained > 1.0 ? 0.0 : 1.0 - unexplained; }

}  // namespace

bool equal0(double x) { return std::abs(x) < kEpsilon; }

Range RangeOf(const VectorIn& values) {
  if (values.size() == 0) return {kNaN, kNaN};
  return {values.minCoeff<Eigen::PropagateNumbers>(), values.maxCoeff<Eigen::PropagateNumbers>()};
}

bool IsNegligible(const Range& range, double tolerance) {
  // In halves, because the range of huge values of both signs is no number any more.
  const double half = 0.5 * range.highest - 0.5 * range.lowest;
  return !(half > (0.5 * std::abs(range.highest) + 0.5 * std::abs(range.lowest)) * tolerance);
}

bool isConst(const VectorIn& values) { return IsNegligible(RangeOf(values), kConstantRange); }

bool IsConstantResponse(double mean, double sigma) { return std::abs(kEpsilon * mean * 1000.0) >= sigma; }

bool IsConstantResponse(const VectorIn& values) {
  const double mean = Mean(values);
  return IsConstantResponse(mean, Sigma(values, mean));
}

bool ContainsNan(const VectorIn& values) { return values.hasNaN(); }

Vector RemoveNan(const VectorIn& values) {
  Vector kept = values;
  const auto end = std::remove_if(kept.begin(), kept.end(), [](double x) { return std::isnan(x); });
  kept.conservativeResize(end - kept.begin());
  return kept;
}

Matrix RemoveNanDataPairs(const VectorIn& x, const VectorIn& y) { return DataPairs(x, y, true); }

double Mean(const VectorIn& values) { return Mean(values, true); }

double Mean(const VectorIn& values, bool ignore_nan) {
  return OverEntries(values, ignore_nan, [](const VectorIn& x) { return x.size() == 0 ? kNaN : x.mean(); });
}

double Variance(const VectorIn& values, double mean, bool ignore_nan) {
  return OverEntries(values, ignore_nan, [mean](const VectorIn& x) {
    if (x.size() < 2) return x.size() == 0 ? kNaN : 0.0;
    return (x.array() - mean).square().sum() / static_cast<double>(x.size() - 1);
  });
}

double Sigma(const VectorIn& values, double mean) { return Sigma(values, mean, true); }

double Sigma(const VectorIn& values, double mean, bool ignore_nan) {
  // Not by way of the variance, which overflows above 1e154 and vanishes below 1e-162.
  return OverEntries(values, ignore_nan, [mean](const VectorIn& x) {
    if (x.size() < 2) return x.size() == 0 ? kNaN : 0.0;
    return (x.array() - mean).matrix().stableNorm() / std::sqrt(static_cast<double>(x.size() - 1));
  });
}

double CalcLinCC(const VectorIn& x, const VectorIn& y, bool x_has_nan, bool y_has_nan) {
  const Matrix pairs = DataPairs(x, y, x_has_nan || y_has_nan);
  if (pairs.rows() < 2) return pairs.rows() == 0 ? kNaN : 0.0;
  return LimitLinear(UnitDeviations(pairs.col(0)).dot(UnitDeviations(pairs.col(1))));
}

double CalcQuadCC(const VectorIn& x, const VectorIn& y, bool x_has_nan, bool y_has_nan) {
  const Matrix pairs = DataPairs(x, y, x_has_nan || y_has_nan);
  if (pairs.rows() < 3) return pairs.rows() == 0 ? kNaN : 0.0;
  if (isConst(pairs.col(0)) || isConst(pairs.col(1))) return 0.0;
  const ParabolaBasis basis = BuildParabolaBasis(pairs.col(0));
  const Vector deviations = UnitDeviations(pairs.col(1));
  return QuadraticCorrelation(basis.line.dot(deviations), basis.curve.dot(deviations));
}

Vector calc_rankOrder(const VectorIn& values) {
  if (values.size() == 0) error::Report(L"Empty data vector");
  std::vector<Index> order;
  order.reserve(static_cast<std::size_t>(values.size()));
  for (Index i = 0; i < values.size(); ++i) {
    if (!std::isnan(values(i))) order.push_back(i);
  }
  std::sort(order.begin(), order.end(), [&](Index a, Index b) { return values(a) < values(b); });

  Vector ranks = Vector::Constant(values.size(), kNaN);
  for (auto first = order.begin(); first != order.end();) {
    const auto last = std::find_if(first, order.end(), [&](Index i) { return values(i) != values(*first); });
    const double mean_rank =
        static_cast<double>(first - order.begin() + 1) + 0.5 * static_cast<double>(last - first - 1);
    for (; first != last; ++first) ranks(*first) = mean_rank;
  }
  return ranks;
}

double SSE(const VectorIn& y, const VectorIn& y_hat) {
  if (y.size() != y_hat.size()) return kNaN;
  return y.size() == 0 ? 0.0 : (y - y_hat).squaredNorm();
}

double R2(const VectorIn& y, const VectorIn& y_hat) {
  if (y.size() != y_hat.size()) return kNaN;
  if (IsConstantResponse(y)) return 1.0;
  return ExplainedShare(CalcUnexplained(y, y_hat).share);
}

double R2adj(const VectorIn& y, const VectorIn& y_hat, std::uint64_t num_coefficients) {
  if (y.size() != y_hat.size()) return kNaN;
  if (IsConstantResponse(y)) return 1.0;
  const Unexplained unexplained = CalcUnexplained(y, y_hat);
  const double n = unexplained.num_pairs;
  const double p = static_cast<double>(std::max<std::uint64_t>(num_coefficients, 1));
  if (n == 0.0) return kNaN;
  if (n <= p) return 0.0;
  return ExplainedShare(unexplained.share * (n - 1.0) / (n - p));
}

}  // namespace kestrel::math::statistics
