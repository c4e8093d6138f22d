#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <numeric>

#include "json.h"
#include "numbers.h"
#include "text.h"

namespace kestrel::cli {

namespace {

std::string ModelText(const Handle& handle, std::int32_t output) {
  char* text = nullptr;
  std::size_t length = 0;
  handle.Check(zor_get_model_str_per_output(handle.get(), output, &text, &length));
  const std::unique_ptr<char, void (*)(void*)> buffer(text, &zor_release_buf);
  return {buffer.get(), length};
}

std::string ModelType(const Handle& handle, std::int32_t output) {
  std::uint32_t type = zor_model_none;
  handle.Check(zor_get_model_per_output(handle.get(), output, &type));
  switch (type) {
    case zor_model_polynomial: return "polynomial";
    case zor_model_mls: return "mls";
    case zor_model_kriging: return "kriging";
    default: return "none";
  }
}

/// Number of cross-validation groups; 0 if the library has none because it left out single designs.
std::size_t GroupCount(const Handle& handle, std::int32_t output, std::size_t designs) {
  constexpr std::uint32_t kUntouched = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> groups(designs, kUntouched);
  handle.Check(zor_get_cv_indexes_per_output(handle.get(), output, groups.data()));
  if (groups.empty() || groups.front() == kUntouched) return 0;
  return *std::max_element(groups.begin(), groups.end()) + std::size_t{1};
}

/// Positions of the inputs with a single CoP, the highest first; of equal ones the first stays first.
std::vector<std::size_t> KeptInputs(const std::vector<double>& single_cops) {
  std::vector<std::size_t> kept(single_cops.size());
  std::iota(kept.begin(), kept.end(), std::size_t{0});
  const auto is_unused = [&](std::size_t input) { return std::isnan(single_cops[input]); };
  kept.erase(std::remove_if(kept.begin(), kept.end(), is_unused), kept.end());
  std::stable_sort(kept.begin(), kept.end(),
                   [&](std::size_t a, std::size_t b) { return single_cops[a] > single_cops[b]; });
  return kept;
}

OutputReport CollectOutput(const Handle& handle, std::size_t output, const Table& designs, std::size_t input_count) {
  const auto index = static_cast<std::int32_t>(output);
  const std::vector<double> observed = DesignColumn(designs, input_count + output);
  OutputReport report;
  report.name = designs.names[input_count + output];
  report.model = ModelText(handle, index);
  report.model_type = ModelType(handle, index);
  handle.Check(zor_get_cop_per_output(handle.get(), index, &report.cop));
  report.single_cops.resize(input_count);
  handle.Check(zor_get_single_cop_per_output(handle.get(), index, report.single_cops.data()));
  report.kept_inputs = KeptInputs(report.single_cops);
  report.designs = static_cast<std::size_t>(
      std::count_if(observed.begin(), observed.end(), [](double value) { return std::isfinite(value); }));
  report.groups = GroupCount(handle, index, report.designs);
  return report;
}

constexpr const char* kGap = "  ";
constexpr std::size_t kLineWidth = 110;

/// The cells of one line of the table but for the last column, which is wrapped.
using Cells = std::vector<std::string>;

Cells TableCells(const OutputReport& output, std::size_t input_count) {
  return {output.name, output.model, std::to_string(output.kept_inputs.size()) + " of " + std::to_string(input_count),
          RoundedText(output.cop, 4)};
}

/// "age 0.41, cement 0.30, ..." in lines of at most `width` characters, at least one input a line.
std::vector<std::string> SingleCopLines(const OutputReport& output, const std::vector<std::string>& inputs,
                                        std::size_t width) {
  std::vector<std::string> lines(1);
  for (const std::size_t input : output.kept_inputs) {
    std::string piece = inputs[input] + " " + RoundedText(output.single_cops[input], 4);
    if (input != output.kept_inputs.back()) piece += ",";
    if (!lines.back().empty() && Width(lines.back()) + 1 + Width(piece) > width) lines.emplace_back();
    if (!lines.back().empty()) lines.back() += " ";
    lines.back() += piece;
  }
  return lines;
}

void PrintLine(std::ostream& stream, const Cells& cells, const std::vector<std::size_t>& widths,
               const std::string& last) {
  std::string line;
  for (std::size_t column = 0; column < cells.size(); ++column) {
    line += PadRight(cells[column], widths[column]) + kGap;
  }
  line += last;
  line.erase(line.find_last_not_of(' ') + 1);
  stream << line << '\n';
}

std::string Note(const OutputReport& output, std::size_t designs) {
  std::string note = output.groups == 0 ? "CoP by leaving out each design in turn"
                                        : "CoP by cross-validation in " + std::to_string(output.groups) + " groups";
  note += ", " + std::to_string(output.designs);
  if (output.designs != designs) note += " of " + std::to_string(designs);
  note += " designs";
  if (output.designs != designs) note += " (the others have no finite value)";
  return note + ".";
}

/// How the CoP came about: one line if it is the same for all outputs, else one for each way with its outputs.
void PrintNotes(std::ostream& stream, const Report& report) {
  std::map<std::string, std::vector<std::string>> outputs_of_note;
  for (const OutputReport& output : report.outputs)
    outputs_of_note[Note(output, report.designs)].push_back(output.name);
  for (const auto& [note, outputs] : outputs_of_note) {
    if (outputs_of_note.size() > 1) stream << Joined(outputs, ", ") << ": ";
    stream << note << '\n';
  }
}

std::string JsonNames(const OutputReport& output, const std::vector<std::string>& inputs) {
  std::vector<std::string> names;
  for (const std::size_t input : output.kept_inputs) names.push_back(JsonText(inputs[input]));
  return JsonArray(names);
}

std::string JsonSingleCops(const OutputReport& output, const std::vector<std::string>& inputs) {
  std::vector<std::string> pairs;
  for (std::size_t input = 0; input < inputs.size(); ++input) {
    pairs.push_back(JsonText(inputs[input]) + ": " + JsonNumber(output.single_cops[input]));
  }
  return "{" + Joined(pairs, ", ") + "}";
}

std::string JsonCrossValidation(const OutputReport& output) {
  const std::string method = output.groups == 0 ? R"("leave_one_out", "groups": null)"
                                                : R"("cross_validation", "groups": )" + std::to_string(output.groups);
  return R"({"method": )" + method + R"(, "designs": )" + std::to_string(output.designs) + "}";
}

void PrintJsonMembers(std::ostream& stream, const OutputReport& output, const std::vector<std::string>& inputs) {
  stream << "      \"name\": " << JsonText(output.name) << ",\n      \"model\": " << JsonText(output.model)
         << ",\n      \"model_type\": " << JsonText(output.model_type) << ",\n      \"cop\": " << JsonNumber(output.cop)
         << ",\n      \"inputs_kept\": " << JsonNames(output, inputs)
         << ",\n      \"single_cops\": " << JsonSingleCops(output, inputs)
         << ",\n      \"cross_validation\": " << JsonCrossValidation(output);
}

std::string JsonColumn(const std::vector<double>& values, std::size_t column, std::size_t columns) {
  std::vector<std::string> numbers;
  for (std::size_t i = column; i < values.size(); i += columns) numbers.push_back(JsonNumber(values[i]));
  return JsonArray(numbers);
}

}  // namespace

std::vector<double> DesignColumn(const Table& designs, std::size_t column) {
  std::vector<double> values(designs.rows);
  for (std::size_t row = 0; row < designs.rows; ++row)
    values[row] = designs.values[row * designs.names.size() + column];
  return values;
}

Report CollectReport(const Handle& handle, const Table& designs, std::size_t input_count) {
  Report report;
  report.inputs.assign(designs.names.begin(), designs.names.begin() + static_cast<std::ptrdiff_t>(input_count));
  report.designs = designs.rows;
  for (std::size_t output = 0; output < designs.names.size() - input_count; ++output) {
    report.outputs.push_back(CollectOutput(handle, output, designs, input_count));
  }
  return report;
}

void PrintTable(std::ostream& stream, const Report& report) {
  const Cells head = {"output", "model", "inputs", "CoP"};
  std::vector<Cells> rows = {head};
  for (const OutputReport& output : report.outputs) rows.push_back(TableCells(output, report.inputs.size()));
  std::vector<std::size_t> widths(head.size(), 0);
  for (const Cells& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  std::size_t used = 0;
  for (const std::size_t width : widths) used += width + std::string(kGap).size();

  PrintLine(stream, head, widths, "inputs by single CoP");
  stream << std::string(kLineWidth, '-') << '\n';
  for (std::size_t i = 0; i < report.outputs.size(); ++i) {
    const auto lines = SingleCopLines(report.outputs[i], report.inputs, used < kLineWidth ? kLineWidth - used : 0);
    for (const std::string& line : lines) {
      PrintLine(stream, &line == &lines.front() ? rows[i + 1] : Cells(head.size()), widths, line);
    }
  }
  stream << '\n';
  PrintNotes(stream, report);
}

void PrintJson(std::ostream& stream, const Report& report, const std::vector<double>& predictions) {
  stream << "{\n  \"version\": " << JsonText(zor_get_version_str()) << ",\n  \"designs\": " << report.designs
         << ",\n  \"outputs\": [";
  for (std::size_t i = 0; i < report.outputs.size(); ++i) {
    stream << (i == 0 ? "\n    {\n" : ",\n    {\n");
    PrintJsonMembers(stream, report.outputs[i], report.inputs);
    if (!predictions.empty()) {
      stream << ",\n      \"predictions\": " << JsonColumn(predictions, i, report.outputs.size());
    }
    stream << "\n    }";
  }
  stream << "\n  ]\n}\n";
}

}  // namespace kestrel::cli
