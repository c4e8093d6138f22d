#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <tuple>
#include <vector>

#include "calculator/functions/arguments.h"
#include "calculator/functions/function_groups.h"
#include "calculator/functions/numbers.h"

namespace kestrel::calculator {
namespace {

/// `count` numbers with even steps. The steps are those of (last - first) / (count - 1) where that is finite, so that
/// whole numbers stay whole; the last entry is exact.
Value Linspace(const Arguments& arguments, FunctionContext&) {
  const double first = GetReal(arguments, 0);
  const double last = GetReal(arguments, 1);
  const std::size_t count = GetCount(arguments, 2);
  Value result = MakeVector(count);
  Complex* const entries = Write(result).first;
  const double intervals = static_cast<double>(std::max<std::size_t>(count, 2) - 1);
  const double step = std::isfinite(last - first) ? (last - first) / intervals : last / intervals - first / intervals;
  for (std::size_t i = 0; i < count; ++i) entries[i] = first + static_cast<double>(i) * step;
  if (count > 0) entries[0] = first;
  if (count > 1) entries[count - 1] = last;
  return result;
}

bool IsNaN(const Complex& z) { return std::isnan(z.real()) || std::isnan(z.imag()); }

/// By the real, then by the imaginary part, in either direction, with every NaN at the end.
struct Order {
  bool descending;
  bool operator()(const Complex& a, const Complex& b) const {
    if (IsNaN(a) || IsNaN(b)) return !IsNaN(a) && IsNaN(b);
    const auto left = std::make_tuple(a.real(), a.imag());
    const auto right = std::make_tuple(b.real(), b.imag());
    return descending ? right < left : left < right;
  }
};

/// The samples in the order of the timeline, equal abscissae as they were.
Value SortSamples(const Value& value, Order order) {
  const auto& timeline = value.GetTimeline().data();
  std::vector<std::size_t> samples(timeline.size());
  std::iota(samples.begin(), samples.end(), std::size_t{0});
  std::stable_sort(samples.begin(), samples.end(),
                   [&](std::size_t i, std::size_t j) { return order(timeline[i], timeline[j]); });
  Value result = value;
  const Complex* from = value.GetMatrix().data().begin();
  Complex* to = Write(result).first;
  for (std::size_t i = 0; i < samples.size(); ++i) result.SignalVectorRef().data()[i] = timeline[samples[i]];
  for (std::size_t row = 0; row < value.size1(); ++row, from += samples.size()) {
    for (const std::size_t sample : samples) *to++ = from[sample];
  }
  return result;
}

Value Sort(const Arguments& arguments, FunctionContext&) {
  const Order order{GetFlagOr(arguments, 1, false)};
  const Numbers numbers(arguments, 0);
  if (numbers.HasTimeline()) return SortSamples(GetValue(arguments, 0), order);
  Value result = CopyNumbers(GetValue(arguments, 0), 0);
  Complex* const first = Write(result).first;
  for (std::size_t row = 0; row < numbers.Rows(); ++row) {
    std::sort(first + row * numbers.Columns(), first + (row + 1) * numbers.Columns(), order);
  }
  result.SetOrdered(!order.descending);
  return result;
}

struct Table {
  std::vector<double> from;
  std::vector<double> to;

  double At(double x) const {
    if (!(x > from.front())) return std::isnan(x) ? x : to.front();
    if (!(x < from.back())) return to.back();
    const auto right = static_cast<std::size_t>(std::upper_bound(from.begin(), from.end(), x) - from.begin());
    const double share = (x - from[right - 1]) / (from[right] - from[right - 1]);
    return to[right - 1] + share * (to[right] - to[right - 1]);
  }
};

Value Mapping(const Arguments& arguments, FunctionContext&) {
  const Table points{GetReals(arguments, 1), GetReals(arguments, 2)};
  if (points.from.empty()) RefuseArgument(1, L"It has no entries.");
  if (std::adjacent_find(points.from.begin(), points.from.end(), std::greater_equal<>()) != points.from.end()) {
    RefuseArgument(1, L"Its entries are to increase from one to the next.");
  }
  if (points.to.size() != points.from.size()) RefuseArgument(2, L"It is to have as many entries as argument 2.");
  Numbers(arguments, 0).RequireReal();
  return MapEntries(arguments, 0, [&](const Complex& x) { return points.At(x.real()); });
}

}  // namespace

void AppendSequenceFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject first{L"first", L"The first number."};
  const CCalculatorArgumentInfoObject last{L"last", L"The last number."};
  const CCalculatorArgumentInfoObject count{L"count", L"How many numbers; with 1 it is the first, with 0 none."};
  const CCalculatorArgumentInfoObject x{L"x", L"Numbers of any kind."};
  const CCalculatorArgumentInfoObject descending{L"descending", L"True for the largest first.", true};
  const CCalculatorArgumentInfoObject real{L"x", L"Real numbers of any kind."};
  const CCalculatorArgumentInfoObject from{L"from", L"Values of x in increasing order."};
  const CCalculatorArgumentInfoObject to{L"to", L"What they are mapped to."};
  AppendRows(table,
             {
                 {L"linspace",
                  L"Vector of numbers with even steps between two numbers.",
                  {first, last, count},
                  L"linspace(first, last, count)",
                  &Linspace},
                 {L"sort",
                  L"The entries of a vector or of each row of a matrix in order: by the real part, then by the "
                  L"imaginary part, NaN last. The samples of a signal or of x-y data are put in the order of their "
                  L"abscissae.",
                  {x, descending},
                  L"sort(x)\nsort(x, descending)",
                  &Sort},
                 {L"mapping",
                  L"Each entry mapped by the piecewise linear function through the points (from, to), which stays "
                  L"constant beyond the first and the last point.",
                  {real, from, to},
                  L"mapping(x, from, to)",
                  &Mapping},
             });
}

}  // namespace kestrel::calculator
