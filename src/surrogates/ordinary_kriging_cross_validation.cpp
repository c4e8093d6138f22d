#include <Eigen/Cholesky>
#include <algorithm>
#include <iterator>
#include <limits>
#include <numeric>
#include <stdexcept>

#include "statistics/basic_statistics.h"
#include "surrogates/grouped_rows.h"
#include "surrogates/kriging_correlation.h"
#include "surrogates/kriging_cross_validation.h"
#include "surrogates/ordinary_kriging.h"

// What is found from R and its factor behind a build: cross validation, the importance of inputs, and the gradient of
// the likelihood.

namespace kestrel::math::metamodel {
namespace {

constexpr double kLn10 = 2.302585092994046;

/// The samples that do not belong to a group, both in ascending order.
std::vector<Index> Others(Index count, const std::vector<Index>& group) {
  std::vector<Index> all(static_cast<std::size_t>(count));
  std::iota(all.begin(), all.end(), Index{0});
  std::vector<Index> others;
  std::set_difference(all.begin(), all.end(), group.begin(), group.end(), std::back_inserter(others));
  return others;
}

}  // namespace

void OrdinaryKriging::RequireBuiltForCrossValidation() const {
  if (!CheckAfterBuild()) throw std::logic_error("can not approximate CV - build first");
  RequireSample();
}

void OrdinaryKriging::RequireSubsets(const Subsets& subsets) const {
  if (subsets.size() != static_cast<std::size_t>(points_.rows())) {
    throw std::logic_error("subset vector has wrong length");
  }
}

template <class Work>
Vector OrdinaryKriging::OnFactor(Work&& work) const {
  if (FactorStands() && factor_.Size() == points_.rows()) return work(correlation_, factor_);
  Matrix R;
  KrigingFactor factor;
  if (!BuildCorrelationMatrix(points_trans_reduced_, R) || !factor.Compute(R, Stop())) {
    throw std::logic_error("rebuild of correlation matrix failed");
  }
  return work(R, factor);
}

Vector OrdinaryKriging::ApproximateLeaveOneOut() const {
  RequireBuiltForCrossValidation();
  return OnFactor([&](const Matrix& /*R*/, const KrigingFactor& factor) {
    return TransformBack(values_trans_ - LeaveOneOutErrors(factor.InverseRoot(Stop()), kernel_weights_));
  });
}

Vector OrdinaryKriging::ApproximateCrossValidation(const Subsets& subsets) const {
  if (subsets.empty()) return ApproximateLeaveOneOut();
  RequireBuiltForCrossValidation();
  RequireSubsets(subsets);
  return OnFactor([&](const Matrix& /*R*/, const KrigingFactor& factor) {
    const Matrix V = factor.InverseRoot(Stop());
    return TransformBack(values_trans_ - LeaveSubsetsOutErrors(V, kernel_weights_, subsets, Stop()));
  });
}

Vector OrdinaryKriging::ApproximateCrossValidationCompare(const Subsets& subsets) const {
  RequireBuiltForCrossValidation();
  if (subsets.empty()) return ApproximateCrossValidationCompare(SingleRows(points_.rows()));
  RequireSubsets(subsets);
  return OnFactor([&](const Matrix& R, const KrigingFactor& /*factor*/) {
    const Matrix whole = R.selfadjointView<Eigen::Lower>();
    Vector predictions(points_.rows());
    const GroupedRows grouped = GroupRows(subsets);
    for (std::size_t g = 0; g < grouped.NumGroups(); ++g) {
      utils::CheckInterrupted(Stop());
      const std::vector<Index> group = grouped.Group(g);
      const std::vector<Index> others = Others(points_.rows(), group);
      const Vector z = values_trans_(others);
      const Eigen::LDLT<Matrix> factor(whole(others, others));
      const Vector a = factor.solve(z);
      const Vector b = factor.solve(Vector::Ones(z.size()));
      const double mean = a.sum() / b.sum();
      predictions(group) = (whole(group, others) * (a - mean * b)).array() + mean;
    }
    return TransformBack(predictions);
  });
}

Vector OrdinaryKriging::ApproximateVariableImportanceCV(const Subsets& subsets) const {
  const double error = statistics::SSE(values_, ApproximateCrossValidation(subsets));
  const double total = (values_.array() - values_.mean()).square().sum();
  const Selection selection = GetVariableSelection();
  Vector importance = Vector::Zero(static_cast<Index>(selection.size()));
  OrdinaryKriging without(points_, values_);
  without.SetStopHelper(stop_helper_);
  for (auto input = selection.find_first(); input != Selection::npos; input = selection.find_next(input)) {
    OrdinaryKrigingSettings settings = settings_;
    settings.DeselectInput(input);
    without.Initialize(settings);
    without.TakeTransformations(*this);
    importance[static_cast<Index>(input)] =
        without.Build() ? (statistics::SSE(values_, without.ApproximateCrossValidation(subsets)) - error) / total
                        : std::numeric_limits<double>::quiet_NaN();
  }
  return importance;
}

// m and s2 are where L is stationary and s2 follows, so that only R moves: dL = 1/2 sum_ab M_ab dR_ab with
// M = R^-1 - w w' / s2. With H = M o K without its diagonal, where K does not move,
//
//   dL / dlog10 g   = 1/2 ln10 g tr M
//   dL / dlog10 r_j = -2 ln10 h_j (sum_a (H 1)_a p_aj^2 - (P'H P)_jj)
//
// which holds about any origin; about the mean of the points it loses the fewest digits.
Vector OrdinaryKriging::BuildGradient() const {
  Matrix M;
  return GradientIn(M);
}

Vector OrdinaryKriging::GradientIn(Matrix& M) const {
  RequireBuiltForCrossValidation();
  return OnFactor([&](const Matrix& R, const KrigingFactor& factor) {
    factor.FillInverse(M, Stop());
    if (sigma2_ > kLeastVariance) {
      M.selfadjointView<Eigen::Lower>().rankUpdate(kernel_weights_, -1.0 / sigma2_);
    }
    Vector gradient = Vector::Zero(1 + settings_.GetKernelParameter().size());
    gradient[0] = 0.5 * kLn10 * settings_.GetNugget() * M.trace();
    const KrigingCorrelation correlation = MakeCorrelation();
    if (!correlation.GetExponents()) return gradient;  // between two points alone a nodal kernel is constant

    Matrix& H = M;
    const Index n = H.rows();
    for (Index i = 0; i < n; ++i) {
      H(i, i) = 0.0;
      H.col(i).tail(n - i - 1).array() *= R.col(i).tail(n - i - 1).array();
    }
    const Matrix P = points_trans_reduced_.rowwise() - points_trans_reduced_.colwise().mean();
    const auto symmetric = H.selfadjointView<Eigen::Lower>();
    const Vector rows = symmetric * Vector::Ones(n);
    const Vector moved = P.cwiseAbs2().transpose() * rows - P.cwiseProduct(symmetric * P).colwise().sum().transpose();
    const Vector by_column = -2.0 * kLn10 * correlation.GetExponents()->cwiseProduct(moved);
    if (gradient.size() == 1 + by_column.size() && settings_.GetKernelType() == Kernel::kConstInflExp) {
      gradient.tail(by_column.size()) = by_column;
    } else {
      gradient[1] = by_column.sum();  // one radius for all columns
    }
    return gradient;
  });
}

}  // namespace kestrel::math::metamodel
