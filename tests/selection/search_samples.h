#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "selection/search_context.h"
#include "selection/zor2.h"
#include "statistics/basic_statistics_colwise.h"
#include "support/log.h"
#include "surrogates/linear_regression_settings.h"

/// What the tests of the searches share: a context on a sample, term sets, and questions to a log.
namespace kestrel::testing {

using WideLog = std::shared_ptr<utils::log::VectorLog>;

/// All inputs selectable, leave one out, Box-Cox off.
inline math::metamodel::SearchContext MakeContext(const math::Matrix& inputs, const math::Vector& response,
                                                  const WideLog& log) {
  math::metamodel::SearchContext context;
  context.inputs = inputs;
  context.response = response;
  context.settings.SetUseBoxCox(false);
  context.importance = math::IndexVector::Ones(inputs.cols());
  context.level_counts = math::statistics::CalculateNumDiscreteValues(inputs).array() - 1;
  context.response_name = L"y";
  context.log = log;
  return context;
}

/// A polynomial on the first `variables` of `inputs` inputs.
inline math::metamodel::LinearRegressionSettings FirstInputs(std::uint64_t inputs, std::uint64_t variables,
                                                             std::uint64_t order, bool interactions = false) {
  math::metamodel::LinearRegressionSettings settings(inputs);
  settings.SetOrder(order);
  settings.SetInteraction(interactions);
  math::metamodel::Selection selection(inputs);
  for (std::uint64_t j = 0; j < variables; ++j) selection.set(j);
  settings.SetVariableSelection(selection);
  return settings;
}

/// The bits of the given inputs.
inline math::metamodel::Selection Inputs(std::size_t count, const std::vector<std::size_t>& selected) {
  math::metamodel::Selection selection(count);
  for (const std::size_t input : selected) selection.set(input);
  return selection;
}

inline std::ptrdiff_t CountLines(const WideLog& log, const std::wstring& beginning) {
  const auto& entries = log->GetEntries();
  return std::count_if(entries.begin(), entries.end(),
                       [&](const auto& entry) { return entry.second.rfind(beginning, 0) == 0; });
}

/// A search on a sample, with what it writes to.
template <class Search>
struct SearchOnSample {
  SearchOnSample(const math::Matrix& inputs, const math::Vector& response)
      : context(MakeContext(inputs, response, log)), search(context, ranking) {}

  WideLog log = std::make_shared<utils::log::VectorLog>();
  math::metamodel::SearchContext context;
  math::metamodel::CandidateRanking ranking;
  Search search;
};

/// One subspace after the other, with an entry for each of the inputs.
inline math::IndexMatrix Subspaces(math::Index inputs, std::initializer_list<std::uint64_t> entries) {
  math::IndexMatrix columns(inputs, static_cast<math::Index>(entries.size()) / inputs);
  std::copy(entries.begin(), entries.end(), columns.data());
  return columns;
}

template <class Search, class Settings>
math::metamodel::SubspaceResults Reduced(SearchOnSample<Search>& sample, const Settings& settings) {
  const auto position = sample.search.EvaluateModel(settings);
  return sample.search.Reduce(sample.search.GetResults().at(position.value()));
}

/// Of three inputs the last is useless: the reduction takes it out, unless it is demanded.
/// @param all, first  settings with all inputs and with the first one alone.
template <class Search, class Settings>
void ExpectUselessInputDropped(SearchOnSample<Search>& sample, const Settings& all, const Settings& first) {
  EXPECT_EQ(Reduced(sample, all).settings->GetVariableSelection(), Inputs(3, {0, 1}));
  EXPECT_EQ(CountLines(sample.log, L"InitialSubspace: R2adj "), 1);
  EXPECT_EQ(CountLines(sample.log, L"ReducedSubspace: R2adj "), 2);  // the second one lost too much
  EXPECT_EQ(CountLines(sample.log, L"No reduced subspace found "), 0);
  EXPECT_EQ(Reduced(sample, first).settings->GetVariableSelection(), Inputs(3, {0}));
  EXPECT_EQ(CountLines(sample.log, L"No reduced subspace found "), 1);
  sample.context.importance(2) = 2;
  EXPECT_EQ(Reduced(sample, all).settings->GetVariableSelection(), Inputs(3, {0, 1, 2}));
}

inline std::vector<std::wstring> Names(math::Index count) {
  std::vector<std::wstring> names;
  for (math::Index j = 0; j < count; ++j) names.push_back(L"x" + std::to_wstring(j));
  return names;
}

/// A whole selection.
inline math::metamodel::Zor Evaluated(const math::Matrix& inputs, const math::Vector& response,
                                      const math::metamodel::ZORSettings& settings,
                                      const WideLog& log = std::make_shared<utils::log::VectorLog>()) {
  math::metamodel::Zor zor(inputs, response, Names(inputs.cols()), L"y");
  zor.Initialize(settings);
  zor.SetLog(log);
  zor.BuildSubspaces();
  zor.EvaluateMetamodels();
  return zor;
}

}  // namespace kestrel::testing
