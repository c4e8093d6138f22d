#include <cmath>

#include "calculator/functions/arguments.h"
#include "calculator/functions/function_groups.h"
#include "calculator/functions/numbers.h"

namespace kestrel::calculator {
namespace {

struct Less {
  bool operator()(double a, double b) const { return a < b; }
};
struct Greater {
  bool operator()(double a, double b) const { return a > b; }
};

/// Index of the first best entry, leaving out NaN; 0 if all are NaN.
template <class Better>
Eigen::Index FindBest(const NumberRow& row, Better better) {
  Eigen::Index best = 0;
  for (Eigen::Index i = 1; i < row.size(); ++i) {
    if (better(row(i).real(), row(best).real()) || std::isnan(row(best).real())) best = i;
  }
  return best;
}

/// Of a signal the sample [x, y1, y2, ...] where the first channel has its extremum, of other kinds the extremum.
template <class Better>
Value FindExtremum(const Value& value, Better better) {
  const Numbers numbers(value, 0);
  numbers.RequireSome().RequireReal();
  if (numbers.HasTimeline()) return value.GetSample(static_cast<std::size_t>(FindBest(numbers.Row(0), better)));
  return ReduceRows(numbers, [&](const NumberRow& row) { return row(FindBest(row, better)); });
}

template <class Better>
Value FindExtremumOfAll(const Arguments& arguments, Better better) {
  if (arguments.size() == 1) return FindExtremum(GetValue(arguments, 0), better);
  for (std::size_t i = 0; i < arguments.size(); ++i) Numbers(arguments, i).RequireReal();
  return FoldPairs(arguments, [&](const Complex& a, const Complex& b) {
    return better(b.real(), a.real()) || std::isnan(a.real()) ? b.real() : a.real();
  });
}

Value Min(const Arguments& arguments, FunctionContext&) { return FindExtremumOfAll(arguments, Less()); }
Value Max(const Arguments& arguments, FunctionContext&) { return FindExtremumOfAll(arguments, Greater()); }

}  // namespace

void AppendExtremaFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject a{L"a", L"Real numbers of any kind."};
  const CCalculatorArgumentInfoObject b{L"b", L"Further numbers of the shape of a, or a number.", true};
  AppendRows(table, {
                        {L"min",
                         L"Smallest entry of a vector, or of each row of a matrix. Of a signal the vector "
                         L"[x, y1, y2, ...]: the sample at which the first channel has its minimum. With several "
                         L"arguments the smallest of the entries at the same place. NaN do not count.",
                         {a, b},
                         L"min(a)\nmin(a, b, ...)",
                         &Min,
                         true},
                        {L"max",
                         L"Largest entry of a vector, or of each row of a matrix. Of a signal the vector "
                         L"[x, y1, y2, ...]: the sample at which the first channel has its maximum. With several "
                         L"arguments the largest of the entries at the same place. NaN do not count.",
                         {a, b},
                         L"max(a)\nmax(a, b, ...)",
                         &Max,
                         true},
                    });
}

}  // namespace kestrel::calculator
