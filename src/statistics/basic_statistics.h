#pragma once

#include "support/linear_algebra.h"

/// Moments, correlation, rank order and coefficients of determination of vectors. NaN marks a missing value; each
/// function says what it does with one. Input faults go through `error::Report`.
namespace kestrel::math::statistics {

/// |x| below machine epsilon.
bool equal0(double x);

/// Smallest and largest entry without the NaN; NaN if nothing is left.
struct Range {
  double lowest;
  double highest;
};
Range RangeOf(const VectorIn& values);

/// highest - lowest is at or below (|lowest| + |highest|) x tolerance, or NaN.
bool IsNegligible(const Range& range, double tolerance);

/// A vector whose range is at or below (|max| + |min|) x 2.220446049250313e-13. NaN entries do not count; an empty
/// vector is constant.
bool isConst(const VectorIn& values);

/// A response counts as constant when |eps x mean x 1000| >= sigma, eps the machine epsilon.
bool IsConstantResponse(double mean, double sigma);
bool IsConstantResponse(const VectorIn& values);

bool ContainsNan(const VectorIn& values);
Vector RemoveNan(const VectorIn& values);

/// The rows in which neither x nor y is NaN, in their order, as a matrix of two columns. Reports "Empty data vector"
/// and "Sizes of input vectors for linear correlation not consistent", as the correlations below do.
Matrix RemoveNanDataPairs(const VectorIn& x, const VectorIn& y);

/// Mean, without the NaN entries if there are any. Reports "Empty design vector"; NaN if nothing is left.
double Mean(const VectorIn& values);
double Mean(const VectorIn& values, bool ignore_nan);

/// sum (x - mean)^2 / (n - 1); 0.0 for one entry. With `ignore_nan` n counts the entries that are not NaN, and none of
/// them gives NaN. Reports "Empty design vector".
double Variance(const VectorIn& values, double mean, bool ignore_nan);

/// Square root of `Variance`; the form of two arguments leaves out NaN entries if there are any.
double Sigma(const VectorIn& values, double mean);
double Sigma(const VectorIn& values, double mean, bool ignore_nan);

/// Pearson correlation of the pairs; without the pairs that hold a NaN if either flag is set. NaN for no pair, 0.0 for
/// one, 0.0 for a constant side; data with NaN and flags false give NaN.
double CalcLinCC(const VectorIn& x, const VectorIn& y, bool x_has_nan, bool y_has_nan);

/// Quadratic correlation in [0, 1]: the correlation of y with its least-squares parabola a + b x + c x^2, in closed
/// form. Not symmetric. NaN for no pair, 0.0 for fewer than three pairs, for a constant side, for x of two levels, and
/// where the determinant of the raw moments of x is at or below machine epsilon.
double CalcQuadCC(const VectorIn& x, const VectorIn& y, bool x_has_nan, bool y_has_nan);

/// Ranks from 1; ties share the mean rank of their block; NaN has no rank and stays NaN. Reports "Empty data vector".
Vector calc_rankOrder(const VectorIn& values);

/// sum (y - y_hat)^2; 0.0 for empty vectors, NaN for different lengths.
double SSE(const VectorIn& y, const VectorIn& y_hat);

/// Coefficient of determination 1 - SSE / SST, cut to [0, 1], over the pairs without NaN; 1.0 for a constant response,
/// NaN for different lengths or no pair. Reports "Empty design vector".
double R2(const VectorIn& y, const VectorIn& y_hat);

/// The same with SSE / SST x (n - 1) / (n - p), p the number of coefficients (0 counts as 1), n the number of pairs;
/// 0.0 where n is not above p.
double R2adj(const VectorIn& y, const VectorIn& y_hat, std::uint64_t num_coefficients);

}  // namespace kestrel::math::statistics
