#include "selection/model_search.h"

#include <cmath>
#include <utility>

#include "selection/log_text.h"

namespace kestrel::math::metamodel {
namespace {

constexpr double kWorstImportance = 100.0;  // an importance from here on is not compared

}  // namespace

Selection SelectedInputs(const IndexVector& subspace) {
  Selection variables(static_cast<std::size_t>(subspace.size()));
  for (Index j = 0; j < subspace.size(); ++j) variables.set(static_cast<std::size_t>(j), subspace(j) != 0);
  return variables;
}

double FittedExponent(const SurrogateSettingsBase& settings) {
  const std::vector<double>& parameters = settings.GetValueTransformationParameter();
  return parameters.empty() ? 1.0 : parameters.front();
}

ModelSearch::ModelSearch(const SearchContext& context, CandidateRanking& ranking)
    : context_(context), ranking_(ranking), total_sum_of_squares_(TotalSumOfSquares(context.response)) {}

void ModelSearch::EvaluateSubspaces(const IndexMatrix& subspaces) {
  for (Index i = 0; i < subspaces.cols(); ++i) {
    context_.CheckInterrupted();
    const IndexVector subspace = subspaces.col(i);
    Log().Debug() << L"curr_subspace " << AsText(subspace);
    EvaluateSubspace(subspace);
  }
}

std::optional<std::size_t> ModelSearch::EvaluateModel(const SurrogateSettingsBase& settings) {
  context_.CheckInterrupted();
  const std::unique_ptr<SurrogateSettingsBase> candidate = Prepare(settings);
  if (!EnoughSamples(*candidate)) return std::nullopt;

  const CandidateKey key = MakeCandidateKey(Type(), *candidate);
  if (const auto known = known_.find(key); known != known_.end()) return Repeat(known->second);
  return known_.emplace(key, BuildCandidate(*candidate)).first->second.position;
}

std::optional<std::size_t> ModelSearch::Repeat(const Outcome& outcome) const {
  if (outcome.refusal) Log().Debug() << outcome.refusal;
  if (outcome.position) Log().Debug() << L"subspace exists: " << *outcome.position;
  return outcome.position;
}

ModelSearch::Outcome ModelSearch::BuildCandidate(const SurrogateSettingsBase& settings) {
  SurrogateBase& surrogate = Surrogate();
  surrogate.Initialize(settings);
  if (const wchar_t* refusal = RankRefusal(); refusal && !surrogate.CheckBeforeBuild()) {
    Log().Debug() << refusal;
    return {std::nullopt, refusal};
  }
  if (!surrogate.BuildOptimal(context_.subsets)) return {};

  SubspaceResults result = MeasureBuilt();
  LogCandidate(result);
  results_.push_back(std::move(result));
  return {results_.size() - 1};
}

SubspaceResults ModelSearch::MeasureBuilt() {
  const CandidatePredictions predictions = Predict();
  // The settings after the build carry what was fitted: they are what the measures belong to.
  return {Type(), Surrogate().GetSettingsBase(),
          MeasureCandidate(context_.response, total_sum_of_squares_, predictions, context_.settings.use_adj_cop_)};
}

CandidatePredictions ModelSearch::Predict() {
  const SurrogateBase& surrogate = Surrogate();
  return {surrogate.Approximate(), surrogate.ApproximateCrossValidation(context_.subsets),
          surrogate.GetNumberCoefficients(), surrogate.GetSettingsBase().GetNumberParameter()};
}

std::unique_ptr<SurrogateSettingsBase> ModelSearch::Prepare(const SurrogateSettingsBase& settings) const {
  return settings.Clone();
}

void ModelSearch::SetCommonSettings(SurrogateSettingsBase& settings) const {
  settings.SetInputNames(context_.input_names);
  if (!context_.settings.use_limits_) return;
  settings.SetLimitTransformation(eTransformation::kLimits);
  settings.SetLimitTransformationParameter({context_.settings.limits_.first, context_.settings.limits_.second});
}

bool ModelSearch::EnoughForInputs(const SurrogateSettingsBase& settings, double factor) const {
  const Index samples = context_.inputs.rows();
  const std::uint64_t inputs = settings.GetVariableSelection().count();
  if (!(static_cast<double>(inputs) * factor > static_cast<double>(samples))) return true;
  Log().Debug() << L"Not enough supports " << samples << L" for inputs " << inputs;
  return false;
}

bool ModelSearch::EnoughInCrossValidation(const SurrogateSettingsBase& settings, std::uint64_t left_out) const {
  const std::uint64_t left = static_cast<std::uint64_t>(context_.inputs.rows()) - left_out;
  const std::uint64_t coefficients = settings.GetNumberCoefficients();
  if (left >= coefficients) return true;
  Log().Debug() << L"Not enough supports " << left << L" for coefficients " << coefficients << L" in cross validation";
  return false;
}

void ModelSearch::LogReducedInputs(const SubspaceResults& result) const {
  Log().Debug() << L"ReducedSubspace: R2adj " << result.measures.CoDadj << L" R2CVred  " << result.measures.CoP
                << L" error " << result.measures.predError << L" numcoeff  " << result.settings->GetNumberCoefficients()
                << L" selection " << AsText(result.settings->GetVariableSelection());
}

void ModelSearch::ExtractBest() {
  std::vector<SubspaceResults> found;
  const Complexities complexities = GetComplexities();
  for (std::uint64_t complexity = complexities.first; complexity <= complexities.last; ++complexity) {
    std::optional<SubspaceResults> best = BestOfComplexity(complexity);
    if (!best) continue;
    ranking_.AddBest(*best);
    found.push_back(std::move(*best));
  }
  const bool reduce = context_.settings.toleranceCoP_variables_ > 0.0;
  for (const SubspaceResults& best : found) ranking_.AppendResults(context_, reduce ? Reduce(best) : best);
}

std::optional<SubspaceResults> ModelSearch::BestOfComplexity(std::uint64_t complexity) {
  const auto active_inputs = static_cast<std::uint64_t>((context_.importance.array() != 0).count());
  const SubspaceResults* best = nullptr;
  const SubspaceResults* full = nullptr;
  double best_error = kWorstError;
  for (const SubspaceResults& result : results_) {
    if (result.settings->GetComplexity() != complexity) continue;
    if (result.GetNumberVariables() == active_inputs) full = &result;
    if (!(result.measures.predError < best_error)) continue;  // a NaN is never better
    best_error = result.measures.predError;
    best = &result;
  }
  if (!best) return std::nullopt;
  if (best_error < 1.0 || !full) return *best;

  // No subspace beats the mean of the response. What the filters left out may be found from the other side.
  const SubspaceResults worse_than_mean = *best;  // a reduction moves the results
  SubspaceResults reduced = Reduce(*full);
  return reduced.measures.predError < best_error ? reduced : worse_than_mean;
}

SubspaceResults ModelSearch::Reduce(const SubspaceResults& result) {
  const SubspaceResults initial = result;  // may be one of `results_`, which grow
  double error = initial.measures.predError;
  Log().Debug() << L"InitialSubspace: R2adj " << initial.measures.CoDadj << L" R2CVfull " << initial.measures.CoP
                << L" numcoeff " << initial.settings->GetNumberCoefficients() << L" error " << error << L" selection "
                << AsText(initial.settings->GetVariableSelection());

  std::optional<std::size_t> best;
  const std::unique_ptr<SurrogateSettingsBase> settings = StartReduction(*initial.settings);
  for (std::uint64_t left = initial.GetNumberVariables(); left > 1; --left) {
    context_.CheckInterrupted();
    Rebuild(*(best ? results_[*best] : initial).settings);
    const auto input = LeastImportantInput(settings->GetVariableSelection(), VariableImportance());
    if (!input) break;
    RemoveInput(*settings, *input);
    const std::optional<std::size_t> position = EvaluateModel(*settings);
    if (!position) break;
    LogReduced(results_[*position]);
    const double reduced_error = results_[*position].measures.predError;
    if (std::isnan(reduced_error) || reduced_error - error > context_.settings.toleranceCoP_variables_) break;
    best = position;
    error = reduced_error;
  }
  if (best) return results_[*best];
  Log().Debug() << L"No reduced subspace found ";
  return initial;
}

std::unique_ptr<SurrogateSettingsBase> ModelSearch::StartReduction(const SurrogateSettingsBase& settings) const {
  return settings.Clone();
}

void ModelSearch::Rebuild(const SurrogateSettingsBase& settings) {
  if (Surrogate().CheckAfterBuild() && Surrogate().GetSettingsBase() == settings) return;
  Surrogate().Initialize(settings);
  Surrogate().Build();
}

std::optional<std::uint64_t> ModelSearch::LeastImportantInput(const Selection& selected,
                                                              const VectorIn& importance) const {
  std::optional<std::uint64_t> input;
  double least = kWorstImportance;
  for (Index j = 0; j < importance.size(); ++j) {
    const auto bit = static_cast<std::size_t>(j);
    if (!selected.test(bit) || context_.importance(j) != 1 || !(importance(j) < least)) continue;
    least = importance(j);
    input = bit;
  }
  return input;
}

}  // namespace kestrel::math::metamodel
