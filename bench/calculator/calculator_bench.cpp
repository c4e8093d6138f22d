// What an expression costs: parsed for the first time, evaluated again for another design, and parsed where brackets
// nest or operators follow each other without end.

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <string>

#include "calculator/calculator.h"
#include "calculator/expression_parser.h"
#include "calculator/functions/arguments.h"
#include "support/strings.h"

namespace kestrel::calculator {
namespace {

const std::wstring kCriterion =
    L"sin(x1*x2)+3.5*sin(x3)-[1,2,3][0]*(#if x1>2 : sqrt(x1^2+x2^2) #else sqrt(x3)/2) + (x1+x2)*(x3-x1)/(x2+1) - "
    L"sin(-1e-3*x1)*$ABSOLUTE_ERROR(x1, x2) + sqrt([x1,x2,x3,4][1])/sqrt([x3,2,1,7][3]) + 12.5 + x3*x3*x3 - x2 < 17";

std::shared_ptr<const FunctionTable> MakeFunctions() {
  auto functions = std::make_shared<FunctionTable>();
  const auto add = [&functions](const wchar_t* name, Function function) { (*functions)[name] = {{}, function, 1, 1}; };
  add(L"sin", [](const Arguments& a, FunctionContext&) { return Value(std::sin(GetReal(a, 0)), 0.0); });
  add(L"sqrt", [](const Arguments& a, FunctionContext&) { return Value(std::sqrt(std::fabs(GetReal(a, 0))), 0.0); });
  add(L"abs", [](const Arguments& a, FunctionContext&) { return Value(std::fabs(GetReal(a, 0)), 0.0); });
  return functions;
}

void ParseCriterion(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ParseExpression(kCriterion));
  state.SetLabel(std::to_string(kCriterion.size()) + " characters");
}
BENCHMARK(ParseCriterion)->Unit(benchmark::kMicrosecond);

/// One design: three inputs change, the criterion is evaluated.
void EvaluateForDesigns(benchmark::State& state) {
  Calculator calculator(MakeFunctions());
  double x = 0.0;
  for (auto _ : state) {
    x += 0.001;
    calculator.AddObject(L"x1", L"", Value(x, 0.0));
    calculator.AddObject(L"x2", L"", Value(1.0 - x, 0.0));
    calculator.AddObject(L"x3", L"", Value(2.0 * x, 0.0));
    benchmark::DoNotOptimize(calculator.Eval<evaluation_traits::by_reference>(kCriterion));
  }
}
BENCHMARK(EvaluateForDesigns)->Unit(benchmark::kMicrosecond);

void ParseNested(benchmark::State& state, const wchar_t* open, const wchar_t* close) {
  std::wstring text = L"1";
  for (int i = 0; i < state.range(0); ++i) text.insert(0, open).append(close);
  for (auto _ : state) benchmark::DoNotOptimize(ParseExpression(text));
}
BENCHMARK_CAPTURE(ParseNested, Parentheses, L"(", L")")->Arg(25)->Arg(50)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ParseNested, Literals, L"[", L"]")->Arg(25)->Arg(50)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ParseNested, Calls, L"f(", L")")->Arg(25)->Arg(50)->Arg(95)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(ParseNested, Indices, L"x[", L"]")->Arg(25)->Arg(50)->Arg(95)->Unit(benchmark::kMicrosecond);

void ParseChain(benchmark::State& state) {
  std::wstring text = L"1";
  for (int i = 0; i < state.range(0); ++i) text += L"+x";
  for (auto _ : state) benchmark::DoNotOptimize(ParseExpression(text));
}
BENCHMARK(ParseChain)->Arg(100)->Arg(10'000)->Arg(49'000)->Unit(benchmark::kMicrosecond);

void CheckNames(benchmark::State& state) {
  std::wstring name = L"stiffness_0";
  for (auto _ : state) {
    name.back() = name.back() == L'9' ? L'0' : static_cast<wchar_t>(name.back() + 1);
    benchmark::DoNotOptimize(string::detail::CheckVariableNameDefault(name, true));
  }
}
BENCHMARK(CheckNames);

}  // namespace
}  // namespace kestrel::calculator
