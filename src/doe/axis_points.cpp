#include "doe/axis_points.h"

#include "doe/factorial_points.h"
#include "doe/point_set.h"

namespace kestrel::math::doe {
namespace {

// Writes the axial points into the rows from `first` on.
void FillAxialPoints(Matrix& points, Index first) {
  for (Index j = 0; j < points.cols(); ++j) {
    points(first + 2 * j, j) = 1.0;
    points(first + 2 * j + 1, j) = -1.0;
  }
}

}  // namespace

Matrix AxialPoints(std::uint64_t num_inputs) {
  Matrix points = CentrePoints(SaturatedProduct(2, num_inputs), num_inputs);
  FillAxialPoints(points, 0);
  return points;
}

Matrix StarPoints(std::uint64_t num_inputs) {
  RequireSize(SaturatedProduct(2, num_inputs), num_inputs);  // so that one more fits a number
  Matrix points = CentrePoints(1 + 2 * num_inputs, num_inputs);
  FillAxialPoints(points, 1);
  return points;
}

Matrix MixedTermPoints(std::uint64_t num_inputs) {
  Require(num_inputs >= 2, L"Mixed terms need at least two inputs.");
  RequireSize(num_inputs, num_inputs);  // fewer than there are points from four inputs on; the product below fits
  Matrix points = CentrePoints(num_inputs * (num_inputs - 1) / 2, num_inputs);
  Index row = 0;
  for (Index i = 0; i < points.cols(); ++i) {
    for (Index j = i + 1; j < points.cols(); ++j, ++row) points(row, i) = points(row, j) = 1.0;
  }
  return points;
}

Matrix CentralComposite(std::uint64_t num_inputs) {
  const Matrix corners = FullFactorial(num_inputs, 2);
  const Matrix star = StarPoints(num_inputs);
  Matrix points(corners.rows() + star.rows(), corners.cols());
  points << corners, star;
  return points;
}

}  // namespace kestrel::math::doe
