#include "surrogates/kriging_correlation.h"

#include <algorithm>

#include "statistics/distances.h"
#include "surrogates/dense_operations.h"
#include "surrogates/kernels/kernel_constant_influence.h"

namespace kestrel::math::metamodel {
namespace {

/// Rows of a query that are evaluated together: their products with 500 points fill half a megabyte.
constexpr Index kBlockRows = 128;

/// h_j for each of the columns.
std::optional<Vector> Exponents(const OrdinaryKrigingSettings& settings, Index num_columns) {
  const Vector& radii = settings.GetKernelParameter();
  switch (settings.GetKernelType()) {
    case Kernel::kConstInflExp: return radii.unaryExpr(&ExponentialTerm);
    case Kernel::kConstInflIsoExp: return Vector::Constant(num_columns, ExponentialTerm(radii[0]));
    default: return std::nullopt;
  }
}

/// The exponential of every entry, in place; 0 below 2e-22. Beside a diagonal of 1 such an entry changes no digit of
/// what is solved for, but products of many of them are denormal numbers, on which the factor would take five times as
/// long.
void ReplaceExponents(Eigen::Ref<Vector> exponents) {
  constexpr double kNegligible = 2e-22;
  ReplaceByExponentials(exponents, kNegligible);
}

bool HasParameters(const OrdinaryKrigingSettings& settings, Index num_columns) {
  const Index given = settings.GetKernelParameter().size();
  return given > 0 && given == (settings.GetKernelType() == Kernel::kConstInflExp ? num_columns : 1);
}

}  // namespace

KrigingCorrelation::KrigingCorrelation(const OrdinaryKrigingSettings& settings, Index num_columns)
    : kernel_(settings.MakeKernel()), nugget_(settings.GetNugget()), defined_(HasParameters(settings, num_columns)) {
  if (defined_) exponents_ = Exponents(settings, num_columns);
}

Matrix KrigingCorrelation::Scale(const MatrixIn& points, const Eigen::RowVectorXd& centre) const {
  return (points.rowwise() - centre) * (-exponents_->array()).sqrt().matrix().asDiagonal();
}

void KrigingCorrelation::Fill(const MatrixIn& points, Matrix& R) const {
  const bool one_radius_each = exponents_ && !kernel_->IsIsotropic();
  const Matrix scaled = one_radius_each ? Scale(points, Eigen::RowVectorXd::Zero(points.cols())) : Matrix(points);
  const Index n = points.rows();
  for (Index i = 0; i < n; ++i) {
    auto below = R.col(i).tail(n - i - 1);
    statistics::CalcSquaredDistances(scaled, scaled.row(i), below);
    if (one_radius_each) {
      below = -below;
      ReplaceExponents(below);
    } else {
      Evaluate(below, below);
    }
    R(i, i) = 1.0 + nugget_;
  }
}

void KrigingCorrelation::FillFromDistances(const MatrixIn& distances, Matrix& R) const {
  const Index n = distances.rows();
  for (Index i = 0; i < n; ++i) {
    Evaluate(distances.col(i).tail(n - i - 1), R.col(i).tail(n - i - 1));
    R(i, i) = 1.0 + nugget_;
  }
}

void KrigingCorrelation::Evaluate(const VectorIn& distances, Eigen::Ref<Vector> correlations) const {
  if (exponents_) {
    correlations = ExponentialTerm(kernel_->GetParameters()[0]) * distances;
    ReplaceExponents(correlations);
  } else if (kernel_->IsIsotropic()) {
    correlations = kernel_->EvaluateDistances(distances);
  } else {
    // Between two points alone each is the other's nearest neighbour, at the radius; NaN where they coincide.
    constexpr double kLogAtRadius = -6.907755278982138;  // ln(0.001)
    correlations = (kLogAtRadius * distances.array() / distances.array()).exp();
  }
}

Vector KrigingCorrelation::Apply(const MatrixIn& query, const MatrixIn& points, const VectorIn& weights,
                                 const utils::StopHelper* stop) const {
  return exponents_ ? ApplyExponential(query, points, weights, stop) : ApplyByKernel(query, points, weights, stop);
}

Vector KrigingCorrelation::ApplyExponential(const MatrixIn& query, const MatrixIn& points, const VectorIn& weights,
                                            const utils::StopHelper* stop) const {
  // -|q - s|^2 = 2 q's - |q|^2 - |s|^2, about the mean of the points, which keeps the norms and their rounding small.
  const Eigen::RowVectorXd centre = points.colwise().mean();
  const Matrix support = Scale(points, centre);
  const Vector support_norms = support.rowwise().squaredNorm();
  Vector values(query.rows());
  Matrix products(std::min(kBlockRows, query.rows()), points.rows());
  for (Index first = 0; first < query.rows(); first += kBlockRows) {
    utils::CheckInterrupted(stop);
    const Index count = std::min(kBlockRows, query.rows() - first);
    const Matrix block = Scale(query.middleRows(first, count), centre);
    const Eigen::ArrayXd norms = block.rowwise().squaredNorm();
    products.topRows(count).noalias() = (2.0 * block) * support.transpose();
    Eigen::ArrayXd sum = Eigen::ArrayXd::Zero(count);
    for (Index k = 0; k < points.rows(); ++k) {
      sum += weights[k] * (products.col(k).head(count).array() - norms - support_norms[k]).exp();
    }
    values.segment(first, count) = sum;
  }
  return values;
}

Vector KrigingCorrelation::ApplyByKernel(const MatrixIn& query, const MatrixIn& points, const VectorIn& weights,
                                         const utils::StopHelper* stop) const {
  Vector values(query.rows());
  for (Index q = 0; q < query.rows(); ++q) {
    if (q % kBlockRows == 0) utils::CheckInterrupted(stop);
    values[q] = kernel_->EvaluatePoint(query.row(q).transpose(), points).dot(weights);
  }
  return values;
}

}  // namespace kestrel::math::metamodel
