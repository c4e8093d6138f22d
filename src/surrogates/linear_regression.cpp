#include "surrogates/linear_regression.h"

#include <algorithm>
#include <boost/format.hpp>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <typeinfo>

#include "statistics/basic_statistics.h"
#include "support/error_report.h"

namespace kestrel::math::metamodel {
namespace {

/// Query points are evaluated in blocks, so that the basis of a block stays in the cache.
constexpr Index kBlockRows = 256;

const LinearRegressionSettings& ConvertSettings(const SurrogateSettingsBase& settings) {
  try {
    return dynamic_cast<const LinearRegressionSettings&>(settings);
  } catch (const std::bad_cast& error) {
    throw std::logic_error(std::string("Initialize Linear Regression failed. Could not convert surrogate setting : ") +
                           error.what());
  }
}

}  // namespace

LinearRegression::LinearRegression(const MatrixIn& points, const VectorIn& values, const VectorIn& weights)
    : SurrogateBase(points, values), settings_(static_cast<std::uint64_t>(points.cols())) {
  weights_ = weights;
}

void LinearRegression::InitializeImpl(const SurrogateSettingsBase& settings) {
  const LinearRegressionSettings& given = ConvertSettings(settings);
  if (given.GetNumInputs() != 0 && given.GetNumInputs() != static_cast<std::uint64_t>(points_.cols())) {
    error::Report(L"Settings for ", given.GetNumInputs(), L" inputs do not fit support points of ", points_.cols(),
                  L" inputs");
  }
  if (!CoordinatesStand() || !given.SameTerms(settings_)) DropBasis();
  settings_ = given;
  need_build_ = true;
  if (!(settings_ == LinearRegressionSettings(settings_.GetNumInputs()))) settings_.SetState(eState::kGiven);
}

void LinearRegression::DropBasis() {
  coefficient_matrix_.resize(0, 0);
  normal_equations_.reset();
}

void LinearRegression::PrepareBasis() {
  const bool coordinates_stood = CoordinatesStand();
  const Matrix& points = TransformSupportPoints();
  if (!coordinates_stood) DropBasis();
  if (coefficient_matrix_.size() > 0) return;
  coefficient_matrix_ =
      BuildCoefficientMatrix(points, settings_.GetMainTermSelection(), settings_.GetInteractionSelection());
}

template <class Work>
Vector LinearRegression::OnBasis(Work&& work) const {
  if (coefficient_matrix_.size() > 0) return work(coefficient_matrix_);
  return work(BuildCoefficientMatrix(TransformPoints(points_), settings_.GetMainTermSelection(),
                                     settings_.GetInteractionSelection()));
}

const NormalEquations& LinearRegression::PrepareNormalEquations() {
  PrepareBasis();
  if (!normal_equations_) normal_equations_.emplace(coefficient_matrix_, weights_);
  return *normal_equations_;
}

bool LinearRegression::HasEnoughPoints() const {
  return GetNumberCoefficients() <= static_cast<std::uint64_t>(points_.rows());
}

bool LinearRegression::CheckBeforeBuild() { return HasEnoughPoints() && PrepareNormalEquations().HasFullRank(); }

bool LinearRegression::CheckAfterBuild() const {
  return !need_build_ && !(trans_coord_ && trans_coord_->GetNeedBuild());
}

bool LinearRegression::Build() {
  if (!need_build_ && !AnyTransformNeedsBuild()) return true;
  residuals_.resize(0);
  if (!HasEnoughPoints()) return false;
  SolveAndFinish();
  return true;
}

void LinearRegression::SolveAndFinish() {
  PrepareBasis();
  points_trans_reduced_ = SelectVariablesFromPoints(TransformSupportPoints(), GetVariableSelection());
  const Vector values = TransformSupportValues();
  if (statistics::isConst(values)) {
    coefficients_ = SolveCoefficients(coefficient_matrix_, values, weights_);
  } else {
    coefficients_ = PrepareNormalEquations().Solve(RightHandSides(coefficient_matrix_, values, weights_));
  }
  WriteTransformationParameters(settings_);
  need_build_ = false;
}

bool LinearRegression::BuildOptimal(const Subsets& /*subsets*/) {
  const bool built = trans_value_ ? BuildOptimalBoxCox() : Build();
  if (built) settings_.SetState(eState::kOptimal);
  return built;
}

void LinearRegression::RequireBuilt(const wchar_t* message) const {
  if (need_build_) error::Report(message);
}

Vector LinearRegression::Approximate(const MatrixIn& points) const {
  RequireBuilt(L"can not approximate - build first");
  if (need_build_ || !CheckInputCount(points, L"Surrogate approximate")) return NoValues(points.rows());
  Vector values(points.rows());
  for (Index first = 0; first < points.rows(); first += kBlockRows) {
    const Index count = std::min(kBlockRows, points.rows() - first);
    const Matrix block = TransformPoints(points.middleRows(first, count));
    values.segment(first, count).noalias() =
        BuildCoefficientMatrix(block, settings_.GetMainTermSelection(), settings_.GetInteractionSelection()) *
        coefficients_;
  }
  return TransformBack(std::move(values));
}

Vector LinearRegression::Approximate() const {
  RequireBuilt(L"can not approximate - build first");
  if (need_build_) return NoValues(points_.rows());
  RequireSample();
  return OnBasis([&](const Matrix& basis) { return TransformBack(basis * coefficients_); });
}

Vector LinearRegression::ApproximateLeaveOneOut() const {
  RequireBuilt(L"can not calculate LOO approximation - build first");
  if (need_build_) return NoValues(points_.rows());
  RequireSample();
  const Vector values = ForwardValues();
  return OnBasis([&](const Matrix& basis) {
    const Vector residuals = values - basis * coefficients_;
    const Vector leverages = normal_equations_ ? normal_equations_->Leverages(basis, weights_)
                                               : NormalEquations(basis, weights_).Leverages(basis, weights_);
    return TransformBack(values.array() - residuals.array() / (1.0 - leverages.array()));
  });
}

Vector LinearRegression::ApproximateCrossValidation(const Subsets& subsets) const {
  if (subsets.empty()) return ApproximateLeaveOneOut();
  RequireBuilt(L"can not calculate CV approximation - build first");
  RequireSample();
  if (subsets.size() != static_cast<std::size_t>(points_.rows())) {
    error::Report(L"Surrogate approximate CV needs same number of support points (", points_.rows(),
                  L") as subset indeces (", subsets.size(), L")");
    return NoValues(points_.rows());
  }
  if (need_build_) return NoValues(points_.rows());
  return OnBasis(
      [&](const Matrix& basis) { return TransformBack(CrossValidate(basis, ForwardValues(), weights_, subsets)); });
}

std::wstring LinearRegression::Name(bool short_name) const {
  const std::wstring name = L"Linear Regression";
  return short_name ? name : (boost::wformat(L"%1% | %2%") % name % settings_.GetOrder()).str();
}

std::wstring LinearRegression::Str() const {
  std::wstring text = Name(false);
  if (coefficients_.size() == 0) return text;
  text += L" | ( ";
  for (const double coefficient : coefficients_) text += (boost::wformat(L"%1% ") % coefficient).str();
  return text + L") | " + SurrogateBase::Str();
}

}  // namespace kestrel::math::metamodel
