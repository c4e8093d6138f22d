#include <cstddef>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

#include "calculator/calculator.h"
#include "calculator/functions/arguments.h"
#include "support/strings.h"

// Evaluates each line as an expression in one calculator, so that lines can use the objects and macros of those before.

namespace {

namespace calculator = kestrel::calculator;
using calculator::Arguments;
using calculator::FunctionContext;

std::shared_ptr<const calculator::FunctionTable> MakeFunctions() {
  auto functions = std::make_shared<calculator::FunctionTable>();
  (*functions)[L"same"] = {{}, [](const Arguments& a, FunctionContext&) { return calculator::GetValue(a, 0); }, 1, 3};
  (*functions)[L"calculate"] = {
      {},
      [](const Arguments& a, FunctionContext& context) { return context.evaluate(calculator::GetText(a, 0)); },
      1,
      1};
  return functions;
}

/// What is no expression or has no value is refused by an exception of the library; everything else is a finding.
void Try(calculator::Calculator& calculator, const std::wstring& text) {
  try {
    calculator.GetObjectIdPositions(text);
    calculator.Eval<calculator::evaluation_traits::by_reference>(text);
  } catch (const kestrel::utils::runtime_error&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto functions = MakeFunctions();
  calculator::Calculator calculator(functions);
  std::istringstream lines(std::string(data, data + size));
  for (std::string line; std::getline(lines, line);) Try(calculator, kestrel::string::widen(line));
  for (const auto* name : {L"a", L"b"}) {
    if (calculator.IsObject(name)) Try(calculator, name);
  }
  return 0;
}
