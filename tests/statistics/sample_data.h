#pragma once

#include <boost/random/uniform_real_distribution.hpp>
#include <functional>
#include <limits>
#include <string>

#include "statistics/random.h"
#include "support/exceptions.h"
#include "support/linear_algebra.h"

/// Data for the tests of the statistics.
namespace kestrel::testing {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

/// Entries drawn uniformly from [lower, upper).
inline math::Matrix UniformMatrix(math::Index rows, math::Index cols, std::uint64_t seed, double lower = 0.0,
                                  double upper = 1.0) {
  math::random::Generator generator(seed);
  boost::random::uniform_real_distribution<double> entry(lower, upper);
  return math::Matrix::NullaryExpr(rows, cols, [&] { return entry(generator); });
}

inline math::Vector Numbers(std::initializer_list<double> numbers) {
  return Eigen::Map<const math::Vector>(numbers.begin(), static_cast<math::Index>(numbers.size()));
}

/// The text of the `utils::runtime_error` that a call raises; "no error" without one.
inline std::wstring ReportOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const utils::runtime_error& error) {
    return error.What();
  }
  return L"no error";
}

}  // namespace kestrel::testing
