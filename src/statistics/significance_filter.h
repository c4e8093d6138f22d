#pragma once

#include <boost/dynamic_bitset.hpp>

#include "support/linear_algebra.h"

/// How far a correlation must lie from the noise of the sample to count as significant. C is the linear correlation
/// matrix of the inputs (n x n), Q the quadratic one; rho the linear correlations of the inputs with the response
/// (length n), M the quadratic ones (2 x n). Bit sets have one bit per input.
namespace kestrel::math::statistics {

/// Noise level sqrt(2 S / (n^2 - n - 1)), S the sum of (C - I)^2 over the strictly lower triangle.
double StdevCorrLin(const MatrixIn& C);
double StdevCorrLin(const MatrixIn& C, const MatrixIn& expected);

/// sqrt(S / (n^2 - n - 1)), S the sum of Q(i, j)^2 + Q(j, i)^2 over i < j.
double StdevCorrQuadFull(const MatrixIn& Q);

/// The full form of E(i, j) = max(Q(i, j) - |C(i, j)| - I(i, j), 0): what the parabola adds over the line.
double StdevCorrQuadPure(const MatrixIn& Q, const MatrixIn& C);
double StdevCorrQuadPure(const MatrixIn& Q, const MatrixIn& C, const MatrixIn& expected);

/// Limits z x sigma, z the standard normal quantile at the confidence level p.
struct QuantileLimits {
  double linear;
  double quadratic;
  double pure_quadratic;
};

/// Reports "confidence level has to be greater than zero and smaller than one" for p of exactly 0 or 1. The linear
/// limit is 0.0 when sigma_lin counts as 0.
QuantileLimits getQuantiles(double sigma_lin, double sigma_quad_full, double sigma_quad_pure, double p);

/// Bit j: |rho(j)| > limit.
boost::dynamic_bitset<> SigFilterLin(double limit, const VectorIn& rho);

/// Bit j: max(M(0, j), M(1, j)) > limit.
boost::dynamic_bitset<> SigFilterQuadFull(double limit, const MatrixIn& M);

/// `SigFilterQuadFull` of M - |rho|: what the quadratic fit adds over the linear one.
boost::dynamic_bitset<> SigFilterQuadPure(double limit, const VectorIn& rho, const MatrixIn& M);

/// Bit j: max(M(0, j), M(1, j)) > (max M - significance) x fraction + significance.
boost::dynamic_bitset<> CorrFilter(const MatrixIn& M, double significance, double fraction);

}  // namespace kestrel::math::statistics
