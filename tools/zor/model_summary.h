#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "handle.h"

namespace kestrel::cli {

/// The model of one output.
struct ModelSummary {
  std::string output;
  std::string text;                      ///< the library's description
  std::string type;                      ///< "polynomial", "mls", "kriging" or "none"
  double cop = 0.0;                      ///< coefficient of prognosis
  std::vector<double> single_cops;       ///< per input; NaN for an input that the model does not use
  std::vector<std::size_t> kept_inputs;  ///< positions of the inputs in use, highest single CoP first
};

/// Asks a built handle for all its models. `outputs` are their names, in the library's order.
std::vector<ModelSummary> SummarizeModels(const Handle& handle, const std::vector<std::string>& outputs,
                                          std::size_t input_count);

/// One line per model, wrapped where many inputs are kept.
void PrintModels(std::ostream& stream, const std::vector<ModelSummary>& models, const std::vector<std::string>& inputs);

/// The members of a JSON object, without its braces and at a depth of 6 blanks.
std::string JsonMembers(const ModelSummary& model, const std::vector<std::string>& inputs);

}  // namespace kestrel::cli
