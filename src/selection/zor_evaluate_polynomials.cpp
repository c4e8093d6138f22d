#include "selection/polynomial_importance.h"
#include "selection/polynomial_search.h"

namespace kestrel::math::metamodel {
namespace {

const LinearRegressionSettings& AsPolynomial(const SurrogateSettingsBase& settings) {
  return dynamic_cast<const LinearRegressionSettings&>(settings);
}

}  // namespace

LinearRegressionSettings RemoveSingularBasisTerms(const LinearRegressionSettings& settings,
                                                  const IndexVector& level_counts) {
  LinearRegressionSettings regular = settings;
  if (settings.GetOrder() < 2) return regular;

  const auto num_inputs = static_cast<std::size_t>(level_counts.size());
  Selection main_terms = settings.GetMainTermSelection();
  for (std::size_t term = main_terms.find_first(); term != Selection::npos; term = main_terms.find_next(term)) {
    const std::uint64_t exponent = term / num_inputs + 1;
    if (level_counts(static_cast<Index>(term % num_inputs)) < exponent) main_terms.reset(term);
  }
  regular.SetMainTermSelection(std::move(main_terms));
  for (std::size_t input = 0; input < num_inputs; ++input) {
    if (level_counts(static_cast<Index>(input)) == 0) regular.DeselectInputInteractionTerms(input);
  }
  return regular;
}

PolynomialSearch::PolynomialSearch(const SearchContext& context, CandidateRanking& ranking)
    : ModelSearch(context, ranking), regression_(context.inputs, context.response) {
  regression_.SetLog(context.log);
  regression_.SetStopHelper(context.stop_helper);
}

bool PolynomialSearch::MayCompete(const CompetitionState& state) const {
  const ZORSettings& settings = Context().settings;
  return (settings.use_polynomials_ && !settings.use_interpolation_) || !state.any_input;
}

void PolynomialSearch::EvaluateSubspace(const IndexVector& subspace) {
  const Selection variables = SelectedInputs(subspace);
  const bool try_quadratic = Context().settings.max_order_polynomial_ > 1;
  // Plain and transformed values on the linear terms come one after the other: they share the basis.
  EvaluateOrder(1, false, variables, eTransformation::kNone);
  if (Context().settings.use_boxcox_) EvaluateOrder(1, false, variables, eTransformation::kBoxCox);
  if (try_quadratic) EvaluateOrder(2, false, variables, eTransformation::kNone);
  EvaluateOrder(1, true, variables, eTransformation::kNone);
  if (try_quadratic) EvaluateOrder(2, true, variables, eTransformation::kNone);
  EvaluateOwnTerms(subspace);
}

LinearRegressionSettings PolynomialSearch::InitialSettings() const {
  LinearRegressionSettings settings(static_cast<std::uint64_t>(Context().inputs.cols()));
  SetCommonSettings(settings);
  return settings;
}

void PolynomialSearch::EvaluateOrder(std::uint64_t order, bool with_interactions, const Selection& variables,
                                     eTransformation value_transformation) {
  LinearRegressionSettings settings = InitialSettings();
  settings.SetOrder(order);
  settings.SetInteraction(with_interactions);
  settings.SetVariableSelection(variables);
  settings.SetValueTransformation(value_transformation);
  EvaluateModel(settings);
}

void PolynomialSearch::EvaluateOwnTerms(const IndexVector& subspace) {
  const std::uint64_t order = OrderFromSubspace(subspace);
  if (order > Context().settings.max_order_polynomial_) return;
  LinearRegressionSettings settings = InitialSettings();
  settings.SetOrder(order);
  settings.SetMainTermSelection(BuildMainTermSelectionFromSubspace(subspace));
  settings.SetInteractionSelection(BuildInteractionSelectionFromSubspace(subspace));
  EvaluateModel(settings);
}

std::unique_ptr<SurrogateSettingsBase> PolynomialSearch::Prepare(const SurrogateSettingsBase& settings) const {
  LinearRegressionSettings prepared = RemoveSingularBasisTerms(AsPolynomial(settings), Context().level_counts);
  // A selection without a pair is the same basis as no selection, and must be found as such.
  if (prepared.GetInteractionSelection().none()) prepared.SetInteractionSelection({});
  return std::make_unique<LinearRegressionSettings>(std::move(prepared));
}

bool PolynomialSearch::EnoughSamples(const SurrogateSettingsBase& settings) const {
  const auto samples = Context().inputs.rows();
  const std::uint64_t coefficients = settings.GetNumberCoefficients();
  if (static_cast<double>(coefficients) * Context().settings.coeff_factor_poly_ > static_cast<double>(samples)) {
    Log().Debug() << L"Not enough supports " << samples << L" for coefficients " << coefficients;
    return false;
  }
  return EnoughInCrossValidation(settings, Context().largest_subset);
}

void PolynomialSearch::LogCandidate(const SubspaceResults& result) const {
  const SurrogateSettingsBase& settings = *result.settings;
  Log().Debug() << L"Polynomial: Order " << settings.GetOrder() << L" Complexity " << settings.GetComplexity()
                << L" R2adj " << result.measures.CoDadj << L" R2CV " << result.measures.CoP << L" error "
                << result.measures.predError << L" numCoeff " << settings.GetNumberCoefficients() << L" boxcox "
                << (settings.GetValueTransformation() == eTransformation::kBoxCox) << L" lambda "
                << FittedExponent(settings) << L" subspace " << GetResults().size();
}

Vector PolynomialSearch::VariableImportance() { return ImportanceByR2adj(regression_); }

void PolynomialSearch::RemoveInput(SurrogateSettingsBase& settings, std::uint64_t input) const {
  auto& polynomial = dynamic_cast<LinearRegressionSettings&>(settings);
  polynomial.DeselectInputMainTerms(input);
  polynomial.DeselectInputInteractionTerms(input);
}

void PolynomialSearch::LogReduced(const SubspaceResults& result) const {
  Log().Debug() << L"ReducedSubspace: R2adj " << result.measures.CoDadj << L" R2CVred  " << result.measures.CoP
                << L" numcoeff   " << result.settings->GetNumberCoefficients();
}

}  // namespace kestrel::math::metamodel
