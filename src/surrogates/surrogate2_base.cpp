#include "surrogates/surrogate2_base.h"

#include <limits>
#include <stdexcept>
#include <typeinfo>

#include "statistics/transform/transform_minmax.h"
#include "support/error_report.h"
#include "support/exceptions.h"
#include "support/matrix_equality.h"
#include "surrogates/grouped_rows.h"

namespace kestrel::math::metamodel {
namespace {

using TransformPointer = std::shared_ptr<transform::Transform>;

TransformPointer CloneOf(const TransformPointer& source) {
  return source ? TransformPointer(source->Clone()) : TransformPointer();
}

bool SameTransform(const TransformPointer& a, const TransformPointer& b) {
  if (!a || !b) return !a && !b;
  return *a == *b;
}

/// True if both would fit the same data alike: the same kind with the same parameters.
bool SameFit(const TransformPointer& a, const TransformPointer& b) {
  if (!a || !b) return false;
  const transform::Transform& first = *a;
  const transform::Transform& second = *b;
  return typeid(first) == typeid(second) && first.GetParameters() == second.GetParameters();
}

std::wstring StrOf(const TransformPointer& source) { return source ? source->Str() : L"none"; }

}  // namespace

SurrogateBase::SurrogateBase(const MatrixIn& points, const VectorIn& values)
    : points_(points),
      values_(values),
      trans_coord_(std::make_shared<transform::TransMinMax>()),
      log_(std::make_shared<utils::log::LogDummy>()) {
  if (points.rows() != values.size()) {
    error::Report(L"Surrogate needs same number of support points (", points.rows(), L") and values (", values.size(),
                  L")");
  }
}

SurrogateBase::SurrogateBase(const SurrogateBase& other)
    : points_(other.points_),
      values_(other.values_),
      points_trans_reduced_(other.points_trans_reduced_),
      residuals_(other.residuals_),
      subsets_(other.subsets_),
      single_cops_(other.single_cops_),
      need_build_(other.need_build_),
      stop_helper_(other.stop_helper_),
      weights_(other.weights_),
      trans_coord_(CloneOf(other.trans_coord_)),
      trans_value_(CloneOf(other.trans_value_)),
      trans_limit_(CloneOf(other.trans_limit_)),
      points_radii_mean_(other.points_radii_mean_),
      log_(other.log_),
      points_transformed_(other.points_transformed_) {}

void SurrogateBase::Initialize(const SurrogateSettingsBase& settings) {
  if (settings.GetNumInputs() != 0) settings.CheckSettings(*log_);
  need_build_ = true;
  TransformPointer coordinates =
      CreateTransformation(settings.GetCoordTransformation(), settings.GetCoordTransformationParameter());
  if (!SameFit(coordinates, trans_coord_)) {  // else the transformed support points stay theirs
    trans_coord_ = std::move(coordinates);
    points_transformed_.resize(0, 0);
  }
  trans_value_ = CreateTransformation(settings.GetValueTransformation(), settings.GetValueTransformationParameter());
  trans_limit_ = CreateTransformation(settings.GetLimitTransformation(), settings.GetLimitTransformationParameter());
  DropResults();
  try {
    InitializeImpl(settings);
  } catch (const std::exception& error) {
    const std::wstring message = utils::exception_what(error) +
                                 L"\nThe surrogate can not be initialized. An error in the settings is very likely.";
    log_->add(utils::log::LogLevel::kError, message);
    throw utils::runtime_error(message);
  }
}

void SurrogateBase::InitializeValueTransformation(eTransformation type, const std::vector<double>& parameters) {
  need_build_ = true;
  DropResults();
  trans_value_ = CreateTransformation(type, parameters);
}

void SurrogateBase::InitializeLimitTransformation(eTransformation type, const std::vector<double>& parameters) {
  need_build_ = true;
  DropResults();
  trans_limit_ = CreateTransformation(type, parameters);
}

bool SurrogateBase::BuildOptimal() {
  DropResults();
  const bool usable = subsets_.size() == static_cast<std::size_t>(values_.size());
  return BuildOptimal(usable ? subsets_ : Subsets());
}

void SurrogateBase::SetLog(std::shared_ptr<utils::log::LogBase> log) {
  log_ = log ? std::move(log) : std::make_shared<utils::log::LogDummy>();
}

void SurrogateBase::SetSubsets(Subsets subsets) {
  if (!subsets.empty() && subsets.size() != static_cast<std::size_t>(values_.size())) {
    error::Report(L"Subset indices needs same number of entries (", subsets.size(), L") than number of values (",
                  values_.size(), L")");
  }
  subsets_ = std::move(subsets);
  residuals_.resize(0);
  points_radii_mean_ = 0.0;
}

Index SurrogateBase::GetNumberInputs() const {
  if (HasSupports() || points_.cols() > 0) return points_.cols();
  return static_cast<Index>(GetSettingsBase().GetNumInputs());
}

Vector SurrogateBase::Approximate() const {
  RequireSample();
  return Approximate(points_);
}

Vector SurrogateBase::ApproximateLeaveOneOut() const {
  RequireSample();
  return ApproximateCrossValidation(SingleRows(points_.rows()));
}

Vector SurrogateBase::ApproximateCrossValidation() const {
  RequireSample();
  if (HasResiduals()) return values_ - residuals_;
  if (subsets_.size() == static_cast<std::size_t>(values_.size())) return ApproximateCrossValidation(subsets_);
  return ApproximateLeaveOneOut();
}

std::wstring SurrogateBase::Str() const {
  return L"coordinate transformation : " + StrOf(trans_coord_) + L" | value transformation : " + StrOf(trans_value_) +
         StrOf(trans_limit_);
}

std::wstring SurrogateBase::GetFunctionStr(const std::vector<std::wstring>& /*input_names*/) const {
  return L"No model function available";
}

bool SurrogateBase::operator==(const SurrogateBase& other) const {
  return typeid(*this) == typeid(other) && need_build_ == other.need_build_ && subsets_ == other.subsets_ &&
         SameValue(points_radii_mean_, other.points_radii_mean_) && SameEntries(points_, other.points_) &&
         SameEntries(values_, other.values_) && SameEntries(points_trans_reduced_, other.points_trans_reduced_) &&
         SameEntries(residuals_, other.residuals_) && SameEntries(weights_, other.weights_) &&
         SameEntries(single_cops_, other.single_cops_) && SameTransform(trans_coord_, other.trans_coord_) &&
         SameTransform(trans_value_, other.trans_value_) && SameTransform(trans_limit_, other.trans_limit_);
}

bool SurrogateBase::CoordinatesStand() const {
  const bool fitted = !trans_coord_ || !trans_coord_->GetNeedBuild();
  return fitted && points_transformed_.rows() == points_.rows() && points_transformed_.cols() == points_.cols();
}

const Matrix& SurrogateBase::TransformSupportPoints() {
  if (!CoordinatesStand()) {
    const bool transformed = trans_coord_ && trans_coord_->Build(points_);
    points_transformed_ = transformed ? trans_coord_->ScaleForward(points_) : points_;
  }
  return points_transformed_;
}

Vector SurrogateBase::TransformSupportValues() {
  Vector transformed = values_;
  if (trans_value_ && trans_value_->Build(values_)) transformed = trans_value_->ScaleForward(values_);
  if (trans_limit_) trans_limit_->Build(values_);
  return transformed;
}

Matrix SurrogateBase::TransformPoints(const MatrixIn& points) const {
  return trans_coord_ ? trans_coord_->ScaleForward(points) : Matrix(points);
}

Vector SurrogateBase::TransformBack(Vector values) const {
  if (trans_value_) values = trans_value_->ScaleBackward(values);
  if (trans_limit_) values = trans_limit_->ScaleBackward(values);
  return values;
}

Vector SurrogateBase::ForwardValues() const {
  return trans_value_ ? Vector(trans_value_->ScaleForward(values_)) : values_;
}

void SurrogateBase::TakeTransformations(const SurrogateBase& other) {
  trans_coord_ = CloneOf(other.trans_coord_);
  trans_value_ = CloneOf(other.trans_value_);
  trans_limit_ = CloneOf(other.trans_limit_);
  need_build_ = true;
}

void SurrogateBase::WriteTransformationParameters(SurrogateSettingsBase& settings) const {
  if (trans_coord_) settings.SetCoordTransformationParameter(trans_coord_->GetParameters());
  if (trans_value_) settings.SetValueTransformationParameter(trans_value_->GetParameters());
  if (trans_limit_) settings.SetLimitTransformationParameter(trans_limit_->GetParameters());
}

bool SurrogateBase::AnyTransformNeedsBuild() const {
  return (trans_coord_ && trans_coord_->GetNeedBuild()) || (trans_value_ && trans_value_->GetNeedBuild()) ||
         (trans_limit_ && trans_limit_->GetNeedBuild());
}

void SurrogateBase::DropResults() {
  residuals_.resize(0);
  points_radii_mean_ = 0.0;
  single_cops_.resize(0, 0);
}

bool SurrogateBase::CheckInputCount(const MatrixIn& points, const wchar_t* what) const {
  if (points.cols() == GetNumberInputs()) return true;
  error::Report(what, L" needs same number of input dimension (", points.cols(), L") as support points (",
                GetNumberInputs(), L")");
  return false;
}

void SurrogateBase::RequireSample() const {
  if (!HasSupports()) throw std::logic_error("Surrogate: support point data is missing");
}

Matrix NoValues(Index rows, Index columns) {
  return Matrix::Constant(rows, columns, std::numeric_limits<double>::quiet_NaN());
}

Matrix SelectVariablesFromPoints(const MatrixIn& points, const Selection& selection) {
  if (static_cast<Index>(selection.count()) == points.cols()) return points;
  Matrix reduced(points.rows(), static_cast<Index>(selection.count()));
  Index column = 0;
  for (auto bit = selection.find_first(); bit != Selection::npos; bit = selection.find_next(bit)) {
    reduced.col(column++) = points.col(static_cast<Index>(bit));
  }
  return reduced;
}

}  // namespace kestrel::math::metamodel
