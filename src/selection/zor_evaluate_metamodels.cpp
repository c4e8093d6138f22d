#include <algorithm>
#include <limits>
#include <stdexcept>

#include "selection/kriging_search.h"
#include "selection/log_text.h"
#include "selection/mls_search.h"
#include "selection/polynomial_search.h"
#include "selection/print_results.h"
#include "selection/sobol_indices.h"
#include "selection/zor2.h"
#include "statistics/basic_statistics_colwise.h"
#include "statistics/sample_splitting.h"

namespace kestrel::math::metamodel {
namespace {

constexpr std::uint64_t kSobolSamples = 10000;

// The model classes, in the order in which they compete.
std::vector<std::unique_ptr<ModelSearch>> MakeSearches(const SearchContext& context, CandidateRanking& ranking) {
  std::vector<std::unique_ptr<ModelSearch>> searches;
  searches.push_back(std::make_unique<PolynomialSearch>(context, ranking));
  searches.push_back(std::make_unique<MlsSearch>(context, ranking));
  searches.push_back(std::make_unique<KrigingSearch>(context, ranking));
  return searches;
}

std::unique_ptr<SurrogateBase> MakeSurrogate(ModelType::eModelType type, const SearchContext& context) {
  switch (type) {
    case ModelType::kPolynomial: return std::make_unique<LinearRegression>(context.inputs, context.response);
    case ModelType::kMLS: return std::make_unique<MovingLeastSquares>(context.inputs, context.response);
    case ModelType::kKriging: return std::make_unique<OrdinaryKriging>(context.inputs, context.response);
    case ModelType::kASCMO:
    case ModelType::kCustom: throw std::logic_error(" Type of best ZOR model not supported");
    default: throw std::logic_error(" Type of best ZOR model not known");
  }
}

void LogRanges(const SearchContext& context) {
  for (Index j = 0; j < context.inputs.cols(); ++j) {
    const auto column = context.inputs.col(j);
    context.log->Debug() << L" Ranges Input " << j << L" " << column.minCoeff() << L" " << column.maxCoeff();
  }
}

IndexVector SamplesPerSubset(const Subsets& subsets) {
  IndexVector counts = IndexVector::Zero(static_cast<Index>(*std::max_element(subsets.begin(), subsets.end())) + 1);
  for (const std::uint64_t subset : subsets) ++counts(static_cast<Index>(subset));
  return counts;
}

}  // namespace

void Zor::EvaluateMetamodels() {
  context_.CheckInterrupted();
  Log().Debug() << L"===================== Evaluate Metamodels =====================";
  if (subspaces_.size() == 0) throw std::logic_error("No subspace available, BuildSubspaces() first ");
  PrepareEvaluation();
  ranking_.Clear();
  best_result_ = SubspaceResults();

  const bool any_input = subspaces_.maxCoeff() > 0;
  for (const std::unique_ptr<ModelSearch>& search : MakeSearches(context_, ranking_)) {
    if (search->MayCompete({GetBestCoP(), any_input})) RunSearch(*search);
  }
  FindBestMetamodel(true);
  ranking_.Log(Log());
  progress_(1.0F);
}

void Zor::PrepareEvaluation() {
  LogRanges(context_);
  PrepareSubsets();
  context_.level_counts = statistics::CalculateNumDiscreteValues(context_.inputs).array() - 1;
  Log().Debug() << L"Maximum basis terms " << AsText(context_.level_counts);
}

void Zor::PrepareSubsets() {
  context_.subsets.clear();
  context_.largest_subset = 0;
  if (context_.settings.testing_type_ == TestingType::kLeaveOneOut) return;

  const IndexVector subsets = statistics::CalculateCVIndices(context_.inputs, generator_);
  context_.subsets.assign(subsets.begin(), subsets.end());
  const IndexVector counts = SamplesPerSubset(context_.subsets);
  context_.largest_subset = counts.maxCoeff();
  Log().Debug() << L"Supports per subset " << AsText(counts);
  Log().Debug() << L"number CV subsets " << counts.size() << L" maximum point number " << context_.largest_subset;
  if (context_.largest_subset >= 2) return;
  context_.subsets.clear();  // every sample alone: leave one out
  context_.largest_subset = 0;
}

void Zor::RunSearch(ModelSearch& search) {
  Log().Debug() << L" ********** Testing " << search.Name() << L" *************** ";
  search.EvaluateSubspaces(subspaces_);
  Log().Debug() << L" ********** Extract " << search.Name() << L" *************** ";
  search.ExtractBest();
  FindBestMetamodel(false);
}

void Zor::FindBestMetamodel(bool with_single_cops) {
  const SubspaceResults* best = ranking_.FindBest(context_);
  if (!best) {
    PrintNoModelFound(context_.response_name, Log());
    best_result_ = NoModel();
    return;
  }
  best_result_ = *best;
  if (!with_single_cops) return;

  const std::unique_ptr<SurrogateBase> surrogate = BuildBest();
  best_result_.singleCoPs =
      GetBestCoP() * statistics::SobolIndices(*surrogate, context_.log.get(), kSobolSamples,
                                              context_.settings.use_uniform_resample_, generator_);
}

SubspaceResults Zor::NoModel() const {
  const Index num_inputs = context_.inputs.cols();
  LinearRegressionSettings settings(static_cast<std::uint64_t>(num_inputs));
  settings.SetInputNames(context_.input_names);
  if (settings.GetNumberCoefficients() > static_cast<std::uint64_t>(context_.inputs.rows())) {
    settings.SetVariableSelection(Selection(static_cast<std::size_t>(num_inputs)));  // what is left is the mean
  }
  SubspaceResults result(ModelType::kPolynomial, settings, {});
  result.singleCoPs = Matrix::Constant(num_inputs, 2, std::numeric_limits<double>::quiet_NaN());
  return result;
}

std::unique_ptr<SurrogateBase> Zor::BuildBest() const {
  std::unique_ptr<SurrogateBase> surrogate = MakeSurrogate(best_result_.model_type, context_);
  surrogate->SetLog(context_.log);
  surrogate->SetStopHelper(context_.stop_helper);
  surrogate->Initialize(*best_result_.settings);
  surrogate->SetSubsets(context_.subsets);
  surrogate->SetSingleCoPs(best_result_.singleCoPs);
  surrogate->Build();
  return surrogate;
}

std::unique_ptr<SurrogateBase> Zor::GetBestMetamodel() const {
  std::unique_ptr<SurrogateBase> surrogate = BuildBest();
  surrogate->BuildErrors();
  surrogate->SetStopHelper(nullptr);  // the model outlives the search
  surrogate->Finalize();
  return surrogate;
}

}  // namespace kestrel::math::metamodel
