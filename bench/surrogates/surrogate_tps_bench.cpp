#include "surrogates/surrogate_tps.h"

#include <benchmark/benchmark.h>

#include <Eigen/Cholesky>
#include <algorithm>
#include <limits>
#include <stdexcept>
#include <utility>

#include "compare.h"
#include "statistics/distances.h"

// Speed of the thin plate spline against the plain operations that it is made of, as that of Kriging. Arguments: N
// samples, n inputs.

namespace {

using namespace kestrel::bench;
using namespace kestrel::math;
using namespace kestrel::math::metamodel;

constexpr Index kRows = 128;  ///< of a query that are evaluated together

/// s log(s) / 2 of squared distances, in place.
template <class Column>
void ReplaceByRadial(Column&& s) {
  s = 0.5 * s * s.max(std::numeric_limits<double>::min()).log();
}

/// The radial function of all distances, a triangle of them, and one factor of size N.
struct RadialMatrixAndFactor {
  explicit RadialMatrixAndFactor(Matrix sample) : points(std::move(sample)) {}
  void operator()() {
    const Index n = points.rows();
    const Vector norms = points.rowwise().squaredNorm();
    K.noalias() = -2.0 * points * points.transpose();
    for (Index i = 0; i < n; ++i) {
      auto below = K.col(i).tail(n - i).array();
      below += norms.tail(n - i).array() + norms[i];
      ReplaceByRadial(below);
      K(i, i) = static_cast<double>(n);  // positive definite
    }
    benchmark::DoNotOptimize(factor.compute(K));
  }
  Matrix points;
  Matrix K;
  Eigen::LLT<Matrix> factor;
};

/// Distances by one matrix product, a vectorised logarithm, and one product with the coefficients, by blocks of rows.
struct PlainPrediction {
  PlainPrediction(Matrix support_points, Matrix query_points)
      : support(std::move(support_points)),
        query(std::move(query_points)),
        coefficients(Vector::LinSpaced(support.rows(), -1.0, 1.0)) {}
  void operator()() {
    const Vector support_norms = support.rowwise().squaredNorm();
    Vector values(query.rows());
    Matrix block(kRows, support.rows());
    for (Index first = 0; first < query.rows(); first += kRows) {
      const Index count = std::min(kRows, query.rows() - first);
      const Eigen::ArrayXd norms = query.middleRows(first, count).rowwise().squaredNorm();
      block.topRows(count).noalias() = -2.0 * query.middleRows(first, count) * support.transpose();
      for (Index k = 0; k < support.rows(); ++k) {
        auto column = block.col(k).head(count).array();
        column += norms + support_norms[k];
        ReplaceByRadial(column);
      }
      values.segment(first, count).noalias() = block.topRows(count) * coefficients;
    }
    benchmark::DoNotOptimize(values);
  }
  Matrix support;
  Matrix query;
  Vector coefficients;
};

SurrogateTPS Spline(const Matrix& points, double smoothing) {
  SurrogateTPS spline(points, Values(points));
  SurrogateTPSSettings settings(static_cast<std::uint64_t>(points.cols()));
  settings.SetSmoothing(smoothing);
  spline.Initialize(settings);
  return spline;
}

void Fit(benchmark::State& state) {
  const Matrix points = Points(state.range(0), state.range(1));
  Compare(
      state,
      [&] {
        SurrogateTPS spline = Spline(points, 0.0);
        if (!spline.Build()) throw std::runtime_error("The model of a benchmark must be built.");
      },
      RadialMatrixAndFactor(points));
}

/// The spline with the smoothing of the least error, by leave one out; against the parts of a single fit.
void SmoothingSearch(benchmark::State& state) {
  const Matrix points = Points(state.range(0), state.range(1));
  Compare(
      state,
      [&] {
        SurrogateTPS spline = Spline(points, 0.0);
        benchmark::DoNotOptimize(spline.BuildOptimal(Subsets()));
      },
      RadialMatrixAndFactor(points));
}

void SplinePrediction(benchmark::State& state) {
  const Matrix points = Points(state.range(0), state.range(1));
  const Matrix query = Points(100000, points.cols(), 8);
  SurrogateTPS spline = Spline(points, 0.0);
  if (!spline.Build()) throw std::runtime_error("The model of a benchmark must be built.");
  Compare(
      state, [&] { benchmark::DoNotOptimize(spline.Approximate(query)); }, PlainPrediction(points, query));
}

void Shapes(benchmark::internal::Benchmark* bench) {
  bench->Args({200, 5})->Args({500, 10})->Args({1000, 10})->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(Fit)->Name("SplineFit")->Apply(Shapes);
BENCHMARK(SmoothingSearch)->Name("SplineSmoothingSearch")->Apply(Shapes);
BENCHMARK(SplinePrediction)->Args({500, 10})->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
