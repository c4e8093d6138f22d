#pragma once

#include <vector>

#include "support/linear_algebra.h"

/// The measures of basic_statistics.h on the columns of a matrix: one row per sample, one column per variable.
namespace kestrel::math::statistics {

std::vector<bool> ContainsNanColwise(const MatrixIn& m);
Vector MeanColwise(const MatrixIn& m);
Vector MeanColwise(const MatrixIn& m, const std::vector<bool>& nan_flags);
Vector SigmaColwise(const MatrixIn& m, const VectorIn& means);
Vector SigmaColwise(const MatrixIn& m, const VectorIn& means, const std::vector<bool>& nan_flags);
Matrix calc_rankOrderColwise(const MatrixIn& m);

/// Correlation sum (x - mean_i) (y - mean_j) / ((n - 1) sigma_i sigma_j) of the columns i and j from their given
/// moments (centred, so that a large mean does not cost digits): 0.0 for a single row and for a constant column; -1.0
/// for r <= -1 and for a NaN, 1.0 for r > 1, 0.0 for |r| below machine epsilon.
double CalcCorrelationSimple(const MatrixIn& m, const VectorIn& means, const VectorIn& sigmas, Index i, Index j);

/// n x n, symmetric, unit diagonal: `CalcLinCC` of all pairs of columns.
Matrix CalcLinCCMatrixColwise(const MatrixIn& m);

/// n x n, not symmetric: element (i, j) is `CalcQuadCC`(column i, column j).
Matrix CalcQuadCCMatrixColwise(const MatrixIn& m);

/// Length n: `CalcLinCC`(column j, y).
Vector getLinRespCorrelationColwise(const MatrixIn& m, const VectorIn& y);

/// 2 x n: row 0 `CalcQuadCC`(column j, y), row 1 `CalcQuadCC`(y, column j).
Matrix getQuadRespCorrelationColwise(const MatrixIn& m, const VectorIn& y);

/// Correlation matrix of the columns for the point sets of `doe`.
Matrix Correlation(const MatrixIn& m);

/// Per column the number of distinct levels: 1 for a range at or below (|min| + |max|) x 1e-12, else 1 plus the number
/// of gaps between sorted neighbours above 1e-10 of the range.
IndexVector CalculateNumDiscreteValues(const MatrixIn& m);

/// The rows of m, sorted by column j, ascending.
Matrix SortMatrixByColumn(const MatrixIn& m, Index j);

}  // namespace kestrel::math::statistics
