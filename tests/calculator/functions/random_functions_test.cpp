#include <algorithm>
#include <cmath>
#include <string>

#include "calculator/functions/call.h"
#include "calculator/functions/option_words.h"

namespace kestrel::calculator::test {
namespace {

Value Word(EOption word) { return Scalar(static_cast<double>(word)); }

/// Two quantiles fix both parameters of a distribution.
struct Quantiles {
  std::string name;
  Arguments arguments;
  double median;
  double upper_quartile;
};

TEST(RandomFunctions, DrawFromTheirDistributions) {
  const double kNormalQuartile = 0.6744897501960817;
  const Quantiles cases[] = {
      {"uniform", {Word(EOption::UNIFORM), Scalar(2), Scalar(4)}, 3, 3.5},
      {"normal", {Word(EOption::NORMAL), Scalar(1), Scalar(2)}, 1, 1 + 2 * kNormalQuartile},
      {"lognormal", {Word(EOption::LOGNORMAL), Scalar(1), Scalar(2)}, M_E, std::exp(1 + 2 * kNormalQuartile)},
      {"triangle", {Word(EOption::TRIANGLE), Scalar(1), Scalar(1), Scalar(2)}, 2 - std::sqrt(0.5), 1.5},
      {"cauchy", {Word(EOption::CAUCHY), Scalar(3), Scalar(2)}, 3, 5},
      {"exponential", {Word(EOption::EXPONENTIAL), Scalar(2)}, std::log(2.0) / 2, std::log(4.0) / 2},
  };
  constexpr double kCount = 20000;
  for (const Quantiles& c : cases) {
    EXPECT_EQ(Call(L"rand", c.arguments).GetKind(), Value::SCALAR) << c.name;
    Arguments with_size = c.arguments;
    with_size.emplace_back(Scalar(kCount));
    const Value numbers = Call(L"rand", with_size);
    ASSERT_EQ(numbers.GetKind(), Value::VECTOR);
    ASSERT_EQ(numbers.size(), kCount);
    const auto share_below = [&](double bound) {
      const auto& entries = numbers.GetVector();
      const auto below = [bound](const Value::Complex& z) { return z.real() < bound; };
      return static_cast<double>(std::count_if(entries.begin(), entries.end(), below)) / kCount;
    };
    EXPECT_NEAR(share_below(c.median), 0.5, 0.015) << c.name;  // four standard deviations
    EXPECT_NEAR(share_below(c.upper_quartile), 0.75, 0.013) << c.name;
  }
}

TEST(RandomFunctions, GoOnWithTheGeneratorOfTheContext) {
  const Arguments arguments = {Word(EOption::NORMAL), Scalar(0), Scalar(1), Scalar(5)};
  math::random::Generator generator(4711);
  FunctionContext context{generator, false, nullptr};
  const Value first = Call(L"rand", arguments, context);
  EXPECT_TRUE(first == Call(L"rand", arguments));  // the same seed
  EXPECT_FALSE(first == Call(L"rand", arguments, context));
}

}  // namespace
}  // namespace kestrel::calculator::test
