#include "doe/point_set.h"

#include <limits>

#include "support/exceptions.h"

namespace kestrel::math::doe {

void Require(bool condition, const std::wstring& message) {
  if (!condition) throw utils::logic_error(message);
}

std::uint64_t SaturatedProduct(std::uint64_t a, std::uint64_t b) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
  return a != 0 && b > kLargest / a ? kLargest : a * b;
}

std::uint64_t SaturatedPower(std::uint64_t base, std::uint64_t exponent) {
  std::uint64_t power = 1;
  for (; exponent > 0; exponent /= 2, base = SaturatedProduct(base, base)) {  // x^e = (x^2)^(e/2), times x if e is odd
    if (exponent % 2 == 1) power = SaturatedProduct(power, base);
  }
  return power;
}

void RequireSize(std::uint64_t num_points, std::uint64_t num_inputs) {
  Require(num_inputs > 0, L"A point set needs at least one input.");
  Require(num_points > 0, L"A point set needs at least one point.");
  Require(SaturatedProduct(num_points, num_inputs) <= kMaxEntries,
          L"The point set is too large: " + std::to_wstring(num_points) + L" points of " + std::to_wstring(num_inputs) +
              L" inputs, at most " + std::to_wstring(kMaxEntries) + L" entries are possible.");
}

Matrix CentrePoints(std::uint64_t num_points, std::uint64_t num_inputs) {
  RequireSize(num_points, num_inputs);
  return Matrix::Zero(static_cast<Index>(num_points), static_cast<Index>(num_inputs));
}

double LevelValue(std::uint64_t level, std::uint64_t count) {
  if (count <= 1) return 0.0;
  const auto last = static_cast<double>(count - 1);
  return (2.0 * static_cast<double>(level) - last) / last;
}

}  // namespace kestrel::math::doe
