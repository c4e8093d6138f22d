#include "model_info.h"

#include <limits>
#include <string>

#include "json.h"
#include "numbers.h"
#include "text_table.h"

namespace kestrel::cli {

namespace {

std::vector<std::string> NamesFromZero(const std::string& letter, std::size_t count) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < count; ++i) names.push_back(letter + std::to_string(i));
  return names;
}

/// Lower or upper bound of an input; NaN if it has none.
double Bound(const Problem& problem, std::size_t input, std::size_t side) {
  return problem.is_built ? problem.bounds[2 * input + side] : std::numeric_limits<double>::quiet_NaN();
}

std::string Plural(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

void PrintInputs(std::ostream& stream, const Problem& problem) {
  std::vector<Cells> lines = {{"input", "lower bound", "upper bound"}};
  for (std::size_t input = 0; input < problem.inputs.size(); ++input) {
    lines.push_back({problem.inputs[input], ExactText(Bound(problem, input, 0)), ExactText(Bound(problem, input, 1))});
  }
  PrintTable(stream, lines);
}

std::string JsonInput(const Problem& problem, std::size_t input) {
  return "{\"name\": " + JsonText(problem.inputs[input]) + ", \"lower\": " + JsonNumber(Bound(problem, input, 0)) +
         ", \"upper\": " + JsonNumber(Bound(problem, input, 1)) + "}";
}

std::string JsonOutput(const ModelInfo& info, std::size_t output) {
  if (!info.problem.is_built) return "{\"name\": " + JsonText(info.problem.outputs[output]) + "}";
  return "{\n" + JsonMembers(info.models[output], info.problem.inputs) + "\n    }";
}

}  // namespace

ModelInfo CollectModelInfo(const Handle& handle) {
  ModelInfo info{DescribeProblem(handle), {}};
  Problem& problem = info.problem;
  if (!problem.is_built) return info;
  if (problem.inputs.size() != problem.input_count) problem.inputs = NamesFromZero("p", problem.input_count);
  if (problem.outputs.size() != problem.output_count) problem.outputs = NamesFromZero("r", problem.output_count);
  info.models = SummarizeModels(handle, problem.outputs, problem.input_count);
  return info;
}

void PrintModelInfo(std::ostream& stream, const ModelInfo& info) {
  const Problem& problem = info.problem;
  stream << "Stored model with " << Plural(problem.input_count, "input") << " and "
         << Plural(problem.output_count, "output") << (problem.is_built ? ", built.\n" : ", not built.\n");
  if (!problem.is_built) return;
  stream << '\n';
  PrintInputs(stream, problem);
  stream << '\n';
  PrintModels(stream, info.models, problem.inputs);
}

void PrintModelInfoJson(std::ostream& stream, const ModelInfo& info) {
  const Problem& problem = info.problem;
  std::vector<std::string> inputs;
  std::vector<std::string> outputs;
  for (std::size_t i = 0; i < problem.inputs.size(); ++i) inputs.push_back(JsonInput(problem, i));
  for (std::size_t i = 0; i < problem.outputs.size(); ++i) outputs.push_back(JsonOutput(info, i));
  stream << "{\n  \"kind\": \"stored_model\",\n  \"built\": " << (problem.is_built ? "true" : "false")
         << ",\n  \"input_count\": " << problem.input_count << ",\n  \"output_count\": " << problem.output_count
         << ",\n  \"inputs\": " << JsonLines(inputs) << ",\n  \"outputs\": " << JsonLines(outputs) << "\n}\n";
}

}  // namespace kestrel::cli
