#include "fit_command.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "columns.h"
#include "csv_reader.h"
#include "errors.h"
#include "evaluation.h"
#include "handle.h"
#include "model_file.h"
#include "options.h"
#include "output_file.h"
#include "report.h"
#include "text.h"

namespace kestrel::cli {

namespace {

/// The positions of the inputs, then those of the outputs. No column is taken twice.
std::vector<std::size_t> ChoosePositions(const FitArguments& arguments, const Header& header) {
  std::vector<bool> is_taken(header.size(), false);
  const auto take = [&](const std::string& name) {
    const std::size_t position = PositionOf(arguments.designs, header, name);
    if (is_taken[position]) throw InputError("The column " + Quoted(name) + " is named twice as input or output.");
    is_taken[position] = true;
    return position;
  };
  std::vector<std::size_t> inputs;
  std::vector<std::size_t> outputs;
  for (const std::string& name : arguments.inputs) inputs.push_back(take(name));
  for (const std::string& name : arguments.outputs) outputs.push_back(take(name));
  if (inputs.empty()) {
    for (std::size_t position = 0; position < header.size(); ++position) {
      if (!is_taken[position]) inputs.push_back(position);
    }
  }
  if (inputs.empty()) throw InputError(arguments.designs + ": No column is left as input.");
  inputs.insert(inputs.end(), outputs.begin(), outputs.end());
  return inputs;
}

using SetNames = std::uint32_t (*)(zor_handle_t, const char* const*, std::uint32_t);
using GetNameCount = std::uint32_t (*)(zor_handle_t, std::uint32_t*);

/// Gives the names to the library. It stores those before the first one that it refuses, which tells the column.
void SetNamesOf(const Handle& handle, SetNames set_names, GetNameCount get_count, const std::string& path,
                const Header& header, const std::vector<std::size_t>& positions) {
  std::vector<const char*> names;
  for (const std::size_t position : positions) {
    if (header[position].empty()) throw InputError(HeaderPlace(path, position) + "The column has no name.");
    names.push_back(header[position].c_str());
  }
  const std::uint32_t code = set_names(handle.get(), names.data(), static_cast<std::uint32_t>(names.size()));
  if (code != zor_invalid_name) {
    handle.Check(code);
    return;
  }
  std::uint32_t accepted = 0;
  handle.Check(get_count(handle.get(), &accepted));
  const std::size_t position = positions.at(accepted);
  throw InputError(HeaderPlace(path, position) + Quoted(header[position]) +
                   " is not a valid name: a name is a letter or '_', then letters, digits, '_', '.' or an apostrophe, "
                   "and not a reserved word such as PI or TRUE.");
}

/// The library would stop at an output without values, too, but does not say which one it is.
void RequireValues(const std::string& path, const Table& designs, std::size_t first_output) {
  if (designs.rows == 0) throw InputError(path + ": The file has no designs below its header row.");
  for (std::size_t column = first_output; column < designs.names.size(); ++column) {
    const std::vector<double> values = ColumnValues(designs, column);
    if (std::none_of(values.begin(), values.end(), [](double value) { return std::isfinite(value); })) {
      throw InputError(path + ": The output " + Quoted(designs.names[column]) + " has no finite value.");
    }
  }
}

/// Reads the designs, inputs first, and tells the handle what they are; returns the number of inputs in `input_count`.
Table ReadDesigns(const FitArguments& arguments, const Handle& handle, std::size_t& input_count) {
  const std::string& path = arguments.designs;
  const auto choose = [&](const Header& header) {
    const std::vector<std::size_t> positions = ChoosePositions(arguments, header);
    input_count = positions.size() - arguments.outputs.size();
    const auto first_output = positions.begin() + static_cast<std::ptrdiff_t>(input_count);
    SetNamesOf(handle, &zor_set_input_names, &zor_get_input_name_count, path, header,
               {positions.begin(), first_output});
    SetNamesOf(handle, &zor_set_output_names, &zor_get_output_name_count, path, header,
               {first_output, positions.end()});
    std::vector<Column> columns;
    columns.reserve(positions.size());
    for (const std::size_t position : positions) {
      columns.push_back({position, columns.size() < input_count ? CellRule::kFinite : CellRule::kAnyNumber});
    }
    return columns;
  };
  Table designs = ReadTable(path, choose);
  RequireValues(path, designs, input_count);
  handle.Check(zor_set_input_count(handle.get(), static_cast<std::uint32_t>(input_count)));
  handle.Check(zor_set_output_count(handle.get(), static_cast<std::uint32_t>(arguments.outputs.size())));
  return designs;
}

void RequireWritableTargets(const FitArguments& arguments) {
  RequireWritable({{"--output", arguments.predictions},
                   {"--cv", arguments.cross_validation},
                   {"--store", arguments.stored_model},
                   {"--monitor", arguments.monitoring}},
                  {arguments.designs, arguments.points});
}

/// Observed and cross-validation values, two columns per output; NaN for a design left out of an output's model.
Table CrossValidationValues(const Handle& handle, const Table& designs, std::size_t input_count) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const std::size_t outputs = designs.names.size() - input_count;
  Table pairs{{}, designs.rows, std::vector<double>(designs.rows * 2 * outputs, kNan)};
  std::vector<double> predicted(designs.rows);
  for (std::size_t output = 0; output < outputs; ++output) {
    const std::string& name = designs.names[input_count + output];
    pairs.names.insert(pairs.names.end(), {name, name + "_cv"});
    handle.Check(zor_calculate_cv_values_per_output(handle.get(), static_cast<std::int32_t>(output), predicted.data()));
    const std::vector<double> observed = ColumnValues(designs, input_count + output);
    std::size_t used = 0;
    for (std::size_t row = 0; row < designs.rows; ++row) {
      if (!std::isfinite(observed[row])) continue;
      double* const pair = &pairs.values[(row * outputs + output) * 2];
      pair[0] = observed[row];
      pair[1] = predicted[used++];
    }
  }
  return pairs;
}

void WriteFiles(const FitArguments& arguments, const Handle& handle, const Table& cross_validation,
                const Table& predictions) {
  if (!arguments.cross_validation.empty()) WriteCsvFile(arguments.cross_validation, cross_validation);
  if (!arguments.predictions.empty()) WriteCsvFile(arguments.predictions, predictions);
  if (!arguments.stored_model.empty()) StoreModel(handle, arguments.stored_model);
  if (!arguments.monitoring.empty()) WriteMonitoringFile(handle, arguments.monitoring);
}

/// Prints the report of the library, or our own.
void PrintForPeople(const FitArguments& arguments, const Handle& handle, const Report& report, std::ostream& stream) {
  if (!arguments.build_report) {
    PrintReport(stream, report);
    return;
  }
  char* text = nullptr;
  std::size_t length = 0;
  handle.Check(zor_get_report(handle.get(), &text, &length));
  const std::string build_report = TakeText(text, length);
  stream << build_report;
  if (build_report.empty() || build_report.back() != '\n') stream << '\n';
}

}  // namespace

