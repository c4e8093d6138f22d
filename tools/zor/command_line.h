#pragma once

#include <string>
#include <variant>

#include "eval_command.h"
#include "fit_command.h"
#include "info_command.h"
#include "predict_command.h"

namespace kestrel::cli {

/// What the command line asks for: one of the commands, or that the program prints a text, of its help or version.
using CommandLine = std::variant<std::string, FitArguments, PredictArguments, InfoArguments, EvalArguments>;

/// Throws InputError if the arguments are not those of the program.
CommandLine ReadCommandLine(int argc, const char* const* argv);

}  // namespace kestrel::cli
