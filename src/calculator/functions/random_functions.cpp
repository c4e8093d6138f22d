#include <boost/random/cauchy_distribution.hpp>
#include <boost/random/exponential_distribution.hpp>
#include <boost/random/lognormal_distribution.hpp>
#include <boost/random/normal_distribution.hpp>
#include <boost/random/triangle_distribution.hpp>
#include <boost/random/uniform_real_distribution.hpp>
#include <cmath>

#include "calculator/functions/arguments.h"
#include "calculator/functions/calculator_exceptions.h"
#include "calculator/functions/function_groups.h"
#include "calculator/functions/numbers.h"
#include "calculator/functions/option_words.h"

namespace kestrel::calculator {
namespace {

double GetFinite(const Arguments& arguments, std::size_t index) {
  const double number = GetReal(arguments, index);
  if (!std::isfinite(number)) RefuseArgument(index, L"A finite number is expected.");
  return number;
}

double GetPositive(const Arguments& arguments, std::size_t index) {
  const double number = GetFinite(arguments, index);
  if (!(number > 0.0)) RefuseArgument(index, L"A positive number is expected.");
  return number;
}

/// The upper bound of a range from `low`. An empty or an infinite range would keep a distribution drawing forever.
double GetUpperBound(const Arguments& arguments, std::size_t index, double low) {
  const double high = GetFinite(arguments, index);
  if (!(high > low) || !std::isfinite(high - low)) RefuseArgument(index, L"It is to be above the lower bound.");
  return high;
}

/// One number, or a vector of as many as the argument after the word and the parameters says.
template <class Distribution>
Value Draw(Distribution distribution, const Arguments& arguments, std::size_t parameters, FunctionContext& context) {
  if (arguments.size() <= parameters + 1) return {distribution(context.generator), 0.0};
  Value numbers = MakeVector(GetCount(arguments, parameters + 1));
  for (Complex& number : Write(numbers)) number = distribution(context.generator);
  return numbers;
}

void RequireParameters(const Arguments& arguments, std::size_t parameters) {
  if (arguments.size() == parameters + 1 || arguments.size() == parameters + 2) return;
  throw CCalculatorException(L"Wrong number of arguments provided to rand");
}

Value DrawFromRange(const Arguments& arguments, FunctionContext& context) {
  RequireParameters(arguments, 2);
  const double low = GetFinite(arguments, 1);
  const double high = GetUpperBound(arguments, 2, low);
  return Draw(boost::random::uniform_real_distribution<double>(low, high), arguments, 2, context);
}

Value DrawFromTriangle(const Arguments& arguments, FunctionContext& context) {
  RequireParameters(arguments, 3);
  const double low = GetFinite(arguments, 1);
  const double mode = GetFinite(arguments, 2);
  const double high = GetUpperBound(arguments, 3, low);
  if (mode < low || mode > high) RefuseArgument(2, L"It is to lie within the bounds.");
  return Draw(boost::random::triangle_distribution<double>(low, mode, high), arguments, 3, context);
}

/// Distributions of a location and a positive scale.
template <class Distribution>
Value DrawFromScale(const Arguments& arguments, FunctionContext& context) {
  RequireParameters(arguments, 2);
  const double location = GetFinite(arguments, 1);
  return Draw(Distribution(location, GetPositive(arguments, 2)), arguments, 2, context);
}

Value DrawExponential(const Arguments& arguments, FunctionContext& context) {
  RequireParameters(arguments, 1);
  return Draw(boost::random::exponential_distribution<double>(GetPositive(arguments, 1)), arguments, 1, context);
}

Value Rand(const Arguments& arguments, FunctionContext& context) {
  const double word = GetReal(arguments, 0);
  const auto is = [word](EOption option) { return word == static_cast<double>(option); };
  if (is(EOption::UNIFORM)) return DrawFromRange(arguments, context);
  if (is(EOption::NORMAL)) return DrawFromScale<boost::random::normal_distribution<double>>(arguments, context);
  if (is(EOption::LOGNORMAL)) return DrawFromScale<boost::random::lognormal_distribution<double>>(arguments, context);
  if (is(EOption::TRIANGLE)) return DrawFromTriangle(arguments, context);
  if (is(EOption::CAUCHY)) return DrawFromScale<boost::random::cauchy_distribution<double>>(arguments, context);
  if (is(EOption::EXPONENTIAL)) return DrawExponential(arguments, context);
  RefuseArgument(0, L"UNIFORM, NORMAL, LOGNORMAL, TRIANGLE, CAUCHY or EXPONENTIAL is expected.");
}

}  // namespace

void AppendRandomFunctions(FunctionTable& table) {
  const CCalculatorArgumentInfoObject word{L"distribution",
                                           L"UNIFORM, NORMAL, LOGNORMAL, TRIANGLE, CAUCHY or EXPONENTIAL."};
  const CCalculatorArgumentInfoObject parameter{L"parameter", L"The first parameter of the distribution."};
  const CCalculatorArgumentInfoObject more{L"parameters", L"Its further parameters.", true};
  const CCalculatorArgumentInfoObject size{L"size", L"How many numbers; one number and no vector if missing.", true};
  AppendRows(table,
             {{L"rand",
               L"Random numbers. LOGNORMAL takes the mean and the standard deviation of the logarithm, CAUCHY the "
               L"median and the half width at half height, EXPONENTIAL the rate, which is 1 / mean.",
               {word, parameter, more, more, size},
               L"rand(UNIFORM, low, high, size)\nrand(NORMAL, mean, stddev, size)\n"
               L"rand(LOGNORMAL, mean of ln, stddev of ln, size)\nrand(TRIANGLE, low, mode, high, size)\n"
               L"rand(CAUCHY, median, width, size)\nrand(EXPONENTIAL, rate, size)",
               &Rand}});
}

}  // namespace kestrel::calculator
