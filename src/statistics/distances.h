#pragma once

#include <boost/dynamic_bitset_fwd.hpp>

#include "support/linear_algebra.h"

/// Distances between the rows of sample matrices. All distances are squared Euclidean but for the radii.
namespace kestrel::math::statistics {

/// A row of a matrix, without a copy.
using RowIn = Eigen::Ref<const Eigen::RowVectorXd, 0, Eigen::InnerStride<>>;

/// Squared distances of `point`, with an entry per column of m, from the last distances.size() rows of m. They are
/// sums of squared differences: rows that coincide are at exactly 0, and near rows keep their digits, which a matrix
/// product of the coordinates would lose.
void CalcSquaredDistances(const MatrixIn& m, const RowIn& point, Eigen::Ref<Vector> distances);

/// N x N, symmetric, zero diagonal: squared distances between the rows. Reports "Empty data matrix".
Matrix CalcDistanceMatrix(const MatrixIn& m);

/// Smallest entry on or above the diagonal of d that is >= 1e-12 x the largest entry of d.
double CalcMinDistanceFromMatrix(const MatrixIn& d);

/// Per column the square of the smallest gap between sorted neighbours above 1e-12 x the column's range; infinity,
/// the square of the largest double, where there is none.
Vector CalcMinDistancesPerDimension(const MatrixIn& m);

/// Per column the square of the largest gap between sorted neighbours.
Vector CalcMaxMinDistancesPerDimension(const MatrixIn& m);

/// Per row the distance (not squared) to its k-th nearest row, itself included; k is cut to 1..N. Zeros for no columns.
/// A row with a NaN is infinitely far from all rows.
Vector CalcRadii(const MatrixIn& m, std::uint64_t k);

/// Per row q of `points` the sum over the rows k of `support` of exp(-s / r2 / 0.21714724095162594), s the squared
/// distance over the selected columns, r2 = max(radius^2, selected / rows(support)^2). Not normalised. Reports
/// "Dimensions of inputs not consistent".
Vector CalcDensity(const MatrixIn& points, const MatrixIn& support, const boost::dynamic_bitset<>& selection,
                   double radius);

}  // namespace kestrel::math::statistics
