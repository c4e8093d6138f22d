#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "build/zor_handler.h"
#include "datatypes/design_matrices.h"
#include "datatypes/extract_parameters.h"
#include "datatypes/results/zor_information.h"
#include "support/linear_algebra.h"
#include "surrogates/sample_data.h"

/// Sample tables for the tests of builds.
namespace kestrel::testing {

/// The quadratic polynomial that the first response of a table follows: 1 + 2 a - 3 b^2 + a b, with a and b the first
/// two inputs.
inline math::Vector Quadratic(const math::MatrixIn& points) {
  const auto a = points.col(0).array();
  const auto b = points.col(1).array();
  return 1.0 + 2.0 * a - 3.0 * b * b + a * b;
}

/// The sampled designs: one row per design, one column per name.
struct SampleTable {
  std::vector<std::wstring> parameter_names;
  std::vector<std::wstring> response_names;
  math::Matrix parameters;
  math::Matrix responses;

  algorithm::datatypes::DesignManager Designs() const {
    return algorithm::datatypes::CreateDesignsFromMatrices(parameter_names, parameters, response_names, responses);
  }
};

inline algorithm::datatypes::ParameterManager ParametersOf(const algorithm::datatypes::DesignManager& designs) {
  utils::log::LogDummy nobody;
  return algorithm::datatypes::extractParametersFromDesigns(designs, nobody);
}

/// Inputs "a", "b", ... uniform in [0, 1]; responses "r0", "r1", ...: the first is `Quadratic` without noise, each
/// further one has some noise on a multiple of it.
inline SampleTable MakeSamples(math::Index designs, math::Index inputs, math::Index responses) {
  SampleTable samples;
  samples.parameters = RandomPoints(designs, inputs, 11, 0.0, 1.0);
  samples.responses.resize(designs, responses);
  for (math::Index j = 0; j < inputs; ++j) {
    samples.parameter_names.push_back(std::wstring(1, static_cast<wchar_t>(L'a' + j)));
  }
  for (math::Index k = 0; k < responses; ++k) {
    samples.response_names.push_back(L"r" + std::to_wstring(k));
    const auto factor = static_cast<double>(k);
    samples.responses.col(k) =
        (1.0 + factor) * Quadratic(samples.parameters) + factor * Noise(designs, 0.1, static_cast<unsigned>(20 + k));
  }
  return samples;
}

/// Advanced settings for all responses of the samples.
inline zor::ZORCombinedSettings MakeSettings(const SampleTable& samples, zor::ZORAdvancedSettings advanced = {}) {
  zor::ZORData data;
  data.SetParameters(samples.parameter_names);
  data.SetResponses(samples.response_names);
  for (const std::wstring& name : samples.response_names) data.responses_usage_[name] = true;
  return {zor::eSettingsType::kAdvanced, std::move(data), false, zor::ZORAutomaticSettings(), std::move(advanced)};
}

/// A handler of the samples, their parameters taken from them.
inline std::unique_ptr<zor::CZORHandler> MakeHandler(std::shared_ptr<utils::log::LogBase> log,
                                                     const SampleTable& samples, zor::ZORCombinedSettings settings) {
  auto designs = samples.Designs();
  auto parameters = ParametersOf(designs);
  return std::make_unique<zor::CZORHandler>(std::move(log), std::move(parameters), std::move(designs),
                                            algorithm::datatypes::Design(), std::move(settings));
}

inline const algorithm::datatypes::ZORInformation& InformationOf(const algorithm::datatypes::LYRA& lyra) {
  return *std::as_const(*lyra.GetAlgorithmInfo()).GetZORInfo();
}

}  // namespace kestrel::testing
