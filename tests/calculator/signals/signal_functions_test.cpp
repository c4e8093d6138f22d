#include "calculator/signals/signal_functions.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

#include "calculator/functions/calculator_exceptions.h"
#include "calculator/signals/signal_calls.h"
#include "support/strings.h"

namespace kestrel::calculator::test {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kHuge = 1.7e308;

TEST(SignalFunctions, AreAllThereWithWhatAReaderNeeds) {
  const std::set<std::wstring> names = {L"peaks",
                                        L"minpeaks",
                                        L"maxpeaks",
                                        L"magpeaks",
                                        L"signal",
                                        L"series",
                                        L"xydata",
                                        L"lct",
                                        L"extract",
                                        L"window",
                                        L"derive",
                                        L"integrate",
                                        L"area",
                                        L"interpolate",
                                        L"interpolateABQ",
                                        L"fft",
                                        L"fftshift",
                                        L"ifft",
                                        L"ifftshift",
                                        L"fft2d",
                                        L"ifft2d",
                                        L"saeFilter",
                                        L"saeFilterABQ",
                                        L"chebyOneFilter",
                                        L"chebyOneFilterABQ",
                                        L"chebyTwoFilter",
                                        L"chebyTwoFilterABQ",
                                        L"butterworthFilter",
                                        L"butterworthFilterABQ",
                                        L"sineButterworthFilter",
                                        L"sineButterworthFilterABQ",
                                        L"decimateFilter",
                                        L"decimateFilterABQ",
                                        L"smoothFilter",
                                        L"smoothFilterABQ",
                                        L"besselFilter"};
  std::set<std::wstring> offered;
  for (const auto& [name, entry] : Table()) {
    offered.insert(name);
    const std::string narrow = string::narrow(name);
    EXPECT_EQ(entry.info.name, name);
    EXPECT_EQ(entry.info.usage.rfind(name + L"(", 0), 0u) << narrow;
    EXPECT_GT(entry.info.description.size(), 20u) << narrow;
    bool optional = false;
    for (const CCalculatorArgumentInfoObject& argument : entry.info.arguments) {
      EXPECT_TRUE(argument.optional || !optional) << narrow << ": a needed argument behind an optional one";
      EXPECT_FALSE(argument.name.empty() || argument.description.empty()) << narrow;
      optional = argument.optional;
    }
    EXPECT_LE(entry.minimal_arguments, entry.info.arguments.size()) << narrow;
    EXPECT_GE(entry.maximal_arguments, entry.info.arguments.size()) << narrow;
  }
  EXPECT_EQ(offered, names);
  EXPECT_EQ(Table().at(L"area").minimal_arguments, 1u);
  EXPECT_EQ(Table().at(L"butterworthFilter").minimal_arguments, 4u);
  EXPECT_EQ(Table().at(L"butterworthFilter").maximal_arguments, 5u);
  EXPECT_EQ(Table().at(L"signal").maximal_arguments, SIZE_MAX);
}

struct Refusal {
  std::wstring function;
  Arguments arguments;
  std::wstring text;
};

const Value kSignal = Signal(Steps(0.001, 100), {Numbers(100, 1.0)});
const Value kTurned = XyData({2, 1, 3}, {{1, 2, 3}});
const Value kUneven = Signal({0, 1, 3}, {{1, 2, 3}});
const Value kDescending = Signal({2, 1, 0}, {{1, 2, 3}});
const Value kLow = Word(EOption::LOWPASS);
const Value kBand = Word(EOption::BANDPASS);

std::vector<Refusal> RefusalsOfFilters() {
  return {
      {L"butterworthFilter", {Number(1), kLow, Number(2), Number(5)}, L"Argument 1: A signal or x-y data is expected."},
      {L"butterworthFilter", {kUneven, kLow, Number(2), Number(0.1)}, L"Argument 1: The sampling must be uniform."},
      {L"butterworthFilter", {kDescending, kLow, Number(2), Number(5)}, L"Argument 1: The timeline of a signal must"},
      {L"butterworthFilterABQ", {kTurned, kLow, Number(2), Number(5)}, L"Argument 1: The abscissae must ascend."},
      {L"butterworthFilterABQ",
       {Signal({1, 1}, {{1, 2}}), kLow, Number(2), Number(5)},
       L"Argument 1: The abscissae are all the same."},
      {L"butterworthFilter", {Signal({}, {{}}), kLow, Number(2), Number(5)}, L"Argument 1: At least 2 samples"},
      {L"saeFilterABQ", {Signal({1}, {{1}}), Number(60)}, L"Argument 1: At least 2 samples are needed, 1 are there."},
      {L"butterworthFilter", {kSignal, Number(9), Number(2), Number(5)}, L"Argument 2: One of LOWPASS, HIGHPASS, BAND"},
      {L"butterworthFilter", {kSignal, kLow, Number(0), Number(5)}, L"Argument 3: A whole number from 1 to 20"},
      {L"butterworthFilter", {kSignal, kLow, Number(21), Number(5)}, L"Argument 3: A whole number from 1 to 20"},
      {L"butterworthFilter", {kSignal, kLow, Number(2), Number(500)}, L"Argument 4: A number from 0.01 to 499.99"},
      {L"butterworthFilter", {kSignal, kLow, Number(2), Number(0)}, L"Argument 4: A number from 0.01 to 499.99"},
      {L"butterworthFilter", {kSignal, kLow, Number(2), Number(kNaN)}, L"Argument 4: A number from 0.01 to 499.99"},
      {L"butterworthFilter", {kSignal, kLow, Number(2), Number(5), Number(6)}, L"Argument 5: A second cut-off"},
      {L"besselFilter", {kSignal, kBand, Number(2), Number(5)}, L"Argument 5: It is missing."},
      {L"besselFilter", {kSignal, kBand, Number(2), Number(5), Number(5)}, L"Argument 5: The second cut-off frequency"},
      {L"chebyOneFilter", {kSignal, kLow, Number(2), Number(0), Number(5)}, L"Argument 4: A number from 1e-06 to 60"},
      {L"chebyTwoFilter", {kSignal, kLow, Number(2), Number(1e9), Number(5)}, L"Argument 4: A number from 0.1 to 240"},
      {L"saeFilter", {kSignal, Number(1000)}, L"Argument 2: A number from"},
      {L"saeFilter", {kSignal, Number(60), Number(0)}, L"Argument 3: A length above 0 is expected."},
      {L"decimateFilter", {kSignal, Number(2.5)}, L"Argument 2: A whole number from 1 to 10000 is expected."},
      {L"smoothFilter", {kSignal, Number(4)}, L"Argument 2: An odd number of samples is expected."},
      {L"smoothFilter", {kSignal, Number(3), Number(3)}, L"Argument 3: The degree must be less than"},
      {L"smoothFilter", {Signal({0, 1}, {{1, kNaN}}), Number(3)}, L"Argument 1: A sample is not finite."},
      {L"butterworthFilter",
       {Signal({0, 1, 2}, {{kHuge, kHuge, -kHuge}}), Word(EOption::HIGHPASS), Number(8), Number(0.01)},
       L"The result is too large for a number."},
  };
}

std::vector<Refusal> RefusalsOfTheOthers() {
  return {
      {L"signal", {VectorOf({0, 1}), VectorOf({1, 2, 3})}, L"Argument 2: It has 3 samples, the timeline has 2."},
      {L"signal", {VectorOf({0, 1}), VectorOf({1, 2}), VectorOf({1})}, L"Argument 3: It has 1 samples"},
      {L"signal", {VectorOf({1, 0}), VectorOf({1, 2})}, L"Argument 1: The timeline of a signal must ascend"},
      {L"signal", {kTurned}, L"Argument 1: The timeline of a signal must ascend"},
      {L"signal", {VectorOf({0, kNaN}), VectorOf({1, 2})}, L"Argument 1: Finite numbers are expected."},
      {L"signal", {VectorOf({0, 1}), L"y"}, L"Argument 2: A value is expected, not a text in quotes."},
      {L"xydata", {MatrixOf({{1, 2}})}, L"Argument 1: A matrix of a timeline and at least one channel is expected."},
      {L"xydata", {Number(1)}, L"Argument 1: A matrix, a signal or x-y data is expected"},
      {L"series", {VectorOf({1}), Number(0)}, L"Argument 2: A step above 0 is expected."},
      {L"series", {VectorOf({1, 2, 3}), Number(kHuge), Number(0)}, L"Argument 3: The timeline is not finite."},
      {L"lct", {kUneven, Signal({4, 5}, {{1, 2}})}, L"Argument 2: The timelines do not overlap."},
      {L"extract", {kUneven, Number(2)}, L"Argument 2: A whole number from 0 to 1 is expected."},
      {L"extract", {kUneven, VectorOf({0, -1})}, L"Argument 2: A whole number from 0 to 1 is expected."},
      {L"extract", {kSignal, VectorOf(Numbers(100'001, 0.0))}, L"The result would have more than 10000000 entries."},
      {L"window", {kUneven, Number(1.2), Number(1.8)}, L"Argument 1: No sample lies in the window."},
      {L"window", {kUneven, Number(2), Number(kNaN)}, L"Argument 3: The end of the window must not lie before"},
      {L"peaks", {kUneven, Number(-1)}, L"Argument 2: A tolerance of at least 0 is expected."},
      {L"peaks", {kUneven, Number(0), Number(2)}, L"Argument 3: A whole number from 1 to 1 is expected."},
      {L"peaks", {kUneven * Number(0, 1)}, L"Argument 1: Real samples are expected."},
      {L"derive", {kTurned}, L"Argument 1: The abscissae must ascend, each larger than the one before."},
      {L"derive", {kUneven, kLow}, L"Argument 2: One of 0, FORWARD, BACKWARD is expected."},
      {L"derive", {Signal({0, 1}, {{kHuge, -kHuge}})}, L"The result is too large for a number."},
      {L"integrate", {Signal({0, 1}, {{1, kInfinity}})}, L"Argument 1: A sample is not finite."},
      {L"area", {Signal({0, kInfinity}, {{1, 1}})}, L"Argument 1: The timeline is not finite."},
      {L"area", {kUneven, Number(0)}, L"Argument 3: It is missing."},
      {L"area", {kUneven, Number(1), Number(0)}, L"Argument 3: The end of the range must not lie before its start."},
      {L"area", {kUneven, Number(4), Number(5)}, L"Argument 1: The signal does not reach into the range."},
      {L"area", {kTurned, Number(1), Number(2)}, L"Argument 1: For a part of the area the abscissae must ascend."},
      {L"interpolate", {kUneven, Number(3.1)}, L"Argument 2: The abscissa 3.1"},
      {L"interpolate", {kUneven, Number(1), kLow}, L"Argument 3: One of LINEAR, QUAD, SPLINE, ZERO is expected."},
      {L"interpolate", {kUneven, Number(1), Word(EOption::LINEAR), kLow}, L"Argument 4: One of 0, CONSTANT, ZERO, MIR"},
      {L"interpolate", {kTurned, Number(1), Word(EOption::SPLINE)}, L"Argument 1: The abscissae must ascend, each"},
      {L"fft", {Number(1)}, L"Argument 1: A vector, a matrix, a signal or x-y data is expected."},
      {L"fft", {VectorOf({})}, L"Argument 1: It is empty."},
      {L"fft", {VectorOf({1, kNaN})}, L"Argument 1: An entry is not finite."},
      {L"fft", {VectorOf({kHuge, kHuge, kHuge})}, L"The result is too large for a number."},
      {L"fft", {kUneven}, L"Argument 1: The sampling must be uniform."},
      {L"fft", {Signal({1}, {{1}})}, L"Argument 1: At least 2 samples are needed."},
      {L"ifft", {Signal({1, 2}, {{1, 2}})}, L"Argument 1: A spectrum must begin at the frequency 0; see ifftshift."},
      {L"fft2d", {VectorOf({1, 2})}, L"Argument 1: A matrix is expected."},
  };
}

TEST(SignalFunctions, RefuseWithTheArgument) {
  std::vector<Refusal> refusals = RefusalsOfFilters();
  for (const Refusal& refusal : RefusalsOfTheOthers()) refusals.push_back(refusal);
  for (const Refusal& refusal : refusals) {
    const std::string name = string::narrow(refusal.function + L", " + refusal.text);
    try {
      Call(refusal.function, refusal.arguments);
      ADD_FAILURE() << name << " was not refused";
    } catch (const CCalculatorException& error) {
      EXPECT_EQ(error.What().substr(0, refusal.text.size()), refusal.text) << name;
    }
  }
}

std::vector<Value> StrangeValues() {
  return {Value(),
          Value(true),
          Number(0),
          Number(3),
          Number(17),
          Number(-1, 1),
          Number(kNaN),
          Number(1e-300),
          VectorOf({}),
          VectorOf({1, 0, 2}),
          VectorOf({kHuge, -kHuge}),
          Value(Value::MatrixType(0, 0)),
          MatrixOf({{1, 2, 3}, {4, 5, kInfinity}}),
          MatrixOf({{0, 1, 2, 3}, {4, 5, 6, 9}}),
          Signal({}, {}),
          Signal({}, {{}}),
          Value(Entries({1, 2}), Value::MatrixType(0, 2), Value::SIGNAL),
          Signal({1}, {{2}}),
          kDescending,
          kTurned,
          kUneven,
          Signal({0, 0, 0}, {{1, 2, 3}}),
          Signal({0, 1e-320, 1}, {{1, 2, 3}}),
          Signal({-kHuge, kHuge}, {{1, 2}}),
          Signal({0, 1e-200, 2e-200, 3e-200}, {{1, -2, 1, kHuge}}),
          Signal({0, 1, 2}, {{kHuge, -kHuge, kHuge}}),
          kSignal * Number(1, 1),
          kSignal};
}

bool IsFinite(const Value& value) { return !value.IsNaN(true) && !value.IsInf(true); }

/// Whatever comes in: a refusal, or a result that is finite if the arguments were.
void ExpectOrder(const std::wstring& name, const Arguments& arguments) {
  const bool is_finite = std::all_of(arguments.begin(), arguments.end(),
                                     [](const Argument& argument) { return IsFinite(std::get<Value>(argument)); });
  try {
    const Value result = Call(name, arguments);
    EXPECT_TRUE(!is_finite || IsFinite(result)) << string::narrow(name) << " of " << arguments.size();
  } catch (const CCalculatorException&) {
  } catch (const math::CVariantException&) {
  }
}

TEST(SignalFunctions, StandStrangeArguments) {
  const std::vector<Value> values = StrangeValues();
  for (const auto& [name, entry] : Table()) {
    for (const Value& first : values) {
      if (entry.minimal_arguments <= 1) ExpectOrder(name, {first});
      for (const Value& second : values) {
        if (entry.minimal_arguments <= 2 && entry.maximal_arguments >= 2) ExpectOrder(name, {first, second});
        if (entry.maximal_arguments < 3) continue;
        for (const Value& third : {Number(0), Number(1), Number(2), VectorOf({1, 2}), kUneven, Number(kNaN)}) {
          Arguments arguments = {first, second, third};
          while (arguments.size() < entry.minimal_arguments) arguments.emplace_back(Number(0.2));
          ExpectOrder(name, arguments);
        }
      }
    }
  }
}

}  // namespace
}  // namespace kestrel::calculator::test
