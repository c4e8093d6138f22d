#pragma once

#include <Eigen/LU>
#include <Eigen/QR>
#include <cmath>

#include "doe/model_terms.h"

/// The terms of polynomial models at point sets, written down plainly.
namespace kestrel::math::doe {

/// F, one row per point, one column per term.
inline Matrix ModelMatrix(const IndexMatrix& exponents, const MatrixIn& points) {
  Matrix values = Matrix::Ones(points.rows(), exponents.rows());
  for (Index t = 0; t < exponents.rows(); ++t) {
    for (Index j = 0; j < exponents.cols(); ++j) {
      values.col(t).array() *= points.col(j).array().pow(static_cast<double>(exponents(t, j)));
    }
  }
  return values;
}

/// det(F'F).
inline double Information(const IndexMatrix& exponents, const MatrixIn& points) {
  const Matrix values = ModelMatrix(exponents, points);
  return (values.transpose() * values).determinant();
}

/// True if the coefficients of the model follow from responses at the points.
inline bool CanEstimate(const IndexMatrix& exponents, const MatrixIn& points) {
  return ModelMatrix(exponents, points).colPivHouseholderQr().rank() == exponents.rows();
}

}  // namespace kestrel::math::doe
