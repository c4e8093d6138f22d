#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "errors.h"
#include "numbers.h"
#include "options.h"

namespace kestrel::cli {

namespace {

constexpr const char* kPurpose = "Finds the best metamodel of every output of a table of sampled designs.";

constexpr const char* kFitNotes =
    "The report goes to standard output. With --predict, predictions go there instead, as CSV, and the report to\n"
    "standard error, unless --output names a file for them; with --json they are part of the object.\n"
    "\n"
    "A row whose output is empty, 'nan' or infinite is left out of the model of that output. Inputs must be finite.\n"
    "Points outside the bounds of the designs are refused unless --extrapolate is given.\n"
    "\n"
    "Exit status: 0 success, 1 the build or a prediction failed, 2 wrong arguments or files.\n"
    "\n"
    "Options for --set, with their values [default]:\n";

/// Adds an option that takes one text, with names separated by commas; it may be repeated.
void AddNames(CLI::App& app, const std::string& option, std::vector<std::string>& names, const std::string& help) {
  app.add_option(option, names, help)->delimiter(',')->allow_extra_args(false)->type_name("NAME,NAME");
}

CLI::App* AddFit(CLI::App& app, FitArguments& arguments) {
  CLI::App* const fit =
      app.add_subcommand("fit", "Builds a model of every output, reports the models and predicts points");
  fit->add_option("designs", arguments.designs, "CSV file of the designs, with a header row")
      ->required()
      ->type_name("FILE");
  AddNames(*fit, "--outputs", arguments.outputs, "Columns to be modelled");
  fit->get_option("--outputs")->required();
  AddNames(*fit, "--inputs", arguments.inputs, "Columns they depend on [all others]");
  fit->add_option("--set", arguments.settings, "Sets an option of the search, see below; may be repeated")
      ->allow_extra_args(false)
      ->type_name("OPTION=VALUE");
  fit->add_option("--jobs", arguments.jobs, "Outputs worked on at once [one per hardware thread]")->type_name("N");
  CLI::Option* const predict =
      fit->add_option("--predict", arguments.points, "CSV file of points to predict, with the inputs in any order")
          ->type_name("FILE");
  fit->add_flag("--extrapolate", arguments.extrapolate, "Predict points outside the bounds of the designs too")
      ->needs(predict);
  fit->add_option("--output", arguments.predictions, "Write the predictions to a file")
      ->needs(predict)
      ->type_name("FILE");
  fit->add_option("--cv", arguments.cross_validation, "Write observed and cross-validation values to a CSV file")
      ->type_name("FILE");
  fit->add_flag("--json", arguments.json, "Report as one JSON object");
  fit->footer([] { return kFitNotes + OptionList(); });
  return fit;
}

/// Names as the user meant them: blanks after a comma do not belong to them.
void TrimNames(std::vector<std::string>& names, const std::string& option) {
  for (std::string& name : names) {
    name = std::string(Trimmed(name));
    if (name.empty()) throw InputError(option + ": a name is empty.");
  }
}

}  // namespace

CommandLine ReadCommandLine(int argc, const char* const* argv) {
  CommandLine command;
  CLI::App app(kPurpose, "zor");
  app.set_version_flag("--version", std::string("zor ") + zor_get_version_str());
  app.require_subcommand(1);
  AddFit(app, command.fit);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {  // help or version
    std::ostringstream text;
    app.exit(request, text, text);
    command.text = text.str();
    return command;
  } catch (const CLI::ParseError& error) {
    throw InputError(std::string(error.what()) + "; see 'zor fit --help'");
  }
  TrimNames(command.fit.outputs, "--outputs");
  TrimNames(command.fit.inputs, "--inputs");
  return command;
}

}  // namespace kestrel::cli
