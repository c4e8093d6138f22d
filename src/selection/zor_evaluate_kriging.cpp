#include <algorithm>

#include "selection/kriging_search.h"
#include "selection/log_text.h"
#include "selection/print_results.h"

namespace kestrel::math::metamodel {

KrigingSearch::KrigingSearch(const SearchContext& context, CandidateRanking& ranking)
    : ModelSearch(context, ranking), kriging_(context.inputs, context.response) {
  kriging_.SetLog(context.log);
  kriging_.SetStopHelper(context.stop_helper);
}

bool KrigingSearch::MayCompete(const CompetitionState& state) const {
  const ZORSettings& settings = Context().settings;
  return settings.use_Kriging_ && !settings.use_interpolation_ && state.best_cop < 1.0 - settings.toleranceCoP_model_ &&
         state.any_input;
}

void KrigingSearch::EvaluateSubspaces(const IndexMatrix& subspaces) {
  Context().CheckInterrupted();
  Log().Debug() << L" ********** Isotropic Kriging *************** ";
  ModelSearch::EvaluateSubspaces(subspaces);
  if (Context().settings.use_anisotropic_Kriging_) EvaluateAnisotropic();
}

OrdinaryKrigingSettings KrigingSearch::InitialSettings(Kernel::eType kernel, const Selection& variables) const {
  OrdinaryKrigingSettings settings(static_cast<std::uint64_t>(Context().inputs.cols()));
  SetCommonSettings(settings);
  settings.SetKernelType(kernel);
  settings.SetUseLikelihood(true);
  settings.SetVariableSelection(variables);
  return settings;
}

void KrigingSearch::EvaluateSubspace(const IndexVector& subspace) {
  const Selection variables = SelectedInputs(subspace);
  if (variables.none()) return;
  OrdinaryKrigingSettings settings = InitialSettings(Kernel::kConstInflIsoExp, variables);
  if (Context().settings.use_boxcox_) {
    settings.SetValueTransformation(eTransformation::kBoxCox);
    const std::optional<std::size_t> transformed = EvaluateModel(settings);
    // Where the transformed values cannot be fitted, or with the exponent 1, nothing is left to the plain ones.
    if (!transformed || FittedExponent(*GetResults()[*transformed].settings) == 1.0) return;
    settings.SetValueTransformation(eTransformation::kNone);
  }
  EvaluateModel(settings);
}

void KrigingSearch::EvaluateAnisotropic() {
  Log().Debug() << L" ********** Extract Isotropic Kriging ********* ";
  ExtractBest();
  Log().Debug() << L" ********** Anisotropic Kriging *************** ";
  const std::vector<Selection> selections = SelectionsNearTheBest();
  Log().Debug() << L"Number of subspaces to test " << selections.size();
  for (const Selection& selection : selections) {
    Context().CheckInterrupted();
    if (selection.count() >= 2) EvaluateModel(InitialSettings(Kernel::kConstInflExp, selection));
  }
}

std::vector<Selection> KrigingSearch::SelectionsNearTheBest() {
  const SubspaceResults* const best = Ranking().FindBest(Context());
  if (!best) PrintNoModelFound(Context().response_name, Log());
  const double limit = (best ? best->measures.CoP : 0.0) - Context().settings.toleranceCoP_model_;
  Log().Debug() << L"best_cop " << limit;

  std::vector<Selection> selections = {SelectedInputs(Context().importance)};
  const auto append = [&](const std::vector<SubspaceResults>& results, std::size_t position) {
    if (position >= results.size() || !(results[position].measures.CoP >= limit)) return;
    selections.push_back(results[position].settings->GetVariableSelection());
  };
  for (std::size_t i = 0; i < Ranking().GetBest().size(); ++i) {
    append(Ranking().GetBest(), i);
    append(Ranking().GetBestReduced(), i);
  }
  return selections;
}

bool KrigingSearch::EnoughSamples(const SurrogateSettingsBase& settings) const {
  return EnoughForInputs(settings, Context().settings.coeff_factor_kriging_);
}

void KrigingSearch::LogCandidate(const SubspaceResults& result) const {
  const SurrogateSettingsBase& settings = *result.settings;
  Log().Debug() << L"Kriging: Complexity " << settings.GetComplexity() << L" R2adj " << result.measures.CoDadj
                << L" R2CV " << result.measures.CoP << L" error " << result.measures.predError << L" boxcox "
                << (settings.GetValueTransformation() == eTransformation::kBoxCox) << L" lambda "
                << FittedExponent(settings) << L" selection " << AsText(settings.GetVariableSelection())
                << L" subspace " << GetResults().size();
}

void KrigingSearch::RemoveInput(SurrogateSettingsBase& settings, std::uint64_t input) const {
  auto& kriging = dynamic_cast<OrdinaryKrigingSettings&>(settings);
  kriging.DeselectInput(input);
  kriging.SetKernelParameter(Vector());  // to be searched for the smaller selection
  Log().Debug() << AsText(kriging.GetVariableSelection());
}

}  // namespace kestrel::math::metamodel
