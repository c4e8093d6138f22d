#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>

#include "json.h"
#include "text.h"

namespace kestrel::cli {

namespace {

/// Number of cross-validation groups; 0 if the library has none because it left out single designs.
std::size_t GroupCount(const Handle& handle, std::int32_t output, std::size_t designs) {
  constexpr std::uint32_t kUntouched = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> groups(designs, kUntouched);
  handle.Check(zor_get_cv_indexes_per_output(handle.get(), output, groups.data()));
  if (groups.empty() || groups.front() == kUntouched) return 0;
  return *std::max_element(groups.begin(), groups.end()) + std::size_t{1};
}

CrossValidation CrossValidationOf(const Handle& handle, std::size_t output, const std::vector<double>& observed) {
  CrossValidation validation;
  validation.designs = static_cast<std::size_t>(
      std::count_if(observed.begin(), observed.end(), [](double value) { return std::isfinite(value); }));
  validation.groups = GroupCount(handle, static_cast<std::int32_t>(output), validation.designs);
  return validation;
}

std::string Note(const CrossValidation& validation, std::size_t designs) {
  std::string note = validation.groups == 0
                         ? "CoP by leaving out each design in turn"
                         : "CoP by cross-validation in " + std::to_string(validation.groups) + " groups";
  note += ", " + std::to_string(validation.designs);
  if (validation.designs != designs) note += " of " + std::to_string(designs);
  note += " designs";
  if (validation.designs != designs) note += " (the others have no finite value)";
  return note + ".";
}

/// How the CoP came about: one line if it is the same for all outputs, else one for each way with its outputs.
void PrintNotes(std::ostream& stream, const Report& report) {
  std::map<std::string, std::vector<std::string>> outputs_of_note;
  for (std::size_t i = 0; i < report.models.size(); ++i) {
    outputs_of_note[Note(report.cross_validations[i], report.designs)].push_back(report.models[i].output);
  }
  for (const auto& [note, outputs] : outputs_of_note) {
    if (outputs_of_note.size() > 1) stream << Joined(outputs, ", ") << ": ";
    stream << note << '\n';
  }
}

std::string JsonCrossValidation(const CrossValidation& validation) {
  const std::string method = validation.groups == 0
                                 ? R"("leave_one_out", "groups": null)"
                                 : R"("cross_validation", "groups": )" + std::to_string(validation.groups);
  return R"({"method": )" + method + R"(, "designs": )" + std::to_string(validation.designs) + "}";
}

std::string JsonColumn(const Table& table, std::size_t column) {
  std::vector<std::string> numbers;
  for (const double value : ColumnValues(table, column)) numbers.push_back(JsonNumber(value));
  return JsonArray(numbers);
}

}  // namespace

Report CollectReport(const Handle& handle, const Table& designs, std::size_t input_count) {
  const auto first_output = designs.names.begin() + static_cast<std::ptrdiff_t>(input_count);
  const std::vector<std::string> outputs(first_output, designs.names.end());
  Report report;
  report.inputs.assign(designs.names.begin(), first_output);
  report.designs = designs.rows;
  report.models = SummarizeModels(handle, outputs, input_count);
  for (std::size_t output = 0; output < outputs.size(); ++output) {
    report.cross_validations.push_back(CrossValidationOf(handle, output, ColumnValues(designs, input_count + output)));
  }
  return report;
}

void PrintReport(std::ostream& stream, const Report& report) {
  PrintModels(stream, report.models, report.inputs);
  stream << '\n';
  PrintNotes(stream, report);
}

void PrintJson(std::ostream& stream, const Report& report, const Table& predictions) {
  stream << "{\n  \"version\": " << JsonText(zor_get_version_str()) << ",\n  \"designs\": " << report.designs
         << ",\n  \"outputs\": [";
  for (std::size_t i = 0; i < report.models.size(); ++i) {
    stream << (i == 0 ? "\n    {\n" : ",\n    {\n") << JsonMembers(report.models[i], report.inputs)
           << ",\n      \"cross_validation\": " << JsonCrossValidation(report.cross_validations[i]);
    if (predictions.rows > 0) stream << ",\n      \"predictions\": " << JsonColumn(predictions, i);
    stream << "\n    }";
  }
  stream << "\n  ]\n}\n";
}

}  // namespace kestrel::cli
