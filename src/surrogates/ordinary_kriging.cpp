#include "surrogates/ordinary_kriging.h"

#include <algorithm>
#include <boost/format.hpp>
#include <cmath>
#include <stdexcept>
#include <string>
#include <typeinfo>

#include "support/error_report.h"
#include "surrogates/kriging_correlation.h"

namespace kestrel::math::metamodel {
namespace {

const OrdinaryKrigingSettings& ConvertSettings(const SurrogateSettingsBase& settings) {
  try {
    return dynamic_cast<const OrdinaryKrigingSettings&>(settings);
  } catch (const std::bad_cast& error) {
    throw std::logic_error(std::string("Initialize Kriging failed. Could not convert surrogate setting : ") +
                           error.what());
  }
}

/// An N x N matrix whose lower triangle is about to be written. What stands above is never looked at.
void Resize(Index size, Matrix& R) {
  if (R.rows() != size || R.cols() != size) R.setZero(size, size);
}

}  // namespace

OrdinaryKriging::OrdinaryKriging(const MatrixIn& points, const VectorIn& values)
    : SurrogateBase(points, values), settings_(static_cast<std::uint64_t>(points.cols())) {}

void OrdinaryKriging::InitializeImpl(const SurrogateSettingsBase& settings) {
  const OrdinaryKrigingSettings& given = ConvertSettings(settings);
  if (given.GetNumInputs() != 0 && given.GetNumInputs() != static_cast<std::uint64_t>(points_.cols())) {
    error::Report(L"Settings for ", given.GetNumInputs(), L" inputs do not fit support points of ", points_.cols(),
                  L" inputs");
  }
  if (!CoordinatesStand()) factored_.reset();
  settings_ = given;
  need_build_ = true;
  if (!(settings_ == OrdinaryKrigingSettings(settings_.GetNumInputs()))) settings_.SetState(eState::kGiven);
}

bool OrdinaryKriging::CheckAfterBuild() const {
  return !need_build_ && !(trans_coord_ && trans_coord_->GetNeedBuild());
}

void OrdinaryKriging::DropFactor() {
  factored_.reset();
  correlation_.resize(0, 0);
  factor_.Clear();
}

bool OrdinaryKriging::FactorStands() const { return factored_ && *factored_ == settings_.MakeCorrelationKey(); }

void OrdinaryKriging::PrepareSample() {
  if (!CoordinatesStand()) factored_.reset();
  points_trans_reduced_ = SelectVariablesFromPoints(TransformSupportPoints(), GetVariableSelection());
  values_trans_ = TransformSupportValues();
}

bool OrdinaryKriging::Build() {
  if (CheckAfterBuild() && (!HasSupports() || kernel_weights_.size() == points_.rows())) return true;
  residuals_.resize(0);
  negative_log_likelihood_ = 0.0;
  if (!HasSupports()) return false;
  PrepareSample();
  if (FactorStands()) {
    SolveForWeights(values_trans_);
  } else if (!BuildCorrelationMatrix(points_trans_reduced_, correlation_) ||
             !BuildLikelihood(values_trans_, correlation_)) {
    return false;
  }
  WriteTransformationParameters(settings_);
  return true;
}

KrigingCorrelation OrdinaryKriging::MakeCorrelation() const {
  return {settings_, static_cast<Index>(settings_.GetVariableSelection().count())};
}

bool OrdinaryKriging::BuildCorrelationMatrix(const MatrixIn& points, Matrix& R) const {
  const KrigingCorrelation correlation(settings_, points.cols());
  if (!correlation.IsDefined()) return false;
  Resize(points.rows(), R);
  correlation.Fill(points, R);
  return true;
}

bool OrdinaryKriging::BuildCorrelationFromDistances(const MatrixIn& distance_matrix, Matrix& R) const {
  const KrigingCorrelation correlation = MakeCorrelation();
  if (!correlation.IsDefined()) return false;
  Resize(distance_matrix.rows(), R);
  correlation.FillFromDistances(distance_matrix, R);
  return true;
}

bool OrdinaryKriging::BuildLikelihood(const VectorIn& z, const Matrix& R) {
  factored_.reset();
  if (!factor_.Compute(R, Stop())) return false;
  factored_ = settings_.MakeCorrelationKey();
  SolveForWeights(z);
  return true;
}

void OrdinaryKriging::SolveForWeights(const VectorIn& z) {
  // The mean is that of z about any constant, plus the constant. Taken about their own mean, values far from 0 keep
  // their digits.
  const double centre = z.mean();
  Matrix right_hand_sides(z.size(), 2);
  right_hand_sides << (z.array() - centre).matrix(), Vector::Ones(z.size());
  const Matrix solved = factor_.Solve(std::move(right_hand_sides));
  const double shift = solved.col(0).sum() / solved.col(1).sum();
  const auto size = static_cast<double>(z.size());
  mean_ = centre + shift;
  kernel_weights_ = solved.col(0) - shift * solved.col(1);
  sigma2_ = (z.array() - mean_).matrix().dot(kernel_weights_) / size;  // 1'w is 0
  negative_log_likelihood_ =
      0.5 * (size * std::log(sigma2_ > kLeastVariance ? sigma2_ : kLeastVariance) + factor_.LogDeterminant());
  need_build_ = false;
}

void OrdinaryKriging::KernelParameterChanged(KernelBase& kernel, const VectorIn& parameter) {
  kernel.SetParameters(parameter);
  settings_.SetKernelParameter(parameter);
  need_build_ = true;
}

void OrdinaryKriging::SetNugget(double nugget) {
  settings_.SetNugget(nugget);
  need_build_ = true;
}

Vector OrdinaryKriging::Approximate(const MatrixIn& points) const {
  if (!CheckAfterBuild()) throw std::logic_error("can not approximate - build first");
  if (!CheckInputCount(points, L"Surrogate approximate")) return NoValues(points.rows());
  const Matrix query = SelectVariablesFromPoints(TransformPoints(points), GetVariableSelection());
  const Vector sums = MakeCorrelation().Apply(query, points_trans_reduced_, kernel_weights_, Stop());
  return TransformBack(mean_ + sums.array());
}

Vector OrdinaryKriging::Approximate() const {
  if (!CheckAfterBuild()) throw std::logic_error("can not approximate - build first");
  RequireSample();
  // Between all points a nodal kernel is another than between two.
  if (settings_.GetKernelType() == Kernel::kNodalInflExp) return Approximate(points_);
  return TransformBack(values_trans_ - settings_.GetNugget() * kernel_weights_);  // m + K w = m + (R - g I) w = z - g w
}

std::wstring OrdinaryKriging::Name(bool short_name) const {
  const std::int32_t kernel = settings_.GetKernelType();
  const bool isotropic = kernel == Kernel::kConstInflIsoExp || kernel == Kernel::kConstInflIsoReg;
  const std::wstring name = isotropic ? L"Isotropic Kriging" : L"Anisotropic Kriging";
  return short_name ? name : (boost::wformat(L"%1% | %2%") % name % settings_.GetOrder()).str();
}

}  // namespace kestrel::math::metamodel
