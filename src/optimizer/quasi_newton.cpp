#include "optimizer/quasi_newton.h"

#include <cmath>

namespace kestrel::algorithm::optimizer {

void UpdateByBfgs(const VectorIn& step, const VectorIn& change, Matrix& matrix) {
  const Vector product = matrix.selfadjointView<Eigen::Lower>() * step;  // B s
  const double curvature = step.dot(product);                            // s' B s
  const double met = step.dot(change);                                   // s' y
  if (!(curvature > 0.0) || !std::isfinite(met)) return;
  const double share = met >= 0.2 * curvature ? 1.0 : 0.8 * curvature / (curvature - met);
  const Vector mixed = share * change + (1.0 - share) * product;
  matrix += mixed * mixed.transpose() / step.dot(mixed) - product * product.transpose() / curvature;
}

double CurvatureScale(const VectorIn& step, const VectorIn& change, const VectorIn& diagonal) {
  const double scale = step.dot(change) / step.dot(diagonal.cwiseProduct(step));
  return std::isfinite(scale) && scale > 0.0 ? scale : 1.0;
}

}  // namespace kestrel::algorithm::optimizer
