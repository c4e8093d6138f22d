#include "surrogates/surrogate_tps.h"

#include <boost/format.hpp>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <typeinfo>

#include "statistics/basic_statistics.h"
#include "support/error_report.h"
#include "surrogates/boxcox_regression.h"
#include "surrogates/grouped_rows.h"

namespace kestrel::math::metamodel {
namespace {

const SurrogateTPSSettings& ConvertSettings(const SurrogateSettingsBase& settings) {
  try {
    return dynamic_cast<const SurrogateTPSSettings&>(settings);
  } catch (const std::bad_cast& error) {
    throw std::logic_error(std::string("Initialize Thin Plate Spline failed. Could not convert surrogate setting : ") +
                           error.what());
  }
}

/// No smoothing, and from next to none to next to a plane for inputs scaled to [0, 1].
std::vector<double> SmoothingGrid() {
  std::vector<double> grid = {0.0};
  for (int exponent = -8; exponent <= 2; ++exponent) grid.push_back(std::pow(10.0, exponent));
  return grid;
}

}  // namespace

SurrogateTPS::SurrogateTPS(const MatrixIn& points, const VectorIn& values)
    : SurrogateBase(points, values), settings_(static_cast<std::uint64_t>(points.cols())) {}

void SurrogateTPS::InitializeImpl(const SurrogateSettingsBase& settings) {
  const SurrogateTPSSettings& given = ConvertSettings(settings);
  if (given.GetNumInputs() != 0 && given.GetNumInputs() != static_cast<std::uint64_t>(points_.cols())) {
    error::Report(L"Settings for ", given.GetNumInputs(), L" inputs do not fit support points of ", points_.cols(),
                  L" inputs");
  }
  const std::size_t selected_of = given.GetVariableSelection().size();
  if (selected_of != 0 && selected_of != static_cast<std::size_t>(points_.cols())) {  // not asked without inputs
    throw std::logic_error("variable selection does not fit the number of inputs");
  }
  settings_ = given;
  need_build_ = true;
  if (!(settings_ == SurrogateTPSSettings(settings_.GetNumInputs()))) settings_.SetState(eState::kGiven);
}

bool SurrogateTPS::HasEnoughPoints() const {
  return GetNumberCoefficients() <= static_cast<std::uint64_t>(points_.rows());
}

bool SurrogateTPS::CheckBeforeBuild() {
  if (!HasEnoughPoints()) return false;
  const Matrix points = SelectVariablesFromPoints(TransformSupportPoints(), GetVariableSelection());
  const Eigen::RowVectorXd mean = points.colwise().mean();
  return Eigen::ColPivHouseholderQR<Matrix>(points.rowwise() - mean).rank() == points.cols();
}

bool SurrogateTPS::CheckAfterBuild() const { return !need_build_ && !(trans_coord_ && trans_coord_->GetNeedBuild()); }

bool SurrogateTPS::Build() {
  if (!need_build_ && !AnyTransformNeedsBuild()) return true;
  residuals_.resize(0);
  if (!HasEnoughPoints()) return false;
  return Solve(Prepare(), settings_.GetSmoothing());
}

Vector SurrogateTPS::Prepare() {
  points_trans_reduced_ = SelectVariablesFromPoints(TransformSupportPoints(), GetVariableSelection());
  system_ = std::make_shared<ThinPlateSystem>(points_trans_reduced_);
  return TransformSupportValues();
}

bool SurrogateTPS::Solve(const Vector& values, double smoothing) {
  need_build_ = true;
  if (!values.allFinite() || !system_->Factorise(smoothing)) return false;
  spline_ = system_->Solve(values);
  settings_.SetSmoothing(smoothing);
  WriteTransformationParameters(settings_);
  need_build_ = false;
  return true;
}

bool SurrogateTPS::BuildOptimal(const Subsets& subsets) {
  if (!subsets.empty() && subsets.size() != static_cast<std::size_t>(points_.rows())) {
    throw std::logic_error("subset vector has wrong length");
  }
  residuals_.resize(0);
  if (!HasEnoughPoints()) return false;
  if (settings_.GetValueTransformation() == eTransformation::kBoxCox) FindBoxCox();
  const Vector values = Prepare();
  if (!Solve(values, FindSmoothing(values, subsets))) return false;
  settings_.SetState(eState::kOptimal);
  return true;
}

void SurrogateTPS::FindBoxCox() {
  const auto regression = FitBoxCoxRegression(
      *this, {ePolynomial::kQuadratic, ePolynomial::kQuadraticWithoutInteractions, ePolynomial::kLinear}, stop_helper_);
  InitializeValueTransformation(eTransformation::kBoxCox,
                                regression->GetSettingsBase().GetValueTransformationParameter());
}

double SurrogateTPS::FindSmoothing(const Vector& values, const Subsets& subsets) {
  const Subsets groups = subsets.empty() ? SingleRows(points_.rows()) : subsets;
  double best = settings_.GetSmoothing();
  double least_error = std::numeric_limits<double>::infinity();
  for (const double smoothing : SmoothingGrid()) {
    utils::CheckInterrupted(stop_helper_.get());
    if (!system_->Factorise(smoothing)) continue;
    const double error = statistics::SSE(values_, TransformBack(system_->CrossValidate(values, groups)));
    if (error < least_error) {
      least_error = error;
      best = smoothing;
    }
  }
  return best;
}

Vector SurrogateTPS::Approximate(const MatrixIn& points) const {
  if (need_build_) error::Report(L"can not approximate - build first");
  if (need_build_ || !CheckInputCount(points, L"Surrogate approximate")) return NoValues(points.rows());
  const Matrix query = SelectVariablesFromPoints(TransformPoints(points), GetVariableSelection());
  return TransformBack(spline_.Evaluate(points_trans_reduced_, query));
}

Vector SurrogateTPS::ApproximateCrossValidation(const Subsets& subsets) const {
  if (subsets.empty()) return ApproximateLeaveOneOut();
  if (need_build_) error::Report(L"can not calculate CV approximation - build first");
  RequireSample();
  if (subsets.size() != static_cast<std::size_t>(points_.rows())) {
    error::Report(L"Surrogate approximate CV needs same number of support points (", points_.rows(),
                  L") as subset indeces (", subsets.size(), L")");
    return NoValues(points_.rows());
  }
  if (need_build_) return NoValues(points_.rows());
  if (system_) return TransformBack(system_->CrossValidate(ForwardValues(), subsets));
  // A model that was read has no factor. Each call makes its own, because calls that are const may run side by side.
  ThinPlateSystem system(points_trans_reduced_);
  if (!system.Factorise(settings_.GetSmoothing())) return NoValues(points_.rows());
  return TransformBack(system.CrossValidate(ForwardValues(), subsets));
}

std::wstring SurrogateTPS::Name(bool short_name) const {
  const std::wstring name = L"Thin Plate Spline";
  return short_name ? name : (boost::wformat(L"%1% | %2%") % name % settings_.GetOrder()).str();
}

std::wstring SurrogateTPS::Str() const {
  return (boost::wformat(L"%1% | smoothing %2% | %3%") % Name(false) % settings_.GetSmoothing() % SurrogateBase::Str())
      .str();
}

}  // namespace kestrel::math::metamodel
