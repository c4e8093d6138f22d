#include "model_summary.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>

#include "json.h"
#include "numbers.h"
#include "text.h"
#include "text_table.h"

namespace kestrel::cli {

namespace {

std::string ModelText(const Handle& handle, std::int32_t output) {
  char* text = nullptr;
  std::size_t length = 0;
  handle.Check(zor_get_model_str_per_output(handle.get(), output, &text, &length));
  return TakeText(text, length);
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

/// "age 0.41, cement 0.30, ..." in lines of at most `width` characters, at least one input a line.
std::vector<std::string> SingleCopLines(const ModelSummary& model, const std::vector<std::string>& inputs,
                                        std::size_t width) {
  std::vector<std::string> lines(1);
  for (const std::size_t input : model.kept_inputs) {
    std::string piece = inputs[input] + " " + RoundedText(model.single_cops[input], 4);
    if (input != model.kept_inputs.back()) piece += ",";
    if (!lines.back().empty() && Width(lines.back()) + 1 + Width(piece) > width) lines.emplace_back();
    if (!lines.back().empty()) lines.back() += " ";
    lines.back() += piece;
  }
  return lines;
}

std::string JsonNames(const ModelSummary& model, const std::vector<std::string>& inputs) {
  std::vector<std::string> names;
  for (const std::size_t input : model.kept_inputs) names.push_back(JsonText(inputs[input]));
  return JsonArray(names);
}

std::string JsonSingleCops(const ModelSummary& model, const std::vector<std::string>& inputs) {
  std::vector<std::string> pairs;
  for (std::size_t input = 0; input < inputs.size(); ++input) {
    pairs.push_back(JsonText(inputs[input]) + ": " + JsonNumber(model.single_cops[input]));
  }
  return "{" + Joined(pairs, ", ") + "}";
}

}  // namespace

std::vector<ModelSummary> SummarizeModels(const Handle& handle, const std::vector<std::string>& outputs,
                                          std::size_t input_count) {
  std::vector<ModelSummary> models(outputs.size());
  for (std::size_t output = 0; output < outputs.size(); ++output) {
    const auto index = static_cast<std::int32_t>(output);
    ModelSummary& model = models[output];
    model.output = outputs[output];
    model.text = ModelText(handle, index);
    model.type = ModelType(handle, index);
    handle.Check(zor_get_cop_per_output(handle.get(), index, &model.cop));
    model.single_cops.resize(input_count);
    handle.Check(zor_get_single_cop_per_output(handle.get(), index, model.single_cops.data()));
    model.kept_inputs = KeptInputs(model.single_cops);
  }
  return models;
}

void PrintModels(std::ostream& stream, const std::vector<ModelSummary>& models,
                 const std::vector<std::string>& inputs) {
  std::vector<Cells> fronts = {{"output", "model", "inputs", "CoP"}};
  for (const ModelSummary& model : models) {
    const std::string kept = std::to_string(model.kept_inputs.size()) + " of " + std::to_string(inputs.size());
    fronts.push_back({model.output, model.text, kept, RoundedText(model.cop, 4)});
  }
  const std::size_t used = WidthOf(fronts);
  std::vector<Cells> lines = {fronts.front()};
  lines.front().emplace_back("inputs by single CoP");
  for (std::size_t i = 0; i < models.size(); ++i) {
    for (const std::string& last : SingleCopLines(models[i], inputs, used < kLineWidth ? kLineWidth - used : 0)) {
      lines.push_back(fronts[i + 1]);
      lines.back().push_back(last);
      fronts[i + 1].assign(fronts.front().size(), "");  // said in the first line
    }
  }
  PrintTable(stream, lines);
}

std::string JsonMembers(const ModelSummary& model, const std::vector<std::string>& inputs) {
  return "      \"name\": " + JsonText(model.output) + ",\n      \"model\": " + JsonText(model.text) +
         ",\n      \"model_type\": " + JsonText(model.type) + ",\n      \"cop\": " + JsonNumber(model.cop) +
         ",\n      \"inputs_kept\": " + JsonNames(model, inputs) +
         ",\n      \"single_cops\": " + JsonSingleCops(model, inputs);
}

}  // namespace kestrel::cli
