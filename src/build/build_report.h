#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "datatypes/parameter_manager.h"
#include "selection/subspace_results.h"
#include "support/log.h"
#include "surrogates/surrogate2_base.h"

/// The report of a build, written to a log at information level: what was sampled, and the models that were found.
namespace kestrel::zor {

/// One line of the tables: a response and what its search found.
struct ReportedModel {
  std::wstring response;
  math::metamodel::SubspaceResults result;
  std::shared_ptr<const math::metamodel::SurrogateBase> surrogate;  ///< null if there is none
};
using ReportedModels = std::vector<ReportedModel>;

/// Number of samples, then per parameter its range and the range of its samples; for stochastic parameters their
/// distribution too.
/// @param sampling_bounds  per parameter, in the order of the manager.
void SaveSamplingInformation(const algorithm::datatypes::ParameterManager& parameters, std::size_t number_of_samples,
                             const std::vector<std::pair<double, double>>& sampling_bounds, utils::log::LogBase& log);

/// The names of the columns and a line of dashes below them.
/// @param width  characters of the longest name of a response.
/// @param is_cv  the quality comes from groups of designs: "CoP"; from single designs: "pred. CoD".
void PrintHeadline(std::size_t width, utils::log::LogBase& log, bool is_cv);

/// Characters of the longest name.
std::size_t LongestName(const std::vector<std::wstring>& names);

/// One line below a headline of the same width.
void PrintModel(const ReportedModel& model, std::size_t width, utils::log::LogBase& log);

/// A headline and one line per response.
void PrintBestMetamodels(const ReportedModels& models, bool is_cv, utils::log::LogBase& log);

/// Orders, coefficients and term selections of the polynomials among the models.
void PrintPolynomialInfo(const ReportedModels& models, utils::log::LogBase& log);

/// For each input the share of the models that use it, 0 to 1; in the order of `names`.
std::vector<std::pair<std::wstring, double>> RelativeFrequencyOfImportance(const ReportedModels& models,
                                                                           const std::vector<std::wstring>& names);
void PrintRelativeFrequencyOfImportance(const std::vector<std::pair<std::wstring, double>>& frequencies,
                                        utils::log::LogBase& log);

/// @param functions  text of the model function by response.
void PrintRegressionFunctions(const std::map<std::wstring, std::wstring>& functions, utils::log::LogBase& log);

}  // namespace kestrel::zor
