#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "statistics/basic_statistics.h"
#include "statistics/distances.h"
#include "support/error_report.h"
#include "surrogates/kernels/kernel_nodal_influence.h"
#include "surrogates/surrogate2_base.h"

// The error estimates and the finite-difference gradients of SurrogateBase.

namespace kestrel::math::metamodel {
namespace {

/// Columns of an error record.
enum ErrorColumn : Index { kLocalCoD, kLocalRmse, kLocalMean, kLocalAbsolute, kDensity, kErrorColumns };

/// Samples that take part in a local mean: the weight falls to 0.001 at the 50th nearest.
constexpr double kLocalNeighbours = 50.0;

/// Step of the central differences, in ranges of the input.
constexpr double kGradientStep = 1e-4;

}  // namespace

void SurrogateBase::RequireBuiltForErrors() {
  if (need_build_ || (trans_coord_ && trans_coord_->GetNeedBuild()) || (trans_value_ && trans_value_->GetNeedBuild())) {
    throw std::logic_error("Surrogate::BuildErrors - need build first");
  }
  RequireSample();
  if (points_radii_mean_ == 0.0) points_radii_mean_ = CalcMeanRadius();
}

double SurrogateBase::CalcMeanRadius() const {
  if (points_trans_reduced_.rows() == 0) return 0.0;
  const auto neighbours = static_cast<std::uint64_t>(2 * points_trans_reduced_.cols() + 1);
  return statistics::CalcRadii(points_trans_reduced_, neighbours).mean();
}

bool SurrogateBase::BuildErrors() {
  RequireBuiltForErrors();
  if (!HasResiduals()) residuals_ = values_ - ApproximateCrossValidation();
  return true;
}

bool SurrogateBase::BuildErrors(const Subsets& subsets) {
  RequireBuiltForErrors();
  if (HasResiduals() && subsets == subsets_) return true;
  residuals_ = values_ - ApproximateCrossValidation(subsets);
  subsets_ = subsets;
  return true;
}

Matrix SurrogateBase::ApproximateGradients(const MatrixIn& points) const {
  if (!CheckInputCount(points, L"Surrogate approximate")) return NoValues(points.rows(), points.cols());
  RequireSample();
  Matrix gradients = Matrix::Zero(points.rows(), points.cols());
  const Selection selection = GetVariableSelection();
  Matrix shifted = points;
  for (auto bit = selection.find_first(); bit != Selection::npos; bit = selection.find_next(bit)) {
    const auto j = static_cast<Index>(bit);
    const double step = kGradientStep * (points_.col(j).maxCoeff() - points_.col(j).minCoeff());
    shifted.col(j) = points.col(j).array() - step;
    const Vector below = Approximate(shifted);
    shifted.col(j) = points.col(j).array() + step;
    gradients.col(j) = (Approximate(shifted) - below) / step * 0.5;
    shifted.col(j) = points.col(j);
  }
  return gradients;
}

Matrix SurrogateBase::ApproximateErrors(const MatrixIn& points) const {
  if (!CheckInputCount(points, L"Surrogate approximate errors")) return NoValues(points.rows(), kErrorColumns);
  RequireSample();
  if (!HasResiduals()) error::Report(L"Surrogate ApproximateErrors needs BuildErrors first");
  Matrix errors = Matrix::Zero(points.rows(), kErrorColumns);
  errors.col(kLocalCoD).setOnes();
  errors.col(kDensity).setOnes();

  const Selection selection = GetVariableSelection();
  const Matrix query = SelectVariablesFromPoints(TransformPoints(points), selection);
  if (query.cols() != points_trans_reduced_.cols()) {
    error::Report(L"Surrogate ApproximateErrors: internal support point table has wrong dimension");
    return NoValues(points.rows(), kErrorColumns);
  }
  if (selection.any()) {
    const Selection all = Selection(selection.count()).set();
    errors.col(kDensity) = statistics::CalcDensity(query, points_trans_reduced_, all, points_radii_mean_);
  }
  if (!HasResiduals() || statistics::isConst(values_)) return errors;
  const double total = (values_.array() - values_.mean()).square().sum();
  const bool exact_model = total * 1e-12 > residuals_.squaredNorm();
  if (!exact_model) FillLocalErrors(query, total, errors);
  return errors;
}

void SurrogateBase::FillLocalErrors(const MatrixIn& query, double total, Matrix& errors) const {
  const Vector squares = residuals_.cwiseAbs2();
  const Vector absolutes = residuals_.cwiseAbs();
  const KernelNodalInflExp kernel(Vector::Constant(1, kLocalNeighbours));
  const auto count = static_cast<double>(values_.size());
  Vector weights = Vector::Ones(values_.size());  // a model without variables knows no distance
  for (Index q = 0; q < query.rows(); ++q) {
    if (query.cols() > 0) weights = kernel.EvaluatePoint(query.row(q).transpose(), points_trans_reduced_);
    const double weight_sum = weights.sum();
    const double mean_square = weights.dot(squares) / weight_sum;
    errors(q, kLocalCoD) = std::max(0.0, 1.0 - mean_square / total * count);
    errors(q, kLocalRmse) = std::sqrt(mean_square);
    errors(q, kLocalMean) = weights.dot(residuals_) / weight_sum;
    errors(q, kLocalAbsolute) = weights.dot(absolutes) / weight_sum;
  }
}

}  // namespace kestrel::math::metamodel
