#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "calculator/calculator.h"
#include "support/strings.h"

// Evaluates each line as an expression in one calculator, so that lines can use the objects and macros of those before.

namespace {

namespace calculator = kestrel::calculator;

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
  calculator::Calculator calculator;
  std::istringstream lines(std::string(data, data + size));
  for (std::string line; std::getline(lines, line);) Try(calculator, kestrel::string::widen(line));
  for (const auto* name : {L"a", L"b"}) {
    if (calculator.IsObject(name)) Try(calculator, name);
  }
  return 0;
}
