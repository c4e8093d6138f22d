#include "selection/coi_uncorrelated.h"

#include "statistics/basic_statistics.h"
#include "support/exceptions.h"

namespace kestrel::math::statistics {
namespace {

void RequireKnownType(RSquared::eType type) {
  if (type == RSquared::kR2CrossValidation) throw utils::logic_error(L"COI using cross validation not implemented");
  if (type < RSquared::kR2 || type > RSquared::kR2CrossValidation) throw utils::logic_error(L"Invalid R square type");
}

double Measure(const metamodel::LinearRegression& regression, RSquared::eType type) {
  const Vector& values = regression.GetResponseValues();
  if (type == RSquared::kR2LeaveOneOut) return R2(values, regression.ApproximateLeaveOneOut());
  if (type == RSquared::kR2) return R2(values, regression.Approximate());
  return R2adj(values, regression.Approximate(), regression.GetNumberCoefficients());
}

// The measure of the regression without the terms of one input. The settings carry the fitted value transformation, so
// that `Build` fits the remaining terms on the same scale.
double MeasureWithout(std::uint64_t input, metamodel::LinearRegressionSettings settings, RSquared::eType type,
                      metamodel::LinearRegression& reduced) {
  settings.DeselectInputMainTerms(input);
  settings.DeselectInputInteractionTerms(input);
  reduced.Initialize(settings);
  if (!reduced.Build()) throw utils::logic_error(L"CoiUncorrelated: Failed in building reduced regression model");
  return Measure(reduced, type);
}

}  // namespace

Vector CoiUncorrelated(const metamodel::LinearRegression& regression, RSquared::eType r_squared_type, bool check_rank) {
  RequireKnownType(r_squared_type);
  Vector importance = Vector::Zero(regression.GetNumberInputs());
  if (IsConstantResponse(regression.GetResponseValues())) return importance;

  metamodel::LinearRegression copy(regression);  // the one object that serves all fits
  if (check_rank && !copy.CheckBeforeBuild()) {
    throw utils::logic_error(L"CoiUncorrelated: Level matrix of regression has low rank");
  }
  if (!copy.Build()) throw utils::logic_error(L"CoiUncorrelated: Failed in building full regression model");
  const double full = Measure(copy, r_squared_type);

  const metamodel::LinearRegressionSettings settings = copy.GetSettingsBase();
  const metamodel::Selection used = settings.GetVariableSelection();
  for (auto input = used.find_first(); input != metamodel::Selection::npos; input = used.find_next(input)) {
    importance(static_cast<Index>(input)) = full - MeasureWithout(input, settings, r_squared_type, copy);
  }
  return importance;
}

}  // namespace kestrel::math::statistics
