#include <gtest/gtest.h>

#include <complex>
#include <functional>

#include "calculator/signals/signal_calls.h"
#include "support/matrix_compare.h"

namespace kestrel::calculator::test {
namespace {

using Complex = std::complex<double>;
using kestrel::testing::MatrixNear;

// ---- the gain of the digital filters against the formulas of the analog ones ----

/// T_n(w), of any real w.
double Chebyshev(int order, double w) {
  return std::abs(w) <= 1.0 ? std::cos(order * std::acos(w))
                            : std::pow(w < 0 ? -1.0 : 1.0, order) * std::cosh(order * std::acosh(std::abs(w)));
}

/// |B_n(0) / B_n(i w)| with the coefficients (2n - k)! / (2^(n-k) k! (n-k)!) of s^k.
double BesselGain(int order, double w) {
  Complex sum = 0.0;
  Complex power = 1.0;
  double constant = 0.0;
  for (int k = 0; k <= order; ++k, power *= Complex(0.0, w)) {
    const double coefficient =
        std::tgamma(2 * order - k + 1) / (std::pow(2.0, order - k) * std::tgamma(k + 1) * std::tgamma(order - k + 1));
    if (k == 0) constant = coefficient;
    sum += coefficient * power;
  }
  return constant / std::abs(sum);
}

/// Half-power frequencies of the Bessel filters of unit delay, orders 1 to 10 (tables of filter design).
constexpr double kBesselHalfPower[] = {1.0,     1.36165, 1.75567, 2.11392, 2.42741,
                                       2.70340, 2.95172, 3.17962, 3.39169, 3.59098};

double ButterworthGain(int order, double w) { return 1.0 / std::sqrt(1.0 + std::pow(w, 2 * order)); }

double ChebyshevOneGain(int order, double w, double ripple) {
  const double e2 = std::pow(10.0, ripple / 10.0) - 1.0;
  return 1.0 / std::sqrt(1.0 + e2 * std::pow(Chebyshev(order, w), 2));
}

double ChebyshevTwoGain(int order, double w, double attenuation) {
  const double e2 = 1.0 / (std::pow(10.0, attenuation / 10.0) - 1.0);
  if (w == 0.0) return 1.0;
  const double t = Chebyshev(order, 1.0 / w);
  return std::abs(t) * std::sqrt(e2) / std::sqrt(1.0 + e2 * t * t);
}

/// The frequency of the prototype that the digital frequency f (share of the sampling frequency) stands for.
double PrototypeFrequency(EOption kind, double f, double low, double high) {
  const double w = std::tan(kPi * f);
  const double w1 = std::tan(kPi * low);
  const double w2 = std::tan(kPi * high);
  switch (kind) {
    case EOption::LOWPASS: return w / w1;
    case EOption::HIGHPASS: return w1 / w;
    case EOption::BANDPASS: return std::abs((w * w - w1 * w2) / ((w2 - w1) * w));
    default: return std::abs((w2 - w1) * w / (w * w - w1 * w2));
  }
}

/// The spectrum, at k / size of the sampling frequency, of the answer to an impulse of 1.
Value Response(const std::wstring& filter, const Arguments& behind_signal, std::size_t size, double step = 1.0) {
  Numbers impulse(size, 0.0);
  impulse[0] = 1.0;
  Arguments arguments = {Signal(Steps(step, size), {impulse})};
  arguments.insert(arguments.end(), behind_signal.begin(), behind_signal.end());
  const math::Vector answer = RowOf(Call(filter, arguments));
  return Call(L"fft", {VectorOf({answer.begin(), answer.end()})});
}

struct Design {
  std::wstring filter;
  int order;
  double decibel;  // of the Chebyshev filters
  std::function<double(double)> gain;
  double tolerance;
};

std::vector<Design> Designs() {
  std::vector<Design> designs;
  for (const int n : {1, 2, 3, 4, 7, 12, 20}) {
    designs.push_back({L"butterworthFilter", n, 0, [n](double w) { return ButterworthGain(n, w); }, 1e-9});
    designs.push_back({L"chebyOneFilter", n, 0.5, [n](double w) { return ChebyshevOneGain(n, w, 0.5); }, 1e-7});
    designs.push_back({L"chebyTwoFilter", n, 40, [n](double w) { return ChebyshevTwoGain(n, w, 40); }, 1e-9});
  }
  for (int n = 1; n <= 10; ++n) {
    const double half_power = kBesselHalfPower[n - 1];
    designs.push_back({L"besselFilter", n, 0, [=](double w) { return BesselGain(n, w * half_power); }, 1e-5});
  }
  return designs;
}

TEST(RecursiveFilters, HaveTheGainOfTheirAnalogPrototype) {
  constexpr std::size_t kSize = 1 << 13;
  constexpr double kStep = 0.002;  // 500 Hz
  for (const Design& design : Designs()) {
    for (const EOption kind : {EOption::LOWPASS, EOption::HIGHPASS, EOption::BANDPASS, EOption::BANDSTOP}) {
      Arguments arguments = {Word(kind), Number(design.order)};
      if (design.decibel > 0) arguments.emplace_back(Number(design.decibel));
      arguments.emplace_back(Number(0.11 / kStep));
      if (kind == EOption::BANDPASS || kind == EOption::BANDSTOP) arguments.emplace_back(Number(0.3 / kStep));
      const Value response = Response(design.filter, arguments, kSize, kStep);
      double worst = 0.0;
      for (std::size_t k = 1; k < kSize / 2; ++k) {
        const double f = static_cast<double>(k) / static_cast<double>(kSize);
        const double expected = design.gain(PrototypeFrequency(kind, f, 0.11, 0.3));
        worst = std::max(worst, std::abs(std::abs(response.at(k)) - expected));
      }
      EXPECT_LT(worst, design.tolerance) << std::string(design.filter.begin(), design.filter.end()) << " of order "
                                         << design.order << ", kind " << static_cast<int>(kind);
    }
  }
}

TEST(RecursiveFilters, GiveASineTheirGainAndNoSignChange) {
  const Numbers t = Steps(0.001, 4000);
  const auto sine = [](double x) { return std::sin(2 * kPi * 50 * x); };
  const Value cut =
      Call(L"butterworthFilter", {Signal(t, {Sampled(t, sine)}), Word(EOption::LOWPASS), Number(4), Number(50)});
  EXPECT_NEAR(RowOf(cut).tail(2000).cwiseAbs2().mean(), 0.25, 1e-9) << "half the power of 1/2 at the cut-off";
  const Value passed = Call(L"butterworthFilter", {Signal(t, {Numbers(4000, 2.0)}), Word(EOption::BANDSTOP), Number(3),
                                                   Number(50), Number(90)});
  EXPECT_NEAR(RowOf(passed)(3999), 2.0, 1e-12);
}

/// The delay of the phase between neighbouring frequencies, in samples.
double GroupDelay(const Value& response, std::size_t k) {
  return -std::arg(response.at(k + 1) / response.at(k)) * static_cast<double>(response.size()) / (2.0 * kPi);
}

TEST(BesselFilter, HasAFlatGroupDelay) {
  const Arguments arguments = {Word(EOption::LOWPASS), Number(8), Number(0.01)};
  const Value bessel = Response(L"besselFilter", arguments, 1 << 14);
  const Value butterworth = Response(L"butterworthFilter", arguments, 1 << 14);
  const std::size_t cutoff = (1 << 14) / 100;
  EXPECT_NEAR(GroupDelay(bessel, cutoff) / GroupDelay(bessel, 1), 1.0, 2e-3);
  EXPECT_GT(GroupDelay(butterworth, cutoff) / GroupDelay(butterworth, 1), 1.3);
  // Unit delay at the half-power frequency of the table: w_c T = 3.17962.
  EXPECT_NEAR(GroupDelay(bessel, 1), 3.17962 / (2 * kPi * 0.01), 0.05);
}

TEST(BesselFilter, IsDesignedForEveryOrder) {
  for (int order = 1; order <= 20; ++order) {
    const Value response = Response(L"besselFilter", {Word(EOption::LOWPASS), Number(order), Number(0.125)}, 1 << 12);
    EXPECT_NEAR(std::abs(response.at(1 << 9)), std::sqrt(0.5), 1e-9) << order;
    EXPECT_NEAR(std::abs(response.at(0)), 1.0, 1e-12) << order;
  }
}

// ---- filters in both directions ----

/// A sine of the frequency that begins and ends at a zero, here with a constant added.
Value SineBetweenZeros(double step, double frequency, std::size_t half_waves, double constant) {
  const Numbers t = Steps(
      step, static_cast<std::size_t>(std::lround(0.5 * static_cast<double>(half_waves) / (frequency * step))) + 1);
  return Signal(t, {Sampled(t, [=](double x) { return constant + std::sin(2 * kPi * frequency * x); })});
}

TEST(BothWayFilters, SquareTheGainWithoutDelayUpToTheEnds) {
  const double step = 0.001;
  for (const double frequency : {10.0, 50.0, 100.0}) {
    const Value signal = SineBetweenZeros(step, frequency, 101, 3.0);
    const double w = std::tan(kPi * frequency * step) / std::tan(kPi * 60.0 * step);
    const math::Vector filtered =
        RowOf(Call(L"sineButterworthFilter", {signal, Word(EOption::LOWPASS), Number(3), Number(60)}));
    const math::Vector expected = (std::pow(ButterworthGain(3, w), 2) * (RowOf(signal).array() - 3.0) + 3.0).matrix();
    EXPECT_TRUE(MatrixNear(filtered, expected, 1e-5)) << frequency;
  }
}

// Channel class 60 lets half the power through at 100 Hz, whatever the unit of time.
TEST(SaeFilter, HasTheCutOffOfItsClass) {
  for (const double unit : {1.0, 0.001}) {
    const Value signal = SineBetweenZeros(0.0001 / unit, 100.0 * unit, 101, 0.0);
    const math::Vector filtered = RowOf(Call(L"saeFilter", {signal, Number(60), Number(unit)}));
    EXPECT_TRUE(MatrixNear(filtered, std::sqrt(0.5) * RowOf(signal), 1e-3)) << unit;
  }
}

TEST(BothWayFilters, KeepConstantsAndLinesEvenAtTheLowestCutOff) {
  const Numbers t = Steps(1, 3000);
  const Value signal = Signal(t, {Numbers(3000, -4.0), Steps(0.001, 3000)});
  for (const int order : {1, 6, 20}) {
    const Value filtered =
        Call(L"sineButterworthFilter", {signal, Word(EOption::LOWPASS), Number(order), Number(1.01e-5)});
    EXPECT_TRUE(MatrixNear(RowOf(filtered), RowOf(signal), 1e-5)) << order;
  }
  const Value filtered = Call(L"sineButterworthFilter", {signal, Word(EOption::LOWPASS), Number(4), Number(0.05)});
  EXPECT_TRUE(MatrixNear(RowOf(filtered, 2), RowOf(signal, 2), 1e-6));
}

TEST(DecimateFilter, KeepsWhatTheNewSamplingCanShow) {
  const Numbers t = Steps(0.001, 5001);
  const auto sine = [](double f) { return [f](double x) { return std::sin(2 * kPi * f * x); }; };
  const Value signal = Signal(t, {Sampled(t, sine(20)), Sampled(t, sine(70)), Numbers(5001, 1.5)});
  const Value decimated = Call(L"decimateFilter", {signal, Number(10)});
  const Numbers coarse = Steps(0.01, 501);
  EXPECT_TRUE(MatrixNear(RowOf(decimated, 0), ToEigen(coarse), 1e-12));
  EXPECT_TRUE(MatrixNear(RowOf(decimated, 1), ToEigen(Sampled(coarse, sine(20))), 2e-3));
  EXPECT_TRUE(MatrixNear(RowOf(decimated, 2), math::Vector::Zero(501), 2e-4));
  EXPECT_TRUE(MatrixNear(RowOf(decimated, 3), math::Vector::Constant(501, 1.5), 1e-10));
  EXPECT_TRUE(Call(L"decimateFilter", {signal, Number(1)}) == signal);
  EXPECT_EQ(Call(L"decimateFilter", {signal, Number(6000)}).size2(), 1u);
}

// ---- smoothing ----

TEST(SmoothFilter, ReproducesPolynomialsUpToTheEnds) {
  const Numbers t = Steps(0.25, 40);
  for (int degree = 0; degree <= 9; ++degree) {
    const auto curve = [degree](double x) { return std::pow(x / 10 - 0.4, degree) + 1; };
    const Value signal = Signal(t, {Sampled(t, curve)});
    for (const int window : {11, 39, 201}) {
      const Value smooth = Call(L"smoothFilter", {signal, Number(window), Number(degree)});
      EXPECT_TRUE(MatrixNear(RowOf(smooth), RowOf(signal), 1e-9)) << degree << ", " << window;
    }
  }
}

TEST(SmoothFilter, HasTheWeightsOfSavitzkyAndGolay) {
  Numbers impulse(9, 0.0);
  impulse[4] = 35.0;
  const Value signal = Signal(Steps(1, 9), {impulse});
  EXPECT_TRUE(MatrixNear(RowOf(Call(L"smoothFilter", {signal, Number(5), Number(2)})).segment(2, 5),
                         ToEigen({-3, 12, 17, 12, -3}), 1e-12));
  EXPECT_TRUE(MatrixNear(RowOf(Call(L"smoothFilter", {signal, Number(7)})),
                         ToEigen({0, 7, 35 / 6.0, 5, 5, 5, 35 / 6.0, 7, 0}), 1e-12));
}

// ---- any sampling ----

struct Variants {
  std::wstring plain;
  Arguments behind_signal;
};

const std::vector<Variants>& AllVariants() {
  static const std::vector<Variants> variants = {
      {L"saeFilter", {Number(20)}},
      {L"butterworthFilter", {Word(EOption::LOWPASS), Number(3), Number(25)}},
      {L"sineButterworthFilter", {Word(EOption::BANDPASS), Number(2), Number(1), Number(25)}},
      {L"chebyOneFilter", {Word(EOption::HIGHPASS), Number(3), Number(1), Number(25)}},
      {L"chebyTwoFilter", {Word(EOption::BANDSTOP), Number(3), Number(30), Number(2), Number(25)}},
      {L"decimateFilter", {Number(3)}},
      {L"smoothFilter", {Number(5), Number(2)}}};
  return variants;
}

Arguments With(const Value& signal, const Arguments& behind_signal) {
  Arguments arguments = {signal};
  arguments.insert(arguments.end(), behind_signal.begin(), behind_signal.end());
  return arguments;
}

TEST(FiltersOfAnySampling, AgreeWithThePlainOnesWhereTheSamplingIsUniform) {
  const Numbers t = Steps(0.01, 300);
  const Value signal = Signal(t, {Sampled(t, [](double x) { return std::sin(30 * x) + std::exp(-x); })});
  for (const Variants& variants : AllVariants()) {
    const Value plain = Call(variants.plain, With(signal, variants.behind_signal));
    EXPECT_TRUE(Call(variants.plain + L"ABQ", With(signal, variants.behind_signal)) == plain);
    EXPECT_TRUE(plain != signal);
  }
}

TEST(FiltersOfAnySampling, GiveTheOriginalAbscissaeBack) {
  const auto warped = [](double x) { return x + 0.004 * std::sin(20 * x); };
  const Numbers t = Sampled(Steps(0.01, 300), warped);
  const auto curve = [](double x) { return std::cos(3 * x); };
  const Numbers noise = Sampled(Steps(1, 300), [](double i) { return std::fmod(i, 2.0) - 0.5; });
  Numbers noisy = Sampled(t, curve);
  for (std::size_t i = 0; i < noisy.size(); ++i) noisy[i] += 0.2 * noise[i];
  const Value signal = XyData(t, {noisy});
  const Value filtered = Call(L"sineButterworthFilterABQ", {signal, Word(EOption::LOWPASS), Number(4), Number(5)});
  EXPECT_EQ(filtered.GetKind(), Value::XYDATA);
  EXPECT_TRUE(MatrixNear(RowOf(filtered, 0), ToEigen(t), 0.0));
  const math::Vector error = RowOf(filtered) - ToEigen(Sampled(t, curve));
  EXPECT_LT(error.segment(20, 260).cwiseAbs().maxCoeff(), 0.02) << "the noise of 0.1 is gone";
  const Value decimated = Call(L"decimateFilterABQ", {signal, Number(7)});
  EXPECT_EQ(decimated.size2(), 43u);
  EXPECT_EQ(RowOf(decimated, 0)(42), t[294]);
}

TEST(Filters, TreatEachChannelAndEachPartByItself) {
  const Numbers t = Steps(0.01, 200);
  const Numbers a = Sampled(t, [](double x) { return std::cos(40 * x); });
  const Numbers b = Sampled(t, [](double x) { return x * x - 1; });
  for (const Variants& variants : AllVariants()) {
    const Value both = Call(variants.plain, With(Signal(t, {a, b}), variants.behind_signal));
    const Value part =
        Call(variants.plain, With(Signal(t, {a}) + Number(0, 1) * Signal(t, {b}), variants.behind_signal));
    for (std::size_t i = 0; i < both.size2(); ++i) {
      EXPECT_EQ(part.at(0, i), Complex(both.at(0, i).real(), both.at(1, i).real()));
    }
  }
}

}  // namespace
}  // namespace kestrel::calculator::test
