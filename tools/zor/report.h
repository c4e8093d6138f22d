#pragma once

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "csv_reader.h"
#include "handle.h"

namespace kestrel::cli {

/// What a build found for one output.
struct OutputReport {
  std::string name;
  std::string model;                     ///< the library's description
  std::string model_type;                ///< "polynomial", "mls", "kriging" or "none"
  double cop = 0.0;                      ///< coefficient of prognosis
  std::vector<double> single_cops;       ///< per input; NaN for an input that the model does not use
  std::vector<std::size_t> kept_inputs;  ///< positions of the inputs in use, highest single CoP first
  std::size_t designs = 0;               ///< designs the model was built on
  std::size_t groups = 0;                ///< of cross-validation; 0 if single designs were left out in turn
};

struct Report {
  std::vector<std::string> inputs;
  std::size_t designs = 0;  ///< designs in the file
  std::vector<OutputReport> outputs;
};

/// One column of the designs, length designs.
std::vector<double> DesignColumn(const Table& designs, std::size_t column);

/// Asks a built handle for everything. `designs` are the table of the build, the `input_count` inputs first.
Report CollectReport(const Handle& handle, const Table& designs, std::size_t input_count);

/// The report for people: one line per output, wrapped where many inputs are kept.
void PrintTable(std::ostream& stream, const Report& report);

/// The report for programs: one JSON object. `predictions`, points x outputs row by row, are left out if empty.
void PrintJson(std::ostream& stream, const Report& report, const std::vector<double>& predictions);

}  // namespace kestrel::cli
