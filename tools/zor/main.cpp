#include <clocale>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <variant>

#include "command_line.h"
#include "errors.h"
#include "output_file.h"

namespace {

void Obey(const std::string& text) { std::cout << text; }
void Obey(const kestrel::cli::FitArguments& fit) { kestrel::cli::RunFit(fit, std::cout, std::cerr); }
void Obey(const kestrel::cli::PredictArguments& predict) { kestrel::cli::RunPredict(predict, std::cout); }
void Obey(const kestrel::cli::InfoArguments& info) { kestrel::cli::RunInfo(info, std::cout); }
void Obey(const kestrel::cli::EvalArguments& eval) { kestrel::cli::RunEval(eval, std::cout); }

void Run(int argc, const char* const* argv) {
  std::visit([](const auto& command) { Obey(command); }, kestrel::cli::ReadCommandLine(argc, argv));
  kestrel::cli::RequireWritten(std::cout, "standard output");
}

int Fail(const char* text, int status) {
  std::cerr << "zor: " << text << '\n';
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  // Names of columns are UTF-8 whatever the environment says; which of their characters are letters is up to the
  // locale.
  std::setlocale(LC_CTYPE, "C.UTF-8");
  std::ios::sync_with_stdio(false);
  try {
    Run(argc, argv);
    return 0;
  } catch (const kestrel::cli::InputError& error) {
    return Fail(error.what(), 2);
  } catch (const std::bad_alloc&) {
    return Fail("Out of memory.", 1);
  } catch (const std::exception& error) {
    return Fail(error.what(), 1);
  }
}
