#include "predict_command.h"

#include "columns.h"
#include "criteria.h"
#include "errors.h"
#include "evaluation.h"
#include "model_file.h"
#include "output_file.h"
#include "problem.h"

namespace kestrel::cli {

namespace {

void RequireModelWithNames(const std::string& path, const Problem& problem) {
  if (!problem.is_built) throw WorkError(path + ": The stored model was not built.");
  if (problem.inputs.size() != problem.input_count || problem.outputs.size() != problem.output_count) {
    throw WorkError(path + ": The inputs and outputs of the model have no names, by which columns could be found.");
  }
}

}  // namespace

void RunPredict(const PredictArguments& arguments, std::ostream& out) {
  const Handle handle = ReadStoredModel(arguments.model);
  const Problem problem = DescribeProblem(handle);
  RequireModelWithNames(arguments.model, problem);
  AddCriteria(handle, arguments.criteria);
  const std::vector<std::string> criteria = CriterionNames(handle);
  const Table points = ReadPoints(arguments.points, problem.inputs);
  RequireWritable(
      {{"--output", arguments.predictions}, {"--gradients", arguments.gradients}, {"--errors", arguments.errors}},
      {arguments.model, arguments.points});

  const Evaluation models{handle, problem.outputs, arguments.extrapolate};
  const Table predictions = PredictionsWithCriteria(models, criteria, points);
  // All is calculated before a file is touched.
  const Table gradients = arguments.gradients.empty() ? Table() : Gradients(models, points);
  const Table errors = arguments.errors.empty() ? Table() : LocalErrors(models, points);
  if (!arguments.gradients.empty()) WriteCsvFile(arguments.gradients, gradients);
  if (!arguments.errors.empty()) WriteCsvFile(arguments.errors, errors);
  if (arguments.predictions.empty()) {
    WriteCsv(out, predictions);
  } else {
    WriteCsvFile(arguments.predictions, predictions);
  }
}

}  // namespace kestrel::cli
