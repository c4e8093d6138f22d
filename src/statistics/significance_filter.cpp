#include "statistics/significance_filter.h"

#include <boost/math/special_functions/erf.hpp>
#include <cmath>
#include <limits>

#include "statistics/basic_statistics.h"
#include "support/error_report.h"

namespace kestrel::math::statistics {
namespace {

// sqrt(sum / (n^2 - n - 1)), 0.0 for fewer than two inputs, which have no correlations.
double NoiseLevel(double sum_of_squares, Index num_inputs) {
  if (num_inputs < 2) return 0.0;
  const auto n = static_cast<double>(num_inputs);
  return std::sqrt(sum_of_squares / (n * n - n - 1.0));
}

double SumBelowDiagonal(const Matrix& m) { return Matrix(m.triangularView<Eigen::StrictlyLower>()).squaredNorm(); }

double StandardNormalQuantile(double p) {
  if (p <= 0.0) return -std::numeric_limits<double>::infinity();
  if (p >= 1.0) return std::numeric_limits<double>::infinity();
  return std::isnan(p) ? p : -std::sqrt(2.0) * boost::math::erfc_inv(2.0 * p);
}

}  // namespace

double StdevCorrLin(const MatrixIn& C) { return StdevCorrLin(C, Matrix::Identity(C.rows(), C.cols())); }

double StdevCorrLin(const MatrixIn& C, const MatrixIn& expected) {
  return NoiseLevel(2.0 * SumBelowDiagonal(C - expected), C.cols());
}

double StdevCorrQuadFull(const MatrixIn& Q) {
  return NoiseLevel(SumBelowDiagonal(Q) + SumBelowDiagonal(Q.transpose()), Q.cols());
}

double StdevCorrQuadPure(const MatrixIn& Q, const MatrixIn& C) {
  return StdevCorrQuadPure(Q, C, Matrix::Identity(C.rows(), C.cols()));
}

double StdevCorrQuadPure(const MatrixIn& Q, const MatrixIn& C, const MatrixIn& expected) {
  const Matrix excess = Q - C.cwiseAbs() - expected;
  return StdevCorrQuadFull(excess.unaryExpr([](double e) { return e < 0.0 ? 0.0 : e; }));
}

QuantileLimits getQuantiles(double sigma_lin, double sigma_quad_full, double sigma_quad_pure, double p) {
  const bool inside = p > 0.0 && p < 1.0;
  if (!inside) error::Report(L"confidence level has to be greater than zero and smaller than one");
  const double z = StandardNormalQuantile(p);
  return {equal0(sigma_lin) ? 0.0 : z * sigma_lin, z * sigma_quad_full, z * sigma_quad_pure};
}

boost::dynamic_bitset<> SigFilterLin(double limit, const VectorIn& rho) {
  boost::dynamic_bitset<> bits(static_cast<std::size_t>(rho.size()));
  for (Index j = 0; j < rho.size(); ++j) bits[static_cast<std::size_t>(j)] = std::abs(rho(j)) > limit;
  return bits;
}

boost::dynamic_bitset<> SigFilterQuadFull(double limit, const MatrixIn& M) {
  boost::dynamic_bitset<> bits(static_cast<std::size_t>(M.cols()));
  for (Index j = 0; j < M.cols(); ++j) bits[static_cast<std::size_t>(j)] = M(0, j) > limit || M(1, j) > limit;
  return bits;
}

boost::dynamic_bitset<> SigFilterQuadPure(double limit, const VectorIn& rho, const MatrixIn& M) {
  return SigFilterQuadFull(limit, M.rowwise() - rho.cwiseAbs().transpose());
}

boost::dynamic_bitset<> CorrFilter(const MatrixIn& M, double significance, double fraction) {
  if (M.size() == 0) return boost::dynamic_bitset<>(static_cast<std::size_t>(M.cols()));
  const double largest = M.maxCoeff<Eigen::PropagateNumbers>();
  return SigFilterQuadFull((largest - significance) * fraction + significance, M);
}

}  // namespace kestrel::math::statistics
