#include <algorithm>

#include "selection/log_text.h"
#include "selection/mls_search.h"

namespace kestrel::math::metamodel {
namespace {

constexpr double kNoError = 100.0;  // stands for the error of a candidate that was not tried or gave no result

bool IsBoxCox(const SurrogateSettingsBase& settings) {
  return settings.GetValueTransformation() == eTransformation::kBoxCox;
}

}  // namespace

MlsSearch::MlsSearch(const SearchContext& context, CandidateRanking& ranking)
    : ModelSearch(context, ranking), surrogate_(context.inputs, context.response) {
  surrogate_.SetLog(context.log);
  surrogate_.SetStopHelper(context.stop_helper);
  surrogate_.KeepDistances(true);
}

bool MlsSearch::MayCompete(const CompetitionState& state) const {
  const ZORSettings& settings = Context().settings;
  return settings.use_MLS_ && state.best_cop < 1.0 - settings.toleranceCoP_model_ && state.any_input;
}

void MlsSearch::EvaluateSubspace(const IndexVector& subspace) {
  const Selection variables = SelectedInputs(subspace);
  if (variables.none()) return;
  const eTransformation transformation = EvaluateOrderOne(variables);
  if (Context().settings.max_order_MLS_ >= 2) EvaluateOrder(2, variables, transformation);
}

eTransformation MlsSearch::EvaluateOrderOne(const Selection& variables) {
  const auto error_of = [this](std::optional<std::size_t> position) {
    return position ? GetResults()[*position].measures.predError : kNoError;
  };
  double boxcox_error = kNoError;
  if (Context().settings.use_boxcox_) {
    // Without an answer for the transformed values there is none for the values as they are.
    const auto boxcox = EvaluateOrder(1, variables, eTransformation::kBoxCox);
    if (!boxcox) return eTransformation::kNone;
    boxcox_error = error_of(boxcox);
    if (FittedExponent(*GetResults()[*boxcox].settings) == 1.0) return eTransformation::kNone;  // as good as plain
  }
  const double plain_error = error_of(EvaluateOrder(1, variables, eTransformation::kNone));
  const bool boxcox_is_better = Context().settings.use_boxcox_ && !(boxcox_error >= plain_error);
  return boxcox_is_better ? eTransformation::kBoxCox : eTransformation::kNone;
}

std::optional<std::size_t> MlsSearch::EvaluateOrder(std::uint64_t order, const Selection& variables,
                                                    eTransformation value_transformation) {
  MovingLeastSquaresSettings settings = InitialSettings();
  settings.SetOrder(order);
  settings.SetVariableSelection(variables);
  settings.SetValueTransformation(value_transformation);
  // At order 1 the plain model follows that with Box-Cox.
  surrogate_.ExpectPlainModelNext(order == 1 && value_transformation == eTransformation::kBoxCox);
  const std::optional<std::size_t> position = EvaluateModel(settings);
  surrogate_.ExpectPlainModelNext(false);
  return position;
}

MovingLeastSquaresSettings MlsSearch::InitialSettings() const {
  MovingLeastSquaresSettings settings(static_cast<std::uint64_t>(Context().inputs.cols()));
  settings.SetKernelType(Context().settings.use_interpolation_ ? Kernel::kConstInflIsoReg : Kernel::kConstInflIsoExp);
  SetCommonSettings(settings);
  return settings;
}

bool MlsSearch::EnoughSamples(const SurrogateSettingsBase& settings) const {
  // Leaving out each design in turn takes one from every fit; with none to spare no radius would be valid.
  const auto left_out = std::max<std::uint64_t>(Context().largest_subset, 1);
  return EnoughForInputs(settings, Context().settings.coeff_factor_mls_) && EnoughInCrossValidation(settings, left_out);
}

CandidatePredictions MlsSearch::Predict() {
  const SamplePredictions* const found = surrogate_.GetSearchPredictions();
  if (!found) return ModelSearch::Predict();
  return {found->fit, found->cross_validation, surrogate_.GetNumberCoefficients(),
          surrogate_.GetSettingsBase().GetNumberParameter()};
}

void MlsSearch::LogCandidate(const SubspaceResults& result) const {
  const SurrogateSettingsBase& settings = *result.settings;
  Log().Debug() << L"MLS: Order " << settings.GetOrder() << L" Complexity " << settings.GetComplexity() << L" R2adj "
                << result.measures.CoD << L" R2CV " << result.measures.CoP << L" error " << result.measures.predError
                << L" numCoeff " << settings.GetNumberCoefficients() << L" boxcox " << IsBoxCox(settings) << L" lambda "
                << FittedExponent(settings) << L" subspace " << GetResults().size();
}

std::unique_ptr<SurrogateSettingsBase> MlsSearch::StartReduction(const SurrogateSettingsBase& settings) const {
  std::unique_ptr<SurrogateSettingsBase> start = settings.Clone();
  const bool transforms = IsBoxCox(settings) && FittedExponent(settings) != 1.0;
  if (!transforms) {
    start->SetValueTransformation(eTransformation::kNone);
    start->SetValueTransformationParameter({});
  }
  return start;
}

Vector MlsSearch::VariableImportance() { return surrogate_.ApproximateVariableImportanceCV(Context().subsets); }

void MlsSearch::RemoveInput(SurrogateSettingsBase& settings, std::uint64_t input) const {
  const Selection variables = settings.GetVariableSelection().reset(input);
  dynamic_cast<MovingLeastSquaresSettings&>(settings).SetVariableSelection(variables);
  Log().Debug() << AsText(variables);
}

}  // namespace kestrel::math::metamodel
