#include <stdexcept>
#include <utility>

#include "statistics/basic_statistics.h"
#include "surrogates/boxcox_regression.h"
#include "surrogates/grouped_rows.h"
#include "surrogates/moving_least_squares.h"

// What MovingLeastSquares finds by search: the value transformation, the radius, and the importance of the inputs.

namespace kestrel::math::metamodel {
namespace {

/// Samples that are all at one point have no radius.
constexpr double kOnePoint = 1e-24;

Subsets SubsetsOrSingles(const Subsets& subsets, Index count) { return subsets.empty() ? SingleRows(count) : subsets; }

}  // namespace

bool MovingLeastSquares::BuildOptimal(const Subsets& subsets) {
  CheckInterrupted();
  if (trans_value_) {
    BuildOptimalBoxCox();
  } else {
    Build();
  }
  residuals_.resize(0);
  return CheckAfterBuild() && BuildOptimalRadius(SubsetsOrSingles(subsets, points_.rows()));
}

bool MovingLeastSquares::BuildOptimalBoxCox() {
  residuals_.resize(0);
  // Where the local basis itself lacks rank, so would the larger one of the regression.
  const ePolynomial terms = CheckBeforeBuild() ? ePolynomial::kQuadratic : ePolynomial::kLinear;
  const auto regression = FitBoxCoxRegression(*this, {terms}, stop_helper_);
  InitializeValueTransformation(eTransformation::kBoxCox, regression->GetTransValue()->GetParameters());
  settings_.SetValueTransformation(eTransformation::kBoxCox);
  WriteTransformationParameters(settings_);
  settings_.SetState(eState::kOptimal);
  Build();
  return true;
}

bool MovingLeastSquares::BuildOptimalRadius(const Subsets& subsets) {
  RequireSample();
  if (subsets.size() != static_cast<std::size_t>(points_.rows())) {
    throw std::logic_error("subset vector has wrong length");
  }
  const auto kernel = CreateKernel(static_cast<Kernel::eType>(settings_.GetKernelType()), Vector());
  if (!kernel->IsIsotropic()) return false;
  if (kernel->GetNumParameters() != 1) return kernel->GetNumParameters() == 0;
  if (points_trans_reduced_.size() == 0) return false;  // without inputs all samples are at one point

  search_.reset();
  if (!distances_ || !distances_->BelongTo(points_trans_reduced_, subsets)) {
    distances_ = std::make_shared<SampleDistances>(points_trans_reduced_, subsets, [this] { CheckInterrupted(); });
  }
  const bool apart = distances_->GetLargestSquared() > kOnePoint;
  if (apart && statistics::isConst(values_)) {
    SetRadius(*kernel, distances_->RadiusBounds().highest);
  } else if (apart) {
    SearchRadius(*kernel, subsets);
  }
  if (!keep_distances_) distances_.reset();
  if (apart) settings_.SetState(eState::kOptimal);
  return apart;
}

void MovingLeastSquares::SearchRadius(KernelBase& kernel, const Subsets& subsets) {
  if (plain_model_ && IsOfThisPlainModel(*plain_model_)) {
    search_ = std::exchange(plain_model_, std::nullopt);
  } else {
    const auto back = [this](Vector fits) { return TransformBack(std::move(fits)); };
    const auto plain_back = [this](Vector fits) {
      return trans_limit_ ? Vector(trans_limit_->ScaleBackward(fits)) : fits;
    };
    std::vector<FittedScale> scales = {{values_trans_, back}};
    // With the exponent 1 the plain model would be the same but for rounding, and nobody asks for it.
    const bool plain_differs = trans_value_ && trans_value_->GetParameters().front() != 1.0;
    if (expect_plain_model_ && keep_distances_ && plain_differs) scales.push_back({values_, plain_back});
    std::vector<BestRadius> best = FindBestRadius({*distances_, SupportBasis(), MinNeighbours(), values_}, kernel,
                                                  scales, [this] { CheckInterrupted(); });
    plain_model_.reset();
    if (best.size() > 1) plain_model_ = {SettingsOfSearch(), distances_, subsets, values_, std::move(best.back())};
    search_ = {SettingsOfSearch(), distances_, subsets, values_, std::move(best.front())};
  }
  SetRadius(kernel, search_->best.radius);
}

MovingLeastSquaresSettings MovingLeastSquares::SettingsOfSearch() const {
  MovingLeastSquaresSettings settings = settings_;
  settings.SetValueTransformation(eTransformation::kNone);
  settings.SetValueTransformationParameter({});
  settings.SetKernelParameter(Vector());
  settings.SetState(eState::kDefault);
  return settings;
}

bool MovingLeastSquares::IsOfThisPlainModel(const SearchResult& result) const {
  return !trans_value_ && result.distances.lock() == distances_ && result.values == values_ &&
         result.settings == SettingsOfSearch();
}

void MovingLeastSquares::SetRadius(KernelBase& kernel, double radius) {
  const Vector parameter = Vector::Constant(1, radius);
  settings_.SetKernelParameter(parameter);
  kernel.SetParameters(parameter);  // raises if no radius was found
}

const SamplePredictions* MovingLeastSquares::GetSearchPredictions() const {
  return search_ && CheckAfterBuild() ? &search_->best.predictions : nullptr;
}

Vector MovingLeastSquares::ApproximateVariableImportanceCV() const {
  return ApproximateVariableImportanceCV(Subsets());
}

Vector MovingLeastSquares::ApproximateVariableImportanceCV(const Subsets& subsets) const {
  RequireSample();
  const double error = SumOfSquaredErrors(subsets);
  const double total = (values_.array() - values_.mean()).square().sum();
  Vector importance = Vector::Zero(points_.cols());
  MovingLeastSquares without(points_, values_);
  without.SetStopHelper(stop_helper_);
  const Selection selection = GetVariableSelection();
  for (auto bit = selection.find_first(); bit != Selection::npos; bit = selection.find_next(bit)) {
    without.Initialize(SettingsWithout(bit));
    without.TakeTransformations(*this);
    without.Build();
    importance[static_cast<Index>(bit)] = (without.SumOfSquaredErrors(subsets) - error) / total;
  }
  return importance;
}

MovingLeastSquaresSettings MovingLeastSquares::SettingsWithout(Selection::size_type input) const {
  MovingLeastSquaresSettings settings = settings_;
  const Selection selection = GetVariableSelection();
  settings.SetVariableSelection(Selection(selection).reset(input));
  if (settings_.GetKernelType() == Kernel::kConstInflExp) {
    const Vector& radii = settings_.GetKernelParameter();
    Vector others(radii.size() - 1);
    Index position = 0;
    for (auto bit = selection.find_first(); bit < input; bit = selection.find_next(bit)) ++position;
    others << radii.head(position), radii.tail(others.size() - position);
    settings.SetKernelParameter(others);
  }
  return settings;
}

double MovingLeastSquares::SumOfSquaredErrors(const Subsets& subsets) const {
  const SamplePredictions* const found = GetSearchPredictions();
  if (found && search_->subsets == SubsetsOrSingles(subsets, points_.rows())) {
    return statistics::SSE(values_, found->cross_validation);
  }
  return statistics::SSE(values_, ApproximateCrossValidation(subsets));
}

}  // namespace kestrel::math::metamodel
