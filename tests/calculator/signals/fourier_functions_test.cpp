#include <gtest/gtest.h>

#include <complex>

#include "calculator/signals/signal_calls.h"
#include "support/matrix_compare.h"

namespace kestrel::calculator::test {
namespace {

using Complex = std::complex<double>;

/// Reproducible numbers without a pattern.
double Noise(std::size_t i) {
  const double x = std::sin(12.9898 * static_cast<double>(i + 1)) * 43758.5453;
  return x - std::floor(x) - 0.5;
}

Value::VectorType NoiseOf(std::size_t size, bool is_complex) {
  Value::VectorType entries(size);
  for (std::size_t i = 0; i < size; ++i) entries(i) = {Noise(i), is_complex ? Noise(i + size) : 0.0};
  return entries;
}

/// The definition, entry by entry.
Value::VectorType PlainTransform(const Value::VectorType& x) {
  const std::size_t n = x.size();
  Value::VectorType spectrum(n);
  for (std::size_t k = 0; k < n; ++k) {
    Complex sum = 0.0;
    for (std::size_t j = 0; j < n; ++j) {
      sum += x(j) * std::polar(1.0, -2.0 * kPi * static_cast<double>(j * k % n) / static_cast<double>(n));
    }
    spectrum(k) = sum;
  }
  return spectrum;
}

double LargestDifference(const Value::VectorType& a, const Value::VectorType& b) {
  EXPECT_EQ(a.size(), b.size());
  double largest = 0.0;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) largest = std::max(largest, std::abs(a(i) - b(i)));
  return largest;
}

TEST(Fft, IsTheSumOfItsDefinitionForEveryLength) {
  for (const std::size_t n : {1, 2, 3, 4, 5, 6, 7, 8, 12, 15, 49, 61, 67, 101, 128, 134, 360, 1009, 2018}) {
    for (const bool is_complex : {false, true}) {
      const Value::VectorType x = NoiseOf(n, is_complex);
      const Value spectrum = Call(L"fft", {Value(x)});
      EXPECT_LT(LargestDifference(spectrum.GetVector(), PlainTransform(x)), 1e-12 * static_cast<double>(n) + 1e-15)
          << n;
      const Value back = Call(L"ifft", {spectrum});
      EXPECT_LT(LargestDifference(back.GetVector(), x), 1e-14) << n;
      EXPECT_EQ(back.IsComplex(), is_complex) << n;
    }
  }
}

TEST(Fft, KeepsTheEnergyOfLongSignals) {
  for (const std::size_t n : {std::size_t{1} << 17, std::size_t{100'003}, std::size_t{1'050'000}}) {
    const Value::VectorType x = NoiseOf(n, false);
    const Value spectrum = Call(L"fft", {Value(x)});
    double energy = 0.0;
    for (const Complex& entry : x) energy += std::norm(entry);
    double spectral_energy = 0.0;
    for (const Complex& entry : spectrum.GetVector()) spectral_energy += std::norm(entry);
    EXPECT_NEAR(spectral_energy / static_cast<double>(n), energy, 1e-11 * energy) << n;
    EXPECT_LT(LargestDifference(Call(L"ifft", {spectrum}).GetVector(), x), 1e-13) << n;
  }
}

TEST(Fft, TellsTheFrequencyOfASignal) {
  const double step = 0.01;
  const Numbers t = Steps(step, 200);
  const auto cosine = [](double x) { return 3 * std::cos(2 * kPi * 12.5 * x); };
  Numbers impulse(200, 0.0);
  impulse[0] = 4.0;
  const Value spectrum = Call(L"fft", {Signal(t, {Sampled(t, cosine), impulse})});
  EXPECT_EQ(spectrum.GetKind(), Value::SIGNAL);
  EXPECT_TRUE(kestrel::testing::MatrixNear(RowOf(spectrum, 0), ToEigen(Steps(0.5, 200)), 1e-12));
  for (std::size_t k = 0; k < 200; ++k) {
    EXPECT_NEAR(std::abs(spectrum.at(0, k)), k == 25 || k == 175 ? 300.0 : 0.0, 1e-10) << k;
    EXPECT_NEAR(std::abs(spectrum.at(1, k) - 4.0), 0.0, 1e-14) << k;
  }
  const Value back = Call(L"ifft", {spectrum});
  EXPECT_TRUE(kestrel::testing::MatrixNear(RowOf(back, 0), ToEigen(t), 1e-12));
  EXPECT_TRUE(kestrel::testing::MatrixNear(RowOf(back, 1), ToEigen(Sampled(t, cosine)), 1e-12));
  EXPECT_FALSE(back.IsComplex());
}

TEST(FftShift, PutsTheZeroInTheMiddle) {
  const struct {
    Value plain, shifted;
  } cases[] = {
      {VectorOf({0, 1, 2, -2, -1}), VectorOf({-2, -1, 0, 1, 2})},
      {VectorOf({0, 1, -2, -1}), VectorOf({-2, -1, 0, 1})},
      {VectorOf({7}), VectorOf({7})},
      {MatrixOf({{0, 1, 2}, {3, 4, 5}, {6, 7, 8}, {9, 10, 11}}),
       MatrixOf({{8, 6, 7}, {11, 9, 10}, {2, 0, 1}, {5, 3, 4}})},
      {Signal({0, 2, 4, 6}, {{1, 2, 3, 4}, {5, 6, 7, 8}}), Signal({-4, -2, 0, 2}, {{3, 4, 1, 2}, {7, 8, 5, 6}})},
      {Signal({0, 2, 4}, {{1, 2, 3}}), Signal({-2, 0, 2}, {{3, 1, 2}})},
  };
  for (const auto& c : cases) {
    EXPECT_TRUE(Call(L"fftshift", {c.plain}) == c.shifted) << c.plain.size();
    EXPECT_TRUE(Call(L"ifftshift", {c.shifted}) == c.plain) << c.plain.size();
  }
}

// Along both axes the transform of an outer product is the outer product of the transforms.
TEST(Fft2d, TransformsRowsAndColumns) {
  const Value::VectorType a = NoiseOf(6, true);
  const Value::VectorType b = NoiseOf(67, false);
  const auto outer = [](const Value::VectorType& u, const Value::VectorType& v) {
    return Value::MatrixType(boost::numeric::ublas::outer_prod(u, v));
  };
  const Value spectrum = Call(L"fft2d", {Value(outer(a, b))});
  const Value::MatrixType expected = outer(PlainTransform(a), PlainTransform(b));
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = 0; j < 67; ++j) EXPECT_LT(std::abs(spectrum.at(i, j) - expected(i, j)), 1e-11);
  }
  const Value real = Value(outer(NoiseOf(5, false), b));
  const Value back = Call(L"ifft2d", {Call(L"fft2d", {real})});
  EXPECT_FALSE(back.IsComplex());
  EXPECT_LT(std::abs(back.at(3, 40) - real.at(3, 40)), 1e-14);
  const Value complex_back = Call(L"ifft2d", {spectrum});
  EXPECT_LT(std::abs(complex_back.at(2, 30) - a(2) * b(30)), 1e-14);
}

TEST(Fft, TransformsEachRowOfAMatrix) {
  const Value rows = Call(L"fft", {MatrixOf({{1, 2, 3, 4}, {0, 1, 0, 0}})});
  EXPECT_TRUE(rows.GetRow(0).Equal(Call(L"fft", {VectorOf({1, 2, 3, 4})})));
  EXPECT_TRUE(rows.GetRow(1).Equal(Call(L"fft", {VectorOf({0, 1, 0, 0})})));
}

}  // namespace
}  // namespace kestrel::calculator::test
