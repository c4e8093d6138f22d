#include "fit_command.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "csv_reader.h"
#include "errors.h"
#include "handle.h"
#include "options.h"
#include "output_file.h"
#include "report.h"
#include "text.h"

namespace kestrel::cli {

namespace {

using Header = std::vector<std::string>;

std::string HeaderPlace(const std::string& path, std::size_t position) {
  return path + ": row 1, column " + std::to_string(position + 1) + ": ";
}

/// The position of a column that the user named, in the arguments or in the header of the designs.
std::size_t PositionOf(const std::string& path, const Header& header, const std::string& name) {
  constexpr std::size_t kMostNames = 12;
  const auto found = std::find(header.begin(), header.end(), name);
  if (found != header.end()) return static_cast<std::size_t>(found - header.begin());
  std::vector<std::string> names;
  for (std::size_t i = 0; i < std::min(header.size(), kMostNames); ++i) names.push_back(Quoted(header[i]));
  if (header.size() > kMostNames) names.emplace_back("...");
  throw InputError(path + ": There is no column " + Quoted(name) + "; the file has " + Joined(names, ", ") + ".");
}

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
    const std::vector<double> values = DesignColumn(designs, column);
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

/// Reads the inputs of the points; their columns may stand in any order, among others.
Table ReadPoints(const std::string& path, const Table& designs, std::size_t input_count) {
  return ReadTable(path, [&](const Header& header) {
    std::vector<Column> columns;
    for (std::size_t input = 0; input < input_count; ++input) {
      columns.push_back({PositionOf(path, header, designs.names[input]), CellRule::kFinite});
    }
    return columns;
  });
}

void RequireWritableTargets(const FitArguments& arguments) {
  std::vector<std::string> sources = {arguments.designs, arguments.points};
  for (const std::string& target : {arguments.predictions, arguments.cross_validation}) {
    if (!target.empty()) RequireWritable(target, sources);
  }
  if (!arguments.predictions.empty() && arguments.predictions == arguments.cross_validation) {
    throw InputError("--output and --cv name the same file.");
  }
}

/// Points x outputs, row by row.
std::vector<double> Predict(const FitArguments& arguments, const Handle& handle, const Table& points) {
  std::vector<double> predictions(points.rows * arguments.outputs.size());
  const auto solve = arguments.extrapolate ? &zor_solve_extrapolate : &zor_solve;
  const std::uint32_t code =
      solve(handle.get(), points.values.data(), predictions.data(), static_cast<std::uint32_t>(points.rows));
  try {
    handle.Check(code);
  } catch (const WorkError& error) {
    if (arguments.extrapolate) throw;
    throw WorkError(std::string(error.what()) + " (--extrapolate predicts points outside the bounds)");
  }
  return predictions;
}

/// Observed and cross-validation values, designs x (2 x outputs); NaN for a design left out of an output's model.
std::vector<double> CrossValidationColumns(const Handle& handle, const Table& designs, std::size_t input_count) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  const std::size_t outputs = designs.names.size() - input_count;
  std::vector<double> pairs(designs.rows * 2 * outputs, kNan);
  std::vector<double> predicted(designs.rows);
  for (std::size_t output = 0; output < outputs; ++output) {
    handle.Check(zor_calculate_cv_values_per_output(handle.get(), static_cast<std::int32_t>(output), predicted.data()));
    const std::vector<double> observed = DesignColumn(designs, input_count + output);
    std::size_t used = 0;
    for (std::size_t row = 0; row < designs.rows; ++row) {
      if (!std::isfinite(observed[row])) continue;
      double* const pair = &pairs[(row * outputs + output) * 2];
      pair[0] = observed[row];
      pair[1] = predicted[used++];
    }
  }
  return pairs;
}

void WriteCrossValidation(const FitArguments& arguments, const Handle& handle, const Table& designs,
                          std::size_t input_count) {
  std::vector<std::string> names;
  for (const std::string& output : arguments.outputs) {
    names.push_back(output);
    names.push_back(output + "_cv");
  }
  const std::vector<double> pairs = CrossValidationColumns(handle, designs, input_count);
  WriteFile(arguments.cross_validation, [&](std::ostream& file) { WriteCsv(file, names, pairs); });
}

}  // namespace

void RunFit(const FitArguments& arguments, std::ostream& out, std::ostream& notes) {
  const Handle handle;
  for (const std::string& setting : arguments.settings) SetOption(handle, setting);
  handle.Check(zor_set_outputs_in_parallel_count(handle.get(), arguments.jobs));
  std::size_t input_count = 0;
  const Table designs = ReadDesigns(arguments, handle, input_count);
  const bool has_points = !arguments.points.empty();
  const Table points = has_points ? ReadPoints(arguments.points, designs, input_count) : Table();
  RequireWritableTargets(arguments);

  handle.Check(zor_build(handle.get(), designs.values.data(), static_cast<std::uint32_t>(designs.rows)));

  const Report report = CollectReport(handle, designs, input_count);
  const std::vector<double> predictions = has_points ? Predict(arguments, handle, points) : std::vector<double>();
  if (!arguments.cross_validation.empty()) WriteCrossValidation(arguments, handle, designs, input_count);
  const auto write_predictions = [&](std::ostream& file) { WriteCsv(file, arguments.outputs, predictions); };
  const bool has_file = !arguments.predictions.empty();
  if (has_file) WriteFile(arguments.predictions, write_predictions);
  if (arguments.json) {
    PrintJson(out, report, has_file ? std::vector<double>() : predictions);
    return;
  }
  const bool predictions_take_out = has_points && !has_file;
  PrintTable(predictions_take_out ? notes : out, report);
  if (predictions_take_out) write_predictions(out);
}

}  // namespace kestrel::cli
