#include "selection/candidate_ranking.h"

#include <algorithm>

#include "selection/print_results.h"

namespace kestrel::math::metamodel {
namespace {

constexpr std::uint64_t kWorstComplexity = 100;  // above those of all model classes

// False for a NaN error.
bool WithinTolerance(const SubspaceResults& result, double best_error, double tolerance) {
  return result.measures.predError - best_error <= tolerance;
}

void LogList(const wchar_t* title, const std::vector<SubspaceResults>& results, utils::log::LogBase& log) {
  log.Debug() << title;
  for (const SubspaceResults& result : results) {
    const SubspaceResults::Measures& measures = result.measures;
    log.Debug() << L" Complexity " << result.settings->GetComplexity() << L" R2 " << measures.CoD << L" R2adj "
                << measures.CoDadj << L" R2CV " << measures.CoP << L" predError " << measures.predError
                << L" NumVariables " << result.GetNumberVariables() << L" numCoeff "
                << result.settings->GetNumberCoefficients();
  }
}

}  // namespace

void CandidateRanking::Clear() {
  best_.clear();
  best_reduced_.clear();
}

void CandidateRanking::AppendResults(const SearchContext& context, const SubspaceResults& result) {
  best_reduced_.push_back(result);
  if (context.container) context.container->AddSubspaceResult(context.response_name, result);
  PrintResults(result, context.response_name, *context.log, utils::log::LogLevel::kDebug);
}

const SubspaceResults* CandidateRanking::FindBest(const SearchContext& context) const {
  const std::optional<std::size_t> position = FindLowestError();
  if (!position) {
    context.log->Debug() << L"Best CoP " << 0.0 << L" best error " << kWorstError << L" complexity " << -1
                         << L" position " << -1;
    return nullptr;
  }
  const SubspaceResults& best = best_reduced_[*position];
  context.log->Debug() << L"Best CoP " << best.measures.CoP << L" best error " << best.measures.predError
                       << L" complexity " << best.settings->GetComplexity() << L" position " << *position;
  return FindSimplest(context, best.measures.predError);
}

std::optional<std::size_t> CandidateRanking::FindLowestError() const {
  std::optional<std::size_t> position;
  double best_error = kWorstError;
  for (std::size_t i = 0; i < best_reduced_.size(); ++i) {
    if (!(best_reduced_[i].measures.predError < best_error)) continue;  // a NaN is never better
    best_error = best_reduced_[i].measures.predError;
    position = i;
  }
  return position;
}

const SubspaceResults* CandidateRanking::FindSimplest(const SearchContext& context, double best_error) const {
  const double tolerance = context.settings.toleranceCoP_model_;
  auto fewest_variables = static_cast<std::uint64_t>(context.inputs.cols());
  for (const SubspaceResults& result : best_reduced_) {
    if (!WithinTolerance(result, best_error, tolerance)) continue;
    fewest_variables = std::min(fewest_variables, result.GetNumberVariables());
  }

  const SubspaceResults* choice = nullptr;
  std::uint64_t least_complexity = kWorstComplexity;
  for (const SubspaceResults& result : best_reduced_) {
    if (!WithinTolerance(result, best_error, tolerance) || result.GetNumberVariables() != fewest_variables) continue;
    const std::uint64_t complexity = result.settings->GetComplexity();
    if (complexity > least_complexity) continue;
    least_complexity = complexity;
    choice = &result;
    context.log->Debug() << L"Best reduced CoP " << result.measures.CoP << L" complexity " << complexity;
  }
  return choice;
}

void CandidateRanking::Log(utils::log::LogBase& log) const {
  LogList(L"Best subspaces ", best_, log);
  LogList(L"Best reduced subspaces ", best_reduced_, log);
}

}  // namespace kestrel::math::metamodel
