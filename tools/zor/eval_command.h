#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace kestrel::cli {

/// The arguments of `zor eval`.
struct EvalArguments {
  std::string expression;
  bool functions = false;            ///< the functions are told instead
  std::vector<std::string> objects;  ///< "name=expression" each
};

/// Prints the value of the expression, as an expression that gives it again, or what the functions do. Throws
/// InputError or WorkError.
void RunEval(const EvalArguments& arguments, std::ostream& out);

}  // namespace kestrel::cli
