#include "surrogates/boxcox_regression.h"

namespace kestrel::math::metamodel {
namespace {

LinearRegressionSettings SettingsFor(const SurrogateBase& model, ePolynomial term_set) {
  const SurrogateSettingsBase& given = model.GetSettingsBase();
  LinearRegressionSettings settings(static_cast<std::uint64_t>(model.GetSupportPoints().cols()));
  settings.SetCoordTransformation(given.GetCoordTransformation());
  settings.SetCoordTransformationParameter(given.GetCoordTransformationParameter());
  settings.SetValueTransformation(given.GetValueTransformation());
  settings.SetValueTransformationParameter(given.GetValueTransformationParameter());
  settings.SetOrder(term_set == ePolynomial::kLinear ? 1 : 2);
  settings.SetInteraction(term_set == ePolynomial::kQuadratic);
  settings.SetVariableSelection(model.GetVariableSelection());  // behind the terms: it takes some out
  return settings;
}

}  // namespace

std::unique_ptr<LinearRegression> FitBoxCoxRegression(const SurrogateBase& model,
                                                      std::initializer_list<ePolynomial> term_sets,
                                                      const std::shared_ptr<utils::StopHelper>& stop) {
  auto regression = std::make_unique<LinearRegression>(model.GetSupportPoints(), model.GetResponseValues());
  regression->SetStopHelper(stop);
  for (const ePolynomial& term_set : term_sets) {
    utils::CheckInterrupted(stop.get());
    regression->Initialize(SettingsFor(model, term_set));
    if (&term_set + 1 == term_sets.end() || regression->CheckBeforeBuild()) break;
  }
  regression->BuildOptimalBoxCox();
  return regression;
}

}  // namespace kestrel::math::metamodel
