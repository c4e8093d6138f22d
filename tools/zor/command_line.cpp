#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "errors.h"
#include "numbers.h"
#include "options.h"

namespace kestrel::cli {

namespace {

constexpr const char* kPurpose =
    "Finds the best metamodel of every output of a table of sampled designs, stores it and predicts with it.";

constexpr const char* kStatusNote =
    "\n"
    "Exit status: 0 success, 1 the work failed or a model file cannot be used, 2 wrong arguments or tables.\n";

constexpr const char* kFitNotes =
    "The report goes to standard output. With --predict, predictions go there instead, as CSV, and the report to\n"
    "standard error, unless --output names a file for them; with --json they are part of the object. --report\n"
    "replaces the short table, wherever that would go, and so cannot be had together with --json.\n"
    "\n"
    "A row whose output is empty, 'nan' or infinite is left out of the model of that output. Inputs must be finite.\n"
    "Points outside the bounds of the designs are refused unless --extrapolate is given.\n";

constexpr const char* kPredictNotes =
    "The columns of the points are found by the names of the model's inputs; others are ignored. All files written\n"
    "have one row per point, in the order of the points; a value that does not exist is an empty cell. For an output\n"
    "y of inputs a and b the columns are\n"
    "\n"
    "  predictions  y\n"
    "  --gradients  dy/da, dy/db\n"
    "  --errors     y_cop       local coefficient of prognosis\n"
    "               y_rmse      local root mean squared error\n"
    "               y_mean      weighted mean of the residuals around the point\n"
    "               y_mean_abs  weighted mean of their absolute values\n"
    "               y_density   density of the designs around the point\n"
    "\n"
    "A criterion NAME=EXPRESSION adds a column with the value of an expression over the inputs, the outputs and the\n"
    "criteria before it. NAME=LEFT<=RIGHT and NAME=LEFT>=RIGHT give the margin, which is not negative where the\n"
    "comparison holds, NAME=LEFT==RIGHT the difference. Criteria stored with the model come first.\n"
    "\n"
    "The predictions are those of the 'zor fit' that stored the model, to the last digit. Points outside the bounds\n"
    "of its designs are refused unless --extrapolate is given.\n";

constexpr const char* kInfoNotes =
    "A stored model is told with its inputs and their bounds, and per output the model, its coefficient of prognosis\n"
    "(CoP) and the share of each input in it. A monitoring file is told with its header, its parameters, the number\n"
    "of its designs and its models. --json prints one object; its \"kind\" is \"stored_model\", "
    "\"monitoring_file\"\nor \"library\".\n";

constexpr const char* kEvalNotes =
    "The value is printed as an expression that gives it again. docs/expressions.md has the language.\n"
    "\n"
    "  zor eval 'a^2 + [1,2]' --set a=3      prints [10,11]\n"
    "  zor eval -- '-2^2'                    prints -4\n";

/// Adds an option or, without dashes, an argument that names a file.
CLI::Option* AddFile(CLI::App& app, const std::string& option, std::string& path, const std::string& help) {
  const auto require_name = [](const std::string& name) {
    return name.empty() ? std::string("The name of the file is empty") : std::string();
  };
  return app.add_option(option, path, help)->check(require_name)->type_name("FILE");
}

/// Adds an option that takes one text, with names separated by commas; it may be repeated.
CLI::Option* AddNames(CLI::App& app, const std::string& option, std::vector<std::string>& names,
                      const std::string& help) {
  return app.add_option(option, names, help)->delimiter(',')->allow_extra_args(false)->type_name("NAME,NAME");
}

CLI::Option* AddExtrapolate(CLI::App& app, bool& extrapolate) {
  return app.add_flag("--extrapolate", extrapolate, "Predict points outside the bounds of the designs too");
}

void AddFit(CLI::App& app, FitArguments& arguments) {
  CLI::App& fit =
      *app.add_subcommand("fit", "Builds a model of every output, reports and stores the models, predicts points");
  AddFile(fit, "designs", arguments.designs, "CSV file of the designs, with a header row")->required();
  AddNames(fit, "--outputs", arguments.outputs, "Columns to be modelled")->required();
  AddNames(fit, "--inputs", arguments.inputs, "Columns they depend on [all others]");
  fit.add_option("--set", arguments.settings, "Sets an option of the search, see below; may be repeated")
      ->allow_extra_args(false)
      ->type_name("OPTION=VALUE");
  fit.add_option("--jobs", arguments.jobs, "Outputs worked on at once [one per hardware thread]")->type_name("N");
  CLI::Option* const predict =
      AddFile(fit, "--predict", arguments.points, "CSV file of points to predict, with the inputs in any order");
  AddExtrapolate(fit, arguments.extrapolate)->needs(predict);
  AddFile(fit, "--output", arguments.predictions, "Write the predictions to a file")->needs(predict);
  AddFile(fit, "--cv", arguments.cross_validation, "Write observed and cross-validation values to a CSV file");
  AddFile(fit, "--store", arguments.stored_model, "Store the models for 'zor predict' and 'zor info'");
  AddFile(fit, "--monitor", arguments.monitoring, "Write the record of the build to a monitoring file (.lyra)");
  CLI::Option* const report =
      fit.add_flag("--report", arguments.build_report, "Print the library's report of the build");
  fit.add_flag("--json", arguments.json, "Report as one JSON object")->excludes(report);
  fit.footer([] {
    return std::string(kFitNotes) + kStatusNote + "\nOptions for --set, with their values [default]:\n" + OptionList();
  });
}

void AddPredict(CLI::App& app, PredictArguments& arguments) {
  CLI::App& predict = *app.add_subcommand("predict", "Predicts points with a stored model");
  AddFile(predict, "model", arguments.model, "Stored model, as 'zor fit --store' writes it")->required();
  AddFile(predict, "points", arguments.points, "CSV file of the points, with a header row and the inputs in any order")
      ->required();
  AddExtrapolate(predict, arguments.extrapolate);
  predict.add_option("--criterion", arguments.criteria, "Add a column with a criterion, see below; may be repeated")
      ->allow_extra_args(false)
      ->type_name("NAME=EXPRESSION");
  AddFile(predict, "--output", arguments.predictions, "Write the predictions to a file, not to standard output");
  AddFile(predict, "--gradients", arguments.gradients, "Write the gradients at the points to a CSV file");
  AddFile(predict, "--errors", arguments.errors, "Write the local errors at the points to a CSV file");
  predict.footer(std::string(kPredictNotes) + kStatusNote);
}

void AddInfo(CLI::App& app, InfoArguments& arguments) {
  CLI::App& info = *app.add_subcommand("info", "Tells what a stored model or a monitoring file holds");
  CLI::Option* const file = AddFile(info, "file", arguments.file, "Stored model or monitoring file");
  info.add_flag("--build", arguments.build, "Tell which library runs, instead: version, processors, file")
      ->excludes(file);
  info.add_flag("--json", arguments.json, "Print one JSON object");
  info.footer(std::string(kInfoNotes) + kStatusNote);
}

void AddEval(CLI::App& app, EvalArguments& arguments) {
  CLI::App& eval = *app.add_subcommand("eval", "Evaluates an expression");
  eval.add_option("expression", arguments.expression, "The expression; put -- before one that begins with a minus")
      ->type_name("EXPRESSION");
  eval.add_flag("--functions", arguments.functions, "Tell what the functions do, instead");
  eval.add_option("--set", arguments.objects, "An object that the expression may use; may be repeated")
      ->allow_extra_args(false)
      ->type_name("NAME=EXPRESSION");
  eval.footer(std::string(kEvalNotes) + kStatusNote);
}

/// Names as the user meant them: blanks after a comma do not belong to them.
void TrimNames(std::vector<std::string>& names, const std::string& option) {
  for (std::string& name : names) {
    name = std::string(Trimmed(name));
    if (name.empty()) throw InputError(option + ": a name is empty.");
  }
}

/// "zor", or "zor fit" if that command was recognised.
std::string NameOfCommand(const CLI::App& app) {
  const auto commands = app.get_subcommands();
  return commands.empty() ? app.get_name() : app.get_name() + " " + commands.front()->get_name();
}

}  // namespace

CommandLine ReadCommandLine(int argc, const char* const* argv) {
  FitArguments fit;
  PredictArguments predict;
  InfoArguments info;
  EvalArguments eval;
  CLI::App app(kPurpose, "zor");
  app.set_version_flag("--version", std::string("zor ") + zor_get_version_str());
  app.require_subcommand(1);
  AddFit(app, fit);
  AddPredict(app, predict);
  AddInfo(app, info);
  AddEval(app, eval);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {  // help or version
    std::ostringstream text;
    app.exit(request, text, text);
    return text.str();
  } catch (const CLI::ParseError& error) {
    throw InputError(std::string(error.what()) + "; see '" + NameOfCommand(app) + " --help'");
  }
  if (app.got_subcommand("predict")) return predict;
  if (app.got_subcommand("eval")) {
    if (eval.expression.empty() && !eval.functions) throw InputError("expression is required; see 'zor eval --help'");
    return eval;
  }
  if (app.got_subcommand("info")) {
    if (info.file.empty() && !info.build) throw InputError("file is required; see 'zor info --help'");
    return info;
  }
  TrimNames(fit.outputs, "--outputs");
  TrimNames(fit.inputs, "--inputs");
  return fit;
}

}  // namespace kestrel::cli
