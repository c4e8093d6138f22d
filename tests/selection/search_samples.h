#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "selection/search_context.h"
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

}  // namespace kestrel::testing
