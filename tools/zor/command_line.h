#pragma once

#include "fit_command.h"

namespace kestrel::cli {

/// What the command line asks for: `zor fit`, or that the program prints a text, of its help or version, and ends.
struct CommandLine {
  FitArguments fit;
  std::string text;  ///< not empty if it is all that was asked for
};

/// Throws InputError if the arguments are not those of the program.
CommandLine ReadCommandLine(int argc, const char* const* argv);

}  // namespace kestrel::cli
