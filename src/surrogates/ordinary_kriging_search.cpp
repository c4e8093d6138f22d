#include "surrogates/ordinary_kriging_search.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "statistics/basic_statistics.h"
#include "surrogates/boxcox_regression.h"

// The frame of the searches for the free parameters of a Kriging model.

namespace kestrel::math::metamodel {
namespace {

constexpr double kDifferenceStep = 1e-4;  // in log10
constexpr double kErrorScale = 1000.0;    // of the share of unexplained variance

}  // namespace

OrdinaryKriging::HyperparameterSearch::HyperparameterSearch(OrdinaryKriging& model, const Subsets& subsets,
                                                            const Matrix* distances)
    : model_(model),
      subsets_(subsets),
      distances_(distances),
      kernel_(CreateKernel(static_cast<Kernel::eType>(model.settings_.GetKernelType()), Vector())),
      total_sum_of_squares_((model.values_.array() - model.values_.mean()).square().sum()) {}

void OrdinaryKriging::HyperparameterSearch::SetParameters(const VectorIn& point) {
  const Vector parameters = Eigen::pow(10.0, point.array());
  model_.SetNugget(parameters[0]);
  model_.KernelParameterChanged(*kernel_, parameters.tail(parameters.size() - 1));
}

std::optional<double> OrdinaryKriging::HyperparameterSearch::Evaluate(const VectorIn& point) {
  const auto known = std::find_if(known_.begin(), known_.end(), [&](const Known& k) { return k.point == point; });
  if (known != known_.end()) return known->objective;
  return known_.emplace_back(Known{point, BuildTrial(point)}).objective;
}

bool OrdinaryKriging::HyperparameterSearch::FillCorrelation() {
  Matrix& R = model_.correlation_;
  const Vector& radii = model_.settings_.GetKernelParameter();
  if (filled_radii_.size() == radii.size() && filled_radii_ == radii) {
    R.diagonal().setConstant(1.0 + model_.settings_.GetNugget());
    return true;
  }
  filled_radii_.resize(0);
  const bool filled = distances_ ? model_.BuildCorrelationFromDistances(*distances_, R)
                                 : model_.BuildCorrelationMatrix(model_.points_trans_reduced_, R);
  if (filled) filled_radii_ = radii;
  return filled;
}

std::optional<double> OrdinaryKriging::HyperparameterSearch::BuildTrial(const VectorIn& point) {
  utils::CheckInterrupted(model_.Stop());
  evaluated_.resize(0);
  SetParameters(point);
  if (!FillCorrelation() || !model_.BuildLikelihood(model_.values_trans_, model_.correlation_)) return std::nullopt;
  const double objective = UsesLikelihood()
                               ? model_.negative_log_likelihood_
                               : statistics::SSE(model_.values_, model_.ApproximateCrossValidation(subsets_)) /
                                     total_sum_of_squares_ * kErrorScale;
  if (!std::isfinite(objective)) return std::nullopt;
  evaluated_ = point;
  if (objective < best_.objective) best_ = {point, objective};
  return objective;
}

Vector OrdinaryKriging::HyperparameterSearch::Gradient(const VectorIn& point) {
  const Vector nowhere = Vector::Constant(point.size(), std::numeric_limits<double>::quiet_NaN());
  if (UsesLikelihood()) {
    const bool stands = evaluated_.size() == point.size() && evaluated_ == point;
    return stands || BuildTrial(point) ? model_.GradientIn(gradient_scratch_) : nowhere;
  }
  const std::optional<double> here = Evaluate(point);
  Vector gradient = nowhere;
  for (Index j = 0; here && j < point.size(); ++j) {
    Vector moved = point;
    moved[j] += kDifferenceStep;
    if (const std::optional<double> there = Evaluate(moved)) gradient[j] = (*there - *here) / kDifferenceStep;
  }
  return gradient;
}

bool OrdinaryKriging::HyperparameterSearch::BuildBest() {
  if (best_.point.size() == 0) return false;
  SetParameters(best_.point);
  // From the points, as a later build with these settings does it: the same bits.
  if (!model_.BuildCorrelationMatrix(model_.points_trans_reduced_, model_.correlation_) ||
      !model_.BuildLikelihood(model_.values_trans_, model_.correlation_)) {
    return false;
  }
  model_.WriteTransformationParameters(model_.settings_);
  return true;
}

bool OrdinaryKriging::BuildOptimal(const Subsets& subsets) {
  residuals_.resize(0);
  if (!HasSupports()) return false;
  if (trans_value_) {
    utils::CheckInterrupted(Stop());
    BuildOptimalBoxCox();
  }
  need_build_ = true;
  bool found = false;
  switch (settings_.GetKernelType()) {
    case Kernel::kConstInflIsoExp:
    case Kernel::kConstInflIsoReg: found = BuildOptimalIsotropic(subsets); break;
    case Kernel::kConstInflExp:
    case Kernel::kNodalInflExp: found = BuildOptimalAnisotropic(subsets, false); break;
    default: throw std::logic_error("Unknown kernel type.");
  }
  if (found) settings_.SetState(eState::kOptimal);
  return found;
}

bool OrdinaryKriging::BuildOptimalBoxCox() {
  residuals_.resize(0);
  // With too few samples for a search the exponent stays what it is.
  const auto regression = FitBoxCoxRegression(*this, {ePolynomial::kQuadratic}, stop_helper_);
  const LinearRegressionSettings& fitted = regression->GetSettingsBase();
  InitializeValueTransformation(fitted.GetValueTransformation(), fitted.GetValueTransformationParameter());
  settings_.SetValueTransformation(fitted.GetValueTransformation());
  WriteTransformationParameters(settings_);
  settings_.SetState(eState::kOptimal);
  Build();  // false while the radii are to be searched
  return true;
}

}  // namespace kestrel::math::metamodel
