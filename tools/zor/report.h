#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "handle.h"
#include "model_summary.h"
#include "table.h"

namespace kestrel::cli {

/// How the CoP of one output came about.
struct CrossValidation {
  std::size_t designs = 0;  ///< designs the model was built on
  std::size_t groups = 0;   ///< 0 if single designs were left out in turn
};

/// What a build found.
struct Report {
  std::vector<std::string> inputs;
  std::size_t designs = 0;  ///< designs in the file
  std::vector<ModelSummary> models;
  std::vector<CrossValidation> cross_validations;  ///< per model
};

/// Asks a built handle for everything. `designs` are the table of the build, the `input_count` inputs first.
Report CollectReport(const Handle& handle, const Table& designs, std::size_t input_count);

/// The report for people: one line per output.
void PrintReport(std::ostream& stream, const Report& report);

/// The report for programs: one JSON object. `predictions`, one column per output, are left out if there are none.
void PrintJson(std::ostream& stream, const Report& report, const Table& predictions);

}  // namespace kestrel::cli
