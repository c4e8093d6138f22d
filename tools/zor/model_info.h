#pragma once

#include <ostream>
#include <vector>

#include "handle.h"
#include "model_summary.h"
#include "problem.h"

namespace kestrel::cli {

/// What a stored model holds. Inputs and outputs without names have those that the library makes up: p0, r0, ...
struct ModelInfo {
  Problem problem;
  std::vector<ModelSummary> models;  ///< per output if built, else none
};

ModelInfo CollectModelInfo(const Handle& handle);

/// For people: the counts, a table of the inputs and one of the models.
void PrintModelInfo(std::ostream& stream, const ModelInfo& info);

/// For programs: one JSON object.
void PrintModelInfoJson(std::ostream& stream, const ModelInfo& info);

}  // namespace kestrel::cli