void RunFit(const FitArguments& arguments, std::ostream& out, std::ostream& notes) {
  const Handle handle;
  for (const std::string& setting : arguments.settings) SetOption(handle, setting);
  handle.Check(zor_set_outputs_in_parallel_count(handle.get(), arguments.jobs));
  std::size_t input_count = 0;
  const Table designs = ReadDesigns(arguments, handle, input_count);
  const bool has_points = !arguments.points.empty();
  const auto first_output = designs.names.begin() + static_cast<std::ptrdiff_t>(input_count);
  const Table points = has_points ? ReadPoints(arguments.points, {designs.names.begin(), first_output}) : Table();
  RequireWritableTargets(arguments);

  handle.Check(zor_build(handle.get(), designs.values.data(), static_cast<std::uint32_t>(designs.rows)));

  const Report report = CollectReport(handle, designs, input_count);
  const Evaluation models{handle, arguments.outputs, arguments.extrapolate};
  const Table predictions = has_points ? Predictions(models, points) : Table();
  const Table cross_validation =
      arguments.cross_validation.empty() ? Table() : CrossValidationValues(handle, designs, input_count);
  WriteFiles(arguments, handle, cross_validation, predictions);
  const bool predictions_have_file = !arguments.predictions.empty();
  if (arguments.json) {
    PrintJson(out, report, predictions_have_file ? Table() : predictions);
    return;
  }
  const bool predictions_take_out = has_points && !predictions_have_file;
  PrintForPeople(arguments, handle, report, predictions_take_out ? notes : out);
  if (predictions_take_out) WriteCsv(out, predictions);
}

}  // namespace kestrel::cli
